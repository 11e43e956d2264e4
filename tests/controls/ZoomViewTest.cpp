// The zoom view's arithmetic against hand-worked cases, and its gestures through events.
#include <vesperon/controls/MCZoomView.h>
#include <vesperon/platform/MCMainQueue.h>
#include <vesperon/toolkit/MCOffscreenHost.h>

#include <gtest/gtest.h>

namespace {

struct Content : MCZoomViewDelegate {
  MCSize size{800, 600};
  int changes = 0;
  MCSize zoomViewOriginalContentSize(MCZoomView&) override { return size; }
  void zoomViewDidChange(MCZoomView&) override { ++changes; }
};

struct Fixture {
  std::shared_ptr<MCWindow> window = MCWindow::create({400, 300});
  MCOffscreenHost host{window};
  std::shared_ptr<MCZoomView> view = std::make_shared<MCZoomView>(MCMakeRect(0, 0, 400, 300));
  std::shared_ptr<Content> content = std::make_shared<Content>();
  Fixture() {
    view->setDelegate(content);
    view->setMaxZoom(16);
    window->setContentView(view);
  }
};

/// Where a view point lies in the content, as fractions of the content rectangle.
MCPoint unitOf(const MCZoomView& view, MCPoint p) {
  const MCRect r = view.contentRectFor(view.zoom(), view.offset());
  return {(p.x - r.origin.x) / r.size.width, (p.y - r.origin.y) / r.size.height};
}

}  // namespace

TEST(ZoomView, SizesRectanglesAndConstraints) {
  Fixture f;
  MCZoomView& v = *f.view;
  EXPECT_EQ(v.sizeForZoom(1), MCMakeSize(400, 300));  // fit: half of 800 × 600
  EXPECT_EQ(v.sizeForZoom(2), MCMakeSize(800, 600));
  EXPECT_EQ(v.contentRectFor(2, {0.5, 0}), MCMakeRect(0, -150, 800, 600));
  EXPECT_EQ(v.constrainedOffset({1, -1}, 2), MCMakePoint(0.5, -0.5));
  EXPECT_EQ(v.constrainedOffset({0.7, 0.3}, 1), MCMakePoint(0, 0));  // content that fits stays centred

  v.setOffset({1, 1}, 2);
  EXPECT_EQ(v.zoom(), 2);
  EXPECT_EQ(v.offset(), MCMakePoint(0.5, 0.5));
  EXPECT_EQ(f.content->changes, 1);
  v.setOffset({0.5, 0.5}, 2);  // the same values: no report
  EXPECT_EQ(f.content->changes, 1);
  v.setOffset({0, 0}, 100);  // clamped to the maximum
  EXPECT_EQ(v.zoom(), 16);
  // Lowering the maximum pulls the zoom down at once, without a report.
  const int changes = f.content->changes;
  v.setMaxZoom(3);
  EXPECT_EQ(v.zoom(), 3);
  EXPECT_EQ(f.content->changes, changes);

  // An original without area, and no delegate at all: nothing moves, nothing divides by zero.
  f.content->size = {0, 600};
  v.setOffset({0.2, 0.2}, 2);
  v.panWith({10, 10});
  v.zoomTo(2.5, {10, 10});
  EXPECT_EQ(v.sizeForZoom(2), MCMakeSize(0, 0));
  f.content->size = {800, 600};
  v.setDelegate(nullptr);
  EXPECT_EQ(v.contentRect(), MCRect{});
  v.setOffset({0.1, 0.1}, 2.5);
  EXPECT_EQ(v.zoom(), 2);
}

TEST(ZoomView, ZoomingHoldsThePointUnderTheAnchor) {
  Fixture f;
  MCZoomView& v = *f.view;
  const MCPoint anchor = {300, 150};
  const MCPoint before = unitOf(v, anchor);
  v.zoomTo(2, anchor);
  EXPECT_EQ(v.zoom(), 2);
  EXPECT_DOUBLE_EQ(v.offset().x, -0.25);  // 2 × (0.625 - 0.75)
  const MCPoint after = unitOf(v, anchor);
  EXPECT_NEAR(after.x, before.x, 1e-12);
  EXPECT_NEAR(after.y, before.y, 1e-12);
  // At the view's corner, from the fitted content: the content's corner stays there, and the
  // offset reaches exactly its limit.
  v.setOffset({0, 0}, 1);
  v.zoomTo(4, {0, 0});
  EXPECT_EQ(v.offset(), MCMakePoint(0.75, 0.75));
  EXPECT_EQ(v.contentRectFor(4, v.offset()).origin, MCMakePoint(0, 0));
  // Past the corner the constraint wins: the content cannot leave a gap.
  v.zoomTo(8, {-100, -100});
  EXPECT_EQ(v.offset(), v.constrainedOffset(v.offset(), 8));
  EXPECT_LE(v.contentRectFor(8, v.offset()).origin.x, 0);
  // At the minimum a zoom out finds no change and tells nobody.
  v.setOffset({0, 0}, 1);
  const int changes = f.content->changes;
  v.zoomBy(-0.5, anchor);
  EXPECT_EQ(f.content->changes, changes);
  // A range upside down holds at the maximum.
  v.setMinZoom(5);
  v.setMaxZoom(2);
  EXPECT_EQ(v.clampedZoom(10), 2);
  EXPECT_EQ(v.clampedZoom(0.1), 2);
}

TEST(ZoomView, GesturesThroughEvents) {
  Fixture f;
  MCZoomView& v = *f.view;
  v.setOffset({0, 0}, 2);
  // A wheel notch: 20% per event in the direction of the delta.
  f.host.scrollWheel({200, 150}, 0, 1, false);
  f.host.run();
  EXPECT_DOUBLE_EQ(v.zoom(), 2.4);
  f.host.scrollWheel({200, 150}, 0, -1, false);
  f.host.run();
  EXPECT_DOUBLE_EQ(v.zoom(), 2.4 * 0.8);
  // A pinch of 0.25 adds half the zoom.
  v.setOffset({0, 0}, 2);
  f.host.magnify({200, 150}, 0.25);
  f.host.run();
  EXPECT_DOUBLE_EQ(v.zoom(), 3);
  // A drag pans by twice the distance over the content size (y turned to the view's sense).
  v.setOffset({0, 0}, 2);
  f.host.mouseDown({200, 150});
  f.host.mouseDragged({240, 150});
  f.host.mouseUp({240, 150});
  f.host.run();
  EXPECT_DOUBLE_EQ(v.offset().x, 2 * 40 / 800.0);
  // The container follows the content rectangle.
  f.host.render();
  EXPECT_EQ(v.containerView()->frame(), v.contentRect());

  // A double click animates to 5 from below 3, and back to 1 from 3 or more; the last step is exact.
  v.setOffset({0, 0}, 1);
  f.host.click({200, 150}, 0, 2);
  f.host.run();
  ASSERT_TRUE(MCMainQueue::runUntil([&] { return !v.isAnimating(); }, std::chrono::seconds(3)));
  EXPECT_NEAR(v.zoom(), 5, 1e-9);
  f.host.click({200, 150}, 0, 2);
  f.host.run();
  ASSERT_TRUE(MCMainQueue::runUntil([&] { return !v.isAnimating(); }, std::chrono::seconds(3)));
  EXPECT_NEAR(v.zoom(), 1, 1e-9);
}

// A drag moves the content with the pointer, by the pointer's own distance, on both axes, in a
// view that is flipped (y down, as the viewer's) and in one that is not.
TEST(ZoomView, DragMovesTheContentWithThePointer) {
  struct FlippedZoomView : MCZoomView {
    using MCZoomView::MCZoomView;
    bool isFlipped() const override { return true; }
  };
  for (bool flipped : {false, true}) {
    SCOPED_TRACE(flipped ? "flipped" : "not flipped");
    Fixture f;
    if (flipped) {
      f.view = std::make_shared<FlippedZoomView>(MCMakeRect(0, 0, 400, 300));
      f.view->setDelegate(f.content);
      f.view->setMaxZoom(16);
      f.window->setContentView(f.view);
    }
    MCZoomView& v = *f.view;
    v.setOffset({0, 0}, 4);
    const MCRect before = v.contentRectFor(v.zoom(), v.offset());
    // Window points have y up: the pointer goes 40 right and 30 up.
    f.host.mouseDown({200, 150});
    f.host.mouseDragged({220, 165});
    f.host.mouseDragged({240, 180});
    f.host.mouseUp({240, 180});
    f.host.run();
    const MCRect after = v.contentRectFor(v.zoom(), v.offset());
    EXPECT_DOUBLE_EQ(MCMinX(after) - MCMinX(before), 40);
    // Up on screen is smaller y in a flipped view, larger y in one that is not.
    EXPECT_DOUBLE_EQ(MCMinY(after) - MCMinY(before), flipped ? -30 : 30);
  }
}
