#pragma once
// MCImage: an immutable pixel image with a scale. `size` is in pixels, not divided by the scale.

#include <vesperon/core/MCGeometry.h>
#include <vesperon/platform/MCRasterImage.h>

#include <memory>

class MCImage {
 public:
  /// None when `image` is none.
  static std::shared_ptr<const MCImage> create(MCRasterImageRef image, double scale = 1.0) {
    if (!image) return nullptr;
    return std::shared_ptr<const MCImage>(new MCImage(std::move(image), scale));
  }

  const MCRasterImageRef& CGImage() const { return image_; }
  double scale() const { return scale_; }
  MCSize size() const { return {double(image_->width()), double(image_->height())}; }
  const std::shared_ptr<const MCColorSpace>& colorSpace() const { return image_->colorSpace(); }

 private:
  MCImage(MCRasterImageRef image, double scale) : image_(std::move(image)), scale_(scale) {}
  MCRasterImageRef image_;
  double scale_;
};
