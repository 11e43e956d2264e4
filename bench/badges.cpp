// Badges and cards cost little on top of the thumbnails they decorate.
//
// Cards: one screen of 200 card cells (image, title, subtitle and four badges each) drawn in a
// browser view, against the same screen where each cell draws only its thumbnail in the same
// place. Goal: the cards at most 1.5× the time of the thumbnails alone.
// Plate: a decorated badge (shadow and background) drawn the second time, from its cached plate,
// against the first time, which composes it. Goal: at least 10× faster.

#include <vesperon/browser/MCBrowserView.h>
#include <vesperon/browser/MCBrowserViewItemCardCell.h>
#include <vesperon/drawing/MCBadgeFactory.h>
#include <vesperon/platform/MCColorSpace.h>
#include <vesperon/toolkit/MCOffscreenHost.h>
#include <vesperon/toolkit/MCScrollView.h>

#include "BenchTimes.h"

#include <benchmark/benchmark.h>

#include <cstdio>

namespace {

MCImageRef thumbnail() {
  static MCImageRef image = MCImageWithSize({160, 120}, 1.0, [](MCGraphicsContext& context) {
    for (int i = 0; i < 12; ++i) {
      context.setRGBFillColor(i / 12.0, 0.5, 1 - i / 12.0, 1);
      context.fillRect(MCMakeRect(i * 13.3, 0, 14, 120));
    }
  });
  return image;
}

/// The peer: draws only the thumbnail where the card would put it.
class ThumbnailOnlyCell : public MCBrowserViewItemCardCell {
 public:
  void drawWithFrame(const MCRect& frame, MCView*) override {
    if (image) MCImageDrawInRect(*image, imageRectForBounds(frame));
  }
};

struct Cards : MCBrowserViewDataSource {
  bool badges = true;
  std::vector<MCBadgeRef> kinds;
  Cards() {
    kinds = {MCBadgeFactory::badgeStarsWithCount(4, true), MCBadgeFactory::defaultIconBadgeNamed("location.fill", 14),
             MCBadgeFactory::badgeLockWithBackgroundColor(MCColor::controlAccentColor()),
             MCBadgeFactory::badgeCircleWithLabelColor(2)};
  }
  uint64_t numberOfGroupsInBrowserView(MCBrowserView&) override { return 1; }
  uint64_t numberOfItemsInGroup(MCBrowserView&, uint64_t) override { return 200; }
  void updateItemCell(MCBrowserView&, MCBrowserViewCell& cell, const MCIndexPath& path) override {
    auto& card = static_cast<MCBrowserViewItemCardCell&>(cell);
    card.image = thumbnail();
    card.imageSize = {160, 120};
    card.title = "photo-" + std::to_string(path.item) + ".jpg";
    card.subtitle = "2024-05-01 10:00  4000×3000";
    card.flagsBadge = kinds[0];
    card.stateBadge = kinds[1];
    card.lockedBadge = kinds[2];
    card.markedBadge = kinds[3];
    card.shouldShowBadgeLocked = card.shouldShowBadgeMarked = true;
  }
  void updateHeaderCell(MCBrowserView&, MCBrowserViewCell&, uint64_t) override {}
};

struct Screen {
  std::shared_ptr<MCWindow> window = MCWindow::create({2000, 1300});
  MCOffscreenHost host{window};
  std::shared_ptr<MCBrowserView> view = std::make_shared<MCBrowserView>(MCMakeRect(0, 0, 2000, 1300));
  std::shared_ptr<Cards> source = std::make_shared<Cards>();
  explicit Screen(std::shared_ptr<MCBrowserViewItemCardCell> cell) {
    cell->backgroundColor = MCColor::colorWithHex(0xEDEDEC);
    cell->titleAttributes = {MCFont::systemFontOfSize(12), MCColor::labelColor(), {}, {}, {}};
    cell->subtitleAttributes = {MCFont::systemFontOfSize(10), MCColor::secondaryLabelColor(), {}, {}, {}};
    view->setItemCell(cell);
    view->setDataSource(source);
    view->setScale(0.3);
    window->setContentView(view);
    view->reloadData();
    window->display();
  }
};

void Cards_WithBadges(benchmark::State& state) {
  static Screen screen(std::make_shared<MCBrowserViewItemCardCell>());
  for (auto _ : state) screen.window->display();
  state.counters["cells"] = double(screen.view->contentLayout()->itemIndexesInRect(screen.view->visibleRect()).count());
}
BENCHMARK(Cards_WithBadges)->Unit(benchmark::kMillisecond);

void Thumbnails_Alone(benchmark::State& state) {
  static Screen screen(std::make_shared<ThumbnailOnlyCell>());
  for (auto _ : state) screen.window->display();
}
BENCHMARK(Thumbnails_Alone)->Unit(benchmark::kMillisecond);

void Plate_FirstDraw(benchmark::State& state) {
  auto context = MCGraphicsContext::create(64, 64, 8, 0, MCColorSpace::sRGB(), MCImageAlphaPremultipliedFirst);
  MCGraphicsContext::setCurrentContext(context.get());
  for (auto _ : state) {
    auto badge = MCBadgeFactory::badgeLockWithBackgroundColor(MCColor::controlAccentColor());
    badge->drawInRect(MCMakeRect(0, 0, 36, 38));
  }
  MCGraphicsContext::setCurrentContext(nullptr);
}
BENCHMARK(Plate_FirstDraw)->Unit(benchmark::kMicrosecond);

void Plate_SecondDraw(benchmark::State& state) {
  auto context = MCGraphicsContext::create(64, 64, 8, 0, MCColorSpace::sRGB(), MCImageAlphaPremultipliedFirst);
  MCGraphicsContext::setCurrentContext(context.get());
  auto badge = MCBadgeFactory::badgeLockWithBackgroundColor(MCColor::controlAccentColor());
  badge->drawInRect(MCMakeRect(0, 0, 36, 38));
  for (auto _ : state) badge->drawInRect(MCMakeRect(0, 0, 36, 38));
  MCGraphicsContext::setCurrentContext(nullptr);
}
BENCHMARK(Plate_SecondDraw)->Unit(benchmark::kMicrosecond);

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  BenchTimes times(BenchTimes::Clock::CPU);
  benchmark::RunSpecifiedBenchmarks(&times);
  const double cards = times("Cards_WithBadges"), alone = times("Thumbnails_Alone");
  if (cards > 0 && alone > 0)
    std::printf("200 cards with four badges: %.2f ms; the thumbnails alone: %.2f ms: %.2fx (goal <= 1.5x)\n", cards,
                alone, cards / alone);
  const double first = times("Plate_FirstDraw"), second = times("Plate_SecondDraw");
  if (first > 0 && second > 0)
    std::printf("decorated badge: first draw %.1f us, second %.1f us: %.0fx faster (goal >= 10x)\n", first * 1000,
                second * 1000, first / second);
  return 0;
}
