// MCBrowserView: the two selections and the mouse sweep.
#include <vesperon/browser/MCBrowserView.h>

#include <vesperon/toolkit/MCPreviewPanel.h>

#include <algorithm>

// MARK: Read side

std::optional<MCIndexPath> MCBrowserView::firstSelectedIndexPath() const {
  return contentLayout_->indexPathFromItemIndex(selectionIndexes_.firstIndex());
}
std::optional<MCIndexPath> MCBrowserView::lastSelectedIndexPath() const {
  return contentLayout_->indexPathFromItemIndex(selectionIndexes_.lastIndex());
}
std::optional<MCIndexPath> MCBrowserView::alternateFirstSelectedIndexPath() const {
  return contentLayout_->indexPathFromItemIndex(alternateSelectionIndexes_.firstIndex());
}
std::optional<MCIndexPath> MCBrowserView::alternateLastSelectedIndexPath() const {
  return contentLayout_->indexPathFromItemIndex(alternateSelectionIndexes_.lastIndex());
}
MCIndexSet MCBrowserView::selectedGroupsIndexes() const {
  return contentLayout_->groupIndexesForItemIndexes(selectionIndexes_);
}
MCIndexSet MCBrowserView::alternateSelectedGroupsIndexes() const {
  return contentLayout_->groupIndexesForItemIndexes(alternateSelectionIndexes_);
}
std::vector<MCIndexPath> MCBrowserView::selectionIndexPaths() const { return pathsFor(selectionIndexes_); }
std::vector<MCIndexPath> MCBrowserView::alternateSelectionIndexPaths() const {
  return pathsFor(alternateSelectionIndexes_);
}

// MARK: Write side

bool MCBrowserView::setIndexes(MCIndexSet& set, const MCIndexSet* indexes, bool extend, bool notify) {
  const bool guarded = extend || !allowsEmptySelection_;
  const bool none = !indexes || indexes->empty();
  if (guarded && none) return false;
  if (extend && set.containsIndexes(*indexes)) return false;
  if (!extend) {
    if (none ? set.empty() : set == *indexes) return false;
    set.removeAllIndexes();
  }
  if (!none) set.addIndexes(*indexes);
  if (notify) notifySelectionDidChange();
  setNeedsDisplay(true);
  return true;
}

bool MCBrowserView::setSelectionIndexes(const MCIndexSet* indexes, bool extend, bool notify) {
  return setIndexes(selectionIndexes_, indexes, extend, notify);
}

bool MCBrowserView::setAlternateSelectionIndexes(const MCIndexSet* indexes, bool extend, bool notify) {
  return setIndexes(alternateSelectionIndexes_, indexes, extend, notify);
}

bool MCBrowserView::setSelectionIndexPaths(const std::vector<MCIndexPath>& indexPaths) {
  return setSelectionIndexes(contentLayout_->itemIndexesFromIndexPaths(indexPaths), false);
}

bool MCBrowserView::setAlternateSelectionIndexPaths(const std::vector<MCIndexPath>& indexPaths) {
  return setAlternateSelectionIndexes(contentLayout_->itemIndexesFromIndexPaths(indexPaths), false);
}

void MCBrowserView::selectIndex(uint64_t index, bool extend, bool autoscroll, bool notify) {
  focusIndex_ = index;  // the end the keys moved, which screen readers announce
  if (setSelectionIndexes(MCIndexSet(index), extend, notify) && autoscroll) scrollToIndex(index);
}

void MCBrowserView::alternateSelectIndex(uint64_t index, bool extend, bool autoscroll, bool notify) {
  if (setAlternateSelectionIndexes(MCIndexSet(index), extend, notify) && autoscroll) scrollToIndex(index);
}

void MCBrowserView::selectRange(MCRange range, bool extend, uint64_t autoscrollToIndex, bool notify) {
  if (setSelectionIndexes(MCIndexSet(range), extend, notify) && autoscrollToIndex != NSNotFound)
    scrollToIndex(autoscrollToIndex);
}

void MCBrowserView::alternateSelectRange(MCRange range, bool extend, uint64_t autoscrollToIndex, bool notify) {
  if (setAlternateSelectionIndexes(MCIndexSet(range), extend, notify) && autoscrollToIndex != NSNotFound)
    scrollToIndex(autoscrollToIndex);
}

void MCBrowserView::selectItemAtIndexPath(const MCIndexPath& indexPath, bool extend, bool autoscroll, bool notify) {
  selectIndex(contentLayout_->itemIndexFromIndexPath(indexPath), extend, autoscroll, notify);
}

void MCBrowserView::alternateSelectItemAtIndexPath(const MCIndexPath& indexPath, bool extend, bool autoscroll,
                                                   bool notify) {
  alternateSelectIndex(contentLayout_->itemIndexFromIndexPath(indexPath), extend, autoscroll, notify);
}

void MCBrowserView::selectGroupAtIndex(uint64_t group, bool extend, bool notify) {
  const MCIndexSet items = contentLayout_->itemIndexesForGroupIndexes(MCIndexSet(group));
  if (setSelectionIndexes(items, extend, notify)) scrollToIndex(items.lastIndex());
}

void MCBrowserView::alternateSelectGroupAtIndex(uint64_t group, bool extend, bool notify) {
  const MCIndexSet items = contentLayout_->itemIndexesForGroupIndexes(MCIndexSet(group));
  if (setAlternateSelectionIndexes(items, extend, notify)) scrollToIndex(items.lastIndex());
}

void MCBrowserView::exchangeSelections() {
  std::swap(selectionIndexes_, alternateSelectionIndexes_);
  selectionSwapped_ = !selectionSwapped_;
  notifySelectionDidChange();
  setNeedsDisplay(true);
}

void MCBrowserView::swapAlternateSelection() { exchangeSelections(); }

bool MCBrowserView::deselectAll() {
  if (selectionIndexes_.empty() && alternateSelectionIndexes_.empty()) return false;
  if (!allowsEmptySelection_) return false;
  const MCIndexSet empty;
  const bool first = setSelectionIndexes(empty, false, false);
  const bool second = setAlternateSelectionIndexes(empty, false, false);
  if (!first && !second) return false;
  notifySelectionDidChange();
  return true;
}

void MCBrowserView::notifySelectionDidChange() {
  accessibilityDidChange();
  if (respondsTo(MCBrowserViewDelegateOperation::SelectionDidChange)) delegate()->browserViewSelectionDidChange(*this);
  if (MCPreviewPanel::sharedPreviewPanelExists()) {
    auto panel = MCPreviewPanel::sharedPreviewPanel();
    if (panel->isVisible() && panel->currentController() == this) panel->reloadData();
  }
}

// MARK: The sweep

void MCBrowserView::fillRangeHoles(MCIndexSet& set, uint64_t index) {
  auto removeOther = [&] {
    if (allowsAlternateSelection_) set.removeIndexes(&set == &selectionIndexes_ ? alternateSelectionIndexes_ : selectionIndexes_);
  };
  const uint64_t first = set.firstIndex();
  if (first != NSNotFound && index + 1 < first) {
    set.addIndexesInRange({index + 1, first - 1 - index});
    removeOther();
  }
  const uint64_t last = set.lastIndex();
  if (last != NSNotFound && index > last + 1) {
    set.addIndexesInRange({last + 1, index - 1 - last});
    removeOther();
  }
}

void MCBrowserView::startSelectionWithEvent(const MCEvent& event) {
  const MCPoint p = convertPoint(event.locationInWindow(), nullptr);
  const uint64_t flags = event.modifierFlags();
  selectionMode_ = 0;
  if (allowsAlternateSelection_) {
    const uint64_t item = contentLayout_->itemIndexAtPoint(p);
    if (flags & MCEventModifierFlagOption) {
      if (selectionIndexes_.containsIndex(item)) exchangeSelections();
      else selectionMode_ = MCBrowserViewSelectionModeAlternate;
    } else if (alternateSelectionIndexes_.containsIndex(item)) {
      exchangeSelections();
    }
  }
  if (allowsMultipleSelection_) {
    if (flags & MCEventModifierFlagCommand) selectionMode_ |= MCBrowserViewSelectionModeToggle;
    else if (flags & MCEventModifierFlagShift) selectionMode_ |= MCBrowserViewSelectionModeRange;
  } else {
    selectionMode_ |= MCBrowserViewSelectionModeSingle;
  }
  const bool alternate = selectionMode_ & MCBrowserViewSelectionModeAlternate;
  MCIndexSet& set = alternate ? alternateSelectionIndexes_ : selectionIndexes_;
  if (selectionMode_ & MCBrowserViewSelectionModeRange) {
    const uint64_t item = contentLayout_->itemIndexAtPoint(p);
    if (item != NSNotFound) fillRangeHoles(set, item);
  }
  (alternate ? alternateSelectionIndexesOld_ : selectionIndexesOld_) = set;
  makeSelectionInRect(MCMakeRect(p.x - 0.5, p.y - 0.5, 1, 1));
}

void MCBrowserView::makeSelectionInRect(const MCRect& rect) {
  const MCBrowserViewLayout& layout = *contentLayout_;
  const uint64_t rows = layout.numberOfRows(), columns = layout.numberOfColumns();
  const uint64_t mode = selectionMode_;
  const bool alternate = mode & MCBrowserViewSelectionModeAlternate;
  const bool toggle = mode & MCBrowserViewSelectionModeToggle;
  const bool readsOld = mode & (MCBrowserViewSelectionModeRange | MCBrowserViewSelectionModeToggle);
  const MCIndexSet noSnapshot;
  const MCIndexSet& old = alternate ? (alternateSelectionIndexesOld_ ? *alternateSelectionIndexesOld_ : noSnapshot)
                                    : (selectionIndexesOld_ ? *selectionIndexesOld_ : noSnapshot);
  MCIndexSet chosen;
  if (rows > 0 && columns > 0 && layout.numberOfItems() > 0) {
    auto clampedRow = [&](uint64_t r) { return r == NSNotFound ? rows - 1 : std::min(r, rows - 1); };
    auto clampedColumn = [&](uint64_t c) { return c == NSNotFound ? columns - 1 : std::min(c, columns - 1); };
    const MCPoint far = {MCMaxX(rect), MCMaxY(rect)};
    const uint64_t r1 = clampedRow(layout.rowForPoint(rect.origin)), r2 = clampedRow(layout.rowForPoint(far));
    const uint64_t c1 = clampedColumn(layout.columnForPoint(rect.origin)), c2 = clampedColumn(layout.columnForPoint(far));
    // Every cell is visited, line by line: a gap cell ends its line (a row in vertical layout, a
    // column in horizontal layout), and no item of that line comes after it.
    auto visit = [&](uint64_t row, uint64_t column) {
      const uint64_t item = layout.itemIndexFromCellIndex(layout.cellIndexAtRow(row, column));
      if (item == NSNotFound) return false;
      if (alternate && selectionIndexes_.containsIndex(item)) return true;
      if (!alternate && allowsAlternateSelection_ && alternateSelectionIndexes_.containsIndex(item)) return true;
      const bool was = readsOld && old.containsIndex(item);
      bool inside;
      if (row > r1 && row < r2 && column > c1 && column < c2) inside = true;
      else if (row == r1 || row == r2) inside = hitTestWithRect(rect, item);
      else if (column == c1 || column == c2) inside = MCIntersectsRect(rect, layout.cellFrameAtRow(row, column));
      else inside = false;
      if ((inside && !toggle) || (inside && toggle && !was) || (!inside && was)) chosen.addIndex(item);
      return true;
    };
    if (!layout.isHorizontal()) {
      for (uint64_t row = 0; row < rows; ++row)
        for (uint64_t column = 0; column < columns && visit(row, column); ++column) {
        }
    } else {
      for (uint64_t column = 0; column < columns; ++column)
        for (uint64_t row = 0; row < rows && visit(row, column); ++row) {
        }
    }
  }
  if (alternate) setAlternateSelectionIndexes(chosen, false, false);
  else setSelectionIndexes(chosen, false, false);
  setSelectionRect(rect);
}

void MCBrowserView::stopSelection() {
  const bool alternate = selectionMode_ & MCBrowserViewSelectionModeAlternate;
  MCIndexSet& set = alternate ? alternateSelectionIndexes_ : selectionIndexes_;
  std::optional<MCIndexSet>& snapshot = alternate ? alternateSelectionIndexesOld_ : selectionIndexesOld_;
  const MCIndexSet old = snapshot.value_or(MCIndexSet());
  bool changed;
  if (!allowsEmptySelection_ && set.empty()) {
    set.addIndexes(old);
    changed = false;
  } else {
    changed = !(old == set);
  }
  snapshot.reset();
  setSelectionRect(MCRect{});
  if (changed) notifySelectionDidChange();
}

void MCBrowserView::setSelectionRect(const MCRect& rect) {
  const MCRect old = selectionRect_;
  if (MCEqualRects(rect, old)) return;
  if (!MCIntersectsRect(rect, old)) {
    if (!MCIsEmptyRect(old)) setNeedsDisplayInRect(MCInsetRect(old, -1, -1));
    if (!MCIsEmptyRect(rect)) setNeedsDisplayInRect(MCInsetRect(rect, -1, -1));
  } else {
    const MCRect common = MCIntersectionRect(rect, old), all = MCUnionRect(rect, old);
    MCRect slice, rest = all;
    MCDivideRect(rest, &slice, &rest, MCMinX(common) - MCMinX(all), MCRectEdge::MinX);
    setNeedsDisplayInRect(MCInsetRect(slice, -1, -1));
    MCDivideRect(rest, &slice, &rest, MCMaxX(all) - MCMaxX(common), MCRectEdge::MaxX);
    setNeedsDisplayInRect(MCInsetRect(slice, -1, -1));
    MCDivideRect(rest, &slice, &rest, MCMinY(common) - MCMinY(all), MCRectEdge::MinY);
    setNeedsDisplayInRect(MCInsetRect(slice, -1, -1));
    MCDivideRect(rest, &slice, &rest, MCMaxY(all) - MCMaxY(common), MCRectEdge::MaxY);
    setNeedsDisplayInRect(MCInsetRect(slice, -1, -1));
  }
  selectionRect_ = rect;
}
