#include <vesperon/pixels/MCBitmapCounting.h>
#include <vesperon/pixels/MCBitmapHistograms.h>

using mc_detail::truncatedDimension;

namespace {

template <int C>
std::optional<std::vector<std::vector<float>>> histograms(const uint8_t* bitmap, MCSize size) {
  const std::size_t w = truncatedDimension(size.width), h = truncatedDimension(size.height);
  if (!bitmap || w == 0 || h == 0) return std::nullopt;
  mc_detail::MCValueCounts counts[C];
  mc_detail::countValues<C>(bitmap, w * h, counts);
  const float t = float(double(w) * double(h));
  std::vector<std::vector<float>> result(C, std::vector<float>(256));
  for (int c = 0; c < C; ++c)
    for (int v = 0; v < 256; ++v) result[c][v] = float(counts[c][v]) / t;
  return result;
}

}  // namespace

namespace mc_detail {

std::optional<std::vector<float>> histogramHash(const uint8_t* bitmap, int channels, int hashedChannels,
                                               unsigned shift, MCSize size) {
  const std::size_t w = truncatedDimension(size.width), h = truncatedDimension(size.height);
  if (!bitmap || w == 0 || h == 0) return std::nullopt;
  const std::size_t bins = shift > 8 ? 0 : std::size_t(256) >> shift;
  std::vector<float> result(bins * std::size_t(hashedChannels), 0.0f);
  if (bins == 0) return result;
  MCValueCounts counts[4];
  if (channels == 1) countValues<1>(bitmap, w * h, counts);
  else countValues<4>(bitmap, w * h, counts);
  const float t = float(double(w) * double(h));
  const std::size_t width = std::size_t(1) << shift;
  for (int c = 0; c < hashedChannels; ++c)
    for (std::size_t i = 0; i < bins; ++i) {
      uint64_t sum = 0;
      for (std::size_t k = i * width; k < (i + 1) * width; ++k) sum += counts[c][k];
      result[std::size_t(c) * bins + i] = float(sum) / t;
    }
  return result;
}

}  // namespace mc_detail

std::optional<std::vector<std::vector<float>>> MCBitmapCalculateHistograms_1C_8(const uint8_t* bitmap, MCSize size) {
  return histograms<1>(bitmap, size);
}
std::optional<std::vector<std::vector<float>>> MCBitmapCalculateHistograms_4C_8(const uint8_t* bitmap, MCSize size) {
  return histograms<4>(bitmap, size);
}

namespace {
std::shared_ptr<MCFastData> hashData(const std::optional<std::vector<float>>& bins) {
  if (!bins) return nullptr;
  return std::make_shared<MCFastData>(bins->data(), bins->size() * sizeof(float));
}
}  // namespace

std::shared_ptr<MCFastData> MCBitmapCalculateHistogramsHash_1C_8(const uint8_t* bitmap, unsigned shift, MCSize size) {
  return hashData(mc_detail::histogramHash(bitmap, 1, 1, shift, size));
}
std::shared_ptr<MCFastData> MCBitmapCalculateHistogramsHash_RGBA8(const uint8_t* bitmap, unsigned shift, MCSize size) {
  return hashData(mc_detail::histogramHash(bitmap, 4, 3, shift, size));
}
