#pragma once
// MCToolbarItemControl: a small toolbar button — an icon above a short label on a rounded
// highlight that answers to hover, press and selection — which sends its action like any control.
//
// Metrics are fixed: at least 64 by 48 points; the label 4 points from the bottom, the icon above
// it. The highlight is `pressedColor` while pressed, `mouseOverColor` under the pointer (not
// during a press), `selectedColor` when selected, and nothing when disabled. A press runs a
// tracking loop until the button comes up: dragging out removes the pressed highlight, dragging
// back restores it, and only a release inside sends the action. The control is not flipped.

#include <vesperon/drawing/MCImageExtensions.h>
#include <vesperon/toolkit/MCColor.h>
#include <vesperon/toolkit/MCView.h>

#include <functional>
#include <optional>
#include <string>

class MCToolbarItemControl : public MCView {
 public:
  MCToolbarItemControl();
  /// Made through `create`: the control subscribes its tracking as it joins a window.
  static std::shared_ptr<MCToolbarItemControl> create();

  /// @name Geometry
  //@{
  /// The inset of the content from the control's edges, and the smallest size of an item.
  double offsetX = 4.0, offsetY = 4.0;
  MCSize minItemSize{64, 48};
  //@}
  /// The colour of icon and text.
  MCColor defaultColor = MCColor::colorWithWhite(1, 0.8);
  /// The highlight of a selected control.
  MCColor selectedColor = MCColor::colorWithWhite(1, 0.15);
  /// The highlight under the pointer.
  MCColor mouseOverColor = MCColor::colorWithWhite(1, 0.2);
  /// The highlight while pressed.
  MCColor pressedColor = MCColor::colorWithWhite(1, 0.25);
  /// The colour of icon and text of a disabled control.
  static MCColor disabledControlTextColor() { return MCColor::colorWithWhite(0.5, 0.5); }

  /// The label under the image; none shows no label.
  const std::optional<std::string>& title() const { return title_; }
  /// Sets the label, and lays out and redraws.
  void setTitle(std::optional<std::string> title);
  /// The icon.
  const MCImageRef& image() const { return image_; }
  /// Sets the icon, and redraws.
  void setImage(MCImageRef image);
  /// Whether the control shows as selected.
  bool isSelected() const { return selected_; }
  /// Selects or deselects, and redraws.
  void setIsSelected(bool selected);
  /// Whether the control takes clicks.
  bool isEnabled() const { return enabled_; }
  /// Enables or disables, and redraws.
  void setEnabled(bool enabled);
  /// Whether the pointer is over the control.
  bool isMouseOver() const { return mouseOver_; }
  /// Whether a press is in hand and the pointer is inside.
  bool isPressed() const { return pressed_; }
  /// Whether a press is in hand.
  bool isTracking() const { return tracking_; }
  /// The tool tip text.
  const std::string& toolTip() const { return toolTip_; }
  /// Sets the tool tip text.
  void setToolTip(std::string tip) { toolTip_ = std::move(tip); }
  /// The action, sent with the control as sender; none sends nothing.
  std::function<void(MCToolbarItemControl&)> action;

  /// The colour icon and text are drawn in: the default colour, or the disabled one.
  MCColor contentColor() const { return enabled_ ? defaultColor : disabledControlTextColor(); }
  /// The highlight for the present state, or none.
  std::optional<MCColor> highlightColor() const;
  /// The label's size as set: its text's size.
  MCSize labelSize() const;
  /// Where the label lies.
  MCRect labelFrame() const;
  /// Where the icon lies.
  MCRect imageFrame() const;
  /// The tag of the control's tool tip rectangle; none before it has one.
  std::optional<int> tooltipTag() const { return tooltipTag_; }

  MCSize intrinsicContentSize() const override;
  /// Fits the frame to the intrinsic size.
  void sizeToFit();
  bool isFlipped() const override { return false; }
  void updateTrackingAreas() override;
  void mouseEntered(const MCEvent& event) override;
  void mouseExited(const MCEvent& event) override;
  void mouseDown(const MCEvent& event) override;
  void drawRect(const MCRect& dirtyRect) override;
  /// A button named by its label (its tool tip when it has none), pressed while selected.
  std::vector<MCAccessibilityElement> accessibilityElements() const override;

 private:
  std::optional<std::string> title_;
  MCImageRef image_;
  bool selected_ = false, enabled_ = true, mouseOver_ = false, pressed_ = false, tracking_ = false;
  std::optional<int> tooltipTag_;
  std::string toolTip_;
};
