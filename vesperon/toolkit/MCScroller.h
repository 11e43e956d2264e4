#pragma once
// MCScroller: an overlay scroller that a scroll view draws over its content — a thin rounded knob
// along one edge, shown only while the document is larger than the view. A press on the knob
// drags it; a press beside it pages toward the press.

#include <vesperon/toolkit/MCView.h>

class MCScrollView;

class MCScroller : public MCView {
 public:
  /// A scroller of `scrollView` along one axis.
  MCScroller(bool vertical, MCScrollView* scrollView);

  /// Whether it scrolls vertically.
  bool isVertical() const { return vertical_; }
  /// The visible share of the document, 0 to 1; 1 hides the scroller.
  double knobProportion() const { return knobProportion_; }
  /// The position, 0 at the document's start to 1 at its end.
  double doubleValue() const { return doubleValue_; }
  /// Sets the knob's length as a share of the track, and its place (0 to 1).
  void setKnobProportion(double proportion, double value);

  /// The knob in the scroller's coordinates (flipped); empty when hidden.
  MCRect knobRect() const;
  /// The scroller's width across its axis.
  static constexpr double kThickness = 10;
  /// The shortest knob.
  static constexpr double kMinimumKnobLength = 20;

  bool isFlipped() const override { return true; }
  void drawRect(const MCRect& dirtyRect) override;
  MCView* hitTest(MCPoint point) override;
  void mouseDown(const MCEvent& event) override;

 private:
  double trackLength() const;
  bool vertical_;
  MCScrollView* scrollView_;
  double knobProportion_ = 1, doubleValue_ = 0;
};
