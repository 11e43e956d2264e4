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

  /// The pixels.
  const MCRasterImageRef& CGImage() const { return image_; }
  /// Pixels per point.
  double scale() const { return scale_; }
  /// The size in pixels.
  MCSize size() const { return {double(image_->width()), double(image_->height())}; }
  /// The pixels' colour space.
  const std::shared_ptr<const MCColorSpace>& colorSpace() const { return image_->colorSpace(); }

 private:
  MCImage(MCRasterImageRef image, double scale) : image_(std::move(image)), scale_(scale) {}
  MCRasterImageRef image_;
  double scale_;
};
