#pragma once
// MCBrowserViewCell: the abstract cell of the browser — it measures, draws and hit-tests one item
// (or one group header) in a frame it is given. It is not a view and holds nothing of an item's
// identity: the browser keeps one object per kind and the data source refills it before every
// use, so nothing may keep a reference to a cell's state across two preparations.
//
// A concrete cell overrides `cellSizeForBounds(bounds, scale)`, `previewImage`,
// `previewSourceRectForCellFrame`, `drawWithFrame` and `copy`; the base versions of the first
// four throw std::logic_error("*** -[MCBrowserViewCell <operation>]: unrecognized selector"), as
// an abstract operation the platform is asked for.

#include <vesperon/core/MCGeometry.h>
#include <vesperon/pipeline/MCImage.h>

#include <memory>

class MCView;

class MCBrowserViewCell {
 public:
  /// A cell that draws into `controlView`.
  explicit MCBrowserViewCell(std::weak_ptr<MCView> controlView = {}) : controlView_(std::move(controlView)) {}
  virtual ~MCBrowserViewCell() = default;

  /// Whether the item drawn is selected.
  bool isSelected() const { return selected_; }
  /// Set by the data source before each use.
  void setSelected(bool selected) { selected_ = selected; }
  /// The view the cell draws into; none when gone.
  std::shared_ptr<MCView> controlView() const { return controlView_.lock(); }
  /// Sets the view the cell draws into.
  void setControlView(std::weak_ptr<MCView> view) { controlView_ = std::move(view); }

  /// A new cell of the same class with the same control view and selected flag.
  virtual std::shared_ptr<MCBrowserViewCell> copy() const;

  /// `cellSizeForBounds(bounds, 1.0)`.
  MCSize cellSizeForBounds(const MCRect& bounds) { return cellSizeForBounds(bounds, 1.0); }
  /// The cell's size for the view's bounds at `scale`. Subclasses must override it: the base raises.
  virtual MCSize cellSizeForBounds(const MCRect& bounds, double scale);
  /// The image the preview panel zooms from. Subclasses must override it: the base raises.
  virtual std::shared_ptr<const MCImage> previewImage();
  /// Where that image lies in a cell of `frame`. Subclasses must override it: the base raises.
  virtual MCRect previewSourceRectForCellFrame(const MCRect& frame);
  /// Draws into the current graphics context; `view` is none when drawing for a drag image.
  virtual void drawWithFrame(const MCRect& frame, MCView* view);
  /// An image of the cell, unselected, drawn into `size` (flipped, at the control view's window
  /// scale); writes the zero point to `offset`.
  virtual std::shared_ptr<const MCImage> dragImageWithSize(MCSize size, MCPoint* offset);
  /// MCPointInRect and MCIntersectsRect with the frame.
  virtual bool containsPoint(MCPoint point, const MCRect& frame);
  /// Whether `rect` meets the cell of `frame`.
  virtual bool intersectsRect(const MCRect& rect, const MCRect& frame);

 protected:
  /// Subclasses copy themselves in copy().
  MCBrowserViewCell(const MCBrowserViewCell&) = default;

 private:
  bool selected_ = false;
  std::weak_ptr<MCView> controlView_;
};
