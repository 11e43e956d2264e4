#pragma once
// MCImageRendererFormat: the pixel format in which an MCImageRenderer draws — bitmap info and
// colour space. `bitsPerComponent` is kept for the caller; the renderer always draws 8 bits.

#include <vesperon/platform/MCColorSpace.h>
#include <vesperon/platform/MCRasterImage.h>

#include <cstddef>
#include <cstdint>
#include <memory>

class MCImageRendererFormat {
 public:
  MCImageRendererFormat() = default;
  /// A format of these bitmap info bits, colour space and bits per component.
  MCImageRendererFormat(uint32_t bitmapInfo, std::shared_ptr<const MCColorSpace> colorSpace,
                        std::size_t bitsPerComponent = 8)
      : bitmapInfo_(bitmapInfo), colorSpace_(std::move(colorSpace)), bitsPerComponent_(bitsPerComponent) {}

  /// The bitmap info bits.
  uint32_t bitmapInfo() const { return bitmapInfo_; }
  /// Sets the bitmap info bits.
  void setBitmapInfo(uint32_t bitmapInfo) { bitmapInfo_ = bitmapInfo; }
  /// Held for as long as it is set.
  const std::shared_ptr<const MCColorSpace>& colorSpace() const { return colorSpace_; }
  /// Sets the colour space.
  void setColorSpace(std::shared_ptr<const MCColorSpace> colorSpace) { colorSpace_ = std::move(colorSpace); }
  /// Bits per component.
  std::size_t bitsPerComponent() const { return bitsPerComponent_; }
  /// Sets the bits per component.
  void setBitsPerComponent(std::size_t bits) { bitsPerComponent_ = bits; }

 private:
  uint32_t bitmapInfo_ = MCImageAlphaNoneSkipFirst;
  std::shared_ptr<const MCColorSpace> colorSpace_;
  std::size_t bitsPerComponent_ = 8;
};
