#pragma once
// MCGtkTextureCache: one GdkTexture per image a host draws, kept across frames so that GTK's
// renderer uploads each image once.
//
// A texture lives as long as something besides the cache holds its image: after each frame the
// host prunes the textures whose images were let go everywhere else (the image caches dropped
// them). Images already in GDK's memory layout (8-bit premultiplied BGRA, sRGB) lend their pixels
// to the texture, which holds the image while GTK holds the texture; others are converted once.
// Main thread only.

#include <vesperon/platform/MCRasterImage.h>

#include <cstddef>
#include <unordered_map>

typedef struct _GdkTexture GdkTexture;

class MCGtkTextureCache {
 public:
  MCGtkTextureCache() = default;
  ~MCGtkTextureCache();
  MCGtkTextureCache(const MCGtkTextureCache&) = delete;
  MCGtkTextureCache& operator=(const MCGtkTextureCache&) = delete;

  /// The texture of `image`, made on first use; the cache keeps the reference. None for an absent
  /// image or one whose pixels cannot be converted.
  GdkTexture* textureForImage(const MCRasterImageRef& image);
  /// Releases the textures of images that only the cache still holds.
  void prune();
  /// How many textures the cache holds.
  std::size_t size() const { return entries_.size(); }

 private:
  struct Entry {
    MCRasterImageRef image;
    GdkTexture* texture = nullptr;
    long ownReferences = 1;  // the image's references that are the cache's own (the entry, lent pixels)
  };
  std::unordered_map<const MCRasterImage*, Entry> entries_;
};
