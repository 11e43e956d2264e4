#pragma once
// MCView: a rectangle of a window that draws itself and takes events — the base of the browser,
// the cells' host views and the controls.
//
// Geometry. `frame` places the view in its superview's coordinates; `bounds` is the view's own
// coordinate system over the same area (its origin moves when a clip view scrolls; a bounds size
// other than the frame size scales). A view that is not flipped has its origin at the bottom left
// and y growing upward, as the window's base coordinates do; a flipped view (`isFlipped` answers
// true) has y growing downward, Cairo's own sense. `convertPoint`/`convertRect` go between any two
// views of one window, or the window's base coordinates when the other view is none.
//
// Display. `setNeedsDisplayInRect` adds a rectangle to the window's dirty region. When the window
// displays, each view that meets the region has `drawRect` called with the part of the region in
// it, with the current graphics context set up in the view's coordinates (flipped or not) and
// clipped to the region; `needsToDrawRect` answers, while `drawRect` runs, whether a rectangle
// meets what is being redrawn, so that a view with many parts draws only those. A view and its
// subviews are skipped whole when they do not meet the region. Subviews draw over their superview
// and are clipped to it.
//
// Frame changes are announced to subscribers (`addFrameObserver`), as the platform's frame-change
// notification; a view that follows its superview's size subscribes there.

#include <vesperon/core/MCGeometry.h>
#include <vesperon/toolkit/MCAccessibilityElement.h>
#include <vesperon/toolkit/MCResponder.h>
#include <vesperon/toolkit/MCTrackingArea.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

class MCWindow;
class MCScrollView;
class MCClipView;
class MCGraphicsContext;
class MCDraggingSession;
class MCDraggingSource;
class MCLayer;
class MCMenu;
struct MCDraggingItem;
struct MCDraggingInfo;

/// How a view follows changes of its superview's size (the platform's autoresizing bits).
enum MCAutoresizingMask : unsigned {
  /// The view keeps its frame when the superview changes size.
  MCViewNotSizable = 0,
  /// The left margin stretches.
  MCViewMinXMargin = 1,
  /// The width stretches.
  MCViewWidthSizable = 2,
  /// The right margin stretches.
  MCViewMaxXMargin = 4,
  /// The bottom margin stretches (the top one in a flipped superview).
  MCViewMinYMargin = 8,
  /// The height stretches.
  MCViewHeightSizable = 16,
  /// The top margin stretches (the bottom one in a flipped superview).
  MCViewMaxYMargin = 32,
};

/// An affine map made of axis scales and a translation: x' = sx·x + tx, y' = sy·y + ty. The
/// coordinate systems of a window's views are always related by one.
struct MCAxisTransform {
  double sx = 1;  ///< The scale of x.
  double sy = 1;  ///< The scale of y.
  double tx = 0;  ///< The translation of x.
  double ty = 0;  ///< The translation of y.
  /// The point through the map.
  MCPoint apply(MCPoint p) const { return {sx * p.x + tx, sy * p.y + ty}; }
  /// The rectangle through the map (normalised, so a negative scale keeps a positive size).
  MCRect apply(const MCRect& r) const;
  /// The map back.
  MCAxisTransform inverted() const { return {1 / sx, 1 / sy, -tx / sx, -ty / sy}; }
  /// This map after `inner`: first inner, then this.
  MCAxisTransform compose(const MCAxisTransform& inner) const {
    return {sx * inner.sx, sy * inner.sy, sx * inner.tx + tx, sy * inner.ty + ty};
  }
};

/// The base of every view: a rectangle of a window that draws itself, takes events and holds subviews.
class MCView : public MCResponder {
 public:
  /// A view with `frame` (bounds of the same size at the origin), in no superview.
  explicit MCView(MCRect frame = {});
  /// Leaves the subviews without a superview.
  ~MCView() override;

  // The hierarchy. A view holds its subviews; it knows its superview and window without holding them.
  /// The view that holds this one; none for a window's content view or a view on its own.
  MCView* superview() const { return superview_; }
  /// The subviews, back to front.
  const std::vector<std::shared_ptr<MCView>>& subviews() const { return subviews_; }
  /// The window the view is in; none off-window.
  MCWindow* window() const { return window_; }
  /// Adds on top of the other subviews (a view that has a superview leaves it first).
  void addSubview(const std::shared_ptr<MCView>& view);
  /// Adds just above or below `relativeTo` (on top, or at the bottom, when it is none).
  void addSubview(const std::shared_ptr<MCView>& view, bool above, const MCView* relativeTo);
  /// Leaves the superview (nothing when there is none); the superview's reference goes.
  void removeFromSuperview();
  /// Puts `newView` where `oldView` was; nothing when `oldView` is not a subview.
  void replaceSubview(const MCView* oldView, const std::shared_ptr<MCView>& newView);
  /// Whether `view` is this view or one of its superviews.
  bool isDescendantOf(const MCView* view) const;
  /// This view as a shared pointer (views are always made with std::make_shared).
  std::shared_ptr<MCView> sharedView() { return std::static_pointer_cast<MCView>(shared_from_this()); }

  /// @name Hierarchy notifications
  //@{
  /// Called around a change of superview or window, and when a subview comes or goes; they do
  /// nothing by default.
  virtual void viewWillMoveToSuperview(MCView* newSuperview);
  virtual void viewDidMoveToSuperview();
  virtual void viewWillMoveToWindow(MCWindow* newWindow);
  virtual void viewDidMoveToWindow();
  virtual void didAddSubview(MCView* subview);
  virtual void willRemoveSubview(MCView* subview);
  //@}

  /// The superview; for a content view, the window.
  MCResponder* nextResponder() const override;

  // Geometry.
  /// The rectangle of the view in its superview's coordinates.
  MCRect frame() const { return frame_; }
  /// The rectangle of the view in its own coordinates.
  MCRect bounds() const { return bounds_; }
  /// Sets origin and size (see setFrameSize).
  void setFrame(const MCRect& frame);
  /// Moves the view in its superview; the frame observers hear of it.
  void setFrameOrigin(MCPoint origin);
  /// Changes the size; the bounds size follows (bounds origin stays), subviews follow their
  /// autoresizing masks, and the frame observers hear of it. Negative sizes become 0.
  virtual void setFrameSize(MCSize size);
  /// Sets the bounds origin and size.
  void setBounds(const MCRect& bounds);
  /// Moves the view's own coordinate system (a clip view scrolls so); the bounds observers hear of it.
  void setBoundsOrigin(MCPoint origin);
  /// Scales the view's own coordinate system against its frame.
  void setBoundsSize(MCSize size);
  /// Whether y grows downward in this view; not by default.
  virtual bool isFlipped() const { return false; }

  /// How the view follows its superview's size (MCAutoresizingMask bits).
  unsigned autoresizingMask() const { return autoresizingMask_; }
  /// Sets the autoresizing bits.
  void setAutoresizingMask(unsigned mask) { autoresizingMask_ = mask; }
  /// Whether a change of size resizes the subviews by their masks; true by default.
  bool autoresizesSubviews() const { return autoresizesSubviews_; }
  /// Turns the subviews' autoresizing on or off.
  void setAutoresizesSubviews(bool flag) { autoresizesSubviews_ = flag; }
  /// Resizes each subview by its mask after this view changed from `oldSize`.
  virtual void resizeSubviewsWithOldSize(MCSize oldSize);
  /// Follows the superview's change from `oldSize`, by the autoresizing mask.
  virtual void resizeWithOldSuperviewSize(MCSize oldSize);

  /// Whether the view is hidden (it and its subviews neither draw nor take events).
  bool isHidden() const { return hidden_; }
  /// Hides or shows the view, and marks the area for redraw.
  void setHidden(bool hidden);
  /// Whether this view or one of its superviews is hidden.
  bool isHiddenOrHasHiddenAncestor() const;
  /// The opacity the view and its subviews draw with, 0 to 1.
  double alphaValue() const { return alphaValue_; }
  /// Sets the opacity, and marks the view for redraw.
  void setAlphaValue(double alpha);

  /// The part of the bounds not clipped away by superviews or the window; empty off-window.
  MCRect visibleRect() const;

  /// Points and rectangles from `view`'s coordinates (the window's base ones when it is none)
  /// into this view's, and back. Both views must be in the same window, or the same tree.
  MCPoint convertPoint(MCPoint point, const MCView* fromView) const;
  /// The other direction: from this view's coordinates into `toView`'s.
  MCPoint convertPointToView(MCPoint point, const MCView* toView) const;
  /// Rectangles from `fromView`'s coordinates into this view's.
  MCRect convertRect(const MCRect& rect, const MCView* fromView) const;
  /// Rectangles from this view's coordinates into `toView`'s.
  MCRect convertRectToView(const MCRect& rect, const MCView* toView) const;
  /// The map from this view's coordinates to the window's base coordinates (or to those of the
  /// root of its tree, off-window).
  MCAxisTransform transformToWindow() const;

  /// The nearest scroll view among the superviews; none when there is none.
  MCScrollView* enclosingScrollView() const;
  /// The deepest visible view under `point`, given in the superview's coordinates; none when the
  /// point lies outside this view.
  virtual MCView* hitTest(MCPoint point);

  // Frame changes.
  /// What hears a frame or bounds change, with the view.
  using FrameObserver = std::function<void(MCView& view)>;
  /// Calls `observer` after every change of this view's frame; answers a token for removal.
  int addFrameObserver(FrameObserver observer);
  /// Stops the observer of `token`.
  void removeFrameObserver(int token);
  /// Whether frame changes reach the observers; true by default.
  bool postsFrameChangedNotifications() const { return postsFrameChanges_; }
  /// Turns the frame notifications on or off.
  void setPostsFrameChangedNotifications(bool flag) { postsFrameChanges_ = flag; }
  /// Likewise for changes of the bounds (a clip view's scrolling).
  int addBoundsObserver(FrameObserver observer);
  /// Stops the bounds observer of `token`.
  void removeBoundsObserver(int token);

  // Display.
  /// Whether part of the view waits to be redrawn.
  bool needsDisplay() const { return needsDisplay_; }
  /// Marks the whole view for redraw (true), or forgets what was pending (false).
  void setNeedsDisplay(bool flag);
  /// Marks `rect` (view coordinates) for redraw; the window's host is asked for a frame.
  void setNeedsDisplayInRect(const MCRect& rect);
  /// While `drawRect` runs: whether `rect` (view coordinates) meets what is being redrawn.
  /// Outside drawing: whether it meets the view's pending dirty area.
  bool needsToDrawRect(const MCRect& rect) const;
  /// While `drawRect` runs: the rectangles being redrawn, in view coordinates.
  std::vector<MCRect> rectsBeingDrawn() const;
  /// Draws the view in `dirtyRect` (the bounding box of what is redrawn); the current graphics
  /// context (MCGraphicsContext::currentContext()) is set up for it. Draws nothing by default.
  virtual void drawRect(const MCRect& dirtyRect);
  /// Draws what is pending in the whole window now.
  void displayIfNeeded();
  /// Whether this view draws every pixel of its bounds (lets the window skip what lies under it).
  virtual bool isOpaque() const { return false; }

  /// What assistive technologies call this view ("Photos"); empty when it has no name of its own.
  virtual std::string accessibilityLabel() const { return {}; }
  /// What the view holds now, read after its label ("IMG_0042.jpg, 12 of 2,000, 3 selected").
  virtual std::string accessibilityValue() const { return {}; }
  /// Tells the window's host that the label or value changed, so that it announces them.
  void accessibilityDidChange();
  /// The buttons, sliders, links and texts the view draws, for assistive technologies, with
  /// frames in the view's coordinates; none by default. The host asks again after each redraw.
  virtual std::vector<MCAccessibilityElement> accessibilityElements() const { return {}; }

  // Layers. A view that wants a layer is drawn from its layer tree, not its drawRect; a view that
  // answers wantsUpdateLayer sets its layers' properties in updateLayer, before each display.
  /// Whether the view is drawn from a layer tree.
  bool wantsLayer() const { return wantsLayer_; }
  /// Gives the view a layer (made by makeBackingLayer) or takes it away.
  void setWantsLayer(bool flag);
  /// The view's layer; none unless it wants one.
  const std::shared_ptr<MCLayer>& layer() const { return layer_; }
  /// The layer made when the view first wants one; a plain layer by default.
  virtual std::shared_ptr<MCLayer> makeBackingLayer();
  /// Whether updateLayer sets the layer's properties before each display; not by default.
  virtual bool wantsUpdateLayer() const { return false; }
  /// Sets the layers' properties before a display, for a view that wants it; nothing by default.
  virtual void updateLayer() {}

  // Layout.
  /// Whether layout waits to run before the next display.
  bool needsLayout() const { return needsLayout_; }
  /// Asks for layout before the next display.
  void setNeedsLayout(bool flag);
  /// Places the subviews; called by the window before it displays, for views that need it.
  virtual void layout();
  /// Runs layout now in this view and its subviews that need it.
  void layoutSubtreeIfNeeded();
  /// The size the view would like, or -1 for a side it has no wish for.
  virtual MCSize intrinsicContentSize() const { return {-1, -1}; }

  // Content prepared ahead of scrolling.
  /// The area whose content is ready ahead of scrolling.
  MCRect preparedContentRect() const { return preparedContentRect_; }
  /// Records the area whose content is ready.
  void setPreparedContentRect(const MCRect& rect) { preparedContentRect_ = rect; }
  /// Called by an enclosing clip view with the area it is about to show when that area is not
  /// inside `preparedContentRect`; sets it by default.
  virtual void prepareContentInRect(const MCRect& rect);

  // Scrolling.
  /// Scrolls the enclosing clip view toward the pointer of a drag or periodic event outside it;
  /// true when it scrolled.
  virtual bool autoscroll(const MCEvent& event);
  /// Scrolls the enclosing clip view the least amount that shows `rect`; true when it scrolled.
  bool scrollRectToVisible(const MCRect& rect);

  // Tracking areas and tool tips.
  /// Starts sending the area's enter, exit and move events.
  void addTrackingArea(const MCTrackingAreaRef& area);
  /// Stops the area.
  void removeTrackingArea(const MCTrackingAreaRef& area);
  /// The view's tracking areas.
  const std::vector<MCTrackingAreaRef>& trackingAreas() const { return trackingAreas_; }
  /// Called when the view's place in the window changed; rebuild the areas here.
  virtual void updateTrackingAreas();
  /// A tool tip over `rect`, its text asked of `provider` when shown; answers a tag.
  /// What gives a tool tip's text for a point of the view.
  using ToolTipProvider = std::function<std::string(MCPoint point)>;
  /// Adds a tool tip over `rect`; the provider answers when it shows. Answers a tag for removal.
  int addToolTipRect(const MCRect& rect, ToolTipProvider provider);
  /// Removes the tool tip of `tag`.
  void removeToolTip(int tag);
  /// Removes every tool tip of the view.
  void removeAllToolTips();
  /// The tool tip text at a point of the view, or none.
  std::optional<std::string> toolTipAtPoint(MCPoint point) const;
  /// How many tool tips the view has.
  std::size_t numberOfToolTips() const { return toolTips_.size(); }

  // First responder and mouse.
  /// Whether a click that activates the window also goes to the view.
  virtual bool acceptsFirstMouse(const MCEvent* event);
  /// Whether `point` (view coordinates) lies in `rect`, as the platform's `mouse:inRect:`.
  bool mouseInRect(MCPoint point, const MCRect& rect) const { return MCMouseInRect(point, rect, isFlipped()); }

  // Menus.
  /// The menu this view is shown in — as a menu item's view, or inside one — while a host shows
  /// that menu; none otherwise.
  MCMenu* enclosingMenu() const;
  /// For hosts (MCMenu::setEnclosingMenuOfItemViews): set on an item's view while its menu shows.
  void setEnclosingMenu(MCMenu* menu) { enclosingMenu_ = menu; }

  // Dragging.
  /// Lets drags of these pasteboard types ("public.file-url" …) reach the view's drag operations.
  void registerForDraggedTypes(std::vector<std::string> types) { draggedTypes_ = std::move(types); }
  /// Takes no more drags.
  void unregisterDraggedTypes() { draggedTypes_.clear(); }
  /// The pasteboard types the view takes in drags.
  const std::vector<std::string>& registeredDraggedTypes() const { return draggedTypes_; }
  /// Starts a drag of `items` from `event` through the window's host; none off-window.
  std::shared_ptr<MCDraggingSession> beginDraggingSession(std::vector<MCDraggingItem> items, const MCEvent& event,
                                                          MCDraggingSource* source);
  // A drag over the view, for views that registered types: the operation they would do.
  /// A drag of a registered type entered the view: the operation it would do (none by default).
  virtual uint64_t draggingEntered(const MCDraggingInfo& info);
  /// The drag moved over the view: by default, as draggingEntered.
  virtual uint64_t draggingUpdated(const MCDraggingInfo& info) { return draggingEntered(info); }
  /// The drag left the view; nothing by default.
  virtual void draggingExited(const MCDraggingInfo* info);
  /// The drag was dropped on the view: whether it took it (not by default).
  virtual bool performDragOperation(const MCDraggingInfo& info);

 private:
  friend class MCWindow;
  void setWindowRecursively(MCWindow* window);
  void postFrameChange();
  void postBoundsChange();
  MCAxisTransform transformToSuperview() const;
  void drawSubtree(MCGraphicsContext& context, const MCAxisTransform& toWindow, const MCRect& clipInWindow);

  MCRect frame_{}, bounds_{};
  MCView* superview_ = nullptr;
  MCWindow* window_ = nullptr;
  std::vector<std::shared_ptr<MCView>> subviews_;
  unsigned autoresizingMask_ = MCViewNotSizable;
  bool autoresizesSubviews_ = true;
  bool hidden_ = false;
  double alphaValue_ = 1;
  bool needsDisplay_ = false;
  bool needsLayout_ = false;
  bool postsFrameChanges_ = true;
  MCRect preparedContentRect_{};
  std::vector<std::pair<int, FrameObserver>> frameObservers_, boundsObservers_;
  int nextObserverToken_ = 1;
  std::vector<MCTrackingAreaRef> trackingAreas_;
  struct ToolTip {
    int tag;
    MCRect rect;
    ToolTipProvider provider;
  };
  std::vector<ToolTip> toolTips_;
  int nextToolTipTag_ = 1;
  std::vector<std::string> draggedTypes_;
  bool wantsLayer_ = false;
  std::shared_ptr<MCLayer> layer_;
  MCMenu* enclosingMenu_ = nullptr;
};

/// A shared view.
using MCViewRef = std::shared_ptr<MCView>;
