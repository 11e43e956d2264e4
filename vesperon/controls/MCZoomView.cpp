#include <vesperon/controls/MCZoomView.h>

#include <vesperon/core/MCMath.h>
#include <vesperon/toolkit/MCTimer.h>
#include <vesperon/toolkit/MCWindow.h>

#include <algorithm>
#include <chrono>
#include <cmath>

MCZoomView::MCZoomView(MCRect frame) : MCView(frame) {
  containerView_ = std::make_shared<MCView>(bounds());
  addSubview(containerView_);
}

MCZoomView::~MCZoomView() = default;

void MCZoomView::setContentView(const MCViewRef& view) {
  if (view == contentView_) return;
  if (view) {
    view->setAutoresizingMask(MCViewWidthSizable | MCViewHeightSizable);
    if (contentView_ && contentView_->superview() == containerView_.get()) containerView_->replaceSubview(contentView_.get(), view);
    else containerView_->addSubview(view);
  } else if (contentView_) {
    contentView_->removeFromSuperview();
  }
  contentView_ = view;
}

void MCZoomView::setZoom(double zoom) {
  if (zoom == zoom_) return;
  zoom_ = zoom;
  setNeedsLayout(true);
}

void MCZoomView::setOffset(MCPoint offset) {
  if (MCEqualPoints(offset, offset_)) return;
  offset_ = offset;
  setNeedsLayout(true);
}

void MCZoomView::setMinZoom(double zoom) {
  minZoom_ = zoom;
  setZoom(clampedZoom(zoom_));
  setNeedsLayout(true);
}

void MCZoomView::setMaxZoom(double zoom) {
  maxZoom_ = zoom;
  setZoom(clampedZoom(zoom_));
  setNeedsLayout(true);
}

double MCZoomView::clampedZoom(double zoom) const {
  // A range given upside down holds at the maximum rather than throwing.
  return std::max(std::min(zoom, maxZoom_), std::min(minZoom_, maxZoom_));
}

MCSize MCZoomView::originalSize() const {
  auto delegate = delegate_.lock();
  return delegate ? delegate->zoomViewOriginalContentSize(const_cast<MCZoomView&>(*this)) : MCSize{0, 0};
}

MCSize MCZoomView::sizeForZoom(double zoom) const {
  const MCSize original = originalSize();
  if (!(original.width > 0) || !(original.height > 0)) return {0, 0};
  const MCRect b = bounds();
  const double fit = std::min(b.size.width / original.width, b.size.height / original.height);
  return {original.width * fit * zoom, original.height * fit * zoom};
}

MCRect MCZoomView::contentRectFor(double zoom, MCPoint offset) const {
  const MCSize size = sizeForZoom(zoom);
  const MCRect b = bounds();
  const double cx = MCMidX(b) + offset.x * size.width / 2, cy = MCMidY(b) + offset.y * size.height / 2;
  return MCMakeRect(cx - size.width / 2, cy - size.height / 2, size.width, size.height);
}

MCRect MCZoomView::contentRect() const {
  if (!delegate_.lock()) return {};
  const MCRect r = contentRectFor(zoom_, offset_);
  // Edges inward to whole pixels of the window's backing.
  const double scale = window() ? window()->backingScaleFactor() : 1.0;
  const double x0 = std::ceil(MCMinX(r) * scale) / scale, y0 = std::ceil(MCMinY(r) * scale) / scale;
  const double x1 = std::floor(MCMaxX(r) * scale) / scale, y1 = std::floor(MCMaxY(r) * scale) / scale;
  return MCMakeRect(x0, y0, std::max(0.0, x1 - x0), std::max(0.0, y1 - y0));
}

MCPoint MCZoomView::constrainedOffset(MCPoint offset, double zoom) const {
  const MCSize size = sizeForZoom(zoom);
  // An original without area leaves the offset where it is: there is nothing to divide by.
  if (!(size.width > 0) || !(size.height > 0)) return offset;
  const MCRect b = bounds();
  const double limitX = std::max(MCMinX(b), size.width - b.size.width) / size.width;
  const double limitY = std::max(MCMinY(b), size.height - b.size.height) / size.height;
  return {std::clamp(offset.x, -limitX, limitX), std::clamp(offset.y, -limitY, limitY)};
}

void MCZoomView::checkedStep(double zoom, MCPoint offset) {
  auto delegate = delegate_.lock();
  if (!delegate) return;
  if (!std::isfinite(zoom) || !std::isfinite(offset.x) || !std::isfinite(offset.y)) return;
  if (zoom == zoom_ && MCEqualPoints(offset, offset_)) return;
  setZoom(zoom);
  setOffset(offset);
  delegate->zoomViewDidChange(*this);
}

void MCZoomView::setOffset(MCPoint offset, double zoom) {
  const double z = clampedZoom(zoom);
  checkedStep(z, constrainedOffset(offset, z));
}

void MCZoomView::updateLayout() {
  const double z = clampedZoom(zoom_);
  checkedStep(z, constrainedOffset(offset_, z));
  setNeedsLayout(true);
}

void MCZoomView::panWith(MCPoint vector) {
  const MCSize size = sizeForZoom(zoom_);
  if (!(size.width > 0) || !(size.height > 0)) return;
  const MCPoint moved = {offset_.x + 2 * vector.x / size.width, offset_.y + 2 * vector.y / size.height};
  checkedStep(zoom_, constrainedOffset(moved, zoom_));
}

void MCZoomView::zoomTo(double zoom, MCPoint anchor) {
  if (!delegate_.lock()) return;
  const double z = clampedZoom(zoom);
  if (z == zoom_) return;
  const MCRect before = contentRectFor(zoom_, offset_), after = contentRectFor(z, offset_);
  if (MCIsEmptyRect(before) || MCIsEmptyRect(after)) return;
  auto unit = [&](const MCRect& r) {
    return MCPoint{(anchor.x - MCMinX(r)) / r.size.width, (anchor.y - MCMinY(r)) / r.size.height};
  };
  const MCPoint u0 = unit(before), u1 = unit(after);
  const MCPoint moved = {offset_.x + 2 * (u1.x - u0.x), offset_.y + 2 * (u1.y - u0.y)};
  checkedStep(z, constrainedOffset(moved, z));
}

void MCZoomView::zoomBy(double amount, MCPoint anchor) { zoomTo(zoom_ + amount * zoom_, anchor); }

void MCZoomView::magnifyWithEvent(const MCEvent& event) {
  zoomTo(zoom_ + 2 * event.magnification() * zoom_, convertPoint(event.locationInWindow(), nullptr));
}

void MCZoomView::scrollWheel(const MCEvent& event) {
  double d = event.scrollingDeltaY();
  if (event.isDirectionInvertedFromDevice()) d = -d;
  const double step = event.hasPreciseScrollingDeltas() ? d / 250 : (d == 0 ? 0 : std::copysign(0.2, d));
  zoomTo(zoom_ + step * zoom_, convertPoint(event.locationInWindow(), nullptr));
}

void MCZoomView::mouseDragged(const MCEvent& event) {
  // An event's deltaY grows downward; the offset grows in the view's own sense of y, so the
  // content follows the pointer whether the view is flipped or not.
  panWith({event.deltaX(), isFlipped() ? event.deltaY() : -event.deltaY()});
}

void MCZoomView::mouseDown(const MCEvent& event) {
  // A double click toggles as a double tap does.
  if (event.clickCount() == 2) smartMagnifyWithEvent(event);
}

void MCZoomView::smartMagnifyWithEvent(const MCEvent& event) {
  const MCPoint anchor = convertPoint(event.locationInWindow(), nullptr);
  const double start = std::sqrt(zoom_);
  const double target = zoom_ >= 3.0 ? 1.0 : 2.23606797749979;
  const auto began = std::chrono::steady_clock::now();
  std::weak_ptr<MCView> weak = sharedView();
  // The animation runs in the square root of the zoom, 0.4 seconds on a 60 Hz timer.
  auto timer = MCTimer::scheduledTimer(1.0 / 60, true, [weak, anchor, start, target, began](MCTimer& t) {
    auto view = std::static_pointer_cast<MCZoomView>(weak.lock());
    if (!view) {
      t.invalidate();
      return;
    }
    const double elapsed = std::chrono::duration<double>(std::chrono::steady_clock::now() - began).count();
    const double progress = std::min(1.0, elapsed / 0.4);
    const double eased = MC_CUBIC_BEZIER_PATH_VALUE(progress, 0, 0, 1, 1);
    const double s = start + (target - start) * eased;
    view->zoomTo(s * s, anchor);
    if (progress >= 1) {
      t.invalidate();
      std::erase_if(view->animations_, [&t](const auto& timer) { return timer.get() == &t; });
    }
  });
  animations_.push_back(timer);
}

void MCZoomView::layout() {
  MCView::layout();
  containerView_->setFrame(contentRect());
}
