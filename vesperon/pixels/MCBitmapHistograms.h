#pragma once
// Normalised histograms and histogram hashes of tightly packed 8-bit bitmaps.
//
// Layouts as in MCBitmapFilters.h: `_1C_8` one channel, `_4C_8` and `_RGBA8` four interleaved
// channels; width and height are doubles truncated to unsigned integers.
//
// Definitions. For each channel, count(v) is the number of pixels whose value is v, counted in
// 64 bits; t = float(double(width) × double(height)).
//   histogram[v] = float(count(v)) / t, in single precision, for v in 0…255.
//   hash, with b = 256 >> shift bins: bin[i] = float(Σ count(k), k from i·2^shift to
//   (i+1)·2^shift − 1, in 64 bits) / t. The RGBA8 hash uses the first three channels only and
//   lays their bins one after the other. shift 0 gives the histogram; shift 8 one bin of 1; a
//   shift above 8 gives no bins (an empty result).
//
// The counters live on the stack; only the results are allocated.

#include <vesperon/core/MCFastData.h>
#include <vesperon/core/MCGeometry.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

/// One histogram of 256 floats (1,024 bytes); none when the bitmap is absent or a size truncates to 0.
std::optional<std::vector<std::vector<float>>> MCBitmapCalculateHistograms_1C_8(const uint8_t* bitmap, MCSize size);
/// Four histograms of 256 floats, in channel order; none as above.
std::optional<std::vector<std::vector<float>>> MCBitmapCalculateHistograms_4C_8(const uint8_t* bitmap, MCSize size);

/// The hash of one channel: 256 >> shift floats. None when the bitmap is absent or a size
/// truncates to 0 (where the platform's counting fails).
std::shared_ptr<MCFastData> MCBitmapCalculateHistogramsHash_1C_8(const uint8_t* bitmap, unsigned shift, MCSize size);
/// The hash of the first three of four channels: 3 × (256 >> shift) floats, channel after channel.
std::shared_ptr<MCFastData> MCBitmapCalculateHistogramsHash_RGBA8(const uint8_t* bitmap, unsigned shift, MCSize size);
