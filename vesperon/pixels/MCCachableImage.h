#pragma once
// MCCachableImage: an image drawn through a cache of its last drawn size. Drawing at a new size
// scales the full image once into a cached copy of that size; drawing again at the same size only
// draws the copy. One thread at a time.

#include <vesperon/core/MCGeometry.h>
#include <vesperon/platform/MCGraphicsContext.h>
#include <vesperon/platform/MCRasterImage.h>

class MCCachableImage {
 public:
  /// The image is both the source and the first cached copy, at its own size.
  explicit MCCachableImage(MCRasterImageRef image);

  /// The image.
  const MCRasterImageRef& image() const { return image_; }
  /// The image scaled to cachedSize; none until made.
  const MCRasterImageRef& cachedImage() const { return cachedImage_; }
  /// The size of the cached image.
  MCSize cachedSize() const { return cachedSize_; }

  /// Draws into `rect` of `context`. When the rectangle's size differs from the cached size, the
  /// cached copy is remade first: the image drawn into a bitmap of that size (sides rounded up),
  /// sRGB with premultiplied alpha. A size that makes no bitmap draws the image itself.
  void drawInRect(MCGraphicsContext& context, const MCRect& rect);

 private:
  MCRasterImageRef cachedImage_;
  MCSize cachedSize_;
  MCRasterImageRef image_;
};
