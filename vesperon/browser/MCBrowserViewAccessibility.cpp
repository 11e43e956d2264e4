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

std::string MCBrowserView::accessibilityName(uint64_t index) const {
  std::string name;
  if (auto source = dataSource())
    if (const auto path = contentLayout_->indexPathFromItemIndex(index))
      name = source->accessibilityNameForItem(const_cast<MCBrowserView&>(*this), *path);
  return name.empty() ? "Item " + groupedNumber(index + 1) : name;
}

std::vector<MCAccessibilityElement> MCBrowserView::accessibilityElements() const {
  std::vector<MCAccessibilityElement> cells;
  const uint64_t total = numberOfItems();
  for (const uint64_t index : contentLayout_->itemIndexesInRect(visibleRect())) {
    MCAccessibilityElement cell;
    cell.role = MCAccessibilityRole::Cell;
    cell.label = accessibilityName(index);
    cell.value = groupedNumber(index + 1) + " of " + groupedNumber(total);
    cell.frame = contentLayout_->cellFrameAtItemIndex(index);
    cell.checked = selectionIndexes_.containsIndex(index);
    cells.push_back(std::move(cell));
  }
  return cells;
}

std::string MCBrowserView::accessibilityValue() const {
  const uint64_t total = numberOfItems();
  if (selectionIndexes_.empty()) return "No selection, " + groupedNumber(total) + (total == 1 ? " item" : " items");
  const uint64_t index = selectionIndexes_.containsIndex(focusIndex_) ? focusIndex_ : selectionIndexes_.lastIndex();
  if (!contentLayout_->indexPathFromItemIndex(index)) return {};
  const uint64_t position = index + 1;
  std::string value = accessibilityName(index) + ", " + groupedNumber(position) + " of " + groupedNumber(total);
  const uint64_t count = selectionIndexes_.count();
  if (count > 1) value += ", " + groupedNumber(count) + " selected";
  return value;
}
