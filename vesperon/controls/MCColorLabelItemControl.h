#pragma once
// MCColorLabelItemControl: one dot of a colour-label row — a circle in its colour (or, for the
// item that clears the label, an outline), a ring when selected, larger when highlighted.

#include <vesperon/toolkit/MCColor.h>
#include <vesperon/toolkit/MCView.h>

class MCColorLabelItemControl : public MCView {
 public:
  /// One label's dot (or the clear item) of `frame`.
  MCColorLabelItemControl(MCRect frame, long tag, MCColor color, bool isClearItem)
      : MCView(frame), tag_(tag), color_(color), clearItem_(isClearItem) {}

  /// The label number.
  long tag() const { return tag_; }
  /// The label's colour.
  const MCColor& color() const { return color_; }
  /// Whether this is the item that clears the label.
  bool isClearItem() const { return clearItem_; }
  /// Whether the item shows as chosen.
  bool isSelected() const { return selected_; }
  /// Shows the item as chosen or not.
  void setSelected(bool selected);
  /// Whether the item takes clicks.
  bool isEnabled() const { return enabled_; }
  /// Enables or disables the item.
  void setEnabled(bool enabled);
  /// A choice named by its label's colour ("Red"), ticked while selected; the clear item a button.
  std::vector<MCAccessibilityElement> accessibilityElements() const override;
  /// Whether the pointer is over the item.
  bool isHighlighted() const { return highlighted_; }
  /// Shows the item under the pointer or not.
  void setHighlighted(bool highlighted);
  /// The ink of the clear item's crossed circle; half-transparent label colour by default, a light
  /// colour on a dark background.
  const MCColor& inkColor() const { return inkColor_; }
  /// Sets the colour of the clear item's cross.
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
