#include <vesperon/pixels/MCBitmapCompare.h>

#include <algorithm>
#include <cmath>

namespace {
constexpr std::size_t kGroup = 16;
// 2^24 bytes of differences stay below 2^32 in a 32-bit sum, which the vectoriser turns into
// sum-of-absolute-differences instructions.
constexpr std::size_t kBlock = std::size_t(1) << 24;
}  // namespace

float MCBitmapCompareFast(const uint8_t* a, const uint8_t* b, std::size_t length) {
  const std::size_t counted = length / kGroup * kGroup;
  uint64_t sum = 0;
  if (a && b) {
    for (std::size_t start = 0; start < counted; start += kBlock) {
      const std::size_t end = std::min(counted, start + kBlock);
      uint32_t block = 0;
      for (std::size_t i = start; i < end; ++i) block += uint32_t(std::abs(int(a[i]) - int(b[i])));
      sum += block;
    }
  }
  return float(double(sum) / 255.0 / double(length));
}

float MCBitmapCompareHistogram(const float* a, const float* b, std::size_t length) {
  const std::size_t groups = length / 16;
  float s[4] = {0, 0, 0, 0};
  if (a && b) {
    for (std::size_t g = 0; g < groups; ++g)
      for (int k = 0; k < 4; ++k) {
        const float d = a[g * 4 + k] - b[g * 4 + k];
        s[k] = std::fma(d, d, s[k]);
      }
  }
  return (s[0] + s[2]) + (s[1] + s[3]);
}
