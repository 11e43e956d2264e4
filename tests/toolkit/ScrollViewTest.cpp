// The scroll view: wheel, smooth scrolling, commands, content preparation and its scrollers.
#include <vesperon/platform/MCMainQueue.h>
#include <vesperon/toolkit/MCOffscreenHost.h>
#include <vesperon/toolkit/MCScrollView.h>
#include <vesperon/toolkit/MCWindow.h>

#include <gtest/gtest.h>

namespace {

class Document : public MCView {
 public:
  using MCView::MCView;
  bool flipped = true;
  std::vector<MCRect> prepared;
  bool isFlipped() const override { return flipped; }
  void prepareContentInRect(const MCRect& rect) override {
    prepared.push_back(rect);
    MCView::prepareContentInRect(rect);
  }
};

struct ScrollFixture {
  std::shared_ptr<MCWindow> window = MCWindow::create({300, 200});
  MCOffscreenHost host{window};
  std::shared_ptr<MCScrollView> scrollView = std::make_shared<MCScrollView>(MCMakeRect(0, 0, 300, 200));
  std::shared_ptr<Document> document = std::make_shared<Document>(MCMakeRect(0, 0, 600, 2000));
  ScrollFixture(bool flipped = true) {
    document->flipped = flipped;
    scrollView->setDocumentView(document);
    scrollView->setAutoresizingMask(MCViewWidthSizable | MCViewHeightSizable);
    window->contentView()->addSubview(scrollView);
  }
  double y() const { return scrollView->contentView()->bounds().origin.y; }
};

}  // namespace

TEST(ScrollView, WheelCommandsAndPreparedContent) {
  ScrollFixture f;
  EXPECT_EQ(f.scrollView->contentSize(), MCMakeSize(300, 200));
  // A precise (touchpad) scroll moves by its points at once; positive deltas show what is above.
  f.host.scrollWheel({100, 100}, 0, -120, true);
  f.host.run();
  EXPECT_DOUBLE_EQ(f.y(), 120);
  f.host.scrollWheel({100, 100}, 0, 500, true);
  f.host.run();
  EXPECT_DOUBLE_EQ(f.y(), 0);  // clamped at the top
  // The document was asked to prepare the area before it showed.
  ASSERT_FALSE(f.document->prepared.empty());
  EXPECT_EQ(f.document->prepared.front(), MCMakeRect(0, 120, 300, 200));

  // Commands from keys the document does not take: page down moves the height less the overlap.
  f.window->makeFirstResponder(f.document.get());
  f.host.keyPress(MCPageDownFunctionKey);
  f.host.run();
  EXPECT_DOUBLE_EQ(f.y(), 190);
  f.host.keyPress(MCEndFunctionKey);
  f.host.run();
  EXPECT_DOUBLE_EQ(f.y(), 1800);
  f.host.keyPress(MCUpArrowFunctionKey, MCEventModifierFlagOption);
  f.host.run();
  EXPECT_DOUBLE_EQ(f.y(), 1790);

  // A wheel notch scrolls smoothly and lands exactly on its target.
  f.scrollView->scrollToBeginningOfDocument();
  f.host.scrollWheel({100, 100}, 0, -1, false);
  f.host.run();
  EXPECT_LT(f.y(), 40);
  EXPECT_TRUE(MCMainQueue::runUntil([&] { return f.y() == 40; }, std::chrono::seconds(2)));

  // The scroller follows: a quarter of the way down shows its knob a quarter down the track.
  f.scrollView->scrollClipViewToPoint({0, 450});
  EXPECT_DOUBLE_EQ(f.scrollView->verticalScroller()->doubleValue(), 0.25);
  EXPECT_DOUBLE_EQ(f.scrollView->verticalScroller()->knobProportion(), 0.1);

  // A smaller window keeps the position inside the document.
  f.window->setContentSize({300, 100});
  EXPECT_EQ(f.scrollView->contentSize(), MCMakeSize(300, 100));
  f.scrollView->scrollToEndOfDocument();
  EXPECT_DOUBLE_EQ(f.y(), 1900);
  f.window->setContentSize({300, 400});
  EXPECT_DOUBLE_EQ(f.y(), 1600);
}

TEST(ScrollView, UnflippedDocumentsStartAtTheBottomAndScrollTheOtherWay) {
  ScrollFixture f(false);
  EXPECT_DOUBLE_EQ(f.y(), 0);
  f.scrollView->scrollToBeginningOfDocument();  // the top of an unflipped document is its far end
  EXPECT_DOUBLE_EQ(f.y(), 1800);
  EXPECT_DOUBLE_EQ(f.scrollView->verticalScroller()->doubleValue(), 0);
  f.scrollView->scrollPageDown();
  EXPECT_DOUBLE_EQ(f.y(), 1610);
}

TEST(ScrollView, DraggingTheKnobScrollsInProportion) {
  ScrollFixture f;
  f.scrollView->setHasHorizontalScroller(false);
  const auto& scroller = f.scrollView->verticalScroller();
  const MCRect knob = scroller->knobRect();
  ASSERT_FALSE(MCIsEmptyRect(knob));
  // Into window coordinates: the scroller is flipped, at the scroll view's right edge.
  const MCPoint onKnob = scroller->convertPointToView({MCMidX(knob), MCMidY(knob)}, nullptr);
  const double travel = scroller->bounds().size.height - knob.size.height;
  f.host.mouseDown(onKnob);
  f.host.mouseDragged({onKnob.x, onKnob.y - travel / 2});
  f.host.mouseUp({onKnob.x, onKnob.y - travel / 2});
  f.host.run();
  EXPECT_NEAR(f.y(), 900, 1e-6);
  // A press beside the knob pages toward the press.
  const MCPoint below = scroller->convertPointToView({MCMidX(knob), scroller->bounds().size.height - 2}, nullptr);
  f.host.click(below);
  f.host.run();
  EXPECT_NEAR(f.y(), 1090, 1e-6);
}
