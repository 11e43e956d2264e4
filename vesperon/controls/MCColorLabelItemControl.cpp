#include <vesperon/controls/MCColorLabelItemControl.h>

#include <vesperon/controls/MCColorLabelControl.h>
#include <vesperon/core/MCLocalizedString.h>
#include <vesperon/platform/MCGraphicsContext.h>

#include <algorithm>

void MCColorLabelItemControl::setSelected(bool selected) {
  if (selected == selected_) return;
  selected_ = selected;
  setNeedsDisplay(true);
}

void MCColorLabelItemControl::setEnabled(bool enabled) {
  if (enabled == enabled_) return;
  enabled_ = enabled;
  setNeedsDisplay(true);
}

void MCColorLabelItemControl::setHighlighted(bool highlighted) {
  if (highlighted == highlighted_) return;
  highlighted_ = highlighted;
  setNeedsDisplay(true);
}

void MCColorLabelItemControl::setInkColor(const MCColor& color) {
  inkColor_ = color;
  setNeedsDisplay(true);
}

MCRect MCColorLabelItemControl::dotRect() const {
  const MCRect b = bounds();
  const double side = std::min(b.size.width, b.size.height);
  const MCRect square = MCMakeRect(MCMidX(b) - side / 2, MCMidY(b) - side / 2, side, side);
  return highlighted_ ? square : MCInsetRect(square, 3, 3);
}

void MCColorLabelItemControl::drawRect(const MCRect&) {
  MCGraphicsContext* context = MCGraphicsContext::currentContext();
  if (!context) return;
  const MCRect dot = dotRect();
  const double alpha = enabled_ ? 1.0 : 0.4;
  if (clearItem_) {
    inkColor_.colorWithAlphaComponent(inkColor_.alphaComponent() * alpha).setStroke(*context);
    context->setLineWidth(1);
    context->strokeEllipseInRect(MCInsetRect(dot, 0.5, 0.5));
    context->beginPath();
    context->moveToPoint(MCMinX(dot) + 3, MCMaxY(dot) - 3);
    context->addLineToPoint(MCMaxX(dot) - 3, MCMinY(dot) + 3);
    context->strokePath();
    return;
  }
  color_.colorWithAlphaComponent(alpha).setFill(*context);
  context->fillEllipseInRect(dot);
  // The rim in a darker shade of the colour; a selected dot gets a ring in a lighter one.
  color_.blendedColorWithFraction(0.3, MCColor::blackColor()).colorWithAlphaComponent(alpha).setStroke(*context);
  context->setLineWidth(1);
  context->strokeEllipseInRect(MCInsetRect(dot, 0.5, 0.5));
  if (selected_ && enabled_) {
    color_.blendedColorWithFraction(0.5, MCColor::whiteColor()).setStroke(*context);
    context->setLineWidth(1.5);
    context->strokeEllipseInRect(MCInsetRect(dot, -1, -1));
  }
}

std::vector<MCAccessibilityElement> MCColorLabelItemControl::accessibilityElements() const {
  MCAccessibilityElement item;
  item.frame = bounds();
  item.enabled = enabled_;
  if (clearItem_) {
    item.role = MCAccessibilityRole::Button;
    item.label = MCLocalizedString("color_label_clear_all", "Clear all color labels");
  } else {
    item.role = MCAccessibilityRole::CheckBox;
    item.label = MCColorLabelControl::labelName(tag_);
    item.checked = selected_;
  }
  return {item};
}
