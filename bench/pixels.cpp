// Bitmap operations against libvips on the same 4000 × 3000 RGBA pixels, and MCBitmapCompareFast
// against memcpy over 64 MB, in one run; the ratios are printed at the end.
//
// Pairs: tent blur (kernel 9, variance 4) ↔ vips_gaussblur (sigma 2); equalisation ↔
// vips_hist_equal; histograms and the histogram hash ↔ vips_hist_find. libvips runs on one thread
// (vips_concurrency_set(1)) with its operation cache off, like our single-threaded loops; it is
// loaded at run time (libvips.so.42, from the libvips-tools package), so the build needs no
// development files of it. Without it only our side runs.

#include <vesperon/pixels/MCBitmapCompare.h>
#include <vesperon/pixels/MCBitmapCounting.h>
#include <vesperon/pixels/MCBitmapFilters.h>
#include <vesperon/pixels/MCBitmapHistograms.h>

#include "BenchTimes.h"
#include "VipsPeer.h"

#include <benchmark/benchmark.h>
#include <dlfcn.h>

#include <cstdio>
#include <cstring>
#include <map>
#include <random>
#include <string>
#include <vector>

namespace {

constexpr int kWidth = 4000, kHeight = 3000;

// A photograph-like image: smooth gradients with a little noise, opaque.
const std::vector<uint8_t>& image() {
  static const std::vector<uint8_t> pixels = [] {
    std::vector<uint8_t> p(std::size_t(kWidth) * kHeight * 4);
    std::mt19937 random(7);
    for (int y = 0; y < kHeight; ++y)
      for (int x = 0; x < kWidth; ++x) {
        uint8_t* q = &p[(std::size_t(y) * kWidth + x) * 4];
        const int noise = int(random() % 9) - 4;
        q[0] = uint8_t(std::clamp(x * 200 / kWidth + 20 + noise, 0, 255));
        q[1] = uint8_t(std::clamp(y * 180 / kHeight + 40 + noise, 0, 255));
        q[2] = uint8_t(std::clamp((x + y) * 120 / (kWidth + kHeight) + 60 + noise, 0, 255));
        q[3] = 255;
      }
    return p;
  }();
  return pixels;
}

const MCSize kSize = MCMakeSize(kWidth, kHeight);

void Ours_TentBlur9(benchmark::State& state) {
  std::vector<uint8_t> out(image().size());
  for (auto _ : state) benchmark::DoNotOptimize(MCBitmapBlur_4C_8(image().data(), out.data(), 9, kSize));
}
void Vips_GaussBlurSigma2(benchmark::State& state) {
  if (!vips().loaded) return state.SkipWithError("libvips.so.42 not available");
  for (auto _ : state)
    if (!vips().run(image(), kWidth, kHeight, [](VipsImage* in, VipsImage** out) { return vips().gaussblur(in, out, 2.0, nullptr); }))
      return state.SkipWithError("vips_gaussblur failed");
}
void Ours_Equalize(benchmark::State& state) {
  std::vector<uint8_t> out(image().size());
  for (auto _ : state) benchmark::DoNotOptimize(MCBitmapEqualize_4C_8(image().data(), out.data(), kSize));
}
void Vips_HistEqual(benchmark::State& state) {
  if (!vips().loaded) return state.SkipWithError("libvips.so.42 not available");
  for (auto _ : state)
    if (!vips().run(image(), kWidth, kHeight, [](VipsImage* in, VipsImage** out) { return vips().histEqual(in, out, nullptr); }))
      return state.SkipWithError("vips_hist_equal failed");
}
void Ours_Histograms(benchmark::State& state) {
  for (auto _ : state) benchmark::DoNotOptimize(MCBitmapCalculateHistograms_4C_8(image().data(), kSize));
}
void Ours_HistogramHash(benchmark::State& state) {
  for (auto _ : state) benchmark::DoNotOptimize(mc_detail::histogramHash(image().data(), 4, 3, 2, kSize));
}
void Vips_HistFind(benchmark::State& state) {
  if (!vips().loaded) return state.SkipWithError("libvips.so.42 not available");
  for (auto _ : state)
    if (!vips().run(image(), kWidth, kHeight, [](VipsImage* in, VipsImage** out) { return vips().histFind(in, out, nullptr); }))
      return state.SkipWithError("vips_hist_find failed");
}

constexpr std::size_t kCompareBytes = std::size_t(64) << 20;
std::vector<uint8_t>& bufferA() { static std::vector<uint8_t> b(kCompareBytes, 1); return b; }
std::vector<uint8_t>& bufferB() { static std::vector<uint8_t> b(kCompareBytes, 200); return b; }

void Ours_CompareFast64MB(benchmark::State& state) {
  for (auto _ : state) benchmark::DoNotOptimize(MCBitmapCompareFast(bufferA().data(), bufferB().data(), kCompareBytes));
  state.SetBytesProcessed(int64_t(state.iterations()) * int64_t(kCompareBytes));
}
void Peer_Memcpy64MB(benchmark::State& state) {
  for (auto _ : state) {
    std::memcpy(bufferB().data(), bufferA().data(), kCompareBytes);
    benchmark::ClobberMemory();
  }
  state.SetBytesProcessed(int64_t(state.iterations()) * int64_t(kCompareBytes));
}

BENCHMARK(Ours_TentBlur9)->Unit(benchmark::kMillisecond);
BENCHMARK(Vips_GaussBlurSigma2)->Unit(benchmark::kMillisecond);
BENCHMARK(Ours_Equalize)->Unit(benchmark::kMillisecond);
BENCHMARK(Vips_HistEqual)->Unit(benchmark::kMillisecond);
BENCHMARK(Ours_Histograms)->Unit(benchmark::kMillisecond);
BENCHMARK(Ours_HistogramHash)->Unit(benchmark::kMillisecond);
BENCHMARK(Vips_HistFind)->Unit(benchmark::kMillisecond);
BENCHMARK(Ours_CompareFast64MB)->Unit(benchmark::kMillisecond);
BENCHMARK(Peer_Memcpy64MB)->Unit(benchmark::kMillisecond);


}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  // Fault in the 128 MB of compare buffers now; in the timed loop the first pass would count them.
  bufferA();
  bufferB();
  BenchTimes times;
  benchmark::RunSpecifiedBenchmarks(&times);
  const auto ratio = [&](const char* label, const char* ours, const char* peer, const char* goal) {
    const double a = times(ours), b = times(peer);
    if (a <= 0 || b <= 0) {
      std::printf("%-44s n/a (a side did not run)\n", label);
      return;
    }
    std::printf("%-44s %.2fx the peer's speed  (%s)\n", label, b / a, goal);
  };
  std::printf("\nRatios (peer time / our time; above 1 means faster than the peer):\n");
  ratio("tent blur 9 vs vips_gaussblur sigma 2", "Ours_TentBlur9", "Vips_GaussBlurSigma2", "reported");
  ratio("equalisation vs vips_hist_equal", "Ours_Equalize", "Vips_HistEqual", "goal >= 1");
  ratio("histograms vs vips_hist_find", "Ours_Histograms", "Vips_HistFind", "goal >= 1");
  ratio("histogram hash vs vips_hist_find", "Ours_HistogramHash", "Vips_HistFind", "goal >= 1");
  ratio("MCBitmapCompareFast vs memcpy, 64 MB", "Ours_CompareFast64MB", "Peer_Memcpy64MB", "goal >= 0.5");
  benchmark::Shutdown();
  return 0;
}
