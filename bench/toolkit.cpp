// The toolkit's cost follows what changes, not how many views a window has.
//
// Redraw: a window of 2,000 views (a 50 x 40 grid of 20 x 15-point tiles, each drawing a fill and
// a frame) redrawn whole, against the same window with one small dirty rectangle (10 x 10 points,
// across the corner of four tiles). Goal: the small redraw at least 50 times faster.
//
// Routing: 100,000 mouse-moved events through the window — hit testing down to the tile under the
// pointer and the responder chain from it up to the window — against a bare loop over the same
// views that tests each tile's rectangle for the point, the least any router could do. Reported
// as a ratio.

#include <vesperon/platform/MCGraphicsContext.h>
#include <vesperon/toolkit/MCOffscreenHost.h>
#include <vesperon/toolkit/MCWindow.h>

#include "BenchTimes.h"

#include <benchmark/benchmark.h>

#include <cstdio>
#include <random>

namespace {

constexpr int kColumns = 50, kRows = 40;
constexpr double kTileWidth = 20, kTileHeight = 15;

class Tile : public MCView {
 public:
  using MCView::MCView;
  long moves = 0;
  bool isFlipped() const override { return true; }
  void drawRect(const MCRect&) override {
    MCGraphicsContext& context = *MCGraphicsContext::currentContext();
    context.setRGBFillColor(0.9, 0.9, 0.85, 1);
    context.fillRect(bounds());
    context.setRGBStrokeColor(0.5, 0.5, 0.5, 1);
    context.strokeRect(MCInsetRect(bounds(), 0.5, 0.5));
  }
};

/// Takes mouse-moved events that reach it at the end of the chain, so the chain is walked whole.
class Counter : public MCView {
 public:
  using MCView::MCView;
  long moves = 0;
  void mouseMoved(const MCEvent&) override { ++moves; }
};

struct Scene {
  std::shared_ptr<MCWindow> window = MCWindow::create({kColumns * kTileWidth, kRows * kTileHeight});
  MCOffscreenHost host{window};
  std::shared_ptr<Counter> root = std::make_shared<Counter>(MCMakeRect(0, 0, kColumns * kTileWidth, kRows * kTileHeight));
  std::vector<std::shared_ptr<Tile>> tiles;
  Scene() {
    window->setContentView(root);
    for (int row = 0; row < kRows; ++row)
      for (int column = 0; column < kColumns; ++column) {
        auto tile = std::make_shared<Tile>(MCMakeRect(column * kTileWidth, row * kTileHeight, kTileWidth, kTileHeight));
        root->addSubview(tile);
        tiles.push_back(tile);
      }
    window->display();
  }
};

Scene& scene() {
  static Scene s;
  return s;
}

void Full_Redraw(benchmark::State& state) {
  Scene& s = scene();
  for (auto _ : state) {
    s.window->display();
    benchmark::DoNotOptimize(s.window->numberOfViewsDrawnInLastDisplay());
  }
}
BENCHMARK(Full_Redraw)->Unit(benchmark::kMillisecond);

void Small_Redraw(benchmark::State& state) {
  Scene& s = scene();
  const MCRect corner = MCMakeRect(10 * kTileWidth - 5, 10 * kTileHeight - 5, 10, 10);
  for (auto _ : state) {
    s.window->invalidateRect(corner);
    s.window->displayIfNeeded();
    benchmark::DoNotOptimize(s.window->numberOfViewsDrawnInLastDisplay());
  }
  state.counters["views drawn"] = double(s.window->numberOfViewsDrawnInLastDisplay());
}
BENCHMARK(Small_Redraw)->Unit(benchmark::kMillisecond);

std::vector<MCEvent> movedEvents() {
  std::mt19937 random(7);
  std::uniform_real_distribution<double> x(0, kColumns * kTileWidth), y(0, kRows * kTileHeight);
  std::vector<MCEvent> events;
  for (int i = 0; i < 100000; ++i) events.push_back(MCEvent::mouseEvent(MCEventType::MouseMoved, {x(random), y(random)}));
  return events;
}

void Ours_RouteMouseMoved(benchmark::State& state) {
  Scene& s = scene();
  const std::vector<MCEvent> events = movedEvents();
  for (auto _ : state) {
    for (const MCEvent& event : events) s.window->sendEvent(event);
  }
  benchmark::DoNotOptimize(s.root->moves);
}
BENCHMARK(Ours_RouteMouseMoved)->Unit(benchmark::kMillisecond);

void Peer_BareLoop(benchmark::State& state) {
  Scene& s = scene();
  const std::vector<MCEvent> events = movedEvents();
  std::vector<MCRect> frames;
  for (const auto& tile : s.tiles) frames.push_back(tile->frame());
  long found = 0;
  for (auto _ : state) {
    for (const MCEvent& event : events) {
      const MCPoint p = event.locationInWindow();
      // The window's base coordinates are the root's: test each tile, last on top first.
      for (std::size_t i = frames.size(); i-- > 0;)
        if (MCPointInRect(p, frames[i])) {
          found += long(i);
          break;
        }
    }
  }
  benchmark::DoNotOptimize(found);
}
BENCHMARK(Peer_BareLoop)->Unit(benchmark::kMillisecond);

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  BenchTimes times(BenchTimes::Clock::CPU);
  benchmark::RunSpecifiedBenchmarks(&times);
  const double full = times("Full_Redraw"), small = times("Small_Redraw");
  const double ours = times("Ours_RouteMouseMoved"), peer = times("Peer_BareLoop");
  if (full > 0 && small > 0)
    std::printf("redraw of 2,000 views: whole %.3f ms, one small rectangle %.4f ms: %.0fx (goal >= 50x)\n", full,
                small, full / small);
  if (ours > 0 && peer > 0)
    std::printf("100,000 mouse-moved events: routed %.2f ms, bare loop %.2f ms: %.2fx the bare loop's time\n", ours,
                peer, ours / peer);
  return 0;
}
