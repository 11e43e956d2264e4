#include "PixelResampler.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace mc_detail {

namespace {

// Weights for one axis: for each output index, the first source index and the weights that follow,
// in 14-bit fixed point summing to exactly 1 << 14.
struct Contributions {
  std::vector<int> first;
  std::vector<int> count;
  std::vector<int32_t> weights;  // count[i] entries per output index, at stride `span`
  int span = 0;
};

constexpr int kShift = 14;
constexpr int32_t kOne = 1 << kShift;

Contributions contributions(std::size_t sourceSize, std::size_t targetSize) {
  Contributions c;
  const double scale = double(targetSize) / double(sourceSize);
  const double support = scale < 1.0 ? 1.0 / scale : 1.0;  // triangle half-width in source pixels
  c.span = int(std::ceil(support)) * 2 + 1;
  c.first.resize(targetSize);
  c.count.resize(targetSize);
  c.weights.assign(targetSize * c.span, 0);
  std::vector<double> w(c.span);
  for (std::size_t i = 0; i < targetSize; ++i) {
    const double center = (double(i) + 0.5) / scale - 0.5;
    int lo = int(std::floor(center - support)) + 1;
    int hi = int(std::ceil(center + support)) - 1;
    lo = std::max(lo, 0);
    hi = std::min(hi, int(sourceSize) - 1);
    if (hi < lo) lo = hi = std::clamp(int(std::lround(center)), 0, int(sourceSize) - 1);
    int n = std::min(hi - lo + 1, c.span);
    double total = 0;
    for (int k = 0; k < n; ++k) {
      double d = std::abs(double(lo + k) - center) / support;
      w[k] = std::max(0.0, 1.0 - d);
      total += w[k];
    }
    if (total <= 0) {
      w[0] = 1;
      n = 1;
      total = 1;
    }
    int32_t sum = 0;
    int32_t* out = &c.weights[i * c.span];
    int largest = 0;
    for (int k = 0; k < n; ++k) {
      out[k] = int32_t(std::lround(w[k] / total * kOne));
      sum += out[k];
      if (out[k] > out[largest]) largest = k;
    }
    out[largest] += kOne - sum;  // rounding error goes to the heaviest tap
    c.first[i] = lo;
    c.count[i] = n;
  }
  return c;
}

inline uint8_t clamp8(int32_t value) {
  value = (value + (kOne >> 1)) >> kShift;
  return uint8_t(std::clamp(value, 0, 255));
}

}  // namespace

void fitWithin(std::size_t width, std::size_t height, std::size_t maxPixelSize, std::size_t& outWidth,
               std::size_t& outHeight) {
  const std::size_t larger = std::max(width, height);
  if (maxPixelSize == 0 || maxPixelSize >= larger || larger == 0) {
    outWidth = width;
    outHeight = height;
    return;
  }
  const double scale = double(maxPixelSize) / double(larger);
  outWidth = width >= height ? maxPixelSize : std::max<std::size_t>(1, std::size_t(std::lround(width * scale)));
  outHeight = height > width ? maxPixelSize : std::max<std::size_t>(1, std::size_t(std::lround(height * scale)));
}

RGBAPixels resampleRGBA(const RGBAPixels& source, std::size_t width, std::size_t height) {
  if (width == source.width && height == source.height) return source;
  const Contributions horizontal = contributions(source.width, width);
  const Contributions vertical = contributions(source.height, height);

  // Horizontal pass over every source row into an intermediate of width × source height.
  std::vector<uint8_t> middle(width * source.height * 4);
  for (std::size_t y = 0; y < source.height; ++y) {
    const uint8_t* row = source.bytes.data() + y * source.width * 4;
    uint8_t* out = middle.data() + y * width * 4;
    for (std::size_t x = 0; x < width; ++x) {
      const int32_t* w = &horizontal.weights[x * horizontal.span];
      const uint8_t* p = row + std::size_t(horizontal.first[x]) * 4;
      int32_t r = 0, g = 0, b = 0, a = 0;
      for (int k = 0; k < horizontal.count[x]; ++k, p += 4) {
        r += w[k] * p[0];
        g += w[k] * p[1];
        b += w[k] * p[2];
        a += w[k] * p[3];
      }
      out[x * 4 + 0] = clamp8(r);
      out[x * 4 + 1] = clamp8(g);
      out[x * 4 + 2] = clamp8(b);
      out[x * 4 + 3] = clamp8(a);
    }
  }

  // Vertical pass, row by row, accumulating whole rows for cache-friendly access.
  RGBAPixels result;
  result.width = width;
  result.height = height;
  result.bytes.resize(width * height * 4);
  std::vector<int32_t> accumulator(width * 4);
  for (std::size_t y = 0; y < height; ++y) {
    std::fill(accumulator.begin(), accumulator.end(), 0);
    const int32_t* w = &vertical.weights[y * vertical.span];
    for (int k = 0; k < vertical.count[y]; ++k) {
      const uint8_t* row = middle.data() + std::size_t(vertical.first[y] + k) * width * 4;
      const int32_t weight = w[k];
      for (std::size_t i = 0; i < width * 4; ++i) accumulator[i] += weight * row[i];
    }
    uint8_t* out = result.bytes.data() + y * width * 4;
    for (std::size_t i = 0; i < width * 4; ++i) out[i] = clamp8(accumulator[i]);
  }
  return result;
}

RGBAPixels applyOrientation(RGBAPixels source, unsigned orientation) {
  if (orientation < 2 || orientation > 8) return source;
  const std::size_t w = source.width, h = source.height;
  const bool swaps = orientation >= 5;
  RGBAPixels out;
  out.width = swaps ? h : w;
  out.height = swaps ? w : h;
  out.bytes.resize(source.bytes.size());
  const uint8_t* src = source.bytes.data();
  uint8_t* dst = out.bytes.data();
  for (std::size_t y = 0; y < out.height; ++y) {
    for (std::size_t x = 0; x < out.width; ++x) {
      std::size_t sx = 0, sy = 0;
      switch (orientation) {
        case 2: sx = w - 1 - x; sy = y; break;          // mirrored
        case 3: sx = w - 1 - x; sy = h - 1 - y; break;  // upside down
        case 4: sx = x; sy = h - 1 - y; break;          // mirrored upside down
        case 5: sx = y; sy = x; break;                  // transposed
        case 6: sx = y; sy = h - 1 - x; break;          // shown turned 90° clockwise
        case 7: sx = w - 1 - y; sy = h - 1 - x; break;  // transversed
        case 8: sx = w - 1 - y; sy = x; break;          // shown turned 90° counter-clockwise
      }
      std::memcpy(dst + (y * out.width + x) * 4, src + (sy * w + sx) * 4, 4);
    }
  }
  return out;
}

void premultiplyRGBA(std::vector<uint8_t>& bytes) {
  for (std::size_t i = 0; i + 3 < bytes.size(); i += 4) {
    const unsigned a = bytes[i + 3];
    if (a == 255) continue;
    for (int c = 0; c < 3; ++c) bytes[i + c] = uint8_t((bytes[i + c] * a + 127) / 255);
  }
}

RGBAPixels subsampled(RGBAPixels pixels, uint64_t factor) {
  if (factor != 2 && factor != 4 && factor != 8) return pixels;
  const std::size_t w = std::max<std::size_t>(1, (pixels.width + factor - 1) / factor);
  const std::size_t h = std::max<std::size_t>(1, (pixels.height + factor - 1) / factor);
  return resampleRGBA(pixels, w, h);
}

RGBAPixels fittedThumbnail(RGBAPixels pixels, std::size_t maxPixelSize, bool transform, unsigned orientation) {
  std::size_t w = 0, h = 0;
  fitWithin(pixels.width, pixels.height, maxPixelSize, w, h);
  if (w != pixels.width || h != pixels.height) pixels = resampleRGBA(pixels, w, h);
  if (transform) pixels = applyOrientation(std::move(pixels), orientation);
  return pixels;
}

}  // namespace mc_detail
