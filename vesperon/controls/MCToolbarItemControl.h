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

  double offsetX = 4.0, offsetY = 4.0;
  MCSize minItemSize{64, 48};
  MCColor defaultColor = MCColor::colorWithWhite(1, 0.8);
  MCColor selectedColor = MCColor::colorWithWhite(1, 0.15);
  MCColor mouseOverColor = MCColor::colorWithWhite(1, 0.2);
  MCColor pressedColor = MCColor::colorWithWhite(1, 0.25);
  static MCColor disabledControlTextColor() { return MCColor::colorWithWhite(0.5, 0.5); }

  const std::optional<std::string>& title() const { return title_; }
  void setTitle(std::optional<std::string> title);
  const MCImageRef& image() const { return image_; }
  void setImage(MCImageRef image);
  bool isSelected() const { return selected_; }
  void setIsSelected(bool selected);
  bool isEnabled() const { return enabled_; }
  void setEnabled(bool enabled);
  bool isMouseOver() const { return mouseOver_; }
  bool isPressed() const { return pressed_; }
  bool isTracking() const { return tracking_; }
  const std::string& toolTip() const { return toolTip_; }
  void setToolTip(std::string tip) { toolTip_ = std::move(tip); }
  /// The action, sent with the control as sender; none sends nothing.
  std::function<void(MCToolbarItemControl&)> action;

  /// The colour icon and text are drawn in: the default colour, or the disabled one.
  MCColor contentColor() const { return enabled_ ? defaultColor : disabledControlTextColor(); }
  /// The highlight for the present state, or none.
  std::optional<MCColor> highlightColor() const;
  /// The label's size as set: its text's size.
  MCSize labelSize() const;
  MCRect labelFrame() const;
  MCRect imageFrame() const;
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

 private:
  std::optional<std::string> title_;
  MCImageRef image_;
  bool selected_ = false, enabled_ = true, mouseOver_ = false, pressed_ = false, tracking_ = false;
  std::optional<int> tooltipTag_;
  std::string toolTip_;
};
