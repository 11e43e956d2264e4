#include <vesperon/controls/MCToolbarItemControl.h>

#include <vesperon/platform/MCGraphicsContext.h>
#include <vesperon/toolkit/MCAttributedString.h>
#include <vesperon/toolkit/MCWindow.h>

#include <algorithm>

namespace {
MCAttributedString labelText(const std::string& text, const MCColor& color) {
  MCTextAttributes attributes;
  attributes.font = MCFont::systemFontOfSizeWeight(11, 500);
  attributes.foregroundColor = color;
  MCAttributedString string(text, attributes);
  string.setAlignment(MCTextAlignment::Center);
  return string;
}
}  // namespace

MCToolbarItemControl::MCToolbarItemControl() : MCView(MCRect{}) { sizeToFit(); }

std::shared_ptr<MCToolbarItemControl> MCToolbarItemControl::create() { return std::make_shared<MCToolbarItemControl>(); }

void MCToolbarItemControl::setTitle(std::optional<std::string> title) {
  title_ = std::move(title);
  sizeToFit();
  setNeedsLayout(true);
  setNeedsDisplay(true);
}

void MCToolbarItemControl::setImage(MCImageRef image) {
  image_ = std::move(image);
  setNeedsDisplay(true);
}

void MCToolbarItemControl::setIsSelected(bool selected) {
  selected_ = selected;
  setNeedsDisplay(true);
}

void MCToolbarItemControl::setEnabled(bool enabled) {
  enabled_ = enabled;
  setNeedsDisplay(true);
}

MCSize MCToolbarItemControl::labelSize() const { return labelText(title_.value_or(""), contentColor()).size(); }

MCSize MCToolbarItemControl::intrinsicContentSize() const { return {std::max(64.0, labelSize().width + 8), 48}; }

void MCToolbarItemControl::sizeToFit() { setFrameSize(intrinsicContentSize()); }

MCRect MCToolbarItemControl::labelFrame() const {
  const MCSize size = labelSize();
  return MCMakeRect((bounds().size.width - size.width) / 2, 4, size.width, size.height);
}

MCRect MCToolbarItemControl::imageFrame() const {
  const MCRect label = labelFrame();
  return MCMakeRect(4, MCMaxY(label), bounds().size.width - 8, bounds().size.height - label.size.height - 8);
}

std::optional<MCColor> MCToolbarItemControl::highlightColor() const {
  if (!enabled_) return std::nullopt;
  if (pressed_) return pressedColor;
  if (mouseOver_ && !tracking_) return mouseOverColor;
  if (selected_) return selectedColor;
  return std::nullopt;
}

void MCToolbarItemControl::updateTrackingAreas() {
  MCView::updateTrackingAreas();
  for (const auto& area : std::vector<MCTrackingAreaRef>(trackingAreas())) removeTrackingArea(area);
  addTrackingArea(std::make_shared<MCTrackingArea>(bounds(), 547, this));
  if (tooltipTag_) removeToolTip(*tooltipTag_);
  tooltipTag_ = addToolTipRect(bounds(), [this](MCPoint) { return toolTip_; });
}

void MCToolbarItemControl::mouseEntered(const MCEvent&) {
  mouseOver_ = true;
  setNeedsDisplay(true);
}

void MCToolbarItemControl::mouseExited(const MCEvent&) {
  mouseOver_ = false;
  setNeedsDisplay(true);
}

void MCToolbarItemControl::mouseDown(const MCEvent& event) {
  MCWindow* window = this->window();
  if (!window || !enabled_) return;
  const std::shared_ptr<MCView> keep = sharedView();
  mouseOver_ = false;
  tracking_ = true;
  pressed_ = true;
  setNeedsDisplay(true);
  MCPoint location = convertPoint(event.locationInWindow(), nullptr);
  constexpr MCEventMask kUpOrDragged = 68;
  while (auto next = window->nextEventMatchingMask(kUpOrDragged)) {
    location = convertPoint(next->locationInWindow(), nullptr);
    if (next->type() == MCEventType::LeftMouseDragged) {
      pressed_ = mouseInRect(location, bounds());
      setNeedsDisplay(true);
    } else if (next->type() == MCEventType::LeftMouseUp) {
      break;
    }
  }
  if (mouseInRect(location, bounds()) && action) action(*this);
  pressed_ = false;
  tracking_ = false;
  setNeedsDisplay(true);
}

void MCToolbarItemControl::drawRect(const MCRect&) {
  MCGraphicsContext* context = MCGraphicsContext::currentContext();
  if (!context) return;
  // Disabled: no highlight at all; the icon and the title still show, in the disabled colour.
  if (auto color = highlightColor()) {
    context->beginPath();
    CGContextAddRoundedRectangle(*context, MCInsetRect(bounds(), 0, 4), 4.0, 4.0);
    color->setFill(*context);
    context->fillPath();
  }
  if (image_) {
    const MCSize size = MCImagePointSize(*image_);
    const MCRect frame = imageFrame();
    auto tinted = MCImageTintedWithColor(*image_, contentColor());
    if (tinted)
      MCImageDrawInRect(*tinted, MCMakeRect(MCMidX(frame) - size.width / 2, MCMidY(frame) - size.height / 2, size.width,
                                            size.height));
  }
  labelText(title_.value_or(""), contentColor()).drawInRect(labelFrame(), *context);
}

std::vector<MCAccessibilityElement> MCToolbarItemControl::accessibilityElements() const {
  MCAccessibilityElement button;
  button.role = MCAccessibilityRole::Button;
  button.label = title_ && !title_->empty() ? *title_ : toolTip_;
  if (button.label != toolTip_) button.value = toolTip_;
  button.frame = bounds();
  button.enabled = enabled_;
  if (selected_) button.checked = true;
  return {button};
}
