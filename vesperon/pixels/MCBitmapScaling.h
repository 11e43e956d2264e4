#pragma once
// Resampling of four-channel 8-bit bitmaps, the stand-in of the platform's default (not
// high-quality) image scaling. Not part of the interface.
//
// Definition: separable Lanczos-3. Destination pixel x samples the source around
// u = (x + 0.5) · (source width / destination width) − 0.5 with the weights L(t / f), where
// L(t) = sinc(t) · sinc(t / 3) for |t| < 3 and 0 beyond, and f = max(1, source / destination)
// widens the filter when shrinking so that every source pixel counts. Taps beyond an edge repeat
// the edge pixel; the weights of each destination pixel are normalised to sum 1. Rows first into
// single-precision sums, then columns, rounded to nearest and clamped to 0…255. The four channels
// are treated alike, whatever they mean.

#include <cstddef>
#include <cstdint>

namespace mc_detail {

/// Scales `source` (width × height, rows of `sourceBytesPerRow`) into `destination`
/// (tightly packed). Sizes must be at least 1.
void scaleARGB8888(const uint8_t* source, std::size_t sourceWidth, std::size_t sourceHeight,
                   std::size_t sourceBytesPerRow, uint8_t* destination, std::size_t destinationWidth,
                   std::size_t destinationHeight);

}  // namespace mc_detail
