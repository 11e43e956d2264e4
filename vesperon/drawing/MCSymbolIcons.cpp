#include <vesperon/drawing/MCSymbolIcons.h>

#include <librsvg/rsvg.h>

#include <filesystem>
#include <map>
#include <mutex>

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
  };
  return table;
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
  if (auto path = MCSymbolIconPath(symbolName)) {
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
