// Coordinates, hit testing and the dirty region of views in a window.
#include <vesperon/toolkit/MCClipView.h>
#include <vesperon/toolkit/MCOffscreenHost.h>
#include <vesperon/toolkit/MCScrollView.h>
#include <vesperon/toolkit/MCView.h>
#include <vesperon/toolkit/MCWindow.h>

#include <gtest/gtest.h>

namespace {

class FlippedView : public MCView {
 public:
  using MCView::MCView;
  bool isFlipped() const override { return true; }
};

/// Remembers what it was asked to draw and what needsToDrawRect answered for its probes.
class ProbeView : public FlippedView {
 public:
  using FlippedView::FlippedView;
  std::vector<MCRect> probes;
  std::vector<bool> answers;
  int draws = 0;
  MCRect lastDirty{};
  void drawRect(const MCRect& dirty) override {
    ++draws;
    lastDirty = dirty;
    answers.clear();
    for (const MCRect& probe : probes) answers.push_back(needsToDrawRect(probe));
  }
};

void expectPoint(MCPoint actual, double x, double y) {
  EXPECT_DOUBLE_EQ(actual.x, x);
  EXPECT_DOUBLE_EQ(actual.y, y);
}

}  // namespace

TEST(ViewGeometry, ConversionsBetweenFlippedUnflippedAndScrolledViews) {
  auto window = MCWindow::create({400, 300});
  auto content = window->contentView();  // unflipped, y up
  auto flipped = std::make_shared<FlippedView>(MCMakeRect(50, 100, 200, 150));
  auto inner = std::make_shared<MCView>(MCMakeRect(10, 20, 100, 50));  // unflipped inside flipped
  content->addSubview(flipped);
  flipped->addSubview(inner);

  // The flipped view's top left is at window (50, 250).
  expectPoint(flipped->convertPoint({0, 0}, nullptr), -50, 250);
  expectPoint(flipped->convertPointToView({0, 0}, nullptr), 50, 250);
  expectPoint(flipped->convertPointToView({0, 150}, nullptr), 50, 100);
  // The inner view's frame runs from y 20 to 70 down the flipped view: its origin (bottom left)
  // is at flipped y 70, window y 250 - 70 = 180.
  expectPoint(inner->convertPointToView({0, 0}, nullptr), 60, 180);
  expectPoint(inner->convertPointToView({5, 50}, flipped.get()), 15, 20);
  expectPoint(inner->convertPoint({15, 20}, flipped.get()), 5, 50);
  // Conversions go both ways exactly, for rectangles too.
  const MCRect r = MCMakeRect(3, 4, 10, 20);
  const MCRect there = inner->convertRectToView(r, flipped.get());
  EXPECT_EQ(there, MCMakeRect(13, 70 - 24, 10, 20));
  EXPECT_EQ(inner->convertRect(there, flipped.get()), r);

  // A scrolled clip view: a document point moves by the scroll offset on the window.
  auto scrollView = std::make_shared<MCScrollView>(MCMakeRect(0, 0, 200, 100));
  auto document = std::make_shared<FlippedView>(MCMakeRect(0, 0, 200, 1000));
  scrollView->setDocumentView(document);
  content->addSubview(scrollView);
  expectPoint(document->convertPointToView({0, 0}, nullptr), 0, 100);
  scrollView->contentView()->scrollToPoint({0, 300});
  expectPoint(document->convertPointToView({0, 300}, nullptr), 0, 100);
  expectPoint(document->convertPoint({10, 50}, nullptr), 10, 350);
  EXPECT_EQ(document->visibleRect(), MCMakeRect(0, 300, 200, 100));
  EXPECT_EQ(scrollView->documentVisibleRect(), MCMakeRect(0, 300, 200, 100));
  // Scrolling past either end stops at it.
  scrollView->contentView()->scrollToPoint({0, 5000});
  EXPECT_DOUBLE_EQ(scrollView->contentView()->bounds().origin.y, 900);
  scrollView->contentView()->scrollToPoint({-40, -10});
  expectPoint(scrollView->contentView()->bounds().origin, 0, 0);
  EXPECT_EQ(document->enclosingScrollView(), scrollView.get());
  EXPECT_EQ(flipped->enclosingScrollView(), nullptr);
}

TEST(ViewGeometry, HitTestingFindsTheDeepestVisibleView) {
  auto window = MCWindow::create({300, 300});
  auto content = window->contentView();
  auto back = std::make_shared<FlippedView>(MCMakeRect(0, 0, 200, 200));
  auto front = std::make_shared<FlippedView>(MCMakeRect(50, 50, 100, 100));
  auto child = std::make_shared<MCView>(MCMakeRect(0, 0, 10, 10));
  content->addSubview(back);
  back->addSubview(front);
  front->addSubview(child);
  // Window (60, 190) is flipped-back (60, 10): outside front.
  EXPECT_EQ(content->hitTest({60, 190}), back.get());
  // Front's top-left corner region: window y = 200 - 50 = 150 is front's top edge.
  EXPECT_EQ(content->hitTest({65, 145}), front.get());
  // The unflipped child sits at the top left of flipped front: front y 0..10.
  EXPECT_EQ(content->hitTest({52, 148}), child.get());
  front->setHidden(true);
  EXPECT_EQ(content->hitTest({52, 148}), back.get());
  EXPECT_EQ(content->hitTest({250, 250}), content.get());
  EXPECT_EQ(content->hitTest({-1, 5}), nullptr);
}

TEST(ViewGeometry, DirtyRegionTellsEachViewWhatToRedraw) {
  auto window = MCWindow::create({200, 200});
  MCOffscreenHost host(window);
  auto probe = std::make_shared<ProbeView>(MCMakeRect(0, 0, 200, 200));
  window->setContentView(probe);
  probe->probes = {MCMakeRect(0, 0, 10, 10), MCMakeRect(20, 20, 10, 10), MCMakeRect(100, 100, 10, 10),
                   MCMakeRect(45, 0, 10, 10), MCMakeRect(150, 150, 50, 50)};
  host.render();
  EXPECT_EQ(probe->draws, 1);
  EXPECT_EQ(probe->answers, (std::vector<bool>{true, true, true, true, true}));

  // Two separate invalidations: the gap between them is not redrawn, though it lies in their
  // bounding box.
  probe->setNeedsDisplayInRect(MCMakeRect(0, 0, 30, 30));
  probe->setNeedsDisplayInRect(MCMakeRect(90, 90, 30, 30));
  EXPECT_TRUE(probe->needsToDrawRect(MCMakeRect(25, 25, 2, 2)));
  EXPECT_FALSE(probe->needsToDrawRect(MCMakeRect(50, 50, 2, 2)));
  host.render();
  EXPECT_EQ(probe->draws, 2);
  EXPECT_EQ(probe->lastDirty, MCMakeRect(0, 0, 120, 120));
  EXPECT_EQ(probe->answers, (std::vector<bool>{true, true, true, false, false}));
  EXPECT_EQ(probe->rectsBeingDrawn().size(), 0u);  // only while drawing

  // Fractional rectangles are widened to whole points; nothing pending draws nothing.
  probe->setNeedsDisplayInRect(MCMakeRect(44.5, 0.2, 0.6, 0.6));
  host.render();
  EXPECT_EQ(probe->draws, 3);
  EXPECT_EQ(probe->answers, (std::vector<bool>{false, false, false, true, false}));
  host.render();
  EXPECT_EQ(probe->draws, 3);
  EXPECT_FALSE(window->needsDisplay());
}

TEST(ViewGeometry, OnlyViewsThatMeetTheRegionDraw) {
  auto window = MCWindow::create({400, 400});
  MCOffscreenHost host(window);
  std::vector<std::shared_ptr<ProbeView>> tiles;
  for (int i = 0; i < 16; ++i) {
    auto tile = std::make_shared<ProbeView>(MCMakeRect((i % 4) * 100, (i / 4) * 100, 100, 100));
    window->contentView()->addSubview(tile);
    tiles.push_back(tile);
  }
  host.render();
  for (auto& tile : tiles) tile->draws = 0;
  // A view's own invalidation stays inside it; the window's may cross views. Window
  // (190..210, 90..110) is the corner where tiles 1, 2, 5 and 6 meet; tile 15 is marked alone.
  tiles[6]->setNeedsDisplayInRect(MCMakeRect(-50, -50, 60, 60));
  window->invalidateRect(MCMakeRect(190, 90, 20, 20));
  tiles[15]->setNeedsDisplayInRect(MCMakeRect(50, 50, 10, 10));
  host.render();
  std::vector<int> drawn;
  for (int i = 0; i < 16; ++i)
    if (tiles[i]->draws) drawn.push_back(i);
  EXPECT_EQ(drawn, (std::vector<int>{1, 2, 5, 6, 15}));
  EXPECT_EQ(window->numberOfViewsDrawnInLastDisplay(), 6u);  // with the content view
}

TEST(ViewGeometry, ZeroAndNegativeSizesAndAutoresizing) {
  auto window = MCWindow::create({300, 200});
  MCOffscreenHost host(window);
  auto sized = std::make_shared<MCView>(MCMakeRect(10, 10, 280, 180));
  sized->setAutoresizingMask(MCViewWidthSizable | MCViewHeightSizable);
  auto pinned = std::make_shared<MCView>(MCMakeRect(250, 10, 40, 20));
  pinned->setAutoresizingMask(MCViewMinXMargin);
  window->contentView()->addSubview(sized);
  window->contentView()->addSubview(pinned);
  int frameChanges = 0;
  const int token = sized->addFrameObserver([&](MCView&) { ++frameChanges; });

  window->setContentSize({400, 250});
  EXPECT_EQ(sized->frame(), MCMakeRect(10, 10, 380, 230));
  EXPECT_EQ(pinned->frame(), MCMakeRect(350, 10, 40, 20));
  EXPECT_EQ(frameChanges, 1);
  sized->removeFrameObserver(token);
  sized->setFrameSize({-5, 0});
  EXPECT_EQ(sized->frame().size, MCMakeSize(0, 0));
  EXPECT_EQ(frameChanges, 1);
  window->setContentSize({-1, -1});
  EXPECT_EQ(window->contentSize(), MCMakeSize(0, 0));
  EXPECT_EQ(host.render(), nullptr);  // nothing to show, and no crash
  window->setContentSize({50, 50});
  ASSERT_NE(host.render(), nullptr);
}

TEST(ViewGeometry, LayoutRunsOnceBeforeTheNextDisplay) {
  auto window = MCWindow::create({100, 100});
  MCOffscreenHost host(window);
  class Laid : public MCView {
   public:
    using MCView::MCView;
    int layouts = 0;
    void layout() override {
      ++layouts;
      // Layout may change frames, which must then show in the same display.
      if (!subviews().empty()) subviews().front()->setFrame(MCMakeRect(0, 0, bounds().size.width / 2, 10));
    }
  };
  auto laid = std::make_shared<Laid>(MCMakeRect(0, 0, 100, 100));
  laid->addSubview(std::make_shared<MCView>());
  window->setContentView(laid);
  host.render();
  const int first = laid->layouts;
  host.render();
  EXPECT_EQ(laid->layouts, first);
  window->setContentSize({60, 100});
  host.render();
  EXPECT_EQ(laid->layouts, first + 1);
  EXPECT_EQ(laid->subviews().front()->frame().size.width, 30);
}
