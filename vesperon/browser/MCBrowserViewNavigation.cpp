// MCBrowserView: keyboard navigation — the text-editing commands of the key bindings turned into
// moves of the two selections and into scrolling.
#include <vesperon/browser/MCBrowserView.h>

#include <vesperon/core/MCIndexSetExtensions.h>

void MCBrowserView::registerCommands() {
  const auto multiple = [this] { return allowsMultipleSelection_; };
  registerCommand("moveUp:", [this] { moveSelectionUp(1, false); });
  registerCommand("moveDown:", [this] { moveSelectionDown(1, false); });
  registerCommand("moveUpAndModifySelection:", [this, multiple] { moveSelectionUp(1, multiple()); });
  registerCommand("moveDownAndModifySelection:", [this, multiple] { moveSelectionDown(1, multiple()); });
  registerCommand("moveLeft:", [this] { moveSelectionLeft(1, false); });
  registerCommand("moveRight:", [this] { moveSelectionRight(1, false); });
  registerCommand("moveLeftAndModifySelection:", [this, multiple] { moveSelectionLeft(1, multiple()); });
  registerCommand("moveRightAndModifySelection:", [this, multiple] { moveSelectionRight(1, multiple()); });
  registerCommand("moveToBeginningOfDocument:", [this] { moveSelectionUp(contentLayout_->numberOfRows(), false); });
  registerCommand("moveToEndOfDocument:", [this] { moveSelectionDown(contentLayout_->numberOfRows(), false); });
  registerCommand("moveToBeginningOfDocumentAndModifySelection:",
                  [this, multiple] { moveSelectionUp(contentLayout_->numberOfRows(), multiple()); });
  registerCommand("moveToEndOfDocumentAndModifySelection:",
                  [this, multiple] { moveSelectionDown(contentLayout_->numberOfRows(), multiple()); });
  registerCommand("moveWordLeft:", [this] {
    if (allowsAlternateSelection_) alternateMoveSelectionLeft(1, false);
  });
  registerCommand("moveWordRight:", [this] {
    if (allowsAlternateSelection_) alternateMoveSelectionRight(1, false);
  });
  registerCommand("moveWordLeftAndModifySelection:", [this] {
    if (allowsAlternateSelection_) alternateMoveSelectionLeft(1, true);
  });
  registerCommand("moveWordRightAndModifySelection:", [this] {
    if (allowsAlternateSelection_) alternateMoveSelectionRight(1, true);
  });
  registerCommand("scrollLineUp:", [this] { scrollLineUp(); });
  registerCommand("scrollLineDown:", [this] { scrollLineDown(); });
  registerCommand("scrollPageUp:", [this] { scrollPageUp(); });
  registerCommand("scrollPageDown:", [this] { scrollPageDown(); });
  registerCommand("scrollToBeginningOfDocument:", [this] { scrollToBeginningOfDocument(); });
  registerCommand("scrollToEndOfDocument:", [this] { scrollToEndOfDocument(); });
  registerCommand("selectAll:", [this] { selectAll(); });
  registerCommand("copy:", [this] { copy(); });
  registerCommand("paste:", [this] { paste(); });
}

uint64_t MCBrowserView::offsetIndex(uint64_t index, int64_t by, const MCIndexSet& skippingIndexes) const {
  const uint64_t n = numberOfItems();
  if (n == 0) return NSNotFound;
  if (by >= 0) {
    uint64_t start = 0;
    if (index != NSNotFound) start = index + uint64_t(by) < n ? index + uint64_t(by) : n - 1;
    return missedIndexGreaterThanOrEqualToIndex(skippingIndexes, start, {0, n});
  }
  uint64_t start = n - 1;
  if (index != NSNotFound) {
    const uint64_t step = uint64_t(-by);
    start = index >= step ? index - step : 0;
    // An index past the end moves back into range.
    start = std::min(start, n - 1);
  }
  return missedIndexLessThanOrEqualToIndex(skippingIndexes, start, {0, n});
}

void MCBrowserView::moveSelectionUp(uint64_t rows, bool extend) {
  const uint64_t first = firstSelectionIndex();
  if (first == NSNotFound) {
    if (numberOfItems() > 0) selectIndex(numberOfItems() - 1, false, true);
    return;
  }
  const uint64_t target = contentLayout_->offsetItemIndex(first, -int64_t(std::min<uint64_t>(rows, INT64_MAX)), 0);
  if (target == NSNotFound || target >= first) return;
  if (extend) selectRange({target, first - target}, true, target, true);
  else selectIndex(target, false, true);
}

void MCBrowserView::moveSelectionDown(uint64_t rows, bool extend) {
  const uint64_t last = lastSelectionIndex();
  if (last == NSNotFound) {
    if (numberOfItems() > 0) selectIndex(0, false, true);
    return;
  }
  const uint64_t target = contentLayout_->offsetItemIndex(last, int64_t(std::min<uint64_t>(rows, INT64_MAX)), 0);
  if (target == NSNotFound || target <= last) return;
  if (extend) selectRange({last + 1, target - last}, true, target, true);
  else selectIndex(target, false, true);
}

void MCBrowserView::moveHorizontally(bool alternate, bool left, bool extend) {
  const uint64_t n = numberOfItems();
  if (n == 0) return;
  const MCIndexSet& own = alternate ? alternateSelectionIndexes_ : selectionIndexes_;
  const MCIndexSet& other = alternate ? selectionIndexes_ : alternateSelectionIndexes_;
  const uint64_t from = left ? own.firstIndex() : own.lastIndex();
  if (left && from == 0) return;
  if (!left && from != NSNotFound && from + 1 == n) return;
  const uint64_t target = offsetIndex(from, left ? -1 : 1, other);
  if (target != NSNotFound) {
    if (alternate) alternateSelectIndex(target, extend, true);
    else selectIndex(target, extend, true);
    return;
  }
  // Only items of the other selection lie that way: stay, and show the neighbour.
  if (left) {
    if (from != NSNotFound) scrollToIndex(from - 1);
  } else if (from != NSNotFound && from + 1 < n) {
    scrollToIndex(from + 1);
  }
}

void MCBrowserView::moveSelectionLeft(uint64_t, bool extend) { moveHorizontally(false, true, extend); }
void MCBrowserView::moveSelectionRight(uint64_t, bool extend) { moveHorizontally(false, false, extend); }
void MCBrowserView::alternateMoveSelectionLeft(uint64_t, bool extend) { moveHorizontally(true, true, extend); }
void MCBrowserView::alternateMoveSelectionRight(uint64_t, bool extend) { moveHorizontally(true, false, extend); }

void MCBrowserView::scrollAlongAxis(double delta) {
  const MCRect v = visibleRect();
  MCRect target = v;
  if (contentLayout_->isHorizontal()) target.origin.x += delta;
  else target.origin.y += delta;
  scrollToVisibleRect(target);
}

void MCBrowserView::scrollLineUp() {
  const MCSize item = contentLayout_->itemSize();
  scrollAlongAxis(-(contentLayout_->isHorizontal() ? item.width : item.height));
}

void MCBrowserView::scrollLineDown() {
  const MCSize item = contentLayout_->itemSize();
  scrollAlongAxis(contentLayout_->isHorizontal() ? item.width : item.height);
}

void MCBrowserView::scrollPageUp() {
  const MCRect v = visibleRect();
  scrollAlongAxis(-(contentLayout_->isHorizontal() ? v.size.width : v.size.height));
}

void MCBrowserView::scrollPageDown() {
  const MCRect v = visibleRect();
  scrollAlongAxis(contentLayout_->isHorizontal() ? v.size.width : v.size.height);
}

void MCBrowserView::scrollToBeginningOfDocument() {
  MCRect target = visibleRect();
  if (contentLayout_->isHorizontal()) target.origin.x = bounds().origin.x;
  else target.origin.y = bounds().origin.y;
  scrollToVisibleRect(target);
}

void MCBrowserView::scrollToEndOfDocument() {
  MCRect target = visibleRect();
  if (contentLayout_->isHorizontal()) target.origin.x = MCMaxX(bounds()) - target.size.width;
  else target.origin.y = MCMaxY(bounds()) - target.size.height;
  scrollToVisibleRect(target);
}

void MCBrowserView::selectAll() {
  if (!allowsMultipleSelection_) return;
  setSelectionIndexes(MCIndexSet(MCRange{0, numberOfItems()}), true);
}
