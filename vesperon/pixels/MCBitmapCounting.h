#pragma once
// Shared pieces of the bitmap functions: the truncation of sizes and the value counters.
// Not part of the interface.

#include <vesperon/core/MCGeometry.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace mc_detail {

/// A double truncated to an unsigned integer; anything below 1, and NaN, is 0.
inline std::size_t truncatedDimension(double value) {
  if (!(value >= 1)) return 0;
  if (value >= 1e15) return std::size_t(1e15);
  return std::size_t(value);
}

using MCValueCounts = std::array<uint64_t, 256>;

/// Counts the values of each of the `Channels` interleaved channels of `pixels` pixels into
/// `counts[channel]` (which it first sets to zero). Two alternating sets of 32-bit tables keep
/// neighbouring equal values from waiting on each other's stores.
template <int Channels>
void countValues(const uint8_t* data, std::size_t pixels, MCValueCounts* counts) {
  for (int c = 0; c < Channels; ++c) counts[c].fill(0);
  constexpr std::size_t kChunk = std::size_t(1) << 30;  // keeps every 32-bit counter from overflowing
  constexpr int kSets = Channels == 1 ? 4 : 2;
  for (std::size_t start = 0; start < pixels; start += kChunk) {
    const std::size_t count = std::min(kChunk, pixels - start);
    uint32_t tables[kSets][Channels][256] = {};
    const uint8_t* p = data + start * Channels;
    std::size_t i = 0;
    for (; i + kSets <= count; i += kSets, p += kSets * Channels)
      for (int s = 0; s < kSets; ++s)
        for (int c = 0; c < Channels; ++c) ++tables[s][c][p[s * Channels + c]];
    for (; i < count; ++i, p += Channels)
      for (int c = 0; c < Channels; ++c) ++tables[0][c][p[c]];
    for (int c = 0; c < Channels; ++c)
      for (int v = 0; v < 256; ++v)
        for (int s = 0; s < kSets; ++s) counts[c][v] += tables[s][c][v];
  }
}

}  // namespace mc_detail

namespace mc_detail {
/// The bins of a histogram hash (see MCBitmapHistograms.h) of the first `hashedChannels` of
/// `channels` (1 or 4) interleaved channels; none for an absent bitmap or a size that truncates
/// to 0, where the platform's counting fails.
std::optional<std::vector<float>> histogramHash(const uint8_t* bitmap, int channels, int hashedChannels, unsigned shift, MCSize size);
}  // namespace mc_detail
