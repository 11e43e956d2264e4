#include <vesperon/drawing/MCLibraryImages.h>

#include <vesperon/pixels/MCImageFiles.h>

#include <librsvg/rsvg.h>

#include <dlfcn.h>

#include <cmath>
#include <cstdlib>

namespace fs = std::filesystem;

fs::path MCLibraryImagesDirectory() {
  if (const char* folder = std::getenv("VESPERON_DATADIR"); folder && *folder) return fs::path(folder) / "images";
  Dl_info info{};
  if (dladdr(reinterpret_cast<void*>(&MCLibraryImagesDirectory), &info) == 0 || !info.dli_fname) return {};
  std::error_code ec;
  fs::path library = fs::canonical(info.dli_fname, ec);
  if (ec) library = info.dli_fname;
  return (library.parent_path() / VESPERON_DATA_FROM_LIBDIR / "images").lexically_normal();
}

std::optional<fs::path> MCLibraryImagePath(const std::string& name) {
  if (name.empty() || name == "." || name == ".." || name.find('/') != std::string::npos ||
      name.find('\0') != std::string::npos)
    return std::nullopt;
  const fs::path folder = MCLibraryImagesDirectory();
  if (folder.empty()) return std::nullopt;
  for (const char* extension : {".svg", ".png"}) {
    fs::path file = folder / (name + extension);
    std::error_code ec;
    if (fs::is_regular_file(file, ec)) return file;
  }
  return std::nullopt;
}

namespace {

MCImageRef imageFromSVG(const fs::path& file) {
  GError* error = nullptr;
  RsvgHandle* handle = rsvg_handle_new_from_file(file.c_str(), &error);
  if (error) g_error_free(error);
  if (!handle) return nullptr;
  double width = 0, height = 0;
  MCImageRef image;
  // A resource is a small drawing; a size beyond any badge or plate is a broken file.
  if (rsvg_handle_get_intrinsic_size_in_pixels(handle, &width, &height) && width > 0 && height > 0 &&
      width <= 4096 && height <= 4096) {
    const MCSize size = {std::ceil(width), std::ceil(height)};
    image = MCImageWithSize(size, 1.0, [&](MCGraphicsContext& context) {
      const RsvgRectangle viewport = {0, 0, size.width, size.height};
      rsvg_handle_render_document(handle, context.cairoContext(), &viewport, nullptr);
    });
  }
  g_object_unref(handle);
  return image;
}

}  // namespace

MCImageRef MCLibraryImageNamed(const std::string& name) {
  const auto file = MCLibraryImagePath(name);
  if (!file) return nullptr;
  if (file->extension() == ".svg") return imageFromSVG(*file);
  return MCImageSafeImageWithCGImage(MCCreateImageWithURL(*file));
}
