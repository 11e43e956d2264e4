#pragma once
// MCZoomView: one content view that gestures zoom and pan. The view draws nothing: it keeps a zoom
// factor (1 is "fit to the bounds") and an offset (the content centre's displacement, in halves
// of the zoomed content's size), and places a container view that holds the content.
//
// All the geometry is arithmetic on five inputs — bounds, the content's original size from the
// delegate, zoom, offset x and y — and is available without gestures: `contentRectFor`,
// `constrainedOffset`. Gestures (pinch, wheel, drag, double-tap) and `setOffset(offset, zoom)` go
// through one checked step that clamps, constrains, stores and tells the delegate only when
// something changed. Without a delegate nothing moves and `contentRect` is the zero rectangle.

#include <vesperon/toolkit/MCView.h>

#include <memory>
#include <vector>

class MCZoomView;
class MCTimer;

/// What a zoom view asks of its owner.
class MCZoomViewDelegate {
 public:
  virtual ~MCZoomViewDelegate() = default;
  /// The content's size at zoom 1 before fitting (the image's size).
  virtual MCSize zoomViewOriginalContentSize(MCZoomView& view) = 0;
  /// The zoom or offset changed through a checked setter.
  virtual void zoomViewDidChange(MCZoomView& view) = 0;
};

class MCZoomView : public MCView {
 public:
  /// A zoom view of `frame` with an empty container.
  explicit MCZoomView(MCRect frame = {});
  ~MCZoomView() override;

  /// The view that holds the content and clips it.
  const MCViewRef& containerView() const { return containerView_; }
  /// The view zoomed and panned; none until set.
  const MCViewRef& contentView() const { return contentView_; }
  /// Puts `view` in the container and lays out.
  void setContentView(const MCViewRef& view);
  /// The delegate, held weakly.
  std::shared_ptr<MCZoomViewDelegate> delegate() const { return delegate_.lock(); }
  /// Sets the delegate, held weakly.
  void setDelegate(const std::shared_ptr<MCZoomViewDelegate>& delegate) { delegate_ = delegate; }

  /// Store, and mark for layout when the value differs; no clamping, no report.
  double zoom() const { return zoom_; }
  /// Sets the zoom (see zoom()).
  void setZoom(double zoom);
  /// The content's offset from centred, in view units.
  MCPoint offset() const { return offset_; }
  /// Stores the offset and marks for layout when it differs; no constraint, no report.
  void setOffset(MCPoint offset);
  /// Store, then pull the zoom into the new range (no report), then mark for layout.
  double minZoom() const { return minZoom_; }
  /// Sets the smallest zoom (see minZoom()).
  void setMinZoom(double zoom);
  /// The largest zoom.
  double maxZoom() const { return maxZoom_; }
  /// Sets the largest zoom, pulling the zoom into range.
  void setMaxZoom(double zoom);

  /// The content's size at a zoom: original × fit × zoom (0 by 0 for an original without area).
  MCSize sizeForZoom(double zoom) const;
  /// The content's rectangle at a zoom and offset.
  MCRect contentRectFor(double zoom, MCPoint offset) const;
  /// The current one, its edges moved inward to whole pixels; zero without a delegate.
  MCRect contentRect() const;
  /// The offset held so that content smaller than the view stays centred and larger content
  /// cannot leave a gap at an edge.
  MCPoint constrainedOffset(MCPoint offset, double zoom) const;
  /// The zoom held between minZoom and maxZoom.
  double clampedZoom(double zoom) const;

  /// The checked setter: clamps the zoom, constrains the offset, reports a change.
  void setOffset(MCPoint offset, double zoom);
  /// Places the content at the present zoom and offset.
  void updateLayout();
  /// Moves by a vector in view units.
  void panWith(MCPoint vector);
  /// Zooms to `zoom` holding the content point under `anchor` (view coordinates) still.
  void zoomTo(double zoom, MCPoint anchor);
  /// Zooms to zoom + amount × zoom at the anchor.
  void zoomBy(double amount, MCPoint anchor);

  void magnifyWithEvent(const MCEvent& event) override;
  void scrollWheel(const MCEvent& event) override;
  void mouseDragged(const MCEvent& event) override;
  void smartMagnifyWithEvent(const MCEvent& event) override;
  void layout() override;
  void mouseDown(const MCEvent& event) override;

  /// Whether a double-tap animation is running.
  bool isAnimating() const { return !animations_.empty(); }

 private:
  /// Stores and reports when the zoom or offset differs; nothing without a delegate.
  void checkedStep(double zoom, MCPoint offset);
  MCSize originalSize() const;

  MCViewRef containerView_;
  MCViewRef contentView_;
  std::weak_ptr<MCZoomViewDelegate> delegate_;
  double zoom_ = 1.0, minZoom_ = 1.0, maxZoom_ = 16.0;
  MCPoint offset_{0, 0};
  // Double-tap animations; a second one runs beside the first.
  std::vector<std::shared_ptr<MCTimer>> animations_;
};
