#pragma once
// MCClipView: the view of a scroll view that shows part of a larger document view. Its bounds
// origin is the scroll position, in the document's coordinates; it is flipped when its document
// is, so that both share one sense of y.
//
// Before it scrolls to show an area that lies outside the document's `preparedContentRect`, it
// asks the document to `prepareContentInRect` that area, so a document can load what is about to
// show (the browser asks for thumbnails there).

#include <vesperon/toolkit/MCColor.h>
#include <vesperon/toolkit/MCView.h>

class MCClipView : public MCView {
 public:
  /// A clip view of `frame` with no document.
  explicit MCClipView(MCRect frame = {});
  ~MCClipView() override;

  /// The view scrolled; none until set.
  const MCViewRef& documentView() const { return documentView_; }
  /// Puts `view` at the top left (it leaves its old superview first).
  void setDocumentView(const MCViewRef& view);

  bool isFlipped() const override { return documentView_ ? documentView_->isFlipped() : false; }

  /// The document's frame, in this view's coordinates; empty without a document.
  MCRect documentRect() const;
  /// The part of the document that shows, in the document's coordinates.
  MCRect documentVisibleRect() const;

  /// The nearest scroll position to `point` that keeps the clip view inside the document
  /// (the document's start when it is smaller than the clip view).
  MCPoint constrainScrollPoint(MCPoint point) const;
  /// Scrolls to the constrained `point`; the scroll view is not told (see reflectScrolledClipView).
  void scrollToPoint(MCPoint point);
  /// Scrolls the least amount that shows `rect` (clip coordinates), as much as fits; true when
  /// it scrolled. The enclosing scroll view is told.
  bool scrollRectToVisible(const MCRect& rect);
  /// Scrolls toward a pointer outside the clip view; true when it scrolled.
  bool autoscroll(const MCEvent& event) override;

  /// What shows where the document does not reach.
  MCColor backgroundColor() const { return backgroundColor_; }
  /// Sets the background colour and redraws.
  void setBackgroundColor(const MCColor& color) { backgroundColor_ = color; setNeedsDisplay(true); }
  /// Whether the background is drawn.
  bool drawsBackground() const { return drawsBackground_; }
  /// Sets whether the background is drawn.
  void setDrawsBackground(bool flag) { drawsBackground_ = flag; setNeedsDisplay(true); }
  void drawRect(const MCRect& dirtyRect) override;
  bool isOpaque() const override { return drawsBackground_ && backgroundColor_.alphaComponent() >= 1; }

  void setFrameSize(MCSize size) override;

 private:
  void documentFrameChanged();
  MCViewRef documentView_;
  int documentObserver_ = 0;
  MCColor backgroundColor_ = MCColor::controlBackgroundColor();
  bool drawsBackground_ = true;
};
