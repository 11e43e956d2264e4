#pragma once
// MCBrowserView: a large collection shown as a grid (or a strip) of cells in groups, with
// optional header bands and two independent selections.
//
// The view keeps no copy of the items. It knows how many groups there are and how many items each
// holds (from its data source, in `appendGroups`), and asks the data source to refill its one item
// cell or its one header cell just before that cell draws or answers a hit test. Geometry is the
// MCBrowserViewLayout's; the view is the layout's delegate and answers its size questions through
// the cells at the current `scale`.
//
// The view belongs in the document of an MCScrollView: it sizes itself to the scroll view's
// content size in `sizeToFit` (and whenever its superview changes size), holding the same
// fraction of the content at the top, and it asks its prefetch source for the items of the visible
// area and two lines around it, cancels first.
//
// Selections: the first selection is what ordinary commands act on; the alternate selection comes
// into play when `allowsAlternateSelection` is set. Every operation on the first has a twin on the
// alternate (`alternate…`). A mouse sweep (press and drag) rebuilds the set in play from a
// snapshot and the rubber band on every move, and reports at most one change, at its end.
//
// Keys: arrows, Home, End and the page keys go through the toolkit's key bindings into the
// navigation commands ("moveLeft:", "moveDownAndModifySelection:", "scrollPageDown:" …) that the
// view registers; Escape deselects; space toggles the preview panel. Main thread only.

#include <vesperon/browser/MCBrowserViewCell.h>
#include <vesperon/browser/MCBrowserViewDataSource.h>
#include <vesperon/browser/MCBrowserViewDelegate.h>
#include <vesperon/browser/MCBrowserViewLayout.h>
#include <vesperon/core/MCIndexSet.h>
#include <vesperon/toolkit/MCColor.h>
#include <vesperon/toolkit/MCDraggingSession.h>
#include <vesperon/toolkit/MCPreviewPanel.h>
#include <vesperon/toolkit/MCView.h>

#include <any>
#include <memory>
#include <optional>
#include <vector>

/// Flags of the sweep in hand.
enum MCBrowserViewSelectionMode : uint64_t {
  MCBrowserViewSelectionModeSingle = 1,
  MCBrowserViewSelectionModeRange = 2,
  MCBrowserViewSelectionModeToggle = 4,
  MCBrowserViewSelectionModeAlternate = 8,
};

class MCBrowserView : public MCView,
                      public MCBrowserViewLayoutDelegate,
                      public MCDraggingSource,
                      public MCPreviewPanelDataSource,
                      public MCPreviewPanelDelegate {
 public:
  /// The new view is its layout's delegate from the start.
  explicit MCBrowserView(MCRect frame = {});
  ~MCBrowserView() override;

  // MARK: Properties (store and return; trigger nothing)
  double minScale() const { return minScale_; }
  void setMinScale(double scale) { minScale_ = scale; }
  double maxScale() const { return maxScale_; }
  void setMaxScale(double scale) { maxScale_ = scale; }
  bool allowsAlternateSelection() const { return allowsAlternateSelection_; }
  void setAllowsAlternateSelection(bool flag) { allowsAlternateSelection_ = flag; }
  bool allowsEmptySelection() const { return allowsEmptySelection_; }
  void setAllowsEmptySelection(bool flag) { allowsEmptySelection_ = flag; }
  bool allowsMultipleSelection() const { return allowsMultipleSelection_; }
  void setAllowsMultipleSelection(bool flag) { allowsMultipleSelection_ = flag; }
  bool allowsDrop() const { return allowsDrop_; }
  void setAllowsDrop(bool flag) { allowsDrop_ = flag; }
  bool allowsPreviewPanel() const { return allowsPreviewPanel_; }
  void setAllowsPreviewPanel(bool flag) { allowsPreviewPanel_ = flag; }
  const std::shared_ptr<MCBrowserViewCell>& headerCell() const { return headerCell_; }
  void setHeaderCell(std::shared_ptr<MCBrowserViewCell> cell) { headerCell_ = std::move(cell); }
  const std::shared_ptr<MCBrowserViewCell>& itemCell() const { return itemCell_; }
  void setItemCell(std::shared_ptr<MCBrowserViewCell> cell) { itemCell_ = std::move(cell); }
  const std::shared_ptr<MCBrowserViewLayout>& contentLayout() const { return contentLayout_; }
  void setContentLayout(std::shared_ptr<MCBrowserViewLayout> layout) { contentLayout_ = std::move(layout); }
  MCColor selectionFillColor() const { return selectionFillColor_; }
  void setSelectionFillColor(const MCColor& color) { selectionFillColor_ = color; }
  MCColor selectionStrokeColor() const { return selectionStrokeColor_; }
  void setSelectionStrokeColor(const MCColor& color) { selectionStrokeColor_ = color; }
  MCColor alternateSelectionFillColor() const { return alternateSelectionFillColor_; }
  void setAlternateSelectionFillColor(const MCColor& color) { alternateSelectionFillColor_ = color; }
  MCColor alternateSelectionStrokeColor() const { return alternateSelectionStrokeColor_; }
  void setAlternateSelectionStrokeColor(const MCColor& color) { alternateSelectionStrokeColor_ = color; }
  /// Held weakly.
  std::shared_ptr<MCBrowserViewDelegate> delegate() const { return delegate_.lock(); }
  void setDelegate(const std::shared_ptr<MCBrowserViewDelegate>& delegate) { delegate_ = delegate; }
  std::shared_ptr<MCBrowserViewDataSource> dataSource() const { return dataSource_.lock(); }
  void setDataSource(const std::shared_ptr<MCBrowserViewDataSource>& source) { dataSource_ = source; }
  std::shared_ptr<MCBrowserViewPrefetching> prefetchDataSource() const { return prefetchDataSource_.lock(); }
  void setPrefetchDataSource(const std::shared_ptr<MCBrowserViewPrefetching>& source) { prefetchDataSource_ = source; }
  bool drawsLayoutGrid() const { return drawsLayoutGrid_; }
  void setDrawsLayoutGrid(bool flag) { drawsLayoutGrid_ = flag; }
  /// Plain storage for the host; the view never reads them.
  std::vector<std::any>& items() { return items_; }
  std::vector<std::any>& groups() { return groups_; }
  const MCIndexSet& prefetchedIndexes() const { return prefetchedIndexes_; }
  void setPrefetchedIndexes(const MCIndexSet& indexes) { prefetchedIndexes_ = indexes; }
  MCRect prefetchedRect() const { return prefetchedRect_; }
  void setPrefetchedRect(const MCRect& rect) { prefetchedRect_ = rect; }
  bool isSelectionSwapped() const { return selectionSwapped_; }
  uint64_t selectionMode() const { return selectionMode_; }

  // MARK: Scale and layout
  double scale() const { return scale_; }
  /// Stores a new scale as given (no clamping), tells the delegate, and sizes to fit holding the
  /// scroll position.
  void setScale(double scale);
  bool isHorizontal() const { return contentLayout_->isHorizontal(); }
  /// Also sets the minimum spacings: 4 and 4 horizontal, 12 and 24 vertical.
  void setHorizontal(bool horizontal);
  int64_t alignment() const { return contentLayout_->alignment(); }
  void setAlignment(int64_t alignment);
  bool showsGroupHeaders() const { return contentLayout_->showsGroupHeaders(); }
  void setShowsGroupHeaders(bool shows);
  uint64_t numberOfItems() const { return contentLayout_->numberOfItems(); }
  /// Lays out for the enclosing scroll view's content size and takes the layout's content size as
  /// the frame size; with `holdScrollPosition`, the same fraction of the content stays at the top.
  void sizeToFit(bool holdScrollPosition);
  void scrollToIndex(uint64_t item);
  /// Scrolls the least that shows `rect`, each axis on its own; nothing when it shows already.
  void scrollToVisibleRect(const MCRect& rect);

  // MARK: Data
  /// Drops prefetches, both selections and all groups, then appends the groups anew.
  void reloadData();
  /// Brings the groups up to the data source, keeping both selections; nothing when the source has
  /// fewer groups than the view.
  void appendGroups();
  void noteItemsAppended() { appendGroups(); }
  /// Marks the item's cell for redraw; throws as the layout does for a bad path.
  void reloadItemAtIndexPath(const MCIndexPath& indexPath);

  // MARK: Prefetching
  void invalidatePrefetching();
  void prefetchVisibleItems();
  MCRect prefetchRectForProposedRect(const MCRect& rect) const;
  void prefetchItemsInRect(const MCRect& rect);
  void prepareContentInRect(const MCRect& rect) override;

  // MARK: Cells and hit tests
  MCBrowserViewCell* preparedItemCellAtIndexPath(const std::optional<MCIndexPath>& indexPath);
  MCBrowserViewCell* preparedHeaderCellAtIndex(uint64_t group);
  /// In the first selection: true, with `alternate` false. Otherwise, with `alternate` given,
  /// whether it is in the alternate selection (written there too); without, false.
  bool isSelectedItemAtIndexPath(const MCIndexPath& indexPath, bool* alternate = nullptr) const;
  bool hitTestWithPoint(MCPoint point, uint64_t item);
  bool hitTestWithRect(const MCRect& rect, uint64_t item);

  // MARK: Drawing
  bool isFlipped() const override { return true; }
  bool acceptsFirstResponder() const override { return true; }
  void drawRect(const MCRect& dirtyRect) override;
  void drawGroupHeaders(const MCRect& rect);
  void drawItems(const MCRect& rect);
  void drawSelection(const MCRect& rect);
  void drawLayoutGridInRect(const MCRect& rect);

  // MARK: Events
  void mouseDown(const MCEvent& event) override;
  void rightMouseDown(const MCEvent& event) override;
  bool acceptsFirstMouse(const MCEvent* event) override;
  bool shouldDelayWindowOrderingForEvent(const MCEvent& event);
  void leftClick(const MCEvent& event);
  void rightClick(const MCEvent& event);
  void doubleClick(const MCEvent& event);
  void magnifyWithEvent(const MCEvent& event) override;
  void keyDown(const MCEvent& event) override;
  bool handleNavigationKeyDownEvent(const MCEvent& event);
  bool handleEscapeKeyDownEvent(const MCEvent& event);
  bool handleSpacebarKeyDownEvent(const MCEvent& event);
  bool validateMenuItem(const MCMenuItem& item) override;
  void copy();
  void paste();

  // MARK: Superview and window
  void resizeWithOldSuperviewSize(MCSize oldSize) override;
  void superviewDidChangeFrame();
  void viewWillMoveToSuperview(MCView* newSuperview) override;
  void viewDidMoveToSuperview() override;
  void viewDidMoveToWindow() override;

  // MARK: Selection, read side (each with its alternate twin)
  bool hasSelection() const { return !selectionIndexes_.empty(); }
  bool hasAlternateSelection() const { return !alternateSelectionIndexes_.empty(); }
  uint64_t selectionCount() const { return selectionIndexes_.count(); }
  uint64_t alternateSelectionCount() const { return alternateSelectionIndexes_.count(); }
  uint64_t firstSelectionIndex() const { return selectionIndexes_.firstIndex(); }
  uint64_t lastSelectionIndex() const { return selectionIndexes_.lastIndex(); }
  uint64_t alternateFirstSelectionIndex() const { return alternateSelectionIndexes_.firstIndex(); }
  uint64_t alternateLastSelectionIndex() const { return alternateSelectionIndexes_.lastIndex(); }
  std::optional<MCIndexPath> firstSelectedIndexPath() const;
  std::optional<MCIndexPath> lastSelectedIndexPath() const;
  std::optional<MCIndexPath> alternateFirstSelectedIndexPath() const;
  std::optional<MCIndexPath> alternateLastSelectedIndexPath() const;
  MCIndexSet selectedGroupsIndexes() const;
  MCIndexSet alternateSelectedGroupsIndexes() const;
  MCIndexSet selectionIndexes() const { return selectionIndexes_; }
  MCIndexSet alternateSelectionIndexes() const { return alternateSelectionIndexes_; }
  std::vector<MCIndexPath> selectionIndexPaths() const;
  std::vector<MCIndexPath> alternateSelectionIndexPaths() const;

  // MARK: Selection, write side
  bool setSelectionIndexPaths(const std::vector<MCIndexPath>& indexPaths);
  bool setAlternateSelectionIndexPaths(const std::vector<MCIndexPath>& indexPaths);
  /// None (nullptr) counts as an empty set.
  bool setSelectionIndexes(const MCIndexSet* indexes, bool extend, bool notify = true);
  bool setAlternateSelectionIndexes(const MCIndexSet* indexes, bool extend, bool notify = true);
  bool setSelectionIndexes(const MCIndexSet& indexes, bool extend, bool notify = true) {
    return setSelectionIndexes(&indexes, extend, notify);
  }
  bool setAlternateSelectionIndexes(const MCIndexSet& indexes, bool extend, bool notify = true) {
    return setAlternateSelectionIndexes(&indexes, extend, notify);
  }
  void selectIndex(uint64_t index, bool extend, bool autoscroll, bool notify = true);
  void alternateSelectIndex(uint64_t index, bool extend, bool autoscroll, bool notify = true);
  void selectRange(MCRange range, bool extend, uint64_t autoscrollToIndex, bool notify = true);
  void alternateSelectRange(MCRange range, bool extend, uint64_t autoscrollToIndex, bool notify = true);
  void selectItemAtIndexPath(const MCIndexPath& indexPath, bool extend, bool autoscroll, bool notify = true);
  void alternateSelectItemAtIndexPath(const MCIndexPath& indexPath, bool extend, bool autoscroll, bool notify = true);
  void selectGroupAtIndex(uint64_t group, bool extend, bool notify = true);
  void alternateSelectGroupAtIndex(uint64_t group, bool extend, bool notify = true);
  void swapAlternateSelection();
  bool deselectAll();
  void notifySelectionDidChange();

  // MARK: The sweep
  MCRect selectionRect() const { return selectionRect_; }
  /// Marks only the strips between the old and the new band for redraw.
  void setSelectionRect(const MCRect& rect);
  void startSelectionWithEvent(const MCEvent& event);
  void makeSelectionInRect(const MCRect& rect);
  void stopSelection();

  // MARK: Navigation
  void moveSelectionUp(uint64_t rows, bool extend);
  void moveSelectionDown(uint64_t rows, bool extend);
  void moveSelectionLeft(uint64_t count, bool extend);
  void moveSelectionRight(uint64_t count, bool extend);
  void alternateMoveSelectionLeft(uint64_t count, bool extend);
  void alternateMoveSelectionRight(uint64_t count, bool extend);
  uint64_t offsetIndex(uint64_t index, int64_t by, const MCIndexSet& skippingIndexes) const;
  void scrollLineUp();
  void scrollLineDown();
  void scrollPageUp();
  void scrollPageDown();
  void scrollToBeginningOfDocument();
  void scrollToEndOfDocument();
  void selectAll();

  // MARK: Dragging, pasteboard and preview
  bool canBeginDragging(const MCEvent& event);
  bool isDraggingEvent(const MCEvent& event);
  void beginDragging(const MCEvent& event);
  std::shared_ptr<const MCImage> dragImageAtIndexPath(const MCIndexPath& indexPath, MCSize size, MCPoint* offset);
  uint64_t sourceOperationMaskForDraggingContext(MCDraggingSession& session, MCDraggingContext context) override;
  void willBeginAtPoint(MCDraggingSession& session, MCPoint screenPoint) override;
  void endedAtPoint(MCDraggingSession& session, MCPoint screenPoint, uint64_t operation) override;
  uint64_t draggingEntered(const MCDraggingInfo& info) override;
  bool performDragOperation(const MCDraggingInfo& info) override;
  bool canReadItemsFromPasteboard(MCPasteboard& pasteboard);
  void readItemsFromPasteboard(MCPasteboard& pasteboard);
  bool canWriteSelectedItemsToPasteboard(MCPasteboard& pasteboard);
  void writeSelectedItemsToPasteboard(MCPasteboard& pasteboard);
  bool acceptsPreviewPanelControl(MCPreviewPanel& panel) override;
  void beginPreviewPanelControl(MCPreviewPanel& panel) override;
  void endPreviewPanelControl(MCPreviewPanel& panel) override;
  long numberOfPreviewItemsInPreviewPanel(MCPreviewPanel& panel) override;
  std::shared_ptr<MCPreviewItem> previewItemAtIndex(MCPreviewPanel& panel, long index) override;
  bool handleEvent(MCPreviewPanel& panel, const MCEvent& event) override;
  MCRasterImageRef transitionImageForPreviewItem(MCPreviewPanel& panel, const MCPreviewItem& item,
                                                 MCRect* contentRect) override;
  MCRect sourceFrameOnScreenForPreviewItem(MCPreviewPanel& panel, const MCPreviewItem& item) override;

  // MARK: The layout's delegate
  MCSize itemCellSizeForBounds(MCBrowserViewLayout& layout, MCRect bounds) override;
  MCSize headerCellSizeForBounds(MCBrowserViewLayout& layout, MCRect bounds) override;

 private:
  void registerCommands();
  bool respondsTo(MCBrowserViewDelegateOperation operation) const;
  bool setIndexes(MCIndexSet& set, const MCIndexSet* indexes, bool extend, bool notify);
  void exchangeSelections();
  void fillRangeHoles(MCIndexSet& set, uint64_t index);
  void moveHorizontally(bool alternate, bool left, bool extend);
  void scrollAlongAxis(double delta);
  std::vector<MCIndexPath> pathsFor(const MCIndexSet& items) const;

  double scale_ = 0.5;
  double minScale_ = 0.25;
  double maxScale_ = 1.0;
  bool allowsAlternateSelection_ = false;
  bool allowsEmptySelection_ = true;
  bool allowsMultipleSelection_ = true;
  bool allowsDrop_ = true;
  bool allowsPreviewPanel_ = true;
  std::shared_ptr<MCBrowserViewCell> headerCell_;
  std::shared_ptr<MCBrowserViewCell> itemCell_;
  std::shared_ptr<MCBrowserViewLayout> contentLayout_;
  uint64_t selectionMode_ = 0;
  MCRect selectionRect_{};
  bool selectionSwapped_ = false;
  MCIndexSet selectionIndexes_;
  std::optional<MCIndexSet> selectionIndexesOld_;
  MCIndexSet alternateSelectionIndexes_;
  std::optional<MCIndexSet> alternateSelectionIndexesOld_;
  bool drawsLayoutGrid_ = false;
  MCColor selectionFillColor_ = MCColor::controlAccentColor().colorWithAlphaComponent(0.15);
  MCColor selectionStrokeColor_ = MCColor::controlAccentColor().colorWithAlphaComponent(1.0);
  MCColor alternateSelectionFillColor_ = MCColor::colorWithWhite(0.75, 0.15);
  MCColor alternateSelectionStrokeColor_ = MCColor::colorWithWhite(0.75, 1.0);
  std::weak_ptr<MCBrowserViewDelegate> delegate_;
  std::weak_ptr<MCBrowserViewDataSource> dataSource_;
  std::weak_ptr<MCBrowserViewPrefetching> prefetchDataSource_;
  std::vector<std::any> items_, groups_;
  MCIndexSet prefetchedIndexes_;
  MCRect prefetchedRect_{};

  MCView* observedSuperview_ = nullptr;
  int superviewObserver_ = 0;
  /// What the layout's weak delegate reference points through (see the constructor).
  std::shared_ptr<MCBrowserView> layoutDelegateAnchor_;
};
