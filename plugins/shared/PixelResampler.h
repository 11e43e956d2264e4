#pragma once
// Resampling and orientation of 8-bit RGBA pixels, shared by the codec plug-ins.
//
// Downscaling uses a separable triangle filter whose support widens with the scale factor, so
// every source pixel contributes (no aliasing from skipped pixels); upscaling reduces to bilinear.

#include <cstddef>
#include <cstdint>
#include <vector>

namespace mc_detail {

struct RGBAPixels {
  std::size_t width = 0;
  std::size_t height = 0;
  std::vector<uint8_t> bytes;  ///< tightly packed, 4 bytes a pixel
};

/// `source` resampled to `width` × `height` (both at least 1).
RGBAPixels resampleRGBA(const RGBAPixels& source, std::size_t width, std::size_t height);

/// The size whose larger side is `maxPixelSize`, keeping the aspect ratio (each side at least 1).
/// The size itself when `maxPixelSize` is 0 or not smaller than its larger side: no upscaling.
void fitWithin(std::size_t width, std::size_t height, std::size_t maxPixelSize, std::size_t& outWidth,
               std::size_t& outHeight);

/// The pixels as they are shown for Exif orientation 1 to 8; other values leave them as they are.
RGBAPixels applyOrientation(RGBAPixels source, unsigned orientation);

/// Straight alpha made premultiplied, in place (the library's RGBA images are premultiplied).
void premultiplyRGBA(std::vector<uint8_t>& bytes);

/// The pixels at 1/factor of their size (each side rounded up) for a subsample factor of 2, 4 or
/// 8, resampled; as they are for any other factor.
RGBAPixels subsampled(RGBAPixels pixels, uint64_t factor);

/// The end of every plug-in's thumbnail made from pixels: fitted within `maxPixelSize` (0: as they
/// are) and, when `transform` is set, turned by `orientation`.
RGBAPixels fittedThumbnail(RGBAPixels pixels, std::size_t maxPixelSize, bool transform, unsigned orientation);

}  // namespace mc_detail
