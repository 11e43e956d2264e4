#include <vesperon/drawing/MCSymbolIcons.h>

#include <librsvg/rsvg.h>

#include <filesystem>
#include <map>
#include <mutex>
#include <optional>

namespace {

const std::map<std::string, std::string>& iconNames() {
  static const std::map<std::string, std::string> table = {
      {"lock.fill", "status/system-lock-screen"},
      {"trash.fill", "places/user-trash"},
      {"icloud.fill", "status/weather-overcast"},
      {"icloud.slash.fill", "status/network-offline"},
      {"flag.fill", "categories/emoji-flags"},
      {"exclamationmark.triangle.fill", "status/dialog-warning"},
      {"heart.fill", "emblems/emblem-favorite"},
      {"eye.slash.fill", "actions/view-conceal"},
      {"arrowshape.turn.up.right.fill", "actions/mail-forward"},
      {"document.on.document.fill", "actions/edit-copy"},
      {"livephoto.play", "actions/media-playback-start"},
      {"iphone", "devices/phone"},
      {"person.2.fill", "legacy/system-users"},
      {"timelapse", "actions/document-open-recent"},
      {"video.fill", "devices/camera-video"},
      {"star.fill", "status/starred"},
      {"location.fill", "actions/mark-location"},
      {"square.stack.3d.up.fill", "actions/view-paged"},
      {"pano.fill", "legacy/preferences-desktop-wallpaper"},
      {"cube.fill", "actions/insert-object"},
      {"slowmo", "status/power-profile-power-saver"},
      {"square.grid.2x2", "actions/view-grid"},
      {"chevron.backward", "actions/go-previous"},
      {"chevron.forward", "actions/go-next"},
      {"plus.magnifyingglass", "actions/zoom-in"},
      {"minus.magnifyingglass", "actions/zoom-out"},
      {"arrow.down.right.and.arrow.up.left", "actions/zoom-fit-best"},
      {"1.magnifyingglass", "actions/zoom-original"},
      {"info.circle", "status/dialog-information"},
      {"play.rectangle", "actions/media-playback-start"},
  };
  return table;
}

// The ink of the theme's symbolic icons.
void setSymbolicInk(cairo_t* cr) { cairo_set_source_rgb(cr, 0x2e / 255.0, 0x34 / 255.0, 0x36 / 255.0); }

// Drawn symbols work in a unit square, y down.

void strikeThrough(cairo_t* cr) {
  cairo_set_line_cap(cr, CAIRO_LINE_CAP_ROUND);
  cairo_move_to(cr, 0.12, 0.08);
  cairo_line_to(cr, 0.88, 0.92);
  // Cut a gap on both sides first, so the stroke reads apart from the shape it crosses.
  cairo_save(cr);
  cairo_set_operator(cr, CAIRO_OPERATOR_CLEAR);
  cairo_set_line_width(cr, 0.26);
  cairo_stroke_preserve(cr);
  cairo_restore(cr);
  setSymbolicInk(cr);
  cairo_set_line_width(cr, 0.11);
  cairo_stroke(cr);
}

void fourPointedStar(cairo_t* cr, double cx, double cy, double r) {
  // Each side curves in towards the centre, which gives the pinched waist of a sparkle.
  const double k = 2.0 / 3.0;
  const double tips[4][2] = {{cx, cy - r}, {cx + r, cy}, {cx, cy + r}, {cx - r, cy}};
  cairo_move_to(cr, tips[0][0], tips[0][1]);
  for (int i = 0; i < 4; ++i) {
    const double* from = tips[i];
    const double* to = tips[(i + 1) % 4];
    cairo_curve_to(cr, from[0] + k * (cx - from[0]), from[1] + k * (cy - from[1]), to[0] + k * (cx - to[0]),
                   to[1] + k * (cy - to[1]), to[0], to[1]);
  }
  cairo_close_path(cr);
}

void sparkles(cairo_t* cr) {
  fourPointedStar(cr, 0.40, 0.60, 0.40);
  fourPointedStar(cr, 0.80, 0.20, 0.20);
  fourPointedStar(cr, 0.84, 0.76, 0.14);
  setSymbolicInk(cr);
  cairo_fill(cr);
}

struct DrawnSymbol {
  const char* startsFrom;  // a symbol of the table drawn first, or none
  void (*draw)(cairo_t*);
};

const std::map<std::string, DrawnSymbol>& drawnSymbols() {
  static const std::map<std::string, DrawnSymbol> table = {
      {"flag.slash.fill", {"flag.fill", strikeThrough}},
      {"sparkles", {nullptr, sparkles}},
  };
  return table;
}

bool renderSVG(const std::string& path, cairo_t* cr, MCSize size) {
  GError* error = nullptr;
  RsvgHandle* handle = rsvg_handle_new_from_file(path.c_str(), &error);
  if (error) g_error_free(error);
  if (!handle) return false;
  const RsvgRectangle viewport = {0, 0, size.width, size.height};
  const bool drawn = rsvg_handle_render_document(handle, cr, &viewport, nullptr);
  g_object_unref(handle);
  return drawn;
}

MCImageRef drawSymbol(const DrawnSymbol& symbol, double pointSize) {
  std::optional<std::string> base;
  if (symbol.startsFrom && !(base = MCSymbolIconPath(symbol.startsFrom))) return nullptr;
  const MCSize size = {pointSize, pointSize};
  bool drawn = true;
  MCImageRef image = MCImageWithSize(size, 2.0, [&](MCGraphicsContext& context) {
    cairo_t* cr = context.cairoContext();
    if (base) drawn = renderSVG(*base, cr, size);
    cairo_save(cr);
    cairo_scale(cr, size.width, size.height);
    symbol.draw(cr);
    cairo_restore(cr);
  });
  return drawn ? image : nullptr;
}

const char* const kThemeFolders[] = {"/usr/share/icons/Adwaita/scalable/", "/usr/local/share/icons/Adwaita/scalable/"};

}  // namespace

std::optional<std::string> MCSymbolIconPath(const std::string& symbolName) {
  auto it = iconNames().find(symbolName);
  if (it == iconNames().end()) return std::nullopt;
  for (const char* folder : kThemeFolders) {
    std::string path = std::string(folder) + it->second + "-symbolic.svg";
    std::error_code ec;
    if (std::filesystem::is_regular_file(path, ec)) return path;
  }
  return std::nullopt;
}

MCImageRef MCSymbolImage(const std::string& symbolName, double pointSize) {
  if (!(pointSize > 0) || pointSize > 4096) return nullptr;
  static std::mutex lock;
  static std::map<std::pair<std::string, double>, MCImageRef> cache;
  {
    std::lock_guard<std::mutex> guard(lock);
    auto found = cache.find({symbolName, pointSize});
    if (found != cache.end()) return found->second;
  }
  MCImageRef image;
  if (auto drawn = drawnSymbols().find(symbolName); drawn != drawnSymbols().end()) {
    image = drawSymbol(drawn->second, pointSize);
  } else if (auto path = MCSymbolIconPath(symbolName)) {
    GError* error = nullptr;
    RsvgHandle* handle = rsvg_handle_new_from_file(path->c_str(), &error);
    if (handle) {
      double width = 16, height = 16;
      if (!rsvg_handle_get_intrinsic_size_in_pixels(handle, &width, &height) || width <= 0 || height <= 0) width = height = 16;
      const MCSize size = {pointSize * width / height, pointSize};
      image = MCImageWithSize(size, 2.0, [&](MCGraphicsContext& context) {
        cairo_t* cr = context.cairoContext();
        const RsvgRectangle viewport = {0, 0, size.width, size.height};
        rsvg_handle_render_document(handle, cr, &viewport, nullptr);
      });
      g_object_unref(handle);
    }
    if (error) g_error_free(error);
  }
  std::lock_guard<std::mutex> guard(lock);
  cache[{symbolName, pointSize}] = image;
  return image;
}
