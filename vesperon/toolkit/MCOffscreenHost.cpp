#include <vesperon/toolkit/MCOffscreenHost.h>

#include <vesperon/platform/MCGraphicsContext.h>
#include <vesperon/toolkit/MCDraggingSession.h>

#include <cairo.h>
#include <glib.h>

#include <algorithm>
#include <chrono>

MCOffscreenHost::MCOffscreenHost(std::shared_ptr<MCWindow> window, double scale)
    : window_(std::move(window)), scale_(scale > 0 ? scale : 1.0) {
  window_->setHost(this);
}

MCOffscreenHost::~MCOffscreenHost() {
  closeContextMenu();
  removeContextMenuViews();
  if (window_->host() == this) window_->setHost(nullptr);
}

// MARK: Script

void MCOffscreenHost::addEvent(const MCEvent& event) { steps_.push_back({true, event, 0}); }

void MCOffscreenHost::addWait(double seconds) { steps_.push_back({false, {}, std::max(0.0, seconds)}); }

void MCOffscreenHost::mouseDown(MCPoint location, uint64_t modifierFlags, int clickCount) {
  addEvent(MCEvent::mouseEvent(MCEventType::LeftMouseDown, location, modifierFlags, clickCount));
  lastScriptedMouse_ = location;
}

void MCOffscreenHost::mouseDragged(MCPoint location, uint64_t modifierFlags) {
  MCEvent event = MCEvent::mouseEvent(MCEventType::LeftMouseDragged, location, modifierFlags, 1);
  // The platform's deltas grow downward.
  event.setDelta(location.x - lastScriptedMouse_.x, lastScriptedMouse_.y - location.y);
  addEvent(event);
  lastScriptedMouse_ = location;
}

void MCOffscreenHost::mouseUp(MCPoint location, uint64_t modifierFlags, int clickCount) {
  addEvent(MCEvent::mouseEvent(MCEventType::LeftMouseUp, location, modifierFlags, clickCount));
  lastScriptedMouse_ = location;
}

void MCOffscreenHost::mouseMoved(MCPoint location, uint64_t modifierFlags) {
  MCEvent event = MCEvent::mouseEvent(MCEventType::MouseMoved, location, modifierFlags, 0);
  event.setDelta(location.x - lastScriptedMouse_.x, lastScriptedMouse_.y - location.y);
  addEvent(event);
  lastScriptedMouse_ = location;
}

void MCOffscreenHost::rightMouseDown(MCPoint location, uint64_t modifierFlags) {
  addEvent(MCEvent::mouseEvent(MCEventType::RightMouseDown, location, modifierFlags, 1));
  lastScriptedMouse_ = location;
}

void MCOffscreenHost::rightMouseUp(MCPoint location, uint64_t modifierFlags) {
  addEvent(MCEvent::mouseEvent(MCEventType::RightMouseUp, location, modifierFlags, 1));
  lastScriptedMouse_ = location;
}

void MCOffscreenHost::click(MCPoint location, uint64_t modifierFlags, int clickCount) {
  mouseDown(location, modifierFlags, clickCount);
  mouseUp(location, modifierFlags, clickCount);
}

void MCOffscreenHost::keyPress(char32_t key, uint64_t modifierFlags) {
  char32_t typed = key;
  if ((modifierFlags & MCEventModifierFlagShift) && key >= U'a' && key <= U'z') typed = key - U'a' + U'A';
  const std::u32string characters(1, typed);
  addEvent(MCEvent::keyEvent(MCEventType::KeyDown, characters, characters, modifierFlags));
  addEvent(MCEvent::keyEvent(MCEventType::KeyUp, characters, characters, modifierFlags));
}

void MCOffscreenHost::scrollWheel(MCPoint location, double deltaX, double deltaY, bool precise) {
  addEvent(MCEvent::scrollWheelEvent(location, deltaX, deltaY, precise));
  lastScriptedMouse_ = location;
}

void MCOffscreenHost::magnify(MCPoint location, double magnification) {
  addEvent(MCEvent::magnifyEvent(location, magnification));
  lastScriptedMouse_ = location;
}

void MCOffscreenHost::post(const MCEvent& event) {
  if (event.isMouseEvent() || event.type() == MCEventType::ScrollWheel || event.type() == MCEventType::Magnify)
    pointer_ = event.locationInWindow();
  window_->postEvent(event);
}

double MCOffscreenHost::runMainContext(double seconds, Deadline deadline) {
  using Clock = std::chrono::steady_clock;
  const auto start = Clock::now();
  auto end = start + std::chrono::microseconds(int64_t(seconds * 1e6));
  if (deadline && *deadline < end) end = *deadline;
  const std::size_t queued = window_->numberOfQueuedEvents();
  // A wake-up at the end, so that a blocking iteration cannot sleep past it.
  const unsigned milliseconds = unsigned(std::max<int64_t>(
      1, std::chrono::duration_cast<std::chrono::milliseconds>(end - start).count()));
  bool woke = false;
  const unsigned source = g_timeout_add(milliseconds, [](void* flag) -> int {
    *static_cast<bool*>(flag) = true;
    return G_SOURCE_REMOVE;
  }, &woke);
  while (!woke && Clock::now() < end && window_->numberOfQueuedEvents() == queued && !window_->isClosed())
    g_main_context_iteration(nullptr, TRUE);
  if (!woke) g_source_remove(source);
  const double elapsed = std::chrono::duration<double>(Clock::now() - start).count();
  return std::max(0.0, seconds - elapsed);
}

bool MCOffscreenHost::waitForEvents(Deadline deadline) {
  if (window_->isClosed()) return false;
  if (steps_.empty()) {
    // Nothing more is scripted: let what is due run, then say that no more can come.
    const std::size_t queued = window_->numberOfQueuedEvents();
    while (g_main_context_iteration(nullptr, FALSE)) {
    }
    return window_->numberOfQueuedEvents() > queued;
  }
  Step& step = steps_.front();
  if (step.isEvent) {
    const MCEvent event = step.event;
    steps_.pop_front();
    post(event);
    return true;
  }
  step.wait = runMainContext(step.wait, deadline);
  if (step.wait <= 0) steps_.pop_front();
  return true;
}

void MCOffscreenHost::run() {
  std::shared_ptr<MCWindow> keep = window_;
  while (!steps_.empty() && !window_->isClosed()) {
    Step step = steps_.front();
    steps_.pop_front();
    if (step.isEvent) {
      post(step.event);
    } else {
      double left = step.wait;
      while (left > 0 && !window_->isClosed()) {
        left = runMainContext(left, std::nullopt);
        window_->processQueuedEvents();
      }
    }
    window_->processQueuedEvents();
  }
  window_->processQueuedEvents();
}

// MARK: Pixels

MCRasterImageRef MCOffscreenHost::render() { return window_->snapshotImage(); }

bool MCOffscreenHost::writePNG(const std::filesystem::path& path) {
  window_->displayIfNeeded();
  MCGraphicsContext* context = window_->backingContext();
  if (!context) return false;
  cairo_surface_t* surface = cairo_get_target(context->cairoContext());
  cairo_surface_flush(surface);
  return cairo_surface_write_to_png(surface, path.c_str()) == CAIRO_STATUS_SUCCESS;
}

void MCOffscreenHost::invalidateRect(const MCRect& rect) {
  invalidated_ = haveInvalidated_ ? MCUnionRect(invalidated_, rect) : rect;
  haveInvalidated_ = true;
}

MCRect MCOffscreenHost::takeInvalidatedRect() {
  const MCRect rect = haveInvalidated_ ? invalidated_ : MCRect{};
  haveInvalidated_ = false;
  invalidated_ = {};
  return rect;
}

// MARK: Drags

bool MCOffscreenHost::beginDraggingSession(const std::shared_ptr<MCDraggingSession>& session) {
  sessions_.push_back(session);
  session->beginAtPoint(window_->convertPointToScreen(pointer_));
  return true;
}

void MCOffscreenHost::endDraggingSession(uint64_t operation) {
  if (sessions_.empty()) return;
  sessions_.back()->endAtPoint(window_->convertPointToScreen(pointer_), operation);
}

bool MCOffscreenHost::popUpContextMenu(const MCMenu& menu, MCPoint location,
                                       std::function<void(const MCMenuItem&)> chosen) {
  closeContextMenu();
  removeContextMenuViews();
  menu_ = menu;
  menuLocation_ = location;
  menuChosen_ = std::move(chosen);
  menuShown_ = true;
  std::function<void(const MCMenu&)> placeViews = [&](const MCMenu& m) {
    for (const MCMenuItem& item : m.items()) {
      if (item.submenu) placeViews(*item.submenu);
      if (!item.view) continue;
      MenuViewWindow entry;
      entry.view = item.view;
      entry.window = MCWindow::create(item.view->frame().size);
      item.view->setFrameOrigin({0, 0});
      entry.window->contentView()->addSubview(item.view);
      entry.host = std::make_unique<MCOffscreenHost>(entry.window, scale_);
      menuViews_.push_back(std::move(entry));
    }
  };
  placeViews(menu_);
  menu_.setTrackingCanceller([this] { closeContextMenu(); });
  menu_.setEnclosingMenuOfItemViews(&menu_);
  return true;
}

void MCOffscreenHost::closeContextMenu() {
  if (!menuShown_) return;
  menuShown_ = false;
  menuChosen_ = nullptr;
  menu_.setTrackingCanceller(nullptr);
  menu_.setEnclosingMenuOfItemViews(nullptr);
}

void MCOffscreenHost::removeContextMenuViews() {
  for (MenuViewWindow& entry : menuViews_)
    if (entry.view->window() == entry.window.get()) entry.view->removeFromSuperview();
  menuViews_.clear();
}

MCOffscreenHost* MCOffscreenHost::contextMenuViewHost(const MCView& view) const {
  if (!menuShown_) return nullptr;
  for (const MenuViewWindow& entry : menuViews_)
    if (entry.view.get() == &view) return entry.host.get();
  return nullptr;
}

namespace {

const MCMenuItem* findEnabledItem(const MCMenu& menu, const std::string& title) {
  for (const MCMenuItem& item : menu.items()) {
    if (item.separator || !item.enabled) continue;
    if (item.submenu) {
      if (const MCMenuItem* inner = findEnabledItem(*item.submenu, title)) return inner;
    } else if (item.title == title) {
      return &item;
    }
  }
  return nullptr;
}

}  // namespace

bool MCOffscreenHost::chooseContextMenuItem(const std::string& title) {
  if (!menuShown_) return false;
  const MCMenuItem* item = findEnabledItem(menu_, title);
  if (!item) return false;
  const MCMenuItem picked = *item;
  auto chosen = std::move(menuChosen_);
  closeContextMenu();
  if (chosen) chosen(picked);
  return true;
}
