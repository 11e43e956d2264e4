#pragma once
// Pixel conversion between layouts and colour spaces, on Little CMS. The raster image, the
// graphics context and the pixel functions all move pixels through here.
//
// A layout is the colour model, the bits per component (8 or 16), the bits per pixel and the
// bitmap info, read as MCRasterImage describes. Alpha is carried over only when both sides have a
// real alpha component; otherwise a destination alpha or unused byte is set to its maximum.
// When both sides are the same colour space (identical, or the same ICC bytes) only the layout
// changes: no colour transform runs, so an 8-bit round trip is exact.

#include <vesperon/platform/MCColorSpace.h>

#include <cstddef>
#include <cstdint>
#include <memory>

/// How pixels lie in memory: colour model, bits and the platform's bitmap info bits.
struct MCPixelLayout {
  /// The colour model.
  MCColorSpace::Model model = MCColorSpace::Model::RGB;
  /// Bits per component.
  std::size_t bitsPerComponent = 8;
  /// Bits per pixel.
  std::size_t bitsPerPixel = 32;
  /// Alpha placement and byte order.
  uint32_t bitmapInfo = 0;

  /// The layout's Little CMS pixel format, or 0 when it has none (alpha only, bits per pixel that
  /// do not match the components, 16-bit with a 32-bit byte order, CMYK with alpha).
  uint32_t littleCMSFormat() const;
  /// Whether a component holds alpha.
  bool hasAlpha() const;
  /// Whether a component is padding or alpha beside the colour.
  bool hasExtraComponent() const;
  /// Bytes per pixel.
  std::size_t bytesPerPixel() const { return bitsPerPixel / 8; }
};

/// Converts `width` × `height` pixels. False, with the destination untouched, when a layout has
/// no format, a space is absent or has no profile, or Little CMS cannot make the transform.
bool MCConvertPixels(const MCColorSpace& sourceSpace, const MCPixelLayout& sourceLayout, const uint8_t* source,
                     std::size_t sourceBytesPerRow, const MCColorSpace& destinationSpace,
                     const MCPixelLayout& destinationLayout, uint8_t* destination,
                     std::size_t destinationBytesPerRow, std::size_t width, std::size_t height);

class MCRasterImage;

/// The layout of an image's pixels.
MCPixelLayout MCPixelLayoutOfImage(const MCRasterImage& image);
/// The image's colour space, or for an image without one the default space of its model (sRGB,
/// gray gamma 2.2).
std::shared_ptr<const MCColorSpace> MCColorSpaceOfImage(const MCRasterImage& image);
