#include <vesperon/toolkit/MCClipView.h>

#include <vesperon/platform/MCGraphicsContext.h>
#include <vesperon/toolkit/MCScrollView.h>
#include <vesperon/toolkit/MCWindow.h>

#include <algorithm>
#include <cmath>

MCClipView::MCClipView(MCRect frame) : MCView(frame) {}

MCClipView::~MCClipView() {
  if (documentView_ && documentObserver_) documentView_->removeFrameObserver(documentObserver_);
}

void MCClipView::setDocumentView(const MCViewRef& view) {
  if (view == documentView_) return;
  if (documentView_) {
    documentView_->removeFrameObserver(documentObserver_);
    documentView_->removeFromSuperview();
  }
  documentView_ = view;
  documentObserver_ = 0;
  if (view) {
    addSubview(view);
    documentObserver_ = view->addFrameObserver([this](MCView&) { documentFrameChanged(); });
    const MCRect doc = documentRect();
    // A flipped document starts at its top, an unflipped one at its bottom: both at their origin.
    setBoundsOrigin(constrainScrollPoint(doc.origin));
  }
  if (auto* scrollView = enclosingScrollView()) scrollView->reflectScrolledClipView(this);
  setNeedsDisplay(true);
}

MCRect MCClipView::documentRect() const { return documentView_ ? documentView_->frame() : MCRect{}; }

MCRect MCClipView::documentVisibleRect() const {
  if (!documentView_) return {};
  return documentView_->convertRect(MCIntersectionRect(bounds(), documentRect()), this);
}

MCPoint MCClipView::constrainScrollPoint(MCPoint point) const {
  const MCRect doc = documentRect();
  const MCSize size = bounds().size;
  auto clampAxis = [](double value, double start, double length, double visible) {
    const double end = start + std::max(0.0, length - visible);
    return std::clamp(value, start, end);
  };
  if (!std::isfinite(point.x)) point.x = doc.origin.x;
  if (!std::isfinite(point.y)) point.y = doc.origin.y;
  return {clampAxis(point.x, doc.origin.x, doc.size.width, size.width),
          clampAxis(point.y, doc.origin.y, doc.size.height, size.height)};
}

void MCClipView::scrollToPoint(MCPoint point) {
  const MCPoint target = constrainScrollPoint(point);
  if (documentView_) {
    const MCRect upcoming = documentView_->convertRect(MCMakeRect(target.x, target.y, bounds().size.width,
                                                                  bounds().size.height), this);
    const MCRect wanted = MCIntersectionRect(upcoming, documentView_->bounds());
    if (!MCIsEmptyRect(wanted) && !MCContainsRect(documentView_->preparedContentRect(), wanted))
      documentView_->prepareContentInRect(wanted);
  }
  setBoundsOrigin(target);
}

bool MCClipView::scrollRectToVisible(const MCRect& rect) {
  const MCRect visible = bounds();
  MCPoint origin = visible.origin;
  auto axis = [](double rMin, double rLen, double vMin, double vLen) {
    if (rMin >= vMin && rMin + rLen <= vMin + vLen) return vMin;
    if (rLen > vLen || rMin < vMin) return rMin;  // the rectangle's start wins when it cannot all show
    return rMin + rLen - vLen;
  };
  origin.x = axis(rect.origin.x, rect.size.width, visible.origin.x, visible.size.width);
  origin.y = axis(rect.origin.y, rect.size.height, visible.origin.y, visible.size.height);
  const MCPoint before = bounds().origin;
  scrollToPoint(origin);
  const bool scrolled = !MCEqualPoints(before, bounds().origin);
  if (scrolled)
    if (auto* scrollView = enclosingScrollView()) scrollView->reflectScrolledClipView(this);
  return scrolled;
}

bool MCClipView::autoscroll(const MCEvent& event) {
  if (!window()) return false;
  const MCPoint location = event.type() == MCEventType::Periodic ? window()->mouseLocationOutsideOfEventStream()
                                                                  : event.locationInWindow();
  const MCPoint p = convertPoint(location, nullptr);
  const MCRect visible = bounds();
  // Scroll by how far the pointer lies beyond the edge: the farther, the faster.
  double dx = 0, dy = 0;
  if (p.x < MCMinX(visible)) dx = p.x - MCMinX(visible);
  else if (p.x > MCMaxX(visible)) dx = p.x - MCMaxX(visible);
  if (p.y < MCMinY(visible)) dy = p.y - MCMinY(visible);
  else if (p.y > MCMaxY(visible)) dy = p.y - MCMaxY(visible);
  if (dx == 0 && dy == 0) return false;
  const MCPoint before = visible.origin;
  scrollToPoint({before.x + dx, before.y + dy});
  const bool scrolled = !MCEqualPoints(before, bounds().origin);
  if (scrolled)
    if (auto* scrollView = enclosingScrollView()) scrollView->reflectScrolledClipView(this);
  return scrolled;
}

void MCClipView::drawRect(const MCRect& dirtyRect) {
  if (!drawsBackground_) return;
  MCGraphicsContext* context = MCGraphicsContext::currentContext();
  if (!context) return;
  backgroundColor_.setFill(*context);
  context->fillRect(dirtyRect);
}

void MCClipView::setFrameSize(MCSize size) {
  MCView::setFrameSize(size);
  documentFrameChanged();
}

void MCClipView::documentFrameChanged() {
  // A document that shrank, or a clip view that grew, may leave the position past the end.
  const MCPoint constrained = constrainScrollPoint(bounds().origin);
  if (!MCEqualPoints(constrained, bounds().origin)) setBoundsOrigin(constrained);
  if (auto* scrollView = enclosingScrollView()) scrollView->reflectScrolledClipView(this);
}
