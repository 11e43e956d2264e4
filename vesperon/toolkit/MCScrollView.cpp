#include <vesperon/toolkit/MCScrollView.h>

#include <vesperon/toolkit/MCKeyBindings.h>
#include <vesperon/toolkit/MCTimer.h>

#include <algorithm>
#include <cmath>

MCScrollView::MCScrollView(MCRect frame) : MCView(frame) {
  clipView_ = std::make_shared<MCClipView>(bounds());
  addSubview(clipView_);
  verticalScroller_ = std::make_shared<MCScroller>(true, this);
  horizontalScroller_ = std::make_shared<MCScroller>(false, this);
  addSubview(verticalScroller_);
  addSubview(horizontalScroller_);
  tile();
  registerCommand("scrollLineUp:", [this] { scrollLineUp(); });
  registerCommand("scrollLineDown:", [this] { scrollLineDown(); });
  registerCommand("scrollPageUp:", [this] { scrollPageUp(); });
  registerCommand("scrollPageDown:", [this] { scrollPageDown(); });
  registerCommand("scrollToBeginningOfDocument:", [this] { scrollToBeginningOfDocument(); });
  registerCommand("scrollToEndOfDocument:", [this] { scrollToEndOfDocument(); });
}

MCScrollView::~MCScrollView() = default;

void MCScrollView::setDocumentView(const MCViewRef& view) {
  clipView_->setDocumentView(view);
  reflectScrolledClipView(clipView_.get());
}

void MCScrollView::setHasVerticalScroller(bool flag) {
  hasVerticalScroller_ = flag;
  verticalScroller_->setHidden(!flag);
  reflectScrolledClipView(clipView_.get());
}

void MCScrollView::setHasHorizontalScroller(bool flag) {
  hasHorizontalScroller_ = flag;
  horizontalScroller_->setHidden(!flag);
  reflectScrolledClipView(clipView_.get());
}

void MCScrollView::setFrameSize(MCSize size) {
  MCView::setFrameSize(size);
  tile();
}

void MCScrollView::tile() {
  const MCRect b = bounds();
  clipView_->setFrame(b);
  const double t = MCScroller::kThickness;
  verticalScroller_->setFrame(MCMakeRect(MCMaxX(b) - t, b.origin.y, t, std::max(0.0, b.size.height - t)));
  horizontalScroller_->setFrame(MCMakeRect(b.origin.x, MCMaxY(b) - t, std::max(0.0, b.size.width - t), t));
  reflectScrolledClipView(clipView_.get());
}

double MCScrollView::documentDirection() const { return clipView_->isFlipped() ? 1.0 : -1.0; }

void MCScrollView::reflectScrolledClipView(MCClipView* clipView) {
  if (clipView != clipView_.get()) return;
  const MCRect doc = clipView_->documentRect();
  const MCRect visible = clipView_->bounds();
  auto proportion = [](double visibleLength, double docLength) {
    return docLength > visibleLength && docLength > 0 ? visibleLength / docLength : 1.0;
  };
  auto position = [](double offset, double visibleLength, double docLength) {
    const double range = docLength - visibleLength;
    return range > 0 ? std::clamp(offset / range, 0.0, 1.0) : 0.0;
  };
  double vertical = position(visible.origin.y - doc.origin.y, visible.size.height, doc.size.height);
  // The scroller reads 0 at the document's top, which is its far end when it is not flipped.
  if (!clipView_->isFlipped()) vertical = 1 - vertical;
  verticalScroller_->setKnobProportion(hasVerticalScroller_ ? proportion(visible.size.height, doc.size.height) : 1,
                                       vertical);
  horizontalScroller_->setKnobProportion(
      hasHorizontalScroller_ ? proportion(visible.size.width, doc.size.width) : 1,
      position(visible.origin.x - doc.origin.x, visible.size.width, doc.size.width));
}

void MCScrollView::scrollClipViewToPoint(MCPoint point) {
  clipView_->scrollToPoint(point);
  reflectScrolledClipView(clipView_.get());
}

void MCScrollView::scrollBy(double dx, double dy, bool smoothly) {
  const MCPoint from = smoothStepsLeft_ > 0 ? smoothTarget_ : clipView_->bounds().origin;
  const MCPoint target = clipView_->constrainScrollPoint({from.x + dx, from.y + documentDirection() * dy});
  if (!smoothly) {
    smoothStepsLeft_ = 0;
    smoothTimer_.reset();
    scrollClipViewToPoint(target);
    return;
  }
  smoothTarget_ = target;
  smoothStepsLeft_ = 6;
  if (!smoothTimer_ || !smoothTimer_->isValid())
    smoothTimer_ = MCTimer::scheduledTimer(1.0 / 60, true, [this](MCTimer&) { stepSmoothScroll(); });
}

void MCScrollView::stepSmoothScroll() {
  if (smoothStepsLeft_ <= 0) {
    if (smoothTimer_) smoothTimer_->invalidate();
    return;
  }
  const MCPoint at = clipView_->bounds().origin;
  const double share = 1.0 / smoothStepsLeft_;
  --smoothStepsLeft_;
  const MCPoint next = smoothStepsLeft_ == 0 ? smoothTarget_
                                             : MCPoint{at.x + (smoothTarget_.x - at.x) * share,
                                                       at.y + (smoothTarget_.y - at.y) * share};
  scrollClipViewToPoint(next);
  if (smoothStepsLeft_ == 0 && smoothTimer_) smoothTimer_->invalidate();
}

void MCScrollView::scrollWheel(const MCEvent& event) {
  double dx = event.scrollingDeltaX(), dy = event.scrollingDeltaY();
  if (!event.hasPreciseScrollingDeltas()) {
    dx *= horizontalLineScroll_ * kLinesPerWheelNotch;
    dy *= verticalLineScroll_ * kLinesPerWheelNotch;
  }
  // A positive delta moves the content down (or right): the view goes toward the start.
  scrollBy(-dx, -dy, scrollsSmoothly_ && !event.hasPreciseScrollingDeltas());
}

void MCScrollView::keyDown(const MCEvent& event) {
  const std::vector<std::string>& commands = MCKeyBindings::standardBindings().commandsForEvent(event);
  const bool scrolls = !commands.empty() && std::all_of(commands.begin(), commands.end(), [this](const std::string& c) {
    return respondsToCommand(c);
  });
  if (!scrolls) {
    MCView::keyDown(event);
    return;
  }
  for (const std::string& command : commands) performCommand(command);
}

void MCScrollView::scrollLineUp() { scrollBy(0, -verticalLineScroll_, false); }
void MCScrollView::scrollLineDown() { scrollBy(0, verticalLineScroll_, false); }

void MCScrollView::scrollPageUp() {
  scrollBy(0, -std::max(0.0, contentSize().height - verticalPageScroll_), false);
}

void MCScrollView::scrollPageDown() {
  scrollBy(0, std::max(0.0, contentSize().height - verticalPageScroll_), false);
}

void MCScrollView::scrollToBeginningOfDocument() {
  const MCRect doc = clipView_->documentRect();
  const double top = clipView_->isFlipped() ? doc.origin.y : MCMaxY(doc);
  scrollBy(0, 0, false);
  scrollClipViewToPoint({clipView_->bounds().origin.x, top});
}

void MCScrollView::scrollToEndOfDocument() {
  const MCRect doc = clipView_->documentRect();
  const double end = clipView_->isFlipped() ? MCMaxY(doc) : doc.origin.y;
  scrollBy(0, 0, false);
  scrollClipViewToPoint({clipView_->bounds().origin.x, end});
}
