#pragma once
// MCScrollView: shows part of a document view through a clip view, with overlay scrollers it
// draws itself. The wheel and the touchpad scroll it (a wheel notch smoothly, over a few frames,
// unless `scrollsSmoothly` is off); it answers the scrolling commands of the key bindings
// (line, page, beginning and end of the document) for a document that does not take them.
//
// `contentSize` is the size of the clip view: the whole scroll view, as the scrollers lie over
// the content. Line scrolling moves `lineScroll` points; page scrolling moves the visible length
// less `pageScroll` points, so a little of the previous page stays in view.

#include <vesperon/toolkit/MCClipView.h>
#include <vesperon/toolkit/MCScroller.h>
#include <vesperon/toolkit/MCView.h>

class MCTimer;

class MCScrollView : public MCView {
 public:
  /// A scroll view with a clip view and overlay scrollers, and no document yet.
  explicit MCScrollView(MCRect frame = {});
  ~MCScrollView() override;

  /// The clip view that shows part of the document.
  const std::shared_ptr<MCClipView>& contentView() const { return clipView_; }
  /// The view scrolled; none until one is set.
  const MCViewRef& documentView() const { return clipView_->documentView(); }
  /// Puts `view` in the clip view at its top left.
  void setDocumentView(const MCViewRef& view);
  /// The size of the clip view: how much of the document shows.
  MCSize contentSize() const { return clipView_->frame().size; }
  /// The part of the document that shows, in its coordinates.
  MCRect documentVisibleRect() const { return clipView_->documentVisibleRect(); }

  /// @name Scrollers
  //@{
  /// Whether each scroller shows (overlay scrollers that the view draws itself), and the
  /// scrollers themselves.
  bool hasVerticalScroller() const { return hasVerticalScroller_; }
  void setHasVerticalScroller(bool flag);
  bool hasHorizontalScroller() const { return hasHorizontalScroller_; }
  void setHasHorizontalScroller(bool flag);
  const std::shared_ptr<MCScroller>& verticalScroller() const { return verticalScroller_; }
  const std::shared_ptr<MCScroller>& horizontalScroller() const { return horizontalScroller_; }
  //@}

  /// @name Scroll amounts
  //@{
  /// How far a line and a page scroll go, along each axis; the plain setters set both axes.
  double verticalLineScroll() const { return verticalLineScroll_; }
  double horizontalLineScroll() const { return horizontalLineScroll_; }
  void setLineScroll(double amount) { verticalLineScroll_ = horizontalLineScroll_ = amount; }
  void setVerticalLineScroll(double amount) { verticalLineScroll_ = amount; }
  void setHorizontalLineScroll(double amount) { horizontalLineScroll_ = amount; }
  double verticalPageScroll() const { return verticalPageScroll_; }
  double horizontalPageScroll() const { return horizontalPageScroll_; }
  void setPageScroll(double amount) { verticalPageScroll_ = horizontalPageScroll_ = amount; }
  //@}

  /// Whether wheel scrolling animates; stored for the host.
  bool scrollsSmoothly() const { return scrollsSmoothly_; }
  /// Sets whether wheel scrolling animates.
  void setScrollsSmoothly(bool flag) { scrollsSmoothly_ = flag; }
  /// Lines a wheel notch scrolls.
  static constexpr double kLinesPerWheelNotch = 4;

  /// The clip view scrolled: the scrollers follow.
  void reflectScrolledClipView(MCClipView* clipView);
  /// Scrolls the clip view to `point` (document coordinates, constrained) and reflects it.
  void scrollClipViewToPoint(MCPoint point);

  void scrollWheel(const MCEvent& event) override;
  /// Keys bound to the scrolling commands scroll; other keys go on up the chain.
  void keyDown(const MCEvent& event) override;
  bool isFlipped() const override { return true; }
  void setFrameSize(MCSize size) override;
  /// Places the clip view and the scrollers.
  void tile();

  // The scrolling commands, also registered under their command names.
  /// @name Scrolling commands
  //@{
  /// Scroll the document by a line, by a page, or to either end.
  void scrollLineUp();
  void scrollLineDown();
  void scrollPageUp();
  void scrollPageDown();
  void scrollToBeginningOfDocument();
  void scrollToEndOfDocument();
  //@}

 private:
  /// Moves by (dx, dy) in the document's own directions: positive dy goes toward the document's
  /// end (down a flipped document).
  void scrollBy(double dx, double dy, bool smoothly);
  void stepSmoothScroll();
  double documentDirection() const;

  std::shared_ptr<MCClipView> clipView_;
  std::shared_ptr<MCScroller> verticalScroller_, horizontalScroller_;
  bool hasVerticalScroller_ = true, hasHorizontalScroller_ = true;
  double verticalLineScroll_ = 10, horizontalLineScroll_ = 10;
  double verticalPageScroll_ = 10, horizontalPageScroll_ = 10;
  bool scrollsSmoothly_ = true;
  std::shared_ptr<MCTimer> smoothTimer_;
  MCPoint smoothTarget_{};
  int smoothStepsLeft_ = 0;
};
