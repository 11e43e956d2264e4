#pragma once
// MCScroller: an overlay scroller that a scroll view draws over its content — a thin rounded knob
// along one edge, shown only while the document is larger than the view. A press on the knob
// drags it; a press beside it pages toward the press.

#include <vesperon/toolkit/MCView.h>

class MCScrollView;

class MCScroller : public MCView {
 public:
  MCScroller(bool vertical, MCScrollView* scrollView);

  bool isVertical() const { return vertical_; }
  /// The visible share of the document, 0 to 1; 1 hides the scroller.
  double knobProportion() const { return knobProportion_; }
  /// The position, 0 at the document's start to 1 at its end.
  double doubleValue() const { return doubleValue_; }
  void setKnobProportion(double proportion, double value);

  /// The knob in the scroller's coordinates (flipped); empty when hidden.
  MCRect knobRect() const;
  static constexpr double kThickness = 10;
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
