#pragma once
// MCThumbnail: a thumbnail image, or none when no thumbnail could be made. Immutable.

#include <vesperon/platform/MCRasterImage.h>

class MCThumbnail {
 public:
  MCThumbnail() = default;
  /// A thumbnail of `image` (none for no image).
  explicit MCThumbnail(MCRasterImageRef image) : image_(std::move(image)) {}

  /// The pixels; none when the load gave no image.
  const MCRasterImageRef& image() const { return image_; }
  /// Whether there is an image.
  explicit operator bool() const { return image_ != nullptr; }

 private:
  MCRasterImageRef image_;
};
