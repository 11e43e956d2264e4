#include "BrowsePlacesSidebar.h"

#include <vesperon/platform/MCGraphicsContext.h>
#include <vesperon/toolkit/MCAttributedString.h>
#include <vesperon/toolkit/MCColor.h>
#include <vesperon/toolkit/MCEvent.h>

#include <algorithm>
#include <cctype>
#include <set>

namespace fs = std::filesystem;

namespace {
// "/a/b/" and "/a/./b" are "/a/b": one place, one name.
fs::path normalFolder(const fs::path& folder) {
  fs::path normal = folder.lexically_normal();
  if (normal.filename().empty() && normal.has_relative_path()) normal = normal.parent_path();
  return normal;
}
}  // namespace

std::vector<BrowsePlacesSidebar::Place> BrowsePlacesSidebar::placesFrom(
    const fs::path& pictures, const std::vector<fs::path>& remembered, const std::vector<fs::path>& volumes,
    const std::function<bool(const fs::path&)>& hasPhotos) {
  std::vector<Place> places;
  std::set<fs::path> seen;
  std::error_code ec;
  const auto name = [](const fs::path& folder) {
    const std::string last = folder.filename().string();
    return last.empty() ? folder.string() : last;
  };
  if (!pictures.empty() && fs::is_directory(pictures, ec)) {
    places.push_back({"Places", "Pictures", normalFolder(pictures)});
    seen.insert(normalFolder(pictures));
  }
  for (auto it = remembered.rbegin(); it != remembered.rend(); ++it) {
    const fs::path folder = normalFolder(*it);
    if (!seen.insert(folder).second || !fs::is_directory(folder, ec)) continue;
    places.push_back({"Recent", name(folder), folder});
  }
  for (const auto& volume : volumes)
    if (hasPhotos && hasPhotos(volume) && seen.insert(normalFolder(volume)).second)
      places.push_back({"Volumes", name(normalFolder(volume)), normalFolder(volume)});
  return places;
}

bool BrowsePlacesSidebar::volumeHasPhotos(const fs::path& volume) {
  const std::string path = volume.string();
  const bool userMount = path.rfind("/media/", 0) == 0 || path.rfind("/run/media/", 0) == 0 ||
                         path.rfind("/mnt/", 0) == 0 || path.find("/gvfs/") != std::string::npos;
  if (!userMount) return false;
  std::error_code ec;
  if (fs::is_directory(volume / "DCIM", ec)) return true;
  // A look at the top only, and not much of it: a volume may hold millions of files.
  static const std::set<std::string> photos = {".jpg", ".jpeg", ".heic", ".png", ".tif", ".tiff", ".webp", ".dng"};
  std::size_t looked = 0;
  for (fs::directory_iterator it(volume, fs::directory_options::skip_permission_denied, ec), end;
       !ec && it != end && looked < 200; it.increment(ec), ++looked) {
    std::string extension = it->path().extension().string();
    std::transform(extension.begin(), extension.end(), extension.begin(), [](unsigned char c) { return std::tolower(c); });
    if (photos.count(extension)) return true;
  }
  return false;
}

void BrowsePlacesSidebar::setPlaces(std::vector<Place> places) {
  places_ = std::move(places);
  setNeedsDisplay(true);
}

void BrowsePlacesSidebar::setCurrentFolder(const fs::path& folder) {
  current_ = normalFolder(folder);
  setNeedsDisplay(true);
}

MCRect BrowsePlacesSidebar::rectOfPlace(std::size_t index) const {
  double y = 8;
  std::string section;
  for (std::size_t i = 0; i < places_.size(); ++i) {
    if (places_[i].section != section) {
      section = places_[i].section;
      y += kHeaderHeight;
    }
    if (i == index) return MCMakeRect(6, y, bounds().size.width - 12, kRowHeight);
    y += kRowHeight;
  }
  return MCMakeRect(0, 0, 0, 0);
}

void BrowsePlacesSidebar::drawRect(const MCRect& dirty) {
  MCGraphicsContext& context = *MCGraphicsContext::currentContext();
  palette_.bar.setFill(context);
  context.fillRect(dirty);
  palette_.separator.setFill(context);
  context.fillRect(MCMakeRect(bounds().size.width - 1, 0, 1, bounds().size.height));
  // Section titles in a grey that keeps 4.5:1 on the sidebar's colour.
  const MCTextAttributes header{MCFont::boldSystemFontOfSize(11), palette_.barText, {}, {}, {}};
  std::string section;
  for (std::size_t i = 0; i < places_.size(); ++i) {
    const MCRect row = rectOfPlace(i);
    if (places_[i].section != section) {
      section = places_[i].section;
      MCAttributedString(section, header).drawAtPoint({14, row.origin.y - kHeaderHeight + 12}, context);
    }
    const bool current = places_[i].folder == current_;
    if (current) {
      palette_.placeholder.setFill(context);
      context.fillRect(row);
    }
    MCAttributedString title(places_[i].title, {MCFont::systemFontOfSize(13), palette_.text, {}, {}, {}});
    title.setLineBreakMode(MCLineBreakMode::TruncatingMiddle);
    const double height = title.size().height;
    title.drawInRect(MCMakeRect(row.origin.x + 10, MCMidY(row) - height / 2, row.size.width - 20, height), context);
  }
  if (places_.empty()) {
    MCAttributedString none("No places", header);
    none.drawAtPoint({14, 14}, context);
  }
}

void BrowsePlacesSidebar::mouseDown(const MCEvent& event) {
  const MCPoint at = convertPoint(event.locationInWindow(), nullptr);
  for (std::size_t i = 0; i < places_.size(); ++i)
    if (MCPointInRect(at, rectOfPlace(i))) {
      // A copy: opening the place reads the places anew, and this one with them.
      const std::filesystem::path folder = places_[i].folder;
      if (placeChosen) placeChosen(folder);
      return;
    }
}
