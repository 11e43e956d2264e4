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

class MCZoomViewDelegate {
 public:
  virtual ~MCZoomViewDelegate() = default;
  virtual MCSize zoomViewOriginalContentSize(MCZoomView& view) = 0;
  virtual void zoomViewDidChange(MCZoomView& view) = 0;
};

class MCZoomView : public MCView {
 public:
  explicit MCZoomView(MCRect frame = {});
  ~MCZoomView() override;

  const MCViewRef& containerView() const { return containerView_; }
  const MCViewRef& contentView() const { return contentView_; }
  void setContentView(const MCViewRef& view);
  std::shared_ptr<MCZoomViewDelegate> delegate() const { return delegate_.lock(); }
  void setDelegate(const std::shared_ptr<MCZoomViewDelegate>& delegate) { delegate_ = delegate; }

  /// Store, and mark for layout when the value differs; no clamping, no report.
  double zoom() const { return zoom_; }
  void setZoom(double zoom);
  MCPoint offset() const { return offset_; }
  void setOffset(MCPoint offset);
  /// Store, then pull the zoom into the new range (no report), then mark for layout.
  double minZoom() const { return minZoom_; }
  void setMinZoom(double zoom);
  double maxZoom() const { return maxZoom_; }
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
