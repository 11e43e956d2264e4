// The controls of the viewer page on a 24-megapixel image (6000 × 4000).
//
// Histogram: MCHistogramView building its curves (histograms of the pixels, then the three
// staircases), against libvips' vips_hist_find on the same RGBA pixels. Goal: ahead of libvips.
// Zoom and pan: one frame of a 1280 × 800 zoom view at 1:1 panned by 40 points — layout plus the
// drawing of the visible part — against drawing the whole image scaled down into the view once.
// Reported.

#include <vesperon/controls/MCHistogramView.h>
#include <vesperon/controls/MCZoomView.h>
#include <vesperon/platform/MCColorSpace.h>
#include <vesperon/platform/MCGraphicsContext.h>
#include <vesperon/toolkit/MCImageDrawing.h>
#include <vesperon/toolkit/MCOffscreenHost.h>

#include "BenchTimes.h"
#include "VipsPeer.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <random>

namespace {

constexpr int kWidth = 6000, kHeight = 4000;

const std::vector<uint8_t>& pixels() {
  static const std::vector<uint8_t> p = [] {
    std::vector<uint8_t> v(std::size_t(kWidth) * kHeight * 4);
    std::mt19937 random(3);
    for (int y = 0; y < kHeight; ++y)
      for (int x = 0; x < kWidth; ++x) {
        uint8_t* q = &v[(std::size_t(y) * kWidth + x) * 4];
        const int noise = int(random() % 9) - 4;
        q[0] = uint8_t(std::clamp(x * 200 / kWidth + 20 + noise, 0, 255));
        q[1] = uint8_t(std::clamp(y * 180 / kHeight + 40 + noise, 0, 255));
        q[2] = uint8_t(std::clamp((x + y) * 120 / (kWidth + kHeight) + 60 + noise, 0, 255));
        q[3] = 255;
      }
    return v;
  }();
  return p;
}

MCRasterImageRef image() {
  static MCRasterImageRef rgba = MCRasterImage::createRGBA8(kWidth, kHeight, pixels());
  return rgba;
}

/// The same pixels in the drawing layout the viewer keeps (premultiplied B, G, R, A).
MCRasterImageRef drawable() {
  static MCRasterImageRef converted = [] {
    auto context = MCGraphicsContext::create(kWidth, kHeight, 8, 0, MCColorSpace::sRGB(),
                                             MCImageAlphaPremultipliedFirst | MCBitmapByteOrder32Little);
    context->drawImage(MCMakeRect(0, 0, kWidth, kHeight), image());
    return context->createImage();
  }();
  return converted;
}

void Ours_HistogramCurves(benchmark::State& state) {
  MCHistogramView view(MCMakeRect(0, 0, 200, 100));
  const MCRasterImageRef img = image();
  for (auto _ : state) {
    view.setImage(nullptr);
    view.setImage(img);
    benchmark::DoNotOptimize(view.histogramPaths().size());
  }
}
BENCHMARK(Ours_HistogramCurves)->Unit(benchmark::kMillisecond);

void Peer_VipsHistFind(benchmark::State& state) {
  if (!vips().loaded) {
    state.SkipWithError("libvips.so.42 is not installed");
    return;
  }
  for (auto _ : state)
    if (!vips().run(pixels(), kWidth, kHeight, [](VipsImage* in, VipsImage** out) { return vips().histFind(in, out, nullptr); }))
      state.SkipWithError("vips_hist_find failed");
}
BENCHMARK(Peer_VipsHistFind)->Unit(benchmark::kMillisecond);

struct Photo : MCZoomViewDelegate {
  MCSize zoomViewOriginalContentSize(MCZoomView&) override { return {kWidth, kHeight}; }
  void zoomViewDidChange(MCZoomView&) override {}
};

class PhotoView : public MCView {
 public:
  using MCView::MCView;
  bool isFlipped() const override { return true; }
  void drawRect(const MCRect&) override {
    MCGraphicsContext& context = *MCGraphicsContext::currentContext();
    MCDrawImageInRect(context, drawable(), bounds());
  }
};

void Ours_ZoomPanFrame(benchmark::State& state) {
  auto window = MCWindow::create({1280, 800});
  MCOffscreenHost host(window);
  auto zoom = std::make_shared<MCZoomView>(MCMakeRect(0, 0, 1280, 800));
  auto photo = std::make_shared<Photo>();
  zoom->setDelegate(photo);
  zoom->setContentView(std::make_shared<PhotoView>(zoom->bounds()));
  window->setContentView(zoom);
  // 1:1: the fitted size is 1200 × 800 for 6000 × 4000, so zoom 5 shows pixels one to one.
  zoom->setOffset({0, 0}, 5.0);
  window->display();
  double dx = 40;
  for (auto _ : state) {
    zoom->panWith({dx, 0});
    dx = zoom->offset().x > 0.5 ? -40 : (zoom->offset().x < -0.5 ? 40 : dx);
    window->displayIfNeeded();
  }
}
BENCHMARK(Ours_ZoomPanFrame)->Unit(benchmark::kMillisecond);

void Whole_ImageScaledDown(benchmark::State& state) {
  auto context = MCGraphicsContext::create(1280, 800, 8, 0, MCColorSpace::sRGB(),
                                           MCImageAlphaPremultipliedFirst | MCBitmapByteOrder32Little);
  const MCRasterImageRef img = drawable();
  for (auto _ : state) context->drawImage(MCMakeRect(40, 0, 1200, 800), img);
}
BENCHMARK(Whole_ImageScaledDown)->Unit(benchmark::kMillisecond);

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  // Wall time: libvips does its work on a thread of its own.
  BenchTimes times(BenchTimes::Clock::Real);
  benchmark::RunSpecifiedBenchmarks(&times);
  const double ours = times("Ours_HistogramCurves"), peer = times("Peer_VipsHistFind");
  if (ours > 0 && peer > 0)
    std::printf("histogram curves of 24 megapixels: %.1f ms; vips_hist_find: %.1f ms: %.2fx its time (goal < 1)\n", ours,
                peer, ours / peer);
  const double frame = times("Ours_ZoomPanFrame"), whole = times("Whole_ImageScaledDown");
  if (frame > 0 && whole > 0)
    std::printf("a zoom-and-pan frame at 1:1: %.2f ms; the whole image scaled down once: %.2f ms\n", frame, whole);
  return 0;
}
