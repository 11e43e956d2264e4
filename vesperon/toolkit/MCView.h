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
  MCViewNotSizable = 0,
  MCViewMinXMargin = 1,
  MCViewWidthSizable = 2,
  MCViewMaxXMargin = 4,
  MCViewMinYMargin = 8,
  MCViewHeightSizable = 16,
  MCViewMaxYMargin = 32,
};

/// An affine map made of axis scales and a translation: x' = sx·x + tx, y' = sy·y + ty. The
/// coordinate systems of a window's views are always related by one.
struct MCAxisTransform {
  double sx = 1, sy = 1, tx = 0, ty = 0;
  MCPoint apply(MCPoint p) const { return {sx * p.x + tx, sy * p.y + ty}; }
  MCRect apply(const MCRect& r) const;
  MCAxisTransform inverted() const { return {1 / sx, 1 / sy, -tx / sx, -ty / sy}; }
  /// This map after `inner`: first inner, then this.
  MCAxisTransform compose(const MCAxisTransform& inner) const {
    return {sx * inner.sx, sy * inner.sy, sx * inner.tx + tx, sy * inner.ty + ty};
  }
};

class MCView : public MCResponder {
 public:
  explicit MCView(MCRect frame = {});
  ~MCView() override;

  // The hierarchy. A view holds its subviews; it knows its superview and window without holding them.
  MCView* superview() const { return superview_; }
  const std::vector<std::shared_ptr<MCView>>& subviews() const { return subviews_; }
  MCWindow* window() const { return window_; }
  /// Adds on top of the other subviews (a view that has a superview leaves it first).
  void addSubview(const std::shared_ptr<MCView>& view);
  /// Adds just above or below `relativeTo` (on top, or at the bottom, when it is none).
  void addSubview(const std::shared_ptr<MCView>& view, bool above, const MCView* relativeTo);
  void removeFromSuperview();
  /// Puts `newView` where `oldView` was; nothing when `oldView` is not a subview.
  void replaceSubview(const MCView* oldView, const std::shared_ptr<MCView>& newView);
  bool isDescendantOf(const MCView* view) const;
  /// This view as a shared pointer (views are always made with std::make_shared).
  std::shared_ptr<MCView> sharedView() { return std::static_pointer_cast<MCView>(shared_from_this()); }

  virtual void viewWillMoveToSuperview(MCView* newSuperview);
  virtual void viewDidMoveToSuperview();
  virtual void viewWillMoveToWindow(MCWindow* newWindow);
  virtual void viewDidMoveToWindow();
  virtual void didAddSubview(MCView* subview);
  virtual void willRemoveSubview(MCView* subview);

  MCResponder* nextResponder() const override;

  // Geometry.
  MCRect frame() const { return frame_; }
  MCRect bounds() const { return bounds_; }
  void setFrame(const MCRect& frame);
  void setFrameOrigin(MCPoint origin);
  /// Changes the size; the bounds size follows (bounds origin stays), subviews follow their
  /// autoresizing masks, and the frame observers hear of it. Negative sizes become 0.
  virtual void setFrameSize(MCSize size);
  void setBounds(const MCRect& bounds);
  void setBoundsOrigin(MCPoint origin);
  void setBoundsSize(MCSize size);
  virtual bool isFlipped() const { return false; }

  unsigned autoresizingMask() const { return autoresizingMask_; }
  void setAutoresizingMask(unsigned mask) { autoresizingMask_ = mask; }
  bool autoresizesSubviews() const { return autoresizesSubviews_; }
  void setAutoresizesSubviews(bool flag) { autoresizesSubviews_ = flag; }
  virtual void resizeSubviewsWithOldSize(MCSize oldSize);
  virtual void resizeWithOldSuperviewSize(MCSize oldSize);

  bool isHidden() const { return hidden_; }
  void setHidden(bool hidden);
  /// Whether this view or one of its superviews is hidden.
  bool isHiddenOrHasHiddenAncestor() const;
  double alphaValue() const { return alphaValue_; }
  void setAlphaValue(double alpha);

  /// The part of the bounds not clipped away by superviews or the window; empty off-window.
  MCRect visibleRect() const;

  /// Points and rectangles from `view`'s coordinates (the window's base ones when it is none)
  /// into this view's, and back. Both views must be in the same window, or the same tree.
  MCPoint convertPoint(MCPoint point, const MCView* fromView) const;
  MCPoint convertPointToView(MCPoint point, const MCView* toView) const;
  MCRect convertRect(const MCRect& rect, const MCView* fromView) const;
  MCRect convertRectToView(const MCRect& rect, const MCView* toView) const;
  /// The map from this view's coordinates to the window's base coordinates (or to those of the
  /// root of its tree, off-window).
  MCAxisTransform transformToWindow() const;

  MCScrollView* enclosingScrollView() const;
  /// The deepest visible view under `point`, given in the superview's coordinates; none when the
  /// point lies outside this view.
  virtual MCView* hitTest(MCPoint point);

  // Frame changes.
  using FrameObserver = std::function<void(MCView& view)>;
  /// Calls `observer` after every change of this view's frame; answers a token for removal.
  int addFrameObserver(FrameObserver observer);
  void removeFrameObserver(int token);
  bool postsFrameChangedNotifications() const { return postsFrameChanges_; }
  void setPostsFrameChangedNotifications(bool flag) { postsFrameChanges_ = flag; }
  /// Likewise for changes of the bounds (a clip view's scrolling).
  int addBoundsObserver(FrameObserver observer);
  void removeBoundsObserver(int token);

  // Display.
  bool needsDisplay() const { return needsDisplay_; }
  void setNeedsDisplay(bool flag);
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

  // Layers. A view that wants a layer is drawn from its layer tree, not its drawRect; a view that
  // answers wantsUpdateLayer sets its layers' properties in updateLayer, before each display.
  bool wantsLayer() const { return wantsLayer_; }
  void setWantsLayer(bool flag);
  const std::shared_ptr<MCLayer>& layer() const { return layer_; }
  /// The layer made when the view first wants one; a plain layer by default.
  virtual std::shared_ptr<MCLayer> makeBackingLayer();
  virtual bool wantsUpdateLayer() const { return false; }
  virtual void updateLayer() {}

  // Layout.
  bool needsLayout() const { return needsLayout_; }
  void setNeedsLayout(bool flag);
  /// Places the subviews; called by the window before it displays, for views that need it.
  virtual void layout();
  void layoutSubtreeIfNeeded();
  /// The size the view would like, or -1 for a side it has no wish for.
  virtual MCSize intrinsicContentSize() const { return {-1, -1}; }

  // Content prepared ahead of scrolling.
  MCRect preparedContentRect() const { return preparedContentRect_; }
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
  void addTrackingArea(const MCTrackingAreaRef& area);
  void removeTrackingArea(const MCTrackingAreaRef& area);
  const std::vector<MCTrackingAreaRef>& trackingAreas() const { return trackingAreas_; }
  /// Called when the view's place in the window changed; rebuild the areas here.
  virtual void updateTrackingAreas();
  /// A tool tip over `rect`, its text asked of `provider` when shown; answers a tag.
  using ToolTipProvider = std::function<std::string(MCPoint point)>;
  int addToolTipRect(const MCRect& rect, ToolTipProvider provider);
  void removeToolTip(int tag);
  void removeAllToolTips();
  /// The tool tip text at a point of the view, or none.
  std::optional<std::string> toolTipAtPoint(MCPoint point) const;
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
  void registerForDraggedTypes(std::vector<std::string> types) { draggedTypes_ = std::move(types); }
  void unregisterDraggedTypes() { draggedTypes_.clear(); }
  const std::vector<std::string>& registeredDraggedTypes() const { return draggedTypes_; }
  /// Starts a drag of `items` from `event` through the window's host; none off-window.
  std::shared_ptr<MCDraggingSession> beginDraggingSession(std::vector<MCDraggingItem> items, const MCEvent& event,
                                                          MCDraggingSource* source);
  // A drag over the view, for views that registered types: the operation they would do.
  virtual uint64_t draggingEntered(const MCDraggingInfo& info);
  virtual uint64_t draggingUpdated(const MCDraggingInfo& info) { return draggingEntered(info); }
  virtual void draggingExited(const MCDraggingInfo* info);
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

using MCViewRef = std::shared_ptr<MCView>;
