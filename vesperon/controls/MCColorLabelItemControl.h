#pragma once
// MCColorLabelItemControl: one dot of a colour-label row — a circle in its colour (or, for the
// item that clears the label, an outline), a ring when selected, larger when highlighted.

#include <vesperon/toolkit/MCColor.h>
#include <vesperon/toolkit/MCView.h>

class MCColorLabelItemControl : public MCView {
 public:
  MCColorLabelItemControl(MCRect frame, long tag, MCColor color, bool isClearItem)
      : MCView(frame), tag_(tag), color_(color), clearItem_(isClearItem) {}

  long tag() const { return tag_; }
  const MCColor& color() const { return color_; }
  bool isClearItem() const { return clearItem_; }
  bool isSelected() const { return selected_; }
  void setSelected(bool selected);
  bool isEnabled() const { return enabled_; }
  void setEnabled(bool enabled);
  bool isHighlighted() const { return highlighted_; }
  void setHighlighted(bool highlighted);
  /// The ink of the clear item's crossed circle; half-transparent label colour by default, a light
  /// colour on a dark background.
  const MCColor& inkColor() const { return inkColor_; }
  void setInkColor(const MCColor& color);

  /// The dot: a circle centred in the bounds, inset by 3 unless highlighted.
  MCRect dotRect() const;
  bool isFlipped() const override { return true; }
  void drawRect(const MCRect& dirtyRect) override;

 private:
  long tag_;
  MCColor color_;
  bool clearItem_;
  MCColor inkColor_ = MCColor::labelColor().colorWithAlphaComponent(0.5);
  bool selected_ = false, enabled_ = true, highlighted_ = false;
};
