#pragma once
// MCColorLabelControl: a row of colour dots, for a menu item or a toolbar: the user picks a
// colour label (1 to 7) or clears it (the last item, tag 0). The line under the dots names the
// label under the pointer ("color_label_set_to_format" with its name, "color_label_clear_all"),
// or, with none, "color_label_color_label". Choosing an item sets `tag` to its label and
// `command` to 1 for the clear item, 0 otherwise, then sends the action; when the control is a
// menu item's view (MCMenuItem::view), it then ends the menu's tracking, so the menu closes.

#include <vesperon/controls/MCColorLabelItemControl.h>

#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

class MCColorLabelControl : public MCView {
 public:
  MCColorLabelControl();

  /// The size of one label's item.
  static constexpr MCSize kCellSize{24, 20};
  /// The margins around the row of items.
  static constexpr MCEdgeInsets kInsets{0, 10, 0, 10};
  /// The gap between items.
  static constexpr double kSpacing = 4;
  /// The label numbers in the order shown (the clear item first).
  static const std::vector<long>& colorLabelIds();
  /// Label number to colour, and to the localised name.
  static const std::map<long, MCColor>& labelMap();
  /// The localised name of a label ("Red" …).
  static std::string labelName(long label);

  /// The item controls, in the order shown.
  const std::vector<std::shared_ptr<MCColorLabelItemControl>>& labelItemControls() const { return items_; }
  /// The label last chosen; none before a choice.
  std::optional<long> activeColorLabelTag() const { return activeTag_; }
  /// The labels shown as selected.
  const std::set<long>& usedColorLabels() const { return usedColorLabels_; }
  /// Shows the items of these labels as selected.
  void setUsedColorLabels(std::set<long> labels);
  /// Whether the control takes clicks.
  bool isEnabled() const { return enabled_; }
  /// Enables or disables the control and its items.
  void setEnabled(bool enabled);
  /// The control's tag, for the action's receiver.
  long tag() const { return tag_; }
  /// The command of the last choice.
  int command() const { return command_; }
  /// Called with the control when a label is chosen.
  std::function<void(MCColorLabelControl&)> action;

  /// The colour of the text under the dots and of the clear item's ink: the secondary label
  /// colour by default; a control on a dark background sets a light one.
  const MCColor& textColor() const { return textColor_; }
  /// Sets the text colour and redraws.
  void setTextColor(const MCColor& color);

  /// The text under the dots for the present state.
  std::string labelText() const;
  /// Chooses an item, as a click on it does.
  void chooseItem(const MCColorLabelItemControl& item);

  MCSize intrinsicContentSize() const override;
  bool isFlipped() const override { return true; }
  void updateTrackingAreas() override;
  void mouseEntered(const MCEvent& event) override;
  void mouseMoved(const MCEvent& event) override;
  void mouseExited(const MCEvent& event) override;
  void mouseDown(const MCEvent& event) override;
  void drawRect(const MCRect& dirtyRect) override;
  /// A group named as the line under the dots names it with no pointer over them; the dots are
  /// its items' own.
  std::vector<MCAccessibilityElement> accessibilityElements() const override;

 private:
  void track(const MCEvent& event, bool inside);
  MCColorLabelItemControl* itemAtPoint(MCPoint point) const;

  std::vector<std::shared_ptr<MCColorLabelItemControl>> items_;
  MCColor textColor_ = MCColor::secondaryLabelColor();
  std::optional<long> activeTag_;
  std::set<long> usedColorLabels_;
  bool enabled_ = true;
  long tag_ = 0;
  int command_ = 0;
};
