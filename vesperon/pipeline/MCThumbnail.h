#pragma once
// MCThumbnail: a thumbnail image, or none when no thumbnail could be made. Immutable.

#include <vesperon/platform/MCRasterImage.h>

class MCThumbnail {
 public:
  MCThumbnail() = default;
  explicit MCThumbnail(MCRasterImageRef image) : image_(std::move(image)) {}

  const MCRasterImageRef& image() const { return image_; }
  explicit operator bool() const { return image_ != nullptr; }

 private:
  MCRasterImageRef image_;
};
