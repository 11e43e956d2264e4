#include "MCGtkTextureCache.h"

#include <vesperon/core/MCLog.h>
#include <vesperon/platform/MCGraphicsContext.h>

#include <gtk/gtk.h>

namespace {

// Whether the image's pixels are in GDK's and Cairo's layout already: 8-bit premultiplied B, G, R,
// A in memory, sRGB.
bool inNativeLayout(const MCRasterImage& image) {
  return image.bitsPerComponent() == 8 && image.bitsPerPixel() == 32 &&
         image.bitmapInfo() == (MCImageAlphaPremultipliedFirst | MCBitmapByteOrder32Little) &&
         MCColorSpaceOfImage(image) == MCColorSpace::sRGB() && image.bytesPerRow() % 4 == 0 &&
         image.pixels().size() >= image.bytesPerRow() * image.height();
}

const cairo_user_data_key_t kHeldImage{};

}  // namespace

MCGtkTextureCache::~MCGtkTextureCache() {
  for (auto& [key, entry] : entries_) {
    if (entry.texture) g_object_unref(entry.texture);
    if (entry.surface) cairo_surface_destroy(entry.surface);
  }
}

MCGtkTextureCache::Entry& MCGtkTextureCache::entryFor(const MCRasterImageRef& image) {
  auto [it, inserted] = entries_.try_emplace(image.get());
  if (inserted) it->second.image = image;
  return it->second;
}

cairo_surface_t* MCGtkTextureCache::surfaceForImage(const MCRasterImageRef& image) {
  if (!image || image->width() == 0 || image->height() == 0) return nullptr;
  Entry& entry = entryFor(image);
  if (entry.surface) return entry.surface;
  if (inNativeLayout(*image)) {
    // The surface borrows the pixels and holds the image for as long as it lives.
    entry.surface = cairo_image_surface_create_for_data(const_cast<uint8_t*>(image->pixels().data()),
                                                        CAIRO_FORMAT_ARGB32, int(image->width()), int(image->height()),
                                                        int(image->bytesPerRow()));
    cairo_surface_set_user_data(entry.surface, &kHeldImage, new MCRasterImageRef(image),
                                +[](void* data) { delete static_cast<MCRasterImageRef*>(data); });
    ++entry.ownReferences;
  } else {
    entry.surface = MCGraphicsContext::createSurfaceForImage(*image);
  }
  if (!entry.surface || cairo_surface_status(entry.surface) != CAIRO_STATUS_SUCCESS) {
    MCLog::sdkGraphics()->logError("An image drawn on screen has pixels that cannot be converted");
    if (entry.surface) cairo_surface_destroy(entry.surface);
    entry.surface = nullptr;
    return nullptr;
  }
  return entry.surface;
}

GdkTexture* MCGtkTextureCache::textureForImage(const MCRasterImageRef& image) {
  if (!image || image->width() == 0 || image->height() == 0) return nullptr;
  Entry& entry = entryFor(image);
  if (entry.texture) return entry.texture;

  GBytes* bytes = nullptr;
  gsize stride = 0;
  if (inNativeLayout(*image)) {
    // The texture borrows the pixels and holds the image for as long as GTK holds the texture.
    auto* held = new MCRasterImageRef(image);
    bytes = g_bytes_new_with_free_func(image->pixels().data(), image->bytesPerRow() * image->height(),
                                       +[](gpointer data) { delete static_cast<MCRasterImageRef*>(data); }, held);
    stride = image->bytesPerRow();
    ++entry.ownReferences;
  } else {
    cairo_surface_t* surface = MCGraphicsContext::createSurfaceForImage(*image);
    if (!surface) {
      MCLog::sdkGraphics()->logError("An image drawn on screen has pixels that cannot be converted");
      return nullptr;
    }
    stride = gsize(cairo_image_surface_get_stride(surface));
    bytes = g_bytes_new_with_free_func(cairo_image_surface_get_data(surface), stride * gsize(image->height()),
                                       +[](gpointer data) { cairo_surface_destroy(static_cast<cairo_surface_t*>(data)); },
                                       surface);
  }
  // GDK_MEMORY_DEFAULT is premultiplied B, G, R, A in memory on little-endian machines, as
  // Cairo's ARGB32 is.
  entry.texture = gdk_memory_texture_new(int(image->width()), int(image->height()), GDK_MEMORY_DEFAULT, bytes, stride);
  g_bytes_unref(bytes);
  return entry.texture;
}

void MCGtkTextureCache::prune() {
  for (auto it = entries_.begin(); it != entries_.end();) {
    Entry& entry = it->second;
    if (entry.image.use_count() <= entry.ownReferences || (!entry.texture && !entry.surface)) {
      if (entry.texture) g_object_unref(entry.texture);
      if (entry.surface) cairo_surface_destroy(entry.surface);
      it = entries_.erase(it);
    } else {
      ++it;
    }
  }
}
