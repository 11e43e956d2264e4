#pragma once
// Bitmap filters over tightly packed 8-bit pixels: tent blur, contrast stretch, equalisation,
// and the removal of a fourth channel.
//
// Layouts: `_1C_8` is one 8-bit channel with rows of `width` bytes; `_4C_8` is four interleaved
// 8-bit channels with rows of width × 4 bytes, each channel treated alike whatever it means. The
// conversions write three interleaved channels, width × 3 bytes a row. Width and height are
// doubles truncated to unsigned integers; source and destination have the same size and must not
// overlap. Each function returns false, and writes nothing, when a size truncates to 0, a pointer
// is absent, or (blur) the kernel is even or 0.
//
// Exact definitions, with r = (kernel − 1) / 2:
//
// Tent blur. The kernel weight at offset i in −r…r is r + 1 − |i| in each direction; the 2-D
// weight is the product of the horizontal and the vertical weight. Near an edge the kernel is
// truncated: taps outside the image are dropped and the divisor is the sum of the weights that
// remain, so a constant image stays constant. For each pixel and channel,
//     out = floor((Σ w(i) w(j) · in(x+i, y+j) + floor(D / 2)) / D),  D = Σ w(i) w(j) over the taps kept,
// that is the weighted mean rounded half up. Any odd kernel is taken, however much wider than the
// image (the platform publishes no largest size): taps outside are dropped as at any edge, so the
// work is bounded by the image, not the kernel. The caller passes no working memory; the blur keeps
// 2r + 1 rows of sums (at most the image's height) of its own for the time of the call.
//
// Contrast stretch. For each channel on its own: lo and hi, the smallest and largest value in the
// image; out = floor(((in − lo) · 255 + floor((hi − lo) / 2)) / (hi − lo)). A channel with
// lo = hi is copied unchanged.
//
// Equalisation. For each channel on its own: n = width × height; c(v) the number of pixels with a
// value ≤ v; c0 = c(lo) with lo the smallest value present;
//     out = floor(((c(in) − c0) · 255 + floor((n − c0) / 2)) / (n − c0)).
// The smallest value present becomes 0 and the largest 255; a channel with one value only
// (n = c0) is copied unchanged.

#include <vesperon/core/MCGeometry.h>

#include <cstdint>

/// @name Filters
//@{
/// The filters above on one-channel (1C) and four-channel (4C) 8-bit bitmaps of `size`, from
/// `source` to `destination`; false for no buffer, an empty size or (blur) an even kernel.
bool MCBitmapBlur_1C_8(const uint8_t* source, uint8_t* destination, uint32_t kernel, MCSize size);
bool MCBitmapBlur_4C_8(const uint8_t* source, uint8_t* destination, uint32_t kernel, MCSize size);
bool MCBitmapContrast_1C_8(const uint8_t* source, uint8_t* destination, MCSize size);
bool MCBitmapContrast_4C_8(const uint8_t* source, uint8_t* destination, MCSize size);
bool MCBitmapEqualize_1C_8(const uint8_t* source, uint8_t* destination, MCSize size);
bool MCBitmapEqualize_4C_8(const uint8_t* source, uint8_t* destination, MCSize size);
//@}
/// Drops the first byte of each 4-byte pixel.
bool MCBitmapConvert_ARGB8_to_RGB8(const uint8_t* source, uint8_t* destination, MCSize size);
/// Drops the last byte of each 4-byte pixel.
bool MCBitmapConvert_RGBA8_to_RGB8(const uint8_t* source, uint8_t* destination, MCSize size);
