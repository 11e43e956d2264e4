#pragma once
// MCWindow: the root of a tree of views — its content view — with the event queue, the first
// responder, the dirty region and the backing image that a host shows.
//
// Events. A host posts events into the window's queue (`postEvent`) and has them dispatched
// (`processQueuedEvents`). Mouse presses go to the deepest view under the pointer, which becomes
// first responder if it accepts; drags and releases go to the view that took the press; wheel
// and pinch events to the view under the pointer; keys to the first responder. Each view passes
// what it does not take up the responder chain: view, superviews, window. A key that reaches the
// window is looked up in the key bindings and its commands go down the chain from the first
// responder when it is a key equivalent (it has the command modifier, or it is Escape), as a menu
// shortcut would; other keys end there. Moves update the tracking areas (enter, exit, move) of the views under the pointer.
//
// Nested loops. `nextEventMatchingMask` takes the first queued event of the mask, leaving the
// others queued in order, and waits on the host when none is there: the GTK host iterates the
// GLib main context, the offscreen host takes the next scripted event. It answers none when the
// time runs out, the window closes, or the host has no more events, so a tracking loop always ends.
//
// Display. `invalidateRect` (through views' setNeedsDisplay…) grows the dirty region, in window
// points; `displayIfNeeded` runs layout, then draws the views that meet the region into the
// backing image at the host's scale, and clears the region.

#include <vesperon/core/MCGeometry.h>
#include <vesperon/platform/MCRasterImage.h>
#include <vesperon/toolkit/MCColor.h>
#include <vesperon/toolkit/MCResponder.h>
#include <vesperon/toolkit/MCView.h>
#include <vesperon/toolkit/MCWindowHost.h>

#include <deque>
#include <memory>
#include <optional>
#include <string>
#include <vector>

class MCGraphicsContext;
class MCTimer;
class MCDraggingSource;
class MCDraggingSession;
struct MCDraggingItem;
typedef struct _cairo_region cairo_region_t;

class MCWindow : public MCResponder {
 public:
  /// A window whose content view is a plain view of `contentSize`.
  static std::shared_ptr<MCWindow> create(MCSize contentSize);
  ~MCWindow() override;

  /// The title, which the host shows in its title bar.
  const std::string& title() const { return title_; }
  /// Sets the title and tells the host, which shows it in the title bar.
  void setTitle(std::string title);
  /// Over the whole screen, as the host shows it; false without a host that can.
  bool isFullScreen() const;
  /// Asks the host to show the window over the whole screen, or not; false when it cannot.
  bool setFullScreen(bool fullScreen);
  /// A number unique among the process's windows.
  int windowNumber() const { return windowNumber_; }

  // Content.
  /// The view that fills the window.
  const std::shared_ptr<MCView>& contentView() const { return contentView_; }
  /// Sets the content view, sized to the window's content.
  void setContentView(const std::shared_ptr<MCView>& view);
  /// The size of the content area.
  MCSize contentSize() const { return contentSize_; }
  /// The host's area changed size: the content view follows. Negative sizes become 0.
  void setContentSize(MCSize size);
  /// What the window is cleared to under its views.
  MCColor backgroundColor() const { return backgroundColor_; }
  /// Sets the background colour and redraws.
  void setBackgroundColor(const MCColor& color);

  // Host.
  /// The host that shows the window; none off-screen.
  MCWindowHost* host() const { return host_; }
  /// The host is not retained; it detaches itself (setHost(nullptr)) before it goes away.
  void setHost(MCWindowHost* host);
  /// The host's pixels per point; 1 without a host.
  double backingScaleFactor() const;
  /// Whether the window has the keyboard focus.
  bool isKeyWindow() const { return keyWindow_; }
  /// Set by the host as the window gains or loses the focus.
  void setKeyWindow(bool key) { keyWindow_ = key; }

  // Responders.
  /// The responder that gets keys first; the window itself when no view is.
  MCResponder* firstResponder() const { return firstResponder_; }
  /// Makes `responder` first (none makes the window itself first); false when the old one
  /// refuses to resign or the new one to become.
  bool makeFirstResponder(MCResponder* responder);

  // Events.
  /// Queues an event (at the front with `atStart`), for dispatch or a nested loop.
  void postEvent(const MCEvent& event, bool atStart = false);
  /// Dispatches queued events until the queue is empty (not from inside a nested loop).
  void processQueuedEvents();
  /// Dispatches an event now: mouse events to the view hit (or the one tracking), keys to the first
  /// responder.
  void sendEvent(const MCEvent& event);
  /// The first queued event whose type is in `mask`; waits for one up to `timeoutSeconds` (for
  /// ever when none). `dequeue` false leaves it queued. None on timeout, on close, or when the
  /// host has no more events.
  std::optional<MCEvent> nextEventMatchingMask(MCEventMask mask, std::optional<double> timeoutSeconds = std::nullopt,
                                               bool dequeue = true);
  /// How many events wait in the queue.
  std::size_t numberOfQueuedEvents() const { return queue_.size(); }
  /// Where the pointer is now, in base coordinates (the host's answer, not the last event's).
  MCPoint mouseLocationOutsideOfEventStream() const;
  /// Posts periodic events (type 16) into the queue after `delay` and then every `period` seconds.
  void startPeriodicEventsAfterDelay(double delay, double period);
  /// Stops the periodic events.
  void stopPeriodicEvents();
  /// The view that took the last mouse press, until the release.
  MCView* mouseDownView() const { return mouseDownView_.get(); }

  /// A key that no view took: if it is a key equivalent, its commands go down the chain from the
  /// first responder.
  void keyDown(const MCEvent& event) override;
  void doCommandBySelector(const std::string& command) override;

  // Commands and menus.
  /// Sends `command` down the responder chain from the first responder; false when none answers.
  bool sendAction(const std::string& command);
  /// Whether a menu item is enabled: its action must have a target along the chain from the first
  /// responder, and that target's validateMenuItem must agree.
  bool validateMenuItem(const MCMenuItem& item) override;
  /// Shows a context menu at a point of the view (its own coordinates) through the host. A chosen
  /// item goes to `chosen` when given, else its action to its target, else down the responder
  /// chain. False when the window has no host that shows menus.
  bool popUpContextMenu(const MCMenu& menu, MCPoint pointInView, const MCView* view,
                        std::function<void(const MCMenuItem&)> chosen = nullptr);

  // Closing.
  /// Whether the window was closed.
  bool isClosed() const { return closed_; }
  /// Closes the window: nested loops end, no more events are dispatched.
  void close();

  // Display.
  /// Marks `rect` (base coordinates) for redraw and asks the host for a frame.
  void invalidateRect(const MCRect& rect);
  /// Whether anything waits to be redrawn.
  bool needsDisplay() const;
  /// The dirty region's bounding box, in base coordinates.
  MCRect dirtyRect() const;
  /// Lays out and redraws what is dirty into the backing image.
  void displayIfNeeded();
  /// Marks everything dirty and displays.
  void display();
  /// Lays out and draws the whole window into `context`, whose device pixels are the window's
  /// points times `scale` (a recording context of a host that draws with a retained renderer).
  /// The dirty region is cleared; the backing image, no longer up to date, is let go, so that
  /// the next displayIfNeeded draws it whole.
  void displayInContext(MCGraphicsContext& context, double scale);
  /// The backing image's context (pixels at the host's scale); none until the first display.
  MCGraphicsContext* backingContext() const { return backing_.get(); }
  /// A copy of the backing image as it stands.
  MCRasterImageRef snapshotImage();
  /// How many views drew in the last display; for tests and benchmarks.
  std::size_t numberOfViewsDrawnInLastDisplay() const { return viewsDrawn_; }

  /// From base coordinates to the screen's (y up), through the host's window origin.
  MCRect convertRectToScreen(const MCRect& rect) const;
  /// The same for a point.
  MCPoint convertPointToScreen(MCPoint point) const;

  /// The tool tip of the deepest view under `point` (base coordinates) that has one there.
  std::optional<std::string> toolTipAtPoint(MCPoint point) const;

  /// Starts a drag through the host; none when the host cannot drag.
  std::shared_ptr<MCDraggingSession> beginDraggingSession(std::vector<MCDraggingItem> items, const MCEvent& event,
                                                          MCDraggingSource* source);

 private:
  friend class MCView;
  MCWindow() = default;
  void dispatchMouseEvent(const MCEvent& event);
  void updateTrackingAreas(const MCEvent& event);
  void viewWillLeaveWindow(MCView* view);
  bool isDrawingView(const MCView* view) const { return drawingView_ == view; }
  bool regionMeetsRect(const cairo_region_t* region, const MCRect& windowRect) const;
  /// Draws displayRegion_ into `context` and ends it; `replace` fills the background by replacing
  /// what is there (a backing image keeps earlier frames).
  void drawRegion(MCGraphicsContext& context, double scale, bool replace);
  void registerTrackingView(MCView* view);
  void unregisterTrackingView(MCView* view);

  std::string title_;
  int windowNumber_ = 0;
  std::shared_ptr<MCView> contentView_;
  MCSize contentSize_{};
  MCColor backgroundColor_ = MCColor::windowBackgroundColor();
  MCWindowHost* host_ = nullptr;
  bool keyWindow_ = true;
  MCResponder* firstResponder_ = nullptr;
  std::deque<MCEvent> queue_;
  int nestedLoops_ = 0;
  bool dispatching_ = false;
  std::shared_ptr<MCView> mouseDownView_;
  MCPoint lastMouseLocation_{};
  std::vector<MCView*> trackingViews_;  // views of this window that have tracking areas
  std::shared_ptr<MCTimer> periodicTimer_;
  bool closed_ = false;

  cairo_region_t* dirty_ = nullptr;
  // The region of the display under way, taken from dirty_ when it began.
  cairo_region_t* displayRegion_ = nullptr;
  std::shared_ptr<MCGraphicsContext> backing_;
  double backingScale_ = 0;
  // While a view draws: the view, and the region it redraws in base coordinates.
  const MCView* drawingView_ = nullptr;
  cairo_region_t* drawingRegion_ = nullptr;
  std::size_t viewsDrawn_ = 0;
  bool layoutNeeded_ = true;  // some view of the window needs layout
};

using MCWindowRef = std::shared_ptr<MCWindow>;
