// The browser view's cost follows what is visible, not the size of the collection.
//
// Screen: drawing one screen (1280 × 800 points) and running its prefetch, with 1,000,000 items in
// 10,000 groups against the same with 1,000 items in 10 groups. Goal: within 1.2×.
// Page-down: the main thread's time per page over 200 page-downs through the million items,
// display included (offscreen; bench/browser-scroll.sh compares it on screen with GtkGridView).
// Sweep: one makeSelectionInRect over 10,000 items, the rubber band across half the screen.

#include <vesperon/browser/MCBrowserView.h>
#include <vesperon/platform/MCGraphicsContext.h>
#include <vesperon/toolkit/MCOffscreenHost.h>
#include <vesperon/toolkit/MCScrollView.h>

#include "BenchTimes.h"

#include <benchmark/benchmark.h>

#include <cstdio>
#include <random>

namespace {

class TileCell : public MCBrowserViewCell {
 public:
  MCSize cellSizeForBounds(const MCRect& bounds, double scale) override {
    if (header) return {bounds.size.width > 1e300 ? 100 : bounds.size.width, 24};
    return {200 * scale, 200 * scale};
  }
  std::shared_ptr<const MCImage> previewImage() override { return nullptr; }
  MCRect previewSourceRectForCellFrame(const MCRect& frame) override { return frame; }
  void drawWithFrame(const MCRect& frame, MCView*) override {
    MCGraphicsContext& context = *MCGraphicsContext::currentContext();
    context.setRGBFillColor(isSelected() ? 0.6 : 0.85, 0.85, 0.9, 1);
    context.fillRect(frame);
  }
  bool header = false;
};

struct Source : MCBrowserViewDataSource, MCBrowserViewPrefetching {
  std::vector<uint64_t> groups;
  uint64_t asked = 0;
  uint64_t numberOfGroupsInBrowserView(MCBrowserView&) override { return groups.size(); }
  uint64_t numberOfItemsInGroup(MCBrowserView&, uint64_t group) override { return groups[group]; }
  void updateItemCell(MCBrowserView& view, MCBrowserViewCell& cell, const MCIndexPath& path) override {
    cell.setSelected(view.isSelectedItemAtIndexPath(path));
  }
  void updateHeaderCell(MCBrowserView&, MCBrowserViewCell&, uint64_t) override {}
  void prefetchItemsAtIndexPaths(MCBrowserView&, const std::vector<MCIndexPath>& paths) override { asked += paths.size(); }
  void cancelPrefetchingForItemsAtIndexPaths(MCBrowserView&, const std::vector<MCIndexPath>& paths) override {
    asked += paths.size();
  }
};

struct Scene {
  std::shared_ptr<MCWindow> window = MCWindow::create({1280, 800});
  MCOffscreenHost host{window};
  std::shared_ptr<MCScrollView> scrollView = std::make_shared<MCScrollView>(MCMakeRect(0, 0, 1280, 800));
  std::shared_ptr<MCBrowserView> view = std::make_shared<MCBrowserView>(MCMakeRect(0, 0, 1280, 800));
  std::shared_ptr<Source> source = std::make_shared<Source>();
  std::shared_ptr<TileCell> item = std::make_shared<TileCell>(), header = std::make_shared<TileCell>();

  Scene(uint64_t items, uint64_t groups) {
    header->header = true;
    std::mt19937 random(5);
    // Random group sizes that add up exactly.
    std::vector<uint64_t> sizes(groups, 0);
    for (uint64_t i = 0; i < items; ++i) ++sizes[random() % groups];
    source->groups = sizes;
    view->setItemCell(item);
    view->setHeaderCell(header);
    view->setDataSource(source);
    view->setPrefetchDataSource(source);
    scrollView->setDocumentView(view);
    window->contentView()->addSubview(scrollView);
    view->setShowsGroupHeaders(true);
    view->reloadData();
    window->display();
  }
  void screen() {
    view->invalidatePrefetching();
    view->prefetchVisibleItems();
    window->display();
  }
};

Scene& million() {
  static Scene scene(1000000, 10000);
  return scene;
}
Scene& thousand() {
  static Scene scene(1000, 10);
  return scene;
}

void Screen_Million(benchmark::State& state) {
  Scene& s = million();
  s.scrollView->scrollClipViewToPoint({0, s.view->bounds().size.height / 2});
  for (auto _ : state) s.screen();
}
BENCHMARK(Screen_Million)->Unit(benchmark::kMillisecond);

void Screen_Thousand(benchmark::State& state) {
  Scene& s = thousand();
  s.scrollView->scrollClipViewToPoint({0, s.view->bounds().size.height / 2});
  for (auto _ : state) s.screen();
}
BENCHMARK(Screen_Thousand)->Unit(benchmark::kMillisecond);

void PageDown_Million(benchmark::State& state) {
  Scene& s = million();
  for (auto _ : state) {
    s.scrollView->scrollClipViewToPoint({0, 0});
    s.window->displayIfNeeded();
    for (int page = 0; page < 200; ++page) {
      s.view->scrollPageDown();
      s.window->displayIfNeeded();
    }
  }
}
BENCHMARK(PageDown_Million)->Unit(benchmark::kMillisecond)->Iterations(3);

void Sweep_TenThousand(benchmark::State& state) {
  static Scene s(10000, 100);
  const MCRect visible = s.view->visibleRect();
  const MCRect band = MCMakeRect(visible.origin.x + 100, visible.origin.y + 50, visible.size.width / 2, visible.size.height / 2);
  s.view->startSelectionWithEvent(MCEvent::mouseEvent(MCEventType::LeftMouseDown, {5, 795}));
  for (auto _ : state) s.view->makeSelectionInRect(band);
  s.view->stopSelection();
}
BENCHMARK(Sweep_TenThousand)->Unit(benchmark::kMicrosecond);

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  BenchTimes times(BenchTimes::Clock::CPU);
  benchmark::RunSpecifiedBenchmarks(&times);
  const double big = times("Screen_Million"), small = times("Screen_Thousand");
  if (big > 0 && small > 0)
    std::printf("one screen with its prefetch: 1,000,000 items %.3f ms, 1,000 items %.3f ms: %.2fx (goal <= 1.2x)\n",
                big, small, big / small);
  const double pages = times("PageDown_Million");
  if (pages > 0) std::printf("page-down through 1,000,000 items, offscreen: %.3f ms per page\n", pages / 200);
  const double sweep = times("Sweep_TenThousand");
  if (sweep > 0) std::printf("makeSelectionInRect over 10,000 items: %.3f ms per call\n", sweep);
  return 0;
}
