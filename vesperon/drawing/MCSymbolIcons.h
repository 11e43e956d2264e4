#pragma once
// The system symbols the badges name, as icons of the freedesktop icon theme: one table from each
// symbol name the catalogue uses to the closest symbolic icon of adwaita-icon-theme, drawn from its
// SVG with librsvg at the point size asked for (at twice the pixels, for sharp edges).
//
//   symbol                          icon (…-symbolic.svg)    how close
//   lock.fill                       system-lock-screen        same meaning
//   trash.fill                      user-trash                same meaning
//   icloud.fill                     weather-overcast          a cloud
//   icloud.slash.fill               network-offline           "not reachable"; no crossed cloud
//   flag.fill                       emoji-flags               a flag
//   exclamationmark.triangle.fill   dialog-warning            same meaning
//   heart.fill                      emblem-favorite           same meaning
//   eye.slash.fill                  view-conceal              same meaning
//   arrowshape.turn.up.right.fill   mail-forward              a turned arrow
//   document.on.document.fill       edit-copy                 two sheets
//   livephoto.play                  media-playback-start      "plays"
//   iphone                          phone                     a phone
//   person.2.fill                   system-users              two people
//   timelapse                       document-open-recent      a clock with an arrow
//   video.fill                      camera-video              a video camera
//   star.fill                       starred                   same meaning
//   location.fill                   mark-location             same meaning
//   square.stack.3d.up.fill         view-paged                stacked sheets, as bracketed exposures
//   pano.fill                       preferences-desktop-wallpaper   a wide landscape picture
//   cube.fill                       insert-object             a cube
//   slowmo                          power-profile-power-saver a gauge at its low end: slow
//
// and those of a photo viewer's toolbar:
//   square.grid.2x2                 view-grid                 back to the grid
//   chevron.backward, .forward      go-previous, go-next      same meaning
//   plus.magnifyingglass            zoom-in                   same meaning
//   minus.magnifyingglass           zoom-out                  same meaning
//   arrow.down.right.and.arrow.up.left  zoom-fit-best         same meaning
//   1.magnifyingglass               zoom-original             same meaning: one to one
//   info.circle                     dialog-information        same meaning
//   play.rectangle                  media-playback-start      a slideshow plays
//
// Two symbols have no icon of the theme that comes close, and are drawn here with Cairo in the
// theme's symbolic style (one ink colour, which a tint replaces):
//   flag.slash.fill                 the flag of flag.fill, struck through, with a gap cut either
//                                   side of the stroke
//   sparkles                        a large four-pointed star and two small ones

#include <vesperon/drawing/MCImageExtensions.h>

#include <optional>
#include <string>

/// The icon file for a symbol name, or none when the table has no icon for it (a drawn symbol has
/// none of its own) or the theme is not installed.
std::optional<std::string> MCSymbolIconPath(const std::string& symbolName);
/// The symbol drawn `pointSize` points high (width in proportion); none for a name neither the
/// table nor the drawn symbols know, when the theme is not installed (for an icon, or the icon a
/// drawn symbol starts from), or when the SVG cannot be read. Results are kept per name and size.
MCImageRef MCSymbolImage(const std::string& symbolName, double pointSize);
