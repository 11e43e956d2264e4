#include <vesperon/controls/MCColorLabelControl.h>

#include <vesperon/controls/MCColorLabelMapper.h>
#include <vesperon/core/MCLocalizedString.h>
#include <vesperon/drawing/MCBadgeFactory.h>
#include <vesperon/platform/MCGraphicsContext.h>
#include <vesperon/toolkit/MCAttributedString.h>
#include <vesperon/toolkit/MCMenu.h>

namespace {
MCAttributedString lineOf(const std::string& text, const MCColor& color = MCColor::secondaryLabelColor()) {
  MCTextAttributes attributes;
  attributes.font = MCFont::systemFontOfSize(11);
  attributes.foregroundColor = color;
  return MCAttributedString(text, attributes);
}
constexpr MCLocalizableKey kNameKeys[] = {
    MCLocalizableKey{"color_label_red", "Red"},       MCLocalizableKey{"color_label_orange", "Orange"},
    MCLocalizableKey{"color_label_yellow", "Yellow"}, MCLocalizableKey{"color_label_green", "Green"},
    MCLocalizableKey{"color_label_blue", "Blue"},     MCLocalizableKey{"color_label_purple", "Purple"},
    MCLocalizableKey{"color_label_gray", "Gray"}};
}  // namespace

const std::vector<long>& MCColorLabelControl::colorLabelIds() {
  static const std::vector<long> ids = {1, 2, 3, 4, 5, 6, 7};
  return ids;
}

const std::map<long, MCColor>& MCColorLabelControl::labelMap() {
  static const std::map<long, MCColor> map = [] {
    std::map<long, MCColor> m;
    for (long id : colorLabelIds()) m[id] = *MCBadgeFactory::labelColor(id);
    return m;
  }();
  return map;
}

std::string MCColorLabelControl::labelName(long label) {
  return label >= 1 && label <= 7 ? MCLocalizedString(kNameKeys[label - 1]) : std::string();
}

MCColorLabelControl::MCColorLabelControl() : MCView(MCRect{}) {
  long index = 0;
  auto place = [&](long tag, MCColor color, bool clear) {
    auto item = std::make_shared<MCColorLabelItemControl>(
        MCMakeRect(double(index++) * kCellSize.width + kInsets.left, 0, kCellSize.width, kCellSize.height), tag, color,
        clear);
    items_.push_back(item);
    addSubview(item);
  };
  for (long id : colorLabelIds()) place(id, labelMap().at(id), false);
  place(0, MCColor::clearColor(), true);
  setFrameSize(intrinsicContentSize());
}

MCSize MCColorLabelControl::intrinsicContentSize() const {
  const double width = kInsets.left + double(items_.size()) * kCellSize.width + kInsets.right;
  return {width, 24 + lineOf("Ag").size().height + 2};
}

void MCColorLabelControl::setUsedColorLabels(std::set<long> labels) {
  usedColorLabels_ = std::move(labels);
  for (auto& item : items_) item->setSelected(usedColorLabels_.count(item->tag()) != 0);
}

void MCColorLabelControl::setEnabled(bool enabled) {
  enabled_ = enabled;
  for (auto& item : items_) item->setEnabled(enabled);
  setNeedsDisplay(true);
}

std::string MCColorLabelControl::labelText() const {
  if (enabled_ && activeTag_) {
    if (*activeTag_ == 0) return MCLocalizedString("color_label_clear_all", "Clear all color labels");
    return MCLocalizedStringWithFormat("color_label_set_to_format", "Set color label to %@", {labelName(*activeTag_)});
  }
  return MCLocalizedString("color_label_color_label", "Color label");
}

MCColorLabelItemControl* MCColorLabelControl::itemAtPoint(MCPoint point) const {
  for (const auto& item : items_)
    if (MCPointInRect(point, item->frame())) return item.get();
  return nullptr;
}

void MCColorLabelControl::updateTrackingAreas() {
  MCView::updateTrackingAreas();
  for (const auto& area : std::vector<MCTrackingAreaRef>(trackingAreas())) removeTrackingArea(area);
  addTrackingArea(std::make_shared<MCTrackingArea>(bounds(), 547, this));
}

void MCColorLabelControl::track(const MCEvent& event, bool inside) {
  const MCColorLabelItemControl* item = inside ? itemAtPoint(convertPoint(event.locationInWindow(), nullptr)) : nullptr;
  activeTag_ = item ? std::optional<long>(item->tag()) : std::nullopt;
  for (auto& each : items_) each->setHighlighted(activeTag_ && each->tag() == *activeTag_);
  setNeedsDisplay(true);
}

void MCColorLabelControl::mouseEntered(const MCEvent& event) { track(event, true); }
void MCColorLabelControl::mouseMoved(const MCEvent& event) { track(event, true); }
void MCColorLabelControl::mouseExited(const MCEvent& event) { track(event, false); }

void MCColorLabelControl::mouseDown(const MCEvent& event) {
  if (!enabled_) return;
  if (const MCColorLabelItemControl* item = itemAtPoint(convertPoint(event.locationInWindow(), nullptr))) chooseItem(*item);
}

void MCColorLabelControl::setTextColor(const MCColor& color) {
  textColor_ = color;
  for (const auto& item : items_)
    if (item->isClearItem()) item->setInkColor(color);
  setNeedsDisplay(true);
}

void MCColorLabelControl::chooseItem(const MCColorLabelItemControl& item) {
  tag_ = item.tag();
  command_ = item.isClearItem() ? 1 : 0;
  if (action) action(*this);
  // Picked from a menu: the menu has done its job and closes.
  if (MCMenu* menu = enclosingMenu()) menu->cancelTracking();
}

void MCColorLabelControl::drawRect(const MCRect&) {
  MCGraphicsContext* context = MCGraphicsContext::currentContext();
  if (!context) return;
  const MCAttributedString line = lineOf(labelText(), textColor_);
  line.drawAtPoint({12, 24}, *context);
}

std::vector<MCAccessibilityElement> MCColorLabelControl::accessibilityElements() const {
  MCAccessibilityElement group;
  group.role = MCAccessibilityRole::Group;
  group.label = MCLocalizedString("color_label_color_label", "Color label");
  group.frame = bounds();
  group.enabled = enabled_;
  return {group};
}
