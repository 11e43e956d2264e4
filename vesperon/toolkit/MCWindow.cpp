#include <vesperon/toolkit/MCWindow.h>

#include <vesperon/platform/MCColorSpace.h>
#include <vesperon/platform/MCGraphicsContext.h>
#include <vesperon/toolkit/MCDraggingSession.h>
#include <vesperon/toolkit/MCKeyBindings.h>
#include <vesperon/toolkit/MCTimer.h>
#include <vesperon/toolkit/MCView.h>

#include <cairo.h>

#include <algorithm>
#include <cmath>

namespace {

bool outwardIntegerRect(const MCRect& rect, cairo_rectangle_int_t& out) {
  if (MCIsEmptyRect(rect) || !std::isfinite(rect.origin.x) || !std::isfinite(rect.origin.y) ||
      !std::isfinite(rect.size.width) || !std::isfinite(rect.size.height))
    return false;
  const double x0 = std::floor(std::max(rect.origin.x, -1e9)), y0 = std::floor(std::max(rect.origin.y, -1e9));
  const double x1 = std::ceil(std::min(MCMaxX(rect), 1e9)), y1 = std::ceil(std::min(MCMaxY(rect), 1e9));
  out = {int(x0), int(y0), int(x1 - x0), int(y1 - y0)};
  return out.width > 0 && out.height > 0;
}

int nextWindowNumber() {
  static int counter = 0;
  return ++counter;
}

}  // namespace

std::shared_ptr<MCWindow> MCWindow::create(MCSize contentSize) {
  auto window = std::shared_ptr<MCWindow>(new MCWindow());
  window->windowNumber_ = nextWindowNumber();
  window->dirty_ = cairo_region_create();
  window->contentSize_ = {std::max(0.0, contentSize.width), std::max(0.0, contentSize.height)};
  window->firstResponder_ = window.get();
  window->setContentView(std::make_shared<MCView>(MCMakeRect(0, 0, contentSize.width, contentSize.height)));
  return window;
}

MCWindow::~MCWindow() {
  periodicTimer_.reset();
  if (contentView_) contentView_->setWindowRecursively(nullptr);
  if (dirty_) cairo_region_destroy(dirty_);
}

// MARK: Content

void MCWindow::setContentView(const std::shared_ptr<MCView>& view) {
  if (view == contentView_) return;
  if (contentView_) {
    contentView_->viewWillMoveToWindow(nullptr);
    viewWillLeaveWindow(contentView_.get());
    contentView_->setWindowRecursively(nullptr);
    contentView_->viewDidMoveToWindow();
  }
  contentView_ = view;
  if (view) {
    view->removeFromSuperview();
    view->viewWillMoveToWindow(this);
    view->setFrame(MCMakeRect(0, 0, contentSize_.width, contentSize_.height));
    view->setWindowRecursively(this);
    view->viewDidMoveToWindow();
  }
  invalidateRect(MCMakeRect(0, 0, contentSize_.width, contentSize_.height));
}

void MCWindow::setContentSize(MCSize size) {
  size = {std::isfinite(size.width) ? std::max(0.0, size.width) : 0.0,
          std::isfinite(size.height) ? std::max(0.0, size.height) : 0.0};
  if (MCEqualSizes(size, contentSize_)) return;
  contentSize_ = size;
  if (contentView_) contentView_->setFrame(MCMakeRect(0, 0, size.width, size.height));
  invalidateRect(MCMakeRect(0, 0, size.width, size.height));
}

void MCWindow::setBackgroundColor(const MCColor& color) {
  backgroundColor_ = color;
  invalidateRect(MCMakeRect(0, 0, contentSize_.width, contentSize_.height));
}

// MARK: Host

void MCWindow::setHost(MCWindowHost* host) {
  host_ = host;
  invalidateRect(MCMakeRect(0, 0, contentSize_.width, contentSize_.height));
}

double MCWindow::backingScaleFactor() const {
  const double scale = host_ ? host_->backingScaleFactor() : 1.0;
  return scale > 0 && std::isfinite(scale) ? scale : 1.0;
}

// MARK: Responders

bool MCWindow::makeFirstResponder(MCResponder* responder) {
  MCResponder* target = responder ? responder : this;
  if (target == firstResponder_) return true;
  if (firstResponder_ && firstResponder_ != this && !firstResponder_->resignFirstResponder()) return false;
  if (target != this && !target->becomeFirstResponder()) {
    firstResponder_ = this;
    return false;
  }
  firstResponder_ = target;
  return true;
}

void MCWindow::viewWillLeaveWindow(MCView* view) {
  // Nothing may keep pointing into a subtree that leaves the window.
  if (auto* first = dynamic_cast<MCView*>(firstResponder_); first && first->isDescendantOf(view)) firstResponder_ = this;
  if (mouseDownView_ && mouseDownView_->isDescendantOf(view)) mouseDownView_.reset();
  std::erase_if(trackingViews_, [&](MCView* v) { return v->isDescendantOf(view); });
}

// MARK: Events

void MCWindow::postEvent(const MCEvent& event, bool atStart) {
  if (closed_) return;
  if (event.isMouseEvent() || event.type() == MCEventType::ScrollWheel) lastMouseLocation_ = event.locationInWindow();
  if (atStart) queue_.push_front(event);
  else queue_.push_back(event);
}

void MCWindow::processQueuedEvents() {
  if (dispatching_ || nestedLoops_ > 0) return;
  std::shared_ptr<MCWindow> keep = std::static_pointer_cast<MCWindow>(shared_from_this());
  dispatching_ = true;
  while (!queue_.empty() && !closed_) {
    const MCEvent event = queue_.front();
    queue_.pop_front();
    sendEvent(event);
  }
  dispatching_ = false;
}

void MCWindow::sendEvent(const MCEvent& event) {
  if (closed_ || !contentView_) return;
  std::shared_ptr<MCWindow> keep = std::static_pointer_cast<MCWindow>(shared_from_this());
  switch (event.type()) {
    case MCEventType::KeyDown:
    case MCEventType::KeyUp: {
      MCResponder* target = firstResponder_ ? firstResponder_ : this;
      // Hold a view target for the length of its handler: it may leave the window meanwhile.
      std::shared_ptr<MCResponder> hold = target == this ? nullptr : target->shared_from_this();
      if (event.type() == MCEventType::KeyDown) target->keyDown(event);
      else target->keyUp(event);
      break;
    }
    case MCEventType::Periodic:
    case MCEventType::ApplicationDefined:
      break;  // only nested loops ask for these
    default:
      dispatchMouseEvent(event);
  }
}

void MCWindow::dispatchMouseEvent(const MCEvent& event) {
  const MCPoint location = event.locationInWindow();
  switch (event.type()) {
    case MCEventType::LeftMouseDown:
    case MCEventType::RightMouseDown:
    case MCEventType::OtherMouseDown: {
      MCView* hit = contentView_->hitTest(location);
      if (!hit) return;
      std::shared_ptr<MCView> view = hit->sharedView();
      mouseDownView_ = view;
      if (view->acceptsFirstResponder()) makeFirstResponder(view.get());
      if (!keyWindow_) {
        keyWindow_ = true;
        if (!view->acceptsFirstMouse(&event)) return;
      }
      if (event.type() == MCEventType::LeftMouseDown) view->mouseDown(event);
      else if (event.type() == MCEventType::RightMouseDown) view->rightMouseDown(event);
      else view->otherMouseDown(event);
      return;
    }
    case MCEventType::LeftMouseDragged:
    case MCEventType::RightMouseDragged:
    case MCEventType::OtherMouseDragged:
    case MCEventType::LeftMouseUp:
    case MCEventType::RightMouseUp:
    case MCEventType::OtherMouseUp: {
      std::shared_ptr<MCView> view = mouseDownView_;
      const bool up = event.type() == MCEventType::LeftMouseUp || event.type() == MCEventType::RightMouseUp ||
                      event.type() == MCEventType::OtherMouseUp;
      if (up) mouseDownView_.reset();
      // A drag or release without a press in this window goes nowhere.
      if (!view || view->window() != this) return;
      switch (event.type()) {
        case MCEventType::LeftMouseDragged: view->mouseDragged(event); break;
        case MCEventType::RightMouseDragged: view->rightMouseDragged(event); break;
        case MCEventType::OtherMouseDragged: view->otherMouseDragged(event); break;
        case MCEventType::LeftMouseUp: view->mouseUp(event); break;
        case MCEventType::RightMouseUp: view->rightMouseUp(event); break;
        default: view->otherMouseUp(event); break;
      }
      return;
    }
    case MCEventType::MouseMoved: {
      updateTrackingAreas(event);
      if (MCView* hit = contentView_->hitTest(location)) {
        std::shared_ptr<MCView> view = hit->sharedView();
        view->mouseMoved(event);
      }
      return;
    }
    case MCEventType::ScrollWheel:
    case MCEventType::Magnify:
    case MCEventType::SmartMagnify: {
      MCView* hit = contentView_->hitTest(location);
      if (!hit) return;
      std::shared_ptr<MCView> view = hit->sharedView();
      if (event.type() == MCEventType::ScrollWheel) view->scrollWheel(event);
      else if (event.type() == MCEventType::Magnify) view->magnifyWithEvent(event);
      else view->smartMagnifyWithEvent(event);
      return;
    }
    default:
      return;
  }
}

void MCWindow::registerTrackingView(MCView* view) {
  if (std::find(trackingViews_.begin(), trackingViews_.end(), view) == trackingViews_.end())
    trackingViews_.push_back(view);
}

void MCWindow::unregisterTrackingView(MCView* view) { std::erase(trackingViews_, view); }

void MCWindow::updateTrackingAreas(const MCEvent& event) {
  if (trackingViews_.empty()) return;
  const MCPoint location = event.locationInWindow();
  // Owners that the moved event reaches anyway through the view under the pointer.
  std::vector<const MCResponder*> chain;
  if (MCView* hit = contentView_->hitTest(location))
    for (const MCResponder* r = hit; r; r = r->nextResponder()) chain.push_back(r);
  // Copied: enter and exit handlers may add or remove areas and views.
  const std::vector<MCView*> views = trackingViews_;
  for (MCView* view : views) {
    if (std::find(trackingViews_.begin(), trackingViews_.end(), view) == trackingViews_.end()) continue;
    std::shared_ptr<MCView> hold = view->sharedView();
    const MCPoint p = view->convertPoint(location, nullptr);
    const MCRect visible = view->visibleRect();
    const bool shown = !view->isHiddenOrHasHiddenAncestor() && !MCIsEmptyRect(visible);
    const std::vector<MCTrackingAreaRef> areas = view->trackingAreas();
    for (const MCTrackingAreaRef& area : areas) {
      const MCRect rect = (area->options() & MCTrackingInVisibleRect) ? visible
                                                                        : MCIntersectionRect(area->rect(), visible);
      const bool inside = shown && view->mouseInRect(p, rect);
      MCResponder* owner = area->owner();
      if (inside != area->isInside()) {
        area->setInside(inside);
        if (owner && (area->options() & MCTrackingMouseEnteredAndExited)) {
          MCEvent crossing = MCEvent::mouseEvent(inside ? MCEventType::MouseEntered : MCEventType::MouseExited,
                                                 location, event.modifierFlags(), 0, event.timestamp());
          if (inside) owner->mouseEntered(crossing);
          else owner->mouseExited(crossing);
        }
      }
      if (inside && owner && (area->options() & MCTrackingMouseMoved) &&
          std::find(chain.begin(), chain.end(), owner) == chain.end())
        owner->mouseMoved(event);
    }
  }
}

std::optional<MCEvent> MCWindow::nextEventMatchingMask(MCEventMask mask, std::optional<double> timeoutSeconds,
                                                       bool dequeue) {
  std::shared_ptr<MCWindow> keep = std::static_pointer_cast<MCWindow>(shared_from_this());
  MCWindowHost::Deadline deadline;
  if (timeoutSeconds)
    deadline = std::chrono::steady_clock::now() +
               std::chrono::microseconds(int64_t(std::clamp(*timeoutSeconds, 0.0, 1e6) * 1e6));
  ++nestedLoops_;
  std::optional<MCEvent> found;
  while (!closed_) {
    auto it = std::find_if(queue_.begin(), queue_.end(),
                           [&](const MCEvent& e) { return (mask & MCEventMaskFromType(e.type())) != 0; });
    if (it != queue_.end()) {
      found = *it;
      if (dequeue) queue_.erase(it);
      break;
    }
    if (!host_) break;
    if (deadline && std::chrono::steady_clock::now() >= *deadline) break;
    if (!host_->waitForEvents(deadline)) break;
  }
  --nestedLoops_;
  return found;
}

MCPoint MCWindow::mouseLocationOutsideOfEventStream() const {
  return host_ ? host_->mouseLocation() : lastMouseLocation_;
}

void MCWindow::startPeriodicEventsAfterDelay(double delay, double period) {
  std::weak_ptr<MCWindow> weak = std::static_pointer_cast<MCWindow>(shared_from_this());
  periodicTimer_ = MCTimer::scheduledTimer(delay, period, [weak](MCTimer&) {
    if (auto window = weak.lock()) window->postEvent(MCEvent::periodicEvent());
  });
}

void MCWindow::stopPeriodicEvents() {
  if (periodicTimer_) periodicTimer_->invalidate();
  periodicTimer_.reset();
  // Periodic events already queued belong to the loop that asked for them.
  std::erase_if(queue_, [](const MCEvent& e) { return e.type() == MCEventType::Periodic; });
}

void MCWindow::keyDown(const MCEvent& event) {
  // Only key equivalents — keys with the command modifier, and Escape — act from here, as menu
  // shortcuts do; other keys were offered to every responder and none took them.
  const bool equivalent = (event.modifierFlags() & MCEventModifierFlagCommand) ||
                          (!event.charactersIgnoringModifiers().empty() &&
                           event.charactersIgnoringModifiers().front() == MCEscapeCharacter);
  if (!equivalent) return;
  for (const std::string& command : MCKeyBindings::standardBindings().commandsForEvent(event)) sendAction(command);
}

void MCWindow::doCommandBySelector(const std::string& command) { sendAction(command); }

// MARK: Commands and menus

bool MCWindow::popUpContextMenu(const MCMenu& menu, MCPoint pointInView, const MCView* view,
                                std::function<void(const MCMenuItem&)> chosen) {
  if (!host_) return false;
  const MCPoint location = view ? view->convertPointToView(pointInView, nullptr) : pointInView;
  std::weak_ptr<MCWindow> weak = std::static_pointer_cast<MCWindow>(shared_from_this());
  return host_->popUpContextMenu(menu, location, [weak, chosen](const MCMenuItem& item) {
    if (chosen) {
      chosen(item);
      return;
    }
    if (auto target = item.target.lock()) {
      target->tryToPerform(item.action);
      return;
    }
    if (auto window = weak.lock()) window->sendAction(item.action);
  });
}

bool MCWindow::sendAction(const std::string& command) {
  MCResponder* start = firstResponder_ ? firstResponder_ : this;
  // The window itself is the end of the chain: look from the first responder, then here.
  for (MCResponder* r = start; r; r = r->nextResponder()) {
    if (r->respondsToCommand(command)) {
      std::shared_ptr<MCResponder> hold = r->shared_from_this();
      return r->performCommand(command);
    }
  }
  return false;
}

bool MCWindow::validateMenuItem(const MCMenuItem& item) {
  MCResponder* start = firstResponder_ ? firstResponder_ : this;
  for (MCResponder* r = start; r; r = r->nextResponder()) {
    if (r->respondsToCommand(item.action)) return r == this ? true : r->validateMenuItem(item);
  }
  return false;
}

void MCWindow::close() {
  if (closed_) return;
  closed_ = true;
  stopPeriodicEvents();
  queue_.clear();
  mouseDownView_.reset();
  if (host_) host_->closeWindow();
}

// MARK: Display

bool MCWindow::regionMeetsRect(const cairo_region_t* region, const MCRect& windowRect) const {
  cairo_rectangle_int_t r;
  if (!region || !outwardIntegerRect(windowRect, r)) return false;
  return cairo_region_contains_rectangle(const_cast<cairo_region_t*>(region), &r) != CAIRO_REGION_OVERLAP_OUT;
}

void MCWindow::invalidateRect(const MCRect& rect) {
  const MCRect content = MCMakeRect(0, 0, contentSize_.width, contentSize_.height);
  cairo_rectangle_int_t r;
  if (!outwardIntegerRect(MCIntersectionRect(rect, content), r)) return;
  cairo_region_union_rectangle(dirty_, &r);
  if (host_) host_->invalidateRect(MCMakeRect(r.x, r.y, r.width, r.height));
}

bool MCWindow::needsDisplay() const { return !cairo_region_is_empty(dirty_); }

MCRect MCWindow::dirtyRect() const {
  cairo_rectangle_int_t r;
  cairo_region_get_extents(dirty_, &r);
  return MCMakeRect(r.x, r.y, r.width, r.height);
}

void MCWindow::display() {
  invalidateRect(MCMakeRect(0, 0, contentSize_.width, contentSize_.height));
  displayIfNeeded();
}

void MCWindow::displayIfNeeded() {
  if (closed_ || !contentView_ || drawingView_) return;
  std::shared_ptr<MCWindow> keep = std::static_pointer_cast<MCWindow>(shared_from_this());
  if (layoutNeeded_) {
    layoutNeeded_ = false;
    contentView_->layoutSubtreeIfNeeded();
  }
  const double scale = backingScaleFactor();
  const std::size_t width = std::size_t(std::ceil(contentSize_.width * scale));
  const std::size_t height = std::size_t(std::ceil(contentSize_.height * scale));
  if (width == 0 || height == 0) {
    cairo_region_destroy(dirty_);
    dirty_ = cairo_region_create();
    return;
  }
  if (!backing_ || backing_->width() != width || backing_->height() != height || backingScale_ != scale) {
    backing_ = MCGraphicsContext::create(width, height, 8, 0, MCColorSpace::sRGB(),
                                         MCImageAlphaPremultipliedFirst | MCBitmapByteOrder32Little);
    backingScale_ = scale;
    if (!backing_) return;
    const cairo_rectangle_int_t all = {0, 0, int(std::ceil(contentSize_.width)), int(std::ceil(contentSize_.height))};
    cairo_region_union_rectangle(dirty_, &all);
  }
  if (cairo_region_is_empty(dirty_)) return;

  displayRegion_ = dirty_;
  dirty_ = cairo_region_create();
  drawRegion(*backing_, scale, true);
}

void MCWindow::displayInContext(MCGraphicsContext& context, double scale) {
  if (closed_ || !contentView_ || drawingView_) return;
  std::shared_ptr<MCWindow> keep = std::static_pointer_cast<MCWindow>(shared_from_this());
  if (layoutNeeded_) {
    layoutNeeded_ = false;
    contentView_->layoutSubtreeIfNeeded();
  }
  cairo_region_destroy(dirty_);
  dirty_ = cairo_region_create();
  backing_.reset();
  const cairo_rectangle_int_t all = {0, 0, int(std::ceil(contentSize_.width)), int(std::ceil(contentSize_.height))};
  if (all.width <= 0 || all.height <= 0) return;
  displayRegion_ = cairo_region_create_rectangle(&all);
  // Drawn over nothing, the background's fill is a plain rectangle, which a recording context
  // keeps as an op of its own.
  drawRegion(context, scale, false);
}

void MCWindow::drawRegion(MCGraphicsContext& context, double scale, bool replace) {
  viewsDrawn_ = 0;
  MCGraphicsContext* outer = MCGraphicsContext::currentContext();
  MCGraphicsContext::setCurrentContext(&context);
  context.saveGState();
  context.scaleCTM(scale, scale);

  // The window's background under everything, inside the region only.
  context.saveGState();
  if (replace) {
    cairo_t* cr = context.cairoContext();
    cairo_new_path(cr);
    const int count = cairo_region_num_rectangles(displayRegion_);
    for (int i = 0; i < count; ++i) {
      cairo_rectangle_int_t r;
      cairo_region_get_rectangle(displayRegion_, i, &r);
      cairo_rectangle(cr, r.x, r.y, r.width, r.height);
    }
    cairo_set_operator(cr, CAIRO_OPERATOR_SOURCE);
    cairo_set_source_rgba(cr, backgroundColor_.redComponent(), backgroundColor_.greenComponent(),
                          backgroundColor_.blueComponent(), backgroundColor_.alphaComponent());
    cairo_fill(cr);
  } else {
    context.setRGBFillColor(backgroundColor_.redComponent(), backgroundColor_.greenComponent(),
                            backgroundColor_.blueComponent(), backgroundColor_.alphaComponent());
    context.fillRect(MCMakeRect(0, 0, contentSize_.width, contentSize_.height));
  }
  context.restoreGState();

  contentView_->drawSubtree(context, contentView_->transformToSuperview(),
                            MCMakeRect(0, 0, contentSize_.width, contentSize_.height));
  context.restoreGState();
  MCGraphicsContext::setCurrentContext(outer);
  cairo_region_destroy(displayRegion_);
  displayRegion_ = nullptr;
}

MCRasterImageRef MCWindow::snapshotImage() {
  displayIfNeeded();
  return backing_ ? backing_->createImage() : nullptr;
}

MCRect MCWindow::convertRectToScreen(const MCRect& rect) const {
  const MCPoint origin = host_ ? host_->windowOriginOnScreen() : MCPoint{0, 0};
  return MCOffsetRect(rect, origin.x, origin.y);
}

MCPoint MCWindow::convertPointToScreen(MCPoint point) const {
  const MCPoint origin = host_ ? host_->windowOriginOnScreen() : MCPoint{0, 0};
  return {point.x + origin.x, point.y + origin.y};
}

std::optional<std::string> MCWindow::toolTipAtPoint(MCPoint point) const {
  if (!contentView_) return std::nullopt;
  for (MCView* v = contentView_->hitTest(point); v; v = v->superview())
    if (auto tip = v->toolTipAtPoint(v->convertPoint(point, nullptr))) return tip;
  return std::nullopt;
}

std::shared_ptr<MCDraggingSession> MCWindow::beginDraggingSession(std::vector<MCDraggingItem> items,
                                                                  const MCEvent& event, MCDraggingSource* source) {
  if (!host_ || closed_) return nullptr;
  auto session = std::make_shared<MCDraggingSession>(std::move(items), source, event.locationInWindow());
  if (!host_->beginDraggingSession(session)) return nullptr;
  return session;
}

void MCWindow::setTitle(std::string title) {
  if (title == title_) return;
  title_ = std::move(title);
  if (host_) host_->windowTitleDidChange();
}

bool MCWindow::isFullScreen() const { return host_ && host_->isFullScreen(); }

bool MCWindow::setFullScreen(bool fullScreen) { return host_ && host_->setFullScreen(fullScreen); }
