#include <vesperon/browser/MCBrowserView.h>

#include <vesperon/platform/MCGraphicsContext.h>
#include <vesperon/toolkit/MCClipView.h>
#include <vesperon/toolkit/MCPasteboard.h>
#include <vesperon/toolkit/MCScrollView.h>
#include <vesperon/toolkit/MCWindow.h>

#include <cmath>

MCBrowserView::MCBrowserView(MCRect frame)
    // Nothing owns the view through this pointer: it only gives the layout a weak reference that
    // is valid from the start, before anyone shares the view, and that expires with the view.
    : MCView(frame), layoutDelegateAnchor_(this, [](MCBrowserView*) {}) {
  contentLayout_ = std::make_shared<MCBrowserViewLayout>();
  contentLayout_->setAlignment(1);
  contentLayout_->setMinHorizontalSpacing(12);
  contentLayout_->setMinVerticalSpacing(24);
  contentLayout_->setDelegate(layoutDelegateAnchor_);
  registerCommands();
}

MCBrowserView::~MCBrowserView() {
  if (observedSuperview_) observedSuperview_->removeFrameObserver(superviewObserver_);
  if (MCPreviewPanel::sharedPreviewPanelExists()) MCPreviewPanel::sharedPreviewPanel()->controllerWillGoAway(this);
}

bool MCBrowserView::respondsTo(MCBrowserViewDelegateOperation operation) const {
  auto delegate = delegate_.lock();
  return delegate && delegate->respondsTo(operation);
}

std::vector<MCIndexPath> MCBrowserView::pathsFor(const MCIndexSet& items) const {
  return contentLayout_->indexPathsFromItemIndexes(items);
}

// MARK: Scale and layout

void MCBrowserView::setScale(double scale) {
  if (scale == scale_) return;
  scale_ = scale;
  if (respondsTo(MCBrowserViewDelegateOperation::ScaleDidChange)) delegate()->browserViewScaleDidChange(*this);
  sizeToFit(true);
}

void MCBrowserView::setHorizontal(bool horizontal) {
  if (horizontal == contentLayout_->isHorizontal()) return;
  contentLayout_->setHorizontal(horizontal);
  contentLayout_->setMinHorizontalSpacing(horizontal ? 4 : 12);
  contentLayout_->setMinVerticalSpacing(horizontal ? 4 : 24);
  sizeToFit(false);
}

void MCBrowserView::setAlignment(int64_t alignment) {
  if (alignment == contentLayout_->alignment()) return;
  contentLayout_->setAlignment(alignment);
  sizeToFit(false);
}

void MCBrowserView::setShowsGroupHeaders(bool shows) {
  if (shows == contentLayout_->showsGroupHeaders()) return;
  contentLayout_->setShowsGroupHeaders(shows);
  sizeToFit(false);
}

void MCBrowserView::magnifyWithEvent(const MCEvent& event) {
  const double m = event.magnification();
  if (m > 0 && scale_ < maxScale_) {
    setScale(scale_ + m < maxScale_ ? scale_ + m : maxScale_);
  } else if (m < 0 && scale_ > minScale_) {
    setScale(scale_ + m > minScale_ ? scale_ + m : minScale_);
  }
}

void MCBrowserView::sizeToFit(bool holdScrollPosition) {
  MCScrollView* scrollView = enclosingScrollView();
  const MCSize area = scrollView ? scrollView->contentSize() : (superview() ? superview()->bounds().size : bounds().size);
  contentLayout_->layoutWithContentSize(area);
  const MCSize size = contentLayout_->contentSize();
  if (!holdScrollPosition) {
    setFrameSize(size);
    setNeedsDisplay(true);
  } else {
    const MCRect oldBounds = bounds(), oldVisible = visibleRect();
    setFrameSize(size);
    setNeedsDisplay(true);
    const MCRect newBounds = bounds(), newVisible = visibleRect();
    MCPoint origin = newVisible.origin;
    if (!contentLayout_->isHorizontal()) {
      if (oldBounds.size.height > 0)
        origin.y = std::trunc(oldVisible.origin.y / oldBounds.size.height * newBounds.size.height);
    } else if (oldBounds.size.width > 0) {
      origin.x = std::trunc(oldVisible.origin.x / oldBounds.size.width * newBounds.size.width);
    }
    scrollToVisibleRect({origin, newVisible.size});
  }
  prefetchVisibleItems();
}

void MCBrowserView::scrollToIndex(uint64_t item) { scrollToVisibleRect(contentLayout_->scrollRectForItemAtIndex(item)); }

void MCBrowserView::scrollToVisibleRect(const MCRect& rect) {
  const MCRect v = visibleRect(), b = bounds();
  if (MCContainsRect(v, rect)) return;
  auto axis = [](double rMin, double rMax, double vMin, double vLength, double bMin, double bMax) {
    if (rMax > vMin + vLength) return std::min(bMax - vLength, rMax - vLength);
    if (rMin < vMin) return std::max(bMin, rMin);
    return vMin;
  };
  const MCPoint origin = {axis(MCMinX(rect), MCMaxX(rect), MCMinX(v), v.size.width, MCMinX(b), MCMaxX(b)),
                          axis(MCMinY(rect), MCMaxY(rect), MCMinY(v), v.size.height, MCMinY(b), MCMaxY(b))};
  MCScrollView* scrollView = enclosingScrollView();
  if (!scrollView) return;
  const auto& clip = scrollView->contentView();
  clip->scrollToPoint(clip->convertPoint(origin, this));
  scrollView->reflectScrolledClipView(clip.get());
}

// MARK: Data

void MCBrowserView::reloadData() {
  invalidatePrefetching();
  alternateSelectionIndexes_.removeAllIndexes();
  selectionIndexes_.removeAllIndexes();
  contentLayout_->removeAllGroups();
  appendGroups();
}

void MCBrowserView::appendGroups() {
  const uint64_t oldCount = contentLayout_->numberOfGroups();
  auto source = dataSource_.lock();
  const uint64_t newCount = source ? source->numberOfGroupsInBrowserView(*this) : 0;
  if (newCount < oldCount) return;
  uint64_t total = 0;
  contentLayout_->rebuild([&](uint64_t group, uint64_t current) -> uint64_t {
    if (group >= newCount) return NSNotFound;
    const uint64_t n = source->numberOfItemsInGroup(*this, group);
    if (n > current) {
      // The group grew at its end: what lies after it moves up by the growth.
      for (MCIndexSet* set : {&selectionIndexes_, &alternateSelectionIndexes_}) {
        const uint64_t last = set->lastIndex();
        if (last != NSNotFound && last >= total + current) set->shiftIndexesStartingAtIndex(total + current, int64_t(n - current));
      }
    }
    total += std::max(current, n);
    return n;
  });
  sizeToFit(false);
  accessibilityDidChange();
}

void MCBrowserView::reloadItemAtIndexPath(const MCIndexPath& indexPath) {
  setNeedsDisplayInRect(contentLayout_->cellFrameAtItemIndex(contentLayout_->itemIndexFromIndexPath(indexPath)));
}

// MARK: Prefetching

MCRect MCBrowserView::prefetchRectForProposedRect(const MCRect& rect) const {
  const MCSize line = contentLayout_->scrollLineSize();
  MCRect grown = contentLayout_->isHorizontal() ? MCInsetRect(rect, -2 * line.width, 0) : MCInsetRect(rect, 0, -2 * line.height);
  return MCIntersectionRect(grown, bounds());
}

void MCBrowserView::prefetchItemsInRect(const MCRect& rect) {
  MCRect wanted = prefetchRectForProposedRect(rect);
  if (MCContainsRect(prefetchedRect_, wanted)) return;
  MCRect bounding = wanted;
  const MCIndexSet indexes = contentLayout_->itemIndexesInRect(wanted, &bounding);
  wanted = bounding;
  MCIndexSet removed = prefetchedIndexes_;
  removed.removeIndexes(indexes);
  MCIndexSet added = indexes;
  added.removeIndexes(prefetchedIndexes_);
  auto source = prefetchDataSource_.lock();
  if (!removed.empty() && source) source->cancelPrefetchingForItemsAtIndexPaths(*this, pathsFor(removed));
  prefetchedIndexes_ = indexes;
  prefetchedRect_ = wanted;
  if (!added.empty() && source) source->prefetchItemsAtIndexPaths(*this, pathsFor(added));
}

void MCBrowserView::prefetchVisibleItems() {
  const MCRect visible = visibleRect();
  prefetchItemsInRect(visible);
  setPreparedContentRect(visible);
}

void MCBrowserView::prepareContentInRect(const MCRect& rect) {
  prefetchItemsInRect(rect);
  MCView::prepareContentInRect(rect);
}

void MCBrowserView::invalidatePrefetching() {
  if (!prefetchedIndexes_.empty())
    if (auto source = prefetchDataSource_.lock()) source->cancelPrefetchingForItemsAtIndexPaths(*this, pathsFor(prefetchedIndexes_));
  prefetchedIndexes_ = MCIndexSet();
  prefetchedRect_ = MCRect{};
  setPreparedContentRect(MCRect{});
}

// MARK: Cells and hit tests

MCBrowserViewCell* MCBrowserView::preparedItemCellAtIndexPath(const std::optional<MCIndexPath>& indexPath) {
  if (!indexPath || !itemCell_) return nullptr;
  if (auto source = dataSource_.lock()) source->updateItemCell(*this, *itemCell_, *indexPath);
  return itemCell_.get();
}

MCBrowserViewCell* MCBrowserView::preparedHeaderCellAtIndex(uint64_t group) {
  if (group == NSNotFound || !headerCell_) return nullptr;
  if (auto source = dataSource_.lock()) source->updateHeaderCell(*this, *headerCell_, group);
  return headerCell_.get();
}

bool MCBrowserView::isSelectedItemAtIndexPath(const MCIndexPath& indexPath, bool* alternate) const {
  const uint64_t item = contentLayout_->itemIndexFromIndexPath(indexPath);
  if (selectionIndexes_.containsIndex(item)) {
    if (alternate) *alternate = false;
    return true;
  }
  if (!alternate) return false;
  *alternate = alternateSelectionIndexes_.containsIndex(item);
  return *alternate;
}

bool MCBrowserView::hitTestWithPoint(MCPoint point, uint64_t item) {
  const MCRect frame = contentLayout_->cellFrameAtItemIndex(item);
  if (!MCPointInRect(point, frame)) return false;
  MCBrowserViewCell* cell = preparedItemCellAtIndexPath(contentLayout_->indexPathFromItemIndex(item));
  return cell && cell->containsPoint(point, frame);
}

bool MCBrowserView::hitTestWithRect(const MCRect& rect, uint64_t item) {
  const MCRect frame = contentLayout_->cellFrameAtItemIndex(item);
  if (MCContainsRect(rect, frame)) return true;
  if (!MCIntersectsRect(rect, frame)) return false;
  MCBrowserViewCell* cell = preparedItemCellAtIndexPath(contentLayout_->indexPathFromItemIndex(item));
  return cell && cell->intersectsRect(rect, frame);
}

// MARK: Drawing

void MCBrowserView::drawRect(const MCRect& dirtyRect) {
  if (contentLayout_->showsGroupHeaders()) drawGroupHeaders(dirtyRect);
  drawItems(dirtyRect);
  drawSelection(dirtyRect);
  if (drawsLayoutGrid_) drawLayoutGridInRect(dirtyRect);
}

void MCBrowserView::drawGroupHeaders(const MCRect& rect) {
  if (contentLayout_->numberOfGroups() == 0) return;
  const uint64_t first = contentLayout_->groupIndexAtPoint(rect.origin);
  const uint64_t last = contentLayout_->groupIndexAtPoint({MCMaxX(rect), MCMaxY(rect)});
  if (first == NSNotFound || last == NSNotFound) return;
  for (uint64_t group = first; group <= last; ++group) {
    const MCRect frame = contentLayout_->cellFrameAtGroupIndex(group);
    if (!needsToDrawRect(frame)) continue;
    if (MCBrowserViewCell* cell = preparedHeaderCellAtIndex(group)) cell->drawWithFrame(frame, this);
  }
}

void MCBrowserView::drawItems(const MCRect& rect) {
  const MCIndexSet items = contentLayout_->itemIndexesInRect(rect);
  for (uint64_t item : items) {
    const MCRect frame = contentLayout_->cellFrameAtItemIndex(item);
    if (!needsToDrawRect(frame)) continue;
    if (MCBrowserViewCell* cell = preparedItemCellAtIndexPath(contentLayout_->indexPathFromItemIndex(item)))
      cell->drawWithFrame(frame, this);
  }
}

void MCBrowserView::drawSelection(const MCRect& rect) {
  const MCRect band = MCIntegralRect(selectionRect_);
  MCGraphicsContext* context = MCGraphicsContext::currentContext();
  if (MCIsEmptyRect(band) || !context) return;
  const bool alternate = selectionMode_ & MCBrowserViewSelectionModeAlternate;
  (alternate ? alternateSelectionFillColor_ : selectionFillColor_).setFill(*context);
  (alternate ? alternateSelectionStrokeColor_ : selectionStrokeColor_).setStroke(*context);
  context->fillRect(MCIntersectionRect(rect, band));
  context->setLineWidth(1.0);
  context->strokeRect(MCInsetRect(band, 0.5, 0.5));
}

void MCBrowserView::drawLayoutGridInRect(const MCRect& rect) {
  MCGraphicsContext* context = MCGraphicsContext::currentContext();
  if (!context) return;
  context->setLineWidth(1.0);
  const MCBrowserViewLayout& layout = *contentLayout_;
  auto strokeAll = [&](uint64_t first, uint64_t last, auto rectOf, const MCColor& color) {
    if (first == NSNotFound || last == NSNotFound) return;
    color.setStroke(*context);
    for (uint64_t i = first; i <= last; ++i) {
      const MCRect r = rectOf(i);
      if (needsToDrawRect(r)) context->strokeRect(MCInsetRect(r, 0.5, 0.5));
    }
  };
  const MCPoint far = {MCMaxX(rect), MCMaxY(rect)};
  strokeAll(layout.groupForPoint(rect.origin), layout.groupForPoint(far),
            [&](uint64_t g) { return layout.rectForGroup(g); }, MCColor::redColor());
  strokeAll(layout.rowForPoint(rect.origin), layout.rowForPoint(far), [&](uint64_t r) { return layout.rectForRow(r); },
            MCColor::yellowColor());
  strokeAll(layout.columnForPoint(rect.origin), layout.columnForPoint(far),
            [&](uint64_t c) { return layout.rectForColumn(c); }, MCColor::greenColor());
}

// MARK: Events

void MCBrowserView::mouseDown(const MCEvent& event) {
  if (event.modifierFlags() & MCEventModifierFlagControl) {
    rightClick(event);
    return;
  }
  if (event.clickCount() == 2) {
    doubleClick(event);
  } else if (event.clickCount() == 1) {
    if (isDraggingEvent(event)) beginDragging(event);
    else leftClick(event);
  }
}

void MCBrowserView::rightMouseDown(const MCEvent& event) { rightClick(event); }

bool MCBrowserView::acceptsFirstMouse(const MCEvent* event) { return event && canBeginDragging(*event); }

bool MCBrowserView::shouldDelayWindowOrderingForEvent(const MCEvent& event) { return canBeginDragging(event); }

void MCBrowserView::leftClick(const MCEvent& event) {
  const std::shared_ptr<MCView> keep = sharedView();
  startSelectionWithEvent(event);
  MCWindow* window = this->window();
  if (allowsMultipleSelection_ && window) {
    const MCPoint start = convertPoint(event.locationInWindow(), nullptr);
    window->startPeriodicEventsAfterDelay(0.25, 0.05);
    if (event.type() != MCEventType::LeftMouseUp) {
      MCPoint last = start;
      constexpr MCEventMask kTrackingMask = 0x410044;  // left up, left dragged, periodic, scroll wheel
      while (auto next = window->nextEventMatchingMask(kTrackingMask)) {
        if (next->type() == MCEventType::ScrollWheel) scrollWheel(*next);
        else if (next->type() == MCEventType::Periodic) autoscroll(*next);
        if (!this->window()) break;  // the view left its window during the sweep
        const MCPoint p = convertPoint(window->mouseLocationOutsideOfEventStream(), nullptr);
        if (!MCEqualPoints(p, last)) {
          makeSelectionInRect(MCMakeRect(std::min(start.x, p.x) - 0.5, std::min(start.y, p.y) - 0.5,
                                         std::fabs(p.x - start.x) + 1, std::fabs(p.y - start.y) + 1));
          last = p;
        }
        if (next->type() == MCEventType::LeftMouseUp) break;
      }
    }
    window->stopPeriodicEvents();
  }
  stopSelection();
}

void MCBrowserView::rightClick(const MCEvent& event) {
  const uint64_t item = contentLayout_->itemIndexAtPoint(convertPoint(event.locationInWindow(), nullptr));
  if (item == NSNotFound) {
    if (respondsTo(MCBrowserViewDelegateOperation::BackgroundWasRightClicked))
      delegate()->backgroundWasRightClickedWithEvent(*this, event);
    return;
  }
  if (allowsAlternateSelection_ && alternateSelectionIndexes_.containsIndex(item)) swapAlternateSelection();
  else if (!selectionIndexes_.containsIndex(item)) selectIndex(item, false, false);
  if (respondsTo(MCBrowserViewDelegateOperation::CellWasRightClicked))
    if (auto path = contentLayout_->indexPathFromItemIndex(item)) delegate()->cellWasRightClickedAtIndexPath(*this, *path, event);
}

void MCBrowserView::doubleClick(const MCEvent& event) {
  if (!respondsTo(MCBrowserViewDelegateOperation::CellWasDoubleClicked)) return;
  const uint64_t item = contentLayout_->itemIndexAtPoint(convertPoint(event.locationInWindow(), nullptr));
  if (item == NSNotFound) return;
  if (auto path = contentLayout_->indexPathFromItemIndex(item)) delegate()->cellWasDoubleClickedAtIndexPath(*this, *path, event);
}

void MCBrowserView::keyDown(const MCEvent& event) {
  const std::u32string& characters = event.charactersIgnoringModifiers();
  const char32_t key = characters.empty() ? 0 : characters.front();
  switch (key) {
    case MCLeftArrowFunctionKey:
    case MCRightArrowFunctionKey:
    case MCHomeFunctionKey:
    case MCBeginFunctionKey:
    case MCEndFunctionKey:
      handleNavigationKeyDownEvent(event);
      return;
    case MCUpArrowFunctionKey:
    case MCDownArrowFunctionKey:
    case MCPageUpFunctionKey:
    case MCPageDownFunctionKey:
      if (!contentLayout_->isHorizontal()) {
        handleNavigationKeyDownEvent(event);
        return;
      }
      break;
    case MCEscapeCharacter:
      if (handleEscapeKeyDownEvent(event)) return;
      break;
    case MCSpaceCharacter:
      handleSpacebarKeyDownEvent(event);
      return;
    default:
      break;
  }
  MCView::keyDown(event);
}

bool MCBrowserView::handleNavigationKeyDownEvent(const MCEvent& event) {
  interpretKeyEvents({event});
  return true;
}

bool MCBrowserView::handleEscapeKeyDownEvent(const MCEvent&) { return deselectAll(); }

bool MCBrowserView::validateMenuItem(const MCMenuItem& item) {
  auto general = MCPasteboard::generalPasteboard();
  if (item.action == "copy:") return canWriteSelectedItemsToPasteboard(*general);
  if (item.action == "paste:") return canReadItemsFromPasteboard(*general);
  if (item.action == "selectAll:") return numberOfItems() > 0;
  return true;
}

void MCBrowserView::copy() { writeSelectedItemsToPasteboard(*MCPasteboard::generalPasteboard()); }

void MCBrowserView::paste() { readItemsFromPasteboard(*MCPasteboard::generalPasteboard()); }

// MARK: Superview and window

void MCBrowserView::resizeWithOldSuperviewSize(MCSize) { sizeToFit(true); }

void MCBrowserView::superviewDidChangeFrame() { sizeToFit(true); }

void MCBrowserView::viewWillMoveToSuperview(MCView*) {
  if (observedSuperview_) observedSuperview_->removeFrameObserver(superviewObserver_);
  observedSuperview_ = nullptr;
  superviewObserver_ = 0;
}

void MCBrowserView::viewDidMoveToSuperview() {
  if (observedSuperview_) observedSuperview_->removeFrameObserver(superviewObserver_);
  observedSuperview_ = superview();
  superviewObserver_ = 0;
  if (observedSuperview_) superviewObserver_ = observedSuperview_->addFrameObserver([this](MCView&) { superviewDidChangeFrame(); });
}

void MCBrowserView::viewDidMoveToWindow() {
  MCView::viewDidMoveToWindow();
  prefetchVisibleItems();
}

// MARK: The layout's delegate

MCSize MCBrowserView::itemCellSizeForBounds(MCBrowserViewLayout&, MCRect bounds) {
  return itemCell_ ? itemCell_->cellSizeForBounds(bounds, scale_) : MCSize{0, 0};
}

MCSize MCBrowserView::headerCellSizeForBounds(MCBrowserViewLayout&, MCRect bounds) {
  return headerCell_ ? headerCell_->cellSizeForBounds(bounds, scale_) : MCSize{0, 0};
}
