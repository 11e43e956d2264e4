#include <vesperon/pixels/MCBitmapScaling.h>

#include <algorithm>
#include <cmath>
#include <vector>

namespace mc_detail {
namespace {

struct Contributions {
  std::vector<std::size_t> first;  // first source index of each destination index
  std::vector<std::size_t> count;  // number of taps
  std::vector<float> weights;      // `taps` slots per destination index
  std::size_t taps = 0;
};

double lanczos3(double t) {
  t = std::fabs(t);
  if (t < 1e-12) return 1;
  if (t >= 3) return 0;
  const double pt = M_PI * t;
  return 3 * std::sin(pt) * std::sin(pt / 3) / (pt * pt);
}

// Taps are contiguous source indexes; where the filter runs past an edge, the weight of the
// missing taps goes to the edge pixel.
Contributions contributions(std::size_t source, std::size_t destination) {
  Contributions result;
  const double ratio = double(source) / double(destination);
  const double f = std::max(1.0, ratio);
  const double support = 3 * f;
  result.taps = std::size_t(std::ceil(2 * support)) + 1;
  result.first.resize(destination);
  result.count.resize(destination);
  result.weights.assign(destination * result.taps, 0.0f);
  std::vector<double> w;
  for (std::size_t x = 0; x < destination; ++x) {
    const double u = (double(x) + 0.5) * ratio - 0.5;
    const auto lo = std::ptrdiff_t(std::floor(u - support)) + 1;
    const auto hi = std::ptrdiff_t(std::floor(u + support));
    const std::ptrdiff_t first = std::clamp<std::ptrdiff_t>(lo, 0, std::ptrdiff_t(source) - 1);
    const std::ptrdiff_t last = std::clamp<std::ptrdiff_t>(hi, 0, std::ptrdiff_t(source) - 1);
    w.assign(std::size_t(last - first + 1), 0.0);
    double total = 0;
    for (std::ptrdiff_t i = lo; i <= hi; ++i) {
      const double weight = lanczos3((double(i) - u) / f);
      const std::ptrdiff_t at = std::clamp<std::ptrdiff_t>(i, first, last);
      w[std::size_t(at - first)] += weight;
      total += weight;
    }
    result.first[x] = std::size_t(first);
    result.count[x] = w.size();
    for (std::size_t k = 0; k < w.size() && k < result.taps; ++k)
      result.weights[x * result.taps + k] = float(total != 0 ? w[k] / total : (k == 0 ? 1 : 0));
  }
  return result;
}

}  // namespace

void scaleARGB8888(const uint8_t* source, std::size_t sourceWidth, std::size_t sourceHeight,
                   std::size_t sourceBytesPerRow, uint8_t* destination, std::size_t destinationWidth,
                   std::size_t destinationHeight) {
  const Contributions across = contributions(sourceWidth, destinationWidth);
  const Contributions down = contributions(sourceHeight, destinationHeight);
  const std::size_t rowFloats = destinationWidth * 4;
  std::vector<float> rows(rowFloats * sourceHeight);
  for (std::size_t y = 0; y < sourceHeight; ++y) {
    const uint8_t* in = source + y * sourceBytesPerRow;
    float* out = &rows[y * rowFloats];
    for (std::size_t x = 0; x < destinationWidth; ++x) {
      const uint8_t* p = in + across.first[x] * 4;
      const float* w = &across.weights[x * across.taps];
      float s0 = 0, s1 = 0, s2 = 0, s3 = 0;
      for (std::size_t k = 0; k < across.count[x]; ++k, p += 4) {
        s0 += w[k] * p[0];
        s1 += w[k] * p[1];
        s2 += w[k] * p[2];
        s3 += w[k] * p[3];
      }
      out[4 * x] = s0;
      out[4 * x + 1] = s1;
      out[4 * x + 2] = s2;
      out[4 * x + 3] = s3;
    }
  }
  std::vector<float> sums(rowFloats);
  for (std::size_t y = 0; y < destinationHeight; ++y) {
    std::fill(sums.begin(), sums.end(), 0.0f);
    const float* w = &down.weights[y * down.taps];
    for (std::size_t k = 0; k < down.count[y]; ++k) {
      const float* row = &rows[(down.first[y] + k) * rowFloats];
      const float wk = w[k];
      for (std::size_t i = 0; i < rowFloats; ++i) sums[i] += wk * row[i];
    }
    uint8_t* out = destination + y * rowFloats;
    for (std::size_t i = 0; i < rowFloats; ++i) out[i] = uint8_t(std::clamp(sums[i] + 0.5f, 0.0f, 255.0f));
  }
}

}  // namespace mc_detail
