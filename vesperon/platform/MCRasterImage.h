#pragma once
// MCRasterImage: an immutable pixel image, shared by pointer — the library's counterpart of the
// platform's CGImage. Width, height, bits per component and per pixel, row bytes, colour space,
// bitmap info and the pixel bytes, row after row from the top.
//
// Layouts. A pixel holds the colour space's components (1 gray, 3 RGB, 4 CMYK) and, unless the
// alpha info is MCImageAlphaNone, one more component: alpha, or an unused byte for the "skip"
// infos. Components are 8 or 16 bits; bits per pixel must be exactly the sum of the components.
// "Last" and "first" place the extra component after or before the colour. Premultiplied alpha
// means the colour components are already multiplied by alpha.
//
// Byte order (bits 12 to 14 of the bitmap info), as on the platform: with 8-bit components and
// MCBitmapByteOrder32Little each 4-byte pixel is stored reversed (premultiplied-first little is
// B, G, R, A in memory). 16-bit components are big-endian unless MCBitmapByteOrder16Little is set.
//
// An image without a colour space is read as sRGB (or gray 2.2 for one component).

#include <vesperon/core/MCGeometry.h>
#include <vesperon/platform/MCColorSpace.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

enum MCImageAlphaInfo : uint32_t {
  MCImageAlphaNone = 0,
  MCImageAlphaPremultipliedLast = 1,
  MCImageAlphaPremultipliedFirst = 2,
  MCImageAlphaLast = 3,
  MCImageAlphaFirst = 4,
  MCImageAlphaNoneSkipLast = 5,
  MCImageAlphaNoneSkipFirst = 6,
  MCImageAlphaOnly = 7,
};
inline constexpr uint32_t MCBitmapAlphaInfoMask = 0x1F;
inline constexpr uint32_t MCBitmapByteOrderMask = 0x7000;
inline constexpr uint32_t MCBitmapByteOrderDefault = 0;
inline constexpr uint32_t MCBitmapByteOrder16Little = 1 << 12;
inline constexpr uint32_t MCBitmapByteOrder32Little = 2 << 12;
inline constexpr uint32_t MCBitmapByteOrder16Big = 3 << 12;
inline constexpr uint32_t MCBitmapByteOrder32Big = 4 << 12;

class MCRasterImage {
 public:
  /// Checks the geometry: none when a size is 0, the bits are not 8 or 16 per component, the row
  /// bytes are too small for the pixels, or `pixels` is shorter than height × row bytes.
  static std::shared_ptr<const MCRasterImage> create(std::size_t width, std::size_t height,
                                                     std::size_t bitsPerComponent, std::size_t bitsPerPixel,
                                                     std::size_t bytesPerRow,
                                                     std::shared_ptr<const MCColorSpace> colorSpace,
                                                     uint32_t bitmapInfo, std::vector<uint8_t> pixels);

  /// An 8-bit RGBA image (premultiplied last) in sRGB with tightly packed rows.
  static std::shared_ptr<const MCRasterImage> createRGBA8(std::size_t width, std::size_t height,
                                                          std::vector<uint8_t> pixels);

  /// The part of `image` inside `rect`, in the image's pixel coordinates with the origin at the top
  /// left (CGImageCreateWithImageInRect): the rectangle is made integral and cut to the image's
  /// bounds. None when the image is absent or nothing is left.
  static std::shared_ptr<const MCRasterImage> createWithImageInRect(const std::shared_ptr<const MCRasterImage>& image,
                                                                    const MCRect& rect);

  /// @name Layout
  //@{
  /// The image's size in pixels and its memory layout: component and pixel bits, bytes per row,
  /// colour space and the platform's bitmap info bits (alpha and byte order).
  std::size_t width() const { return width_; }
  std::size_t height() const { return height_; }
  std::size_t bitsPerComponent() const { return bitsPerComponent_; }
  std::size_t bitsPerPixel() const { return bitsPerPixel_; }
  std::size_t bytesPerRow() const { return bytesPerRow_; }
  const std::shared_ptr<const MCColorSpace>& colorSpace() const { return colorSpace_; }
  uint32_t bitmapInfo() const { return bitmapInfo_; }
  //@}
  /// Where alpha lies and whether it is premultiplied.
  MCImageAlphaInfo alphaInfo() const { return MCImageAlphaInfo(bitmapInfo_ & MCBitmapAlphaInfoMask); }
  /// True for the alpha infos with a real alpha component (1 to 4 and 7).
  bool hasAlpha() const {
    const auto info = alphaInfo();
    return info != MCImageAlphaNone && info != MCImageAlphaNoneSkipLast && info != MCImageAlphaNoneSkipFirst;
  }
  /// The model of the colour space; RGB for an image without one and more than two components.
  MCColorSpace::Model colorModel() const;
  /// The pixels, row after row.
  const std::vector<uint8_t>& pixels() const { return pixels_; }
  /// The first byte of row `y`.
  const uint8_t* row(std::size_t y) const { return pixels_.data() + y * bytesPerRow_; }

 private:
  MCRasterImage() = default;
  std::size_t width_ = 0, height_ = 0, bitsPerComponent_ = 0, bitsPerPixel_ = 0, bytesPerRow_ = 0;
  std::shared_ptr<const MCColorSpace> colorSpace_;
  uint32_t bitmapInfo_ = 0;
  std::vector<uint8_t> pixels_;
};

using MCRasterImageRef = std::shared_ptr<const MCRasterImage>;
