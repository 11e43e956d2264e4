#include <vesperon/pixels/MCBitmapFilters.h>
#include <vesperon/pixels/MCBitmapCounting.h>

#include <algorithm>
#include <cstdlib>
#include <type_traits>
#include <vector>

using mc_detail::truncatedDimension;

namespace {

using Wide = unsigned __int128;  // for the weight sums of kernels far wider than the image

// floor((v + floor(d / 2)) / d) for a row of sums sharing one divisor, through a reciprocal: the
// half-divisor bias keeps exact multiples from falling below their quotient, and the
// floating-point error stays under it (float while d ≤ 4096, double beyond).
template <typename Real, typename Acc>
void divideRow(const Acc* sums, uint8_t* out, std::size_t count, uint64_t divisor) {
  const Real inverse = Real(1) / Real(divisor);
  const Real half = Real(divisor / 2);
  const Real bias = Real(0.5) * inverse;
  for (std::size_t s = 0; s < count; ++s) out[s] = uint8_t((Real(sums[s]) + half) * inverse + bias);
}

template <typename Acc>
void divideRowBy(const Acc* sums, uint8_t* out, std::size_t count, Wide divisor) {
  if constexpr (sizeof(Acc) > sizeof(uint64_t)) {
    for (std::size_t s = 0; s < count; ++s) out[s] = uint8_t((Wide(sums[s]) + divisor / 2) / divisor);
  } else if (divisor <= 4096) {
    divideRow<float>(sums, out, count, uint64_t(divisor));
  } else {
    divideRow<double>(sums, out, count, uint64_t(divisor));
  }
}

// The sum of the tent's weights r + 1 − |i| over the offsets that stay inside 0…length − 1 from
// `at`, in closed form: a kernel may be far wider than the image.
uint64_t keptWeight(std::size_t at, std::size_t length, std::size_t r) {
  const auto side = [r](uint64_t k) {  // offsets 0…k on one side
    return (k + 1) * (uint64_t(r) + 1) - k * (k + 1) / 2;
  };
  const uint64_t left = std::min<uint64_t>(r, at), right = std::min<uint64_t>(r, length - 1 - at);
  return side(left) + side(right) - (uint64_t(r) + 1);
}

template <int C, typename Acc>
void tentConvolve(const uint8_t* src, uint8_t* dst, std::size_t w, std::size_t h, std::size_t r) {
  const std::size_t n = w * C;
  const auto weight = [r](std::ptrdiff_t i) { return Acc(r + 1 - std::size_t(std::abs(i))); };
  // Columns [x0, x1) see the whole kernel across; the others are edge columns.
  const std::size_t x0 = std::min(r, w), x1 = std::max(x0, w > r ? w - r : 0);
  std::vector<uint64_t> columnWeight(w);
  for (std::size_t x = 0; x < w; ++x) columnWeight[x] = keptWeight(x, w, r);
  const uint64_t fullWeight = x0 < x1 ? uint64_t(r + 1) * (r + 1) : 0;

  const std::size_t ringRows = std::min(2 * r + 1, h);
  std::vector<Acc> ring(ringRows * n);
  std::vector<Acc> sums(n);

  const auto horizontal = [&](std::size_t y, Acc* out) {
    const uint8_t* row = src + y * n;
    const std::size_t s0 = x0 * C, s1 = x1 * C;
    const Acc centre = Acc(r + 1);
    for (std::size_t s = s0; s < s1; ++s) out[s] = centre * row[s];
    for (std::size_t i = 1; i <= r && s0 < s1; ++i) {
      const Acc wi = Acc(r + 1 - i);
      const std::size_t d = i * C;
      for (std::size_t s = s0; s < s1; ++s) out[s] += wi * Acc(row[s - d] + row[s + d]);
    }
    const auto edge = [&](std::size_t x) {
      const std::size_t first = x > r ? x - r : 0, last = std::min(w - 1, x + r);
      for (int c = 0; c < C; ++c) {
        Acc sum = 0;
        for (std::size_t p = first; p <= last; ++p) sum += weight(std::ptrdiff_t(p) - std::ptrdiff_t(x)) * row[p * C + c];
        out[x * C + c] = sum;
      }
    };
    for (std::size_t x = 0; x < x0; ++x) edge(x);
    for (std::size_t x = x1; x < w; ++x) edge(x);
  };

  std::size_t filled = 0;
  for (std::size_t y = 0; y < h; ++y) {
    for (; filled < h && filled <= y + r; ++filled) horizontal(filled, &ring[(filled % ringRows) * n]);
    const Acc* centre = &ring[(y % ringRows) * n];
    const Acc wc = Acc(r + 1);
    for (std::size_t s = 0; s < n; ++s) sums[s] = wc * centre[s];
    const std::size_t reach = std::min(r, std::max(y, h - 1 - y));  // rows past it lie outside
    for (std::size_t j = 1; j <= reach; ++j) {
      const Acc wj = Acc(r + 1 - j);
      const Acc* up = y >= j ? &ring[((y - j) % ringRows) * n] : nullptr;
      const Acc* down = y + j < h ? &ring[((y + j) % ringRows) * n] : nullptr;
      if (up && down) {
        for (std::size_t s = 0; s < n; ++s) sums[s] += wj * (up[s] + down[s]);
      } else if (up || down) {
        const Acc* only = up ? up : down;
        for (std::size_t s = 0; s < n; ++s) sums[s] += wj * only[s];
      }
    }
    const uint64_t rowWeight = keptWeight(y, h, r);
    uint8_t* out = dst + y * n;
    if (x0 < x1) divideRowBy(&sums[x0 * C], out + x0 * C, (x1 - x0) * C, Wide(fullWeight) * rowWeight);
    const auto edge = [&](std::size_t x) {
      const Wide divisor = Wide(columnWeight[x]) * rowWeight;
      for (int c = 0; c < C; ++c) out[x * C + c] = uint8_t((Wide(sums[x * C + c]) + divisor / 2) / divisor);
    };
    for (std::size_t x = 0; x < x0; ++x) edge(x);
    for (std::size_t x = x1; x < w; ++x) edge(x);
  }
}

template <int C>
bool blur(const uint8_t* source, uint8_t* destination, uint32_t kernel, MCSize size) {
  const std::size_t w = truncatedDimension(size.width), h = truncatedDimension(size.height);
  if (!source || !destination || w == 0 || h == 0) return false;
  if (kernel % 2 == 0) return false;
  const std::size_t r = (kernel - 1) / 2;
  // The largest sum any pixel can reach: the weights that fall inside the image, times 255. The
  // accumulators are as wide as that needs — 32 bits for the usual kernels, 128 for a kernel of
  // thousands of pixels over a large image.
  const Wide reachX = std::min<Wide>(2 * Wide(r) + 1, w), reachY = std::min<Wide>(2 * Wide(r) + 1, h);
  const Wide largest = (Wide(r) + 1) * (Wide(r) + 1) * reachX * reachY * 255;
  if (largest <= UINT32_MAX) tentConvolve<C, uint32_t>(source, destination, w, h, r);
  else if (largest <= UINT64_MAX) tentConvolve<C, uint64_t>(source, destination, w, h, r);
  else tentConvolve<C, Wide>(source, destination, w, h, r);
  return true;
}

// Applies one table per channel.
template <int C>
void applyTables(const uint8_t* source, uint8_t* destination, std::size_t pixels, const uint8_t (*tables)[256]) {
  for (std::size_t i = 0; i < pixels; ++i)
    for (int c = 0; c < C; ++c) destination[i * C + c] = tables[c][source[i * C + c]];
}

template <int C>
bool contrast(const uint8_t* source, uint8_t* destination, MCSize size) {
  const std::size_t w = truncatedDimension(size.width), h = truncatedDimension(size.height);
  if (!source || !destination || w == 0 || h == 0) return false;
  mc_detail::MCValueCounts counts[C];
  mc_detail::countValues<C>(source, w * h, counts);
  uint8_t tables[C][256];
  for (int c = 0; c < C; ++c) {
    int lo = 0, hi = 255;
    while (counts[c][lo] == 0) ++lo;
    while (counts[c][hi] == 0) --hi;
    const int range = hi - lo;
    for (int v = 0; v < 256; ++v)
      tables[c][v] = range == 0 ? uint8_t(v) : uint8_t(std::clamp((((v - lo) * 255 + range / 2) / range), 0, 255));
  }
  applyTables<C>(source, destination, w * h, tables);
  return true;
}

template <int C>
bool equalize(const uint8_t* source, uint8_t* destination, MCSize size) {
  const std::size_t w = truncatedDimension(size.width), h = truncatedDimension(size.height);
  if (!source || !destination || w == 0 || h == 0) return false;
  mc_detail::MCValueCounts counts[C];
  const uint64_t n = uint64_t(w) * h;
  mc_detail::countValues<C>(source, w * h, counts);
  uint8_t tables[C][256];
  for (int c = 0; c < C; ++c) {
    int lo = 0;
    while (counts[c][lo] == 0) ++lo;
    const uint64_t c0 = counts[c][lo];
    const uint64_t range = n - c0;
    uint64_t cumulative = 0;
    for (int v = 0; v < 256; ++v) {
      cumulative += counts[c][v];
      if (range == 0) tables[c][v] = uint8_t(v);
      else if (v < lo) tables[c][v] = 0;  // absent values: never looked up
      else tables[c][v] = uint8_t(((cumulative - c0) * 255 + range / 2) / range);
    }
  }
  applyTables<C>(source, destination, w * h, tables);
  return true;
}

// Copies three of every four bytes, starting at `first`.
bool dropChannel(const uint8_t* source, uint8_t* destination, MCSize size, int first) {
  const std::size_t w = truncatedDimension(size.width), h = truncatedDimension(size.height);
  if (!source || !destination || w == 0 || h == 0) return false;
  const std::size_t pixels = w * h;
  const uint8_t* s = source + first;
  for (std::size_t i = 0; i < pixels; ++i) {
    destination[3 * i] = s[4 * i];
    destination[3 * i + 1] = s[4 * i + 1];
    destination[3 * i + 2] = s[4 * i + 2];
  }
  return true;
}

}  // namespace

bool MCBitmapBlur_1C_8(const uint8_t* source, uint8_t* destination, uint32_t kernel, MCSize size) {
  return blur<1>(source, destination, kernel, size);
}
bool MCBitmapBlur_4C_8(const uint8_t* source, uint8_t* destination, uint32_t kernel, MCSize size) {
  return blur<4>(source, destination, kernel, size);
}
bool MCBitmapContrast_1C_8(const uint8_t* source, uint8_t* destination, MCSize size) {
  return contrast<1>(source, destination, size);
}
bool MCBitmapContrast_4C_8(const uint8_t* source, uint8_t* destination, MCSize size) {
  return contrast<4>(source, destination, size);
}
bool MCBitmapEqualize_1C_8(const uint8_t* source, uint8_t* destination, MCSize size) {
  return equalize<1>(source, destination, size);
}
bool MCBitmapEqualize_4C_8(const uint8_t* source, uint8_t* destination, MCSize size) {
  return equalize<4>(source, destination, size);
}
bool MCBitmapConvert_ARGB8_to_RGB8(const uint8_t* source, uint8_t* destination, MCSize size) {
  return dropChannel(source, destination, size, 1);
}
bool MCBitmapConvert_RGBA8_to_RGB8(const uint8_t* source, uint8_t* destination, MCSize size) {
  return dropChannel(source, destination, size, 0);
}
