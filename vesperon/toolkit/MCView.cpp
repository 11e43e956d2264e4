#include <vesperon/toolkit/MCView.h>

#include <vesperon/core/MCLog.h>
#include <vesperon/platform/MCGraphicsContext.h>
#include <vesperon/toolkit/MCClipView.h>
#include <vesperon/toolkit/MCDraggingSession.h>
#include <vesperon/toolkit/MCLayer.h>
#include <vesperon/toolkit/MCScrollView.h>
#include <vesperon/toolkit/MCWindow.h>

#include <cairo.h>

#include <algorithm>
#include <cmath>
#include <exception>
#include <typeinfo>

MCRect MCAxisTransform::apply(const MCRect& r) const {
  const MCPoint a = apply(r.origin);
  const MCPoint b = apply(MCPoint{MCMaxX(r), MCMaxY(r)});
  return MCMakeRect(std::min(a.x, b.x), std::min(a.y, b.y), std::fabs(b.x - a.x), std::fabs(b.y - a.y));
}

MCView::MCView(MCRect frame) {
  frame.size.width = std::max(0.0, frame.size.width);
  frame.size.height = std::max(0.0, frame.size.height);
  frame_ = frame;
  bounds_ = MCMakeRect(0, 0, frame.size.width, frame.size.height);
}

MCView::~MCView() {
  // Subviews hear that they lose their superview while this view is still whole: a subview that
  // subscribed to this view's notices unsubscribes here, not from a destroyed object later.
  for (auto& subview : subviews_) {
    subview->viewWillMoveToSuperview(nullptr);
    subview->superview_ = nullptr;
    subview->setWindowRecursively(nullptr);
  }
}

// MARK: Hierarchy

void MCView::addSubview(const std::shared_ptr<MCView>& view) { addSubview(view, true, nullptr); }

void MCView::addSubview(const std::shared_ptr<MCView>& view, bool above, const MCView* relativeTo) {
  if (!view || view.get() == this || isDescendantOf(view.get())) return;
  std::shared_ptr<MCView> keep = view;
  if (view->superview_) view->removeFromSuperview();
  view->viewWillMoveToSuperview(this);
  if (view->window_ != window_) view->viewWillMoveToWindow(window_);
  auto position = subviews_.end();
  if (relativeTo) {
    auto it = std::find_if(subviews_.begin(), subviews_.end(), [&](const auto& v) { return v.get() == relativeTo; });
    if (it != subviews_.end()) position = above ? it + 1 : it;
  } else if (!above) {
    position = subviews_.begin();
  }
  subviews_.insert(position, view);
  view->superview_ = this;
  const bool windowChanged = view->window_ != window_;
  view->setWindowRecursively(window_);
  view->viewDidMoveToSuperview();
  if (windowChanged) view->viewDidMoveToWindow();
  didAddSubview(view.get());
  view->setNeedsDisplay(true);
}

void MCView::removeFromSuperview() {
  MCView* parent = superview_;
  if (!parent) return;
  // The view may hold the last reference to itself through its superview.
  std::shared_ptr<MCView> keep = sharedView();
  parent->willRemoveSubview(this);
  parent->setNeedsDisplayInRect(frame_);
  viewWillMoveToSuperview(nullptr);
  const bool hadWindow = window_ != nullptr;
  if (hadWindow) {
    viewWillMoveToWindow(nullptr);
    window_->viewWillLeaveWindow(this);
  }
  auto& siblings = parent->subviews_;
  siblings.erase(std::remove_if(siblings.begin(), siblings.end(), [&](const auto& v) { return v.get() == this; }),
                 siblings.end());
  superview_ = nullptr;
  setWindowRecursively(nullptr);
  viewDidMoveToSuperview();
  if (hadWindow) viewDidMoveToWindow();
}

void MCView::replaceSubview(const MCView* oldView, const std::shared_ptr<MCView>& newView) {
  auto it = std::find_if(subviews_.begin(), subviews_.end(), [&](const auto& v) { return v.get() == oldView; });
  if (it == subviews_.end() || !newView) return;
  const MCView* below = (it + 1 == subviews_.end()) ? nullptr : (it + 1)->get();
  std::shared_ptr<MCView> old = *it;
  old->removeFromSuperview();
  if (below) addSubview(newView, false, below);
  else addSubview(newView);
}

MCMenu* MCView::enclosingMenu() const {
  for (const MCView* v = this; v; v = v->superview_)
    if (v->enclosingMenu_) return v->enclosingMenu_;
  return nullptr;
}

bool MCView::isDescendantOf(const MCView* view) const {
  for (const MCView* v = this; v; v = v->superview_)
    if (v == view) return true;
  return false;
}

void MCView::setWindowRecursively(MCWindow* window) {
  if (!trackingAreas_.empty() && window_ != window) {
    if (window_) window_->unregisterTrackingView(this);
    if (window) window->registerTrackingView(this);
  }
  window_ = window;
  if (window && needsLayout_) window->layoutNeeded_ = true;
  for (auto& subview : subviews_) subview->setWindowRecursively(window);
}

void MCView::viewWillMoveToSuperview(MCView*) {}
void MCView::viewDidMoveToSuperview() {}
void MCView::viewWillMoveToWindow(MCWindow*) {}
void MCView::viewDidMoveToWindow() {
  updateTrackingAreas();
  for (auto& subview : std::vector<MCViewRef>(subviews_)) subview->viewDidMoveToWindow();
}
void MCView::didAddSubview(MCView*) {}
void MCView::willRemoveSubview(MCView*) {}

MCResponder* MCView::nextResponder() const {
  if (superview_) return superview_;
  if (window_ && window_->contentView().get() == this) return window_;
  return nullptr;
}

// MARK: Geometry

void MCView::setFrame(const MCRect& frame) {
  setFrameOrigin(frame.origin);
  setFrameSize(frame.size);
}

void MCView::setFrameOrigin(MCPoint origin) {
  if (MCEqualPoints(origin, frame_.origin)) return;
  if (superview_) superview_->setNeedsDisplayInRect(frame_);
  frame_.origin = origin;
  setNeedsDisplay(true);
  postFrameChange();
}

void MCView::setFrameSize(MCSize size) {
  size.width = std::isfinite(size.width) ? std::max(0.0, size.width) : 0.0;
  size.height = std::isfinite(size.height) ? std::max(0.0, size.height) : 0.0;
  if (MCEqualSizes(size, frame_.size)) return;
  if (superview_) superview_->setNeedsDisplayInRect(frame_);
  const MCSize old = frame_.size;
  // An unscaled bounds follows the frame; a scaled one keeps its scale.
  const double scaleX = old.width > 0 ? bounds_.size.width / old.width : 1;
  const double scaleY = old.height > 0 ? bounds_.size.height / old.height : 1;
  frame_.size = size;
  bounds_.size = MCMakeSize(size.width * scaleX, size.height * scaleY);
  if (autoresizesSubviews_) resizeSubviewsWithOldSize(old);
  setNeedsLayout(true);
  setNeedsDisplay(true);
  if (window_) updateTrackingAreas();
  postFrameChange();
}

void MCView::setBounds(const MCRect& bounds) {
  setBoundsOrigin(bounds.origin);
  setBoundsSize(bounds.size);
}

void MCView::setBoundsOrigin(MCPoint origin) {
  if (MCEqualPoints(origin, bounds_.origin)) return;
  bounds_.origin = origin;
  setNeedsDisplay(true);
  postBoundsChange();
}

void MCView::setBoundsSize(MCSize size) {
  if (!(size.width > 0) || !(size.height > 0) || MCEqualSizes(size, bounds_.size)) return;
  bounds_.size = size;
  setNeedsDisplay(true);
  postBoundsChange();
}

void MCView::resizeSubviewsWithOldSize(MCSize oldSize) {
  for (auto& subview : std::vector<MCViewRef>(subviews_)) subview->resizeWithOldSuperviewSize(oldSize);
}

void MCView::resizeWithOldSuperviewSize(MCSize oldSize) {
  if (!superview_ || autoresizingMask_ == MCViewNotSizable) return;
  const MCSize size = superview_->bounds().size;
  MCRect frame = frame_;
  // Each flexible part of an axis takes an equal share of that axis's change.
  auto distribute = [](double delta, unsigned mask, unsigned minMargin, unsigned sizable, unsigned maxMargin,
                       double& origin, double& length) {
    const int parts = int(bool(mask & minMargin)) + int(bool(mask & sizable)) + int(bool(mask & maxMargin));
    if (parts == 0 || delta == 0) return;
    const double share = delta / parts;
    if (mask & minMargin) origin += share;
    if (mask & sizable) length += share;
  };
  distribute(size.width - oldSize.width, autoresizingMask_, MCViewMinXMargin, MCViewWidthSizable, MCViewMaxXMargin,
             frame.origin.x, frame.size.width);
  distribute(size.height - oldSize.height, autoresizingMask_, MCViewMinYMargin, MCViewHeightSizable,
             MCViewMaxYMargin, frame.origin.y, frame.size.height);
  setFrame(frame);
}

void MCView::setHidden(bool hidden) {
  if (hidden == hidden_) return;
  if (hidden && superview_) superview_->setNeedsDisplayInRect(frame_);
  hidden_ = hidden;
  if (!hidden) setNeedsDisplay(true);
}

bool MCView::isHiddenOrHasHiddenAncestor() const {
  for (const MCView* v = this; v; v = v->superview_)
    if (v->hidden_) return true;
  return false;
}

void MCView::setAlphaValue(double alpha) {
  alpha = std::clamp(alpha, 0.0, 1.0);
  if (alpha == alphaValue_) return;
  alphaValue_ = alpha;
  setNeedsDisplay(true);
}

MCAxisTransform MCView::transformToSuperview() const {
  const double sx = bounds_.size.width > 0 ? frame_.size.width / bounds_.size.width : 1;
  const double sy = bounds_.size.height > 0 ? frame_.size.height / bounds_.size.height : 1;
  const bool parentFlipped = superview_ ? superview_->isFlipped() : false;
  MCAxisTransform t;
  t.sx = sx;
  t.tx = frame_.origin.x - bounds_.origin.x * sx;
  if (isFlipped() == parentFlipped) {
    t.sy = sy;
    t.ty = frame_.origin.y - bounds_.origin.y * sy;
  } else {
    t.sy = -sy;
    t.ty = frame_.origin.y + frame_.size.height + bounds_.origin.y * sy;
  }
  return t;
}

MCAxisTransform MCView::transformToWindow() const {
  MCAxisTransform t = transformToSuperview();
  for (const MCView* v = superview_; v; v = v->superview_) t = v->transformToSuperview().compose(t);
  return t;
}

MCRect MCView::visibleRect() const {
  const MCAxisTransform toWindow = transformToWindow();
  MCRect visible = toWindow.apply(bounds_);
  MCAxisTransform t = toWindow;
  for (const MCView* v = superview_; v; v = v->superview_) {
    visible = MCIntersectionRect(visible, v->transformToWindow().apply(v->bounds_));
    if (MCIsEmptyRect(visible)) return {};
  }
  if (window_) {
    const MCSize size = window_->contentSize();
    visible = MCIntersectionRect(visible, MCMakeRect(0, 0, size.width, size.height));
  }
  if (MCIsEmptyRect(visible)) return {};
  return MCIntersectionRect(t.inverted().apply(visible), bounds_);
}

MCPoint MCView::convertPoint(MCPoint point, const MCView* fromView) const {
  const MCPoint inWindow = fromView ? fromView->transformToWindow().apply(point) : point;
  return transformToWindow().inverted().apply(inWindow);
}

MCPoint MCView::convertPointToView(MCPoint point, const MCView* toView) const {
  const MCPoint inWindow = transformToWindow().apply(point);
  return toView ? toView->transformToWindow().inverted().apply(inWindow) : inWindow;
}

MCRect MCView::convertRect(const MCRect& rect, const MCView* fromView) const {
  const MCRect inWindow = fromView ? fromView->transformToWindow().apply(rect) : rect;
  return transformToWindow().inverted().apply(inWindow);
}

MCRect MCView::convertRectToView(const MCRect& rect, const MCView* toView) const {
  const MCRect inWindow = transformToWindow().apply(rect);
  return toView ? toView->transformToWindow().inverted().apply(inWindow) : inWindow;
}

MCScrollView* MCView::enclosingScrollView() const {
  for (MCView* v = superview_; v; v = v->superview_)
    if (auto* scrollView = dynamic_cast<MCScrollView*>(v)) return scrollView;
  return nullptr;
}

MCView* MCView::hitTest(MCPoint point) {
  if (hidden_ || !MCMouseInRect(point, frame_, superview_ ? superview_->isFlipped() : false)) return nullptr;
  const MCPoint local = transformToSuperview().inverted().apply(point);
  if (!MCMouseInRect(local, bounds_, isFlipped())) return nullptr;
  // Most subviews miss: test their frames here, in this view's coordinates, before descending.
  const bool flipped = isFlipped();
  for (auto it = subviews_.rbegin(); it != subviews_.rend(); ++it) {
    MCView* subview = it->get();
    if (subview->hidden_ || !MCMouseInRect(local, subview->frame_, flipped)) continue;
    if (MCView* hit = subview->hitTest(local)) return hit;
  }
  return this;
}

// MARK: Observers

int MCView::addFrameObserver(FrameObserver observer) {
  frameObservers_.emplace_back(nextObserverToken_, std::move(observer));
  return nextObserverToken_++;
}

void MCView::removeFrameObserver(int token) {
  std::erase_if(frameObservers_, [&](const auto& entry) { return entry.first == token; });
}

int MCView::addBoundsObserver(FrameObserver observer) {
  boundsObservers_.emplace_back(nextObserverToken_, std::move(observer));
  return nextObserverToken_++;
}

void MCView::removeBoundsObserver(int token) {
  std::erase_if(boundsObservers_, [&](const auto& entry) { return entry.first == token; });
}

void MCView::postFrameChange() {
  if (!postsFrameChanges_ || frameObservers_.empty()) return;
  // Copied: an observer may remove itself or others.
  const auto observers = frameObservers_;
  for (const auto& [token, observer] : observers) observer(*this);
}

void MCView::postBoundsChange() {
  if (boundsObservers_.empty()) return;
  const auto observers = boundsObservers_;
  for (const auto& [token, observer] : observers) observer(*this);
}

// MARK: Display

void MCView::setNeedsDisplay(bool flag) {
  if (!flag) {
    needsDisplay_ = false;
    return;
  }
  setNeedsDisplayInRect(bounds_);
}

void MCView::setNeedsDisplayInRect(const MCRect& rect) {
  needsDisplay_ = true;
  if (!window_ || hidden_) return;
  const MCRect visible = MCIntersectionRect(rect, visibleRect());
  if (MCIsEmptyRect(visible)) return;
  window_->invalidateRect(transformToWindow().apply(visible));
}

bool MCView::needsToDrawRect(const MCRect& rect) const {
  if (!window_) return needsDisplay_ && MCIntersectsRect(rect, bounds_);
  const MCRect inWindow = transformToWindow().apply(rect);
  if (window_->isDrawingView(this)) return window_->regionMeetsRect(window_->drawingRegion_, inWindow);
  return needsDisplay_ && window_->regionMeetsRect(window_->dirty_, inWindow);
}

std::vector<MCRect> MCView::rectsBeingDrawn() const {
  std::vector<MCRect> rects;
  if (!window_ || !window_->isDrawingView(this)) return rects;
  const MCAxisTransform fromWindow = transformToWindow().inverted();
  const int n = cairo_region_num_rectangles(window_->drawingRegion_);
  for (int i = 0; i < n; ++i) {
    cairo_rectangle_int_t r;
    cairo_region_get_rectangle(window_->drawingRegion_, i, &r);
    rects.push_back(fromWindow.apply(MCMakeRect(r.x, r.y, r.width, r.height)));
  }
  return rects;
}

void MCView::drawRect(const MCRect&) {}

void MCView::displayIfNeeded() {
  if (window_) window_->displayIfNeeded();
}

void MCView::drawSubtree(MCGraphicsContext& context, const MCAxisTransform& toWindow, const MCRect& clipInWindow) {
  if (hidden_) return;
  MCWindow& window = *window_;
  const MCRect clip = MCIntersectionRect(clipInWindow, toWindow.apply(bounds_));
  if (MCIsEmptyRect(clip) || !window.regionMeetsRect(window.displayRegion_, clip)) return;

  // What this view redraws: the window's region inside the view's visible part, in whole points.
  cairo_region_t* own = cairo_region_copy(window.displayRegion_);
  const cairo_rectangle_int_t clipInt = {int(std::floor(clip.origin.x)), int(std::floor(clip.origin.y)),
                                         int(std::ceil(MCMaxX(clip)) - std::floor(clip.origin.x)),
                                         int(std::ceil(MCMaxY(clip)) - std::floor(clip.origin.y))};
  cairo_region_intersect_rectangle(own, &clipInt);
  if (cairo_region_is_empty(own)) {
    cairo_region_destroy(own);
    return;
  }

  cairo_t* cr = context.cairoContext();
  context.saveGState();
  cairo_new_path(cr);
  const int count = cairo_region_num_rectangles(own);
  for (int i = 0; i < count; ++i) {
    cairo_rectangle_int_t r;
    cairo_region_get_rectangle(own, i, &r);
    cairo_rectangle(cr, r.x, r.y, r.width, r.height);
  }
  cairo_clip(cr);
  // The visible part may be smaller than whole points.
  context.clipToRect(clip);
  const bool faded = alphaValue_ < 1;
  if (faded) cairo_push_group(cr);

  context.saveGState();
  const std::size_t drawDepth = context.gStateDepth();
  context.translateCTM(toWindow.tx, toWindow.ty);
  context.scaleCTM(toWindow.sx, toWindow.sy);
  context.setFlipped(isFlipped());
  const MCView* outerView = window.drawingView_;
  cairo_region_t* outerRegion = window.drawingRegion_;
  window.drawingView_ = this;
  window.drawingRegion_ = own;
  cairo_rectangle_int_t extents;
  cairo_region_get_extents(own, &extents);
  const MCRect dirty = MCIntersectionRect(
      toWindow.inverted().apply(MCMakeRect(extents.x, extents.y, extents.width, extents.height)), bounds_);
  ++window.viewsDrawn_;
  // A view that throws is left out of the frame, and the rest of it drawn: its unbalanced saved
  // states are popped so that its siblings draw with theirs.
  context.saveGState();
  try {
    if (layer_) {
      if (wantsUpdateLayer()) updateLayer();
      layer_->frame = MCMakeRect(bounds_.origin.x, bounds_.origin.y, bounds_.size.width, bounds_.size.height);
      layer_->renderInContext(context);
    } else {
      drawRect(dirty);
    }
  } catch (const std::exception& error) {
    MCLog::sdkGraphics()->logError(fmt::format("A view ({}) failed to draw: {}", typeid(*this).name(), error.what()));
  } catch (...) {
    MCLog::sdkGraphics()->logError(fmt::format("A view ({}) failed to draw", typeid(*this).name()));
  }
  context.restoreGStatesTo(drawDepth);
  window.drawingView_ = outerView;
  window.drawingRegion_ = outerRegion;
  context.setFlipped(false);
  context.restoreGState();
  needsDisplay_ = false;

  // Subviews that miss the region are passed over here, before any work for them. A subview may
  // be removed while another draws: walk by index and hold the one that draws.
  for (std::size_t i = 0; i < subviews_.size(); ++i) {
    MCView* subview = subviews_[i].get();
    if (subview->hidden_ || subview->window_ != window_) continue;
    const MCRect subviewClip = MCIntersectionRect(clip, toWindow.apply(subview->frame_));
    if (MCIsEmptyRect(subviewClip) || !window.regionMeetsRect(window.displayRegion_, subviewClip)) continue;
    const std::shared_ptr<MCView> hold = subviews_[i];
    subview->drawSubtree(context, toWindow.compose(subview->transformToSuperview()), clip);
  }

  if (faded) {
    cairo_pop_group_to_source(cr);
    cairo_paint_with_alpha(cr, alphaValue_);
  }
  context.restoreGState();
  cairo_region_destroy(own);
}

// MARK: Layout

void MCView::setNeedsLayout(bool flag) {
  needsLayout_ = flag;
  if (flag && window_) window_->layoutNeeded_ = true;
}

void MCView::layout() {}

void MCView::layoutSubtreeIfNeeded() {
  if (needsLayout_) {
    needsLayout_ = false;
    layout();
  }
  // By index: layout may add or remove subviews.
  for (std::size_t i = 0; i < subviews_.size(); ++i) {
    const std::shared_ptr<MCView> subview = subviews_[i];
    subview->layoutSubtreeIfNeeded();
  }
}

void MCView::prepareContentInRect(const MCRect& rect) { preparedContentRect_ = rect; }

// MARK: Scrolling

bool MCView::autoscroll(const MCEvent& event) {
  return superview_ ? superview_->autoscroll(event) : false;
}

bool MCView::scrollRectToVisible(const MCRect& rect) {
  for (MCView* v = superview_; v; v = v->superview_) {
    if (auto* clip = dynamic_cast<MCClipView*>(v)) {
      const MCRect inClip = clip->convertRect(rect, this);
      return clip->scrollRectToVisible(inClip);
    }
  }
  return false;
}

// MARK: Tracking areas and tool tips

void MCView::addTrackingArea(const MCTrackingAreaRef& area) {
  if (!area) return;
  trackingAreas_.push_back(area);
  if (window_) window_->registerTrackingView(this);
}

void MCView::removeTrackingArea(const MCTrackingAreaRef& area) {
  std::erase(trackingAreas_, area);
  if (trackingAreas_.empty() && window_) window_->unregisterTrackingView(this);
}

void MCView::updateTrackingAreas() {}

int MCView::addToolTipRect(const MCRect& rect, ToolTipProvider provider) {
  toolTips_.push_back({nextToolTipTag_, rect, std::move(provider)});
  return nextToolTipTag_++;
}

void MCView::removeToolTip(int tag) {
  std::erase_if(toolTips_, [&](const ToolTip& tip) { return tip.tag == tag; });
}

void MCView::removeAllToolTips() { toolTips_.clear(); }

std::optional<std::string> MCView::toolTipAtPoint(MCPoint point) const {
  for (const ToolTip& tip : toolTips_)
    if (MCMouseInRect(point, tip.rect, isFlipped()) && tip.provider) return tip.provider(point);
  return std::nullopt;
}

bool MCView::acceptsFirstMouse(const MCEvent*) { return false; }

std::shared_ptr<MCDraggingSession> MCView::beginDraggingSession(std::vector<MCDraggingItem> items,
                                                                const MCEvent& event, MCDraggingSource* source) {
  if (!window_) return nullptr;
  // Item frames are in this view's coordinates; the session carries them in the window's.
  for (MCDraggingItem& item : items) item.draggingFrame = convertRectToView(item.draggingFrame, nullptr);
  return window_->beginDraggingSession(std::move(items), event, source);
}

uint64_t MCView::draggingEntered(const MCDraggingInfo&) { return MCDragOperationNone; }
void MCView::draggingExited(const MCDraggingInfo*) {}
bool MCView::performDragOperation(const MCDraggingInfo&) { return false; }

void MCView::setWantsLayer(bool flag) {
  if (flag == wantsLayer_) return;
  wantsLayer_ = flag;
  layer_ = flag ? makeBackingLayer() : nullptr;
  setNeedsDisplay(true);
}

std::shared_ptr<MCLayer> MCView::makeBackingLayer() { return std::make_shared<MCLayer>(); }

void MCView::accessibilityDidChange() {
  if (window_ && window_->host()) window_->host()->accessibilityDidChange(*this);
}
