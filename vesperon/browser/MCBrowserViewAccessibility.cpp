// What the browser view tells assistive technologies: its name, the focused item and the selection.
#include <vesperon/browser/MCBrowserView.h>
#include <vesperon/browser/MCBrowserViewDataSource.h>

namespace {

// "2000" → "2,000", as a screen reader says a count best.
std::string groupedNumber(uint64_t number) {
  std::string digits = std::to_string(number);
  for (int at = int(digits.size()) - 3; at > 0; at -= 3) digits.insert(size_t(at), ",");
  return digits;
}

}  // namespace

void MCBrowserView::setAccessibilityLabel(std::string label) {
  if (label == accessibilityName_) return;
  accessibilityName_ = std::move(label);
  accessibilityDidChange();
}

std::string MCBrowserView::accessibilityValue() const {
  const uint64_t total = numberOfItems();
  if (selectionIndexes_.empty()) return "No selection, " + groupedNumber(total) + (total == 1 ? " item" : " items");
  const uint64_t index = selectionIndexes_.containsIndex(focusIndex_) ? focusIndex_ : selectionIndexes_.lastIndex();
  const auto focused = contentLayout_->indexPathFromItemIndex(index);
  if (!focused) return {};
  const uint64_t position = index + 1;
  std::string name;
  if (auto source = dataSource())
    name = source->accessibilityNameForItem(const_cast<MCBrowserView&>(*this), *focused);
  if (name.empty()) name = "Item " + groupedNumber(position);
  std::string value = name + ", " + groupedNumber(position) + " of " + groupedNumber(total);
  const uint64_t count = selectionIndexes_.count();
  if (count > 1) value += ", " + groupedNumber(count) + " selected";
  return value;
}
