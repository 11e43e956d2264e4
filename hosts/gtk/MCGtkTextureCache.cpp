#include "MCGtkTextureCache.h"

#include <vesperon/core/MCLog.h>
#include <vesperon/platform/MCGraphicsContext.h>

#include <gtk/gtk.h>

MCGtkTextureCache::~MCGtkTextureCache() {
  for (auto& [key, entry] : entries_) g_object_unref(entry.texture);
}

GdkTexture* MCGtkTextureCache::textureForImage(const MCRasterImageRef& image) {
  if (!image || image->width() == 0 || image->height() == 0) return nullptr;
  if (auto found = entries_.find(image.get()); found != entries_.end()) return found->second.texture;

  Entry entry;
  entry.image = image;
  GBytes* bytes = nullptr;
  gsize stride = 0;
  const bool gdkLayout = image->bitsPerComponent() == 8 && image->bitsPerPixel() == 32 &&
                         image->bitmapInfo() == (MCImageAlphaPremultipliedFirst | MCBitmapByteOrder32Little) &&
                         MCColorSpaceOfImage(*image) == MCColorSpace::sRGB() &&
                         image->pixels().size() >= image->bytesPerRow() * image->height();
  if (gdkLayout) {
    // The texture borrows the pixels and holds the image for as long as GTK holds the texture.
    auto* held = new MCRasterImageRef(image);
    bytes = g_bytes_new_with_free_func(image->pixels().data(), image->bytesPerRow() * image->height(),
                                       +[](gpointer data) { delete static_cast<MCRasterImageRef*>(data); }, held);
    stride = image->bytesPerRow();
    entry.ownReferences = 2;
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
  GdkTexture* texture = entry.texture;
  entries_.emplace(image.get(), std::move(entry));
  return texture;
}

void MCGtkTextureCache::prune() {
  for (auto it = entries_.begin(); it != entries_.end();) {
    if (it->second.image.use_count() <= it->second.ownReferences) {
      g_object_unref(it->second.texture);
      it = entries_.erase(it);
    } else {
      ++it;
    }
  }
}
