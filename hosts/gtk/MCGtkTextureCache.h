#pragma once
// MCGtkTextureCache: one GdkTexture per image a host draws, kept across frames so that GTK's
// renderer uploads each image once.
//
// A texture lives as long as something besides the cache holds its image: after each frame the
// host prunes the textures whose images were let go everywhere else (the image caches dropped
// them). Images already in GDK's memory layout (8-bit premultiplied BGRA, sRGB) lend their pixels
// to the texture (or surface), which holds the image while GTK holds it; others are converted once.
// Main thread only.

#include <vesperon/platform/MCRasterImage.h>

#include <cstddef>
#include <unordered_map>

typedef struct _GdkTexture GdkTexture;
typedef struct _cairo_surface cairo_surface_t;

class MCGtkTextureCache {
 public:
  MCGtkTextureCache() = default;
  ~MCGtkTextureCache();
  MCGtkTextureCache(const MCGtkTextureCache&) = delete;
  MCGtkTextureCache& operator=(const MCGtkTextureCache&) = delete;

  /// The texture of `image`, made on first use; the cache keeps the reference. None for an absent
  /// image or one whose pixels cannot be converted.
  GdkTexture* textureForImage(const MCRasterImageRef& image);
  /// The image as a Cairo image surface (premultiplied ARGB, sRGB), made on first use, for
  /// GTK's Cairo renderer, which composites such a surface directly where it would convert a
  /// texture's every pixel each frame. None as for textures.
  cairo_surface_t* surfaceForImage(const MCRasterImageRef& image);
  /// Releases the textures and surfaces of images that only the cache still holds.
  void prune();
  /// How many textures the cache holds.
  std::size_t size() const { return entries_.size(); }

 private:
  struct Entry {
    MCRasterImageRef image;
    GdkTexture* texture = nullptr;
    cairo_surface_t* surface = nullptr;
    long ownReferences = 1;  // the image's references that are the cache's own (the entry, lent pixels)
  };
  Entry& entryFor(const MCRasterImageRef& image);
  std::unordered_map<const MCRasterImage*, Entry> entries_;
};
