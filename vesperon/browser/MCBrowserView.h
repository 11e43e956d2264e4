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
/// How the sweep in hand changes the selection; the flags combine.
enum MCBrowserViewSelectionMode : uint64_t {
  /// The sweep replaces the selection.
  MCBrowserViewSelectionModeSingle = 1,
  /// The sweep extends the selection to a range (Shift).
  MCBrowserViewSelectionModeRange = 2,
  /// The sweep toggles the items it covers (Ctrl).
  MCBrowserViewSelectionModeToggle = 4,
  /// The sweep works on the alternate selection.
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
  /// Stops watching the superview's frame.
  ~MCBrowserView() override;

  // MARK: Properties (store and return; trigger nothing)
  /// @name Properties
  //@{
  /// Plain properties: each getter answers what its setter stored, and setting one triggers nothing.
  /// The scale bounds are those of magnification; `allowsDrop` is for the host only (the view never
  /// reads it); `allowsPreviewPanel` lets the view take control of the preview panel.
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
  //@}
  /// The one cell that draws every group header, refilled by the data source before each use.
  const std::shared_ptr<MCBrowserViewCell>& headerCell() const { return headerCell_; }
  /// Sets the header cell; the view keeps it.
  void setHeaderCell(std::shared_ptr<MCBrowserViewCell> cell) { headerCell_ = std::move(cell); }
  /// The one cell that draws every item, refilled by the data source before each use.
  const std::shared_ptr<MCBrowserViewCell>& itemCell() const { return itemCell_; }
  /// Sets the item cell; the view keeps it.
  void setItemCell(std::shared_ptr<MCBrowserViewCell> cell) { itemCell_ = std::move(cell); }
  /// The geometry of the grid; the view is its delegate.
  const std::shared_ptr<MCBrowserViewLayout>& contentLayout() const { return contentLayout_; }
  /// Replaces the layout (nothing else changes).
  void setContentLayout(std::shared_ptr<MCBrowserViewLayout> layout) { contentLayout_ = std::move(layout); }
  /// @name Sweep colours
  //@{
  /// The fill and frame of the rubber band, for the first selection and the alternate one; each
  /// getter answers what its setter stored.
  MCColor selectionFillColor() const { return selectionFillColor_; }
  void setSelectionFillColor(const MCColor& color) { selectionFillColor_ = color; }
  MCColor selectionStrokeColor() const { return selectionStrokeColor_; }
  void setSelectionStrokeColor(const MCColor& color) { selectionStrokeColor_ = color; }
  MCColor alternateSelectionFillColor() const { return alternateSelectionFillColor_; }
  void setAlternateSelectionFillColor(const MCColor& color) { alternateSelectionFillColor_ = color; }
  MCColor alternateSelectionStrokeColor() const { return alternateSelectionStrokeColor_; }
  void setAlternateSelectionStrokeColor(const MCColor& color) { alternateSelectionStrokeColor_ = color; }
  //@}
  /// Held weakly.
  /// The delegate, held weakly; none when it is gone.
  std::shared_ptr<MCBrowserViewDelegate> delegate() const { return delegate_.lock(); }
  /// Sets the delegate, held weakly.
  void setDelegate(const std::shared_ptr<MCBrowserViewDelegate>& delegate) { delegate_ = delegate; }
  /// The data source, held weakly; none when it is gone.
  std::shared_ptr<MCBrowserViewDataSource> dataSource() const { return dataSource_.lock(); }
  /// Sets the data source, held weakly.
  void setDataSource(const std::shared_ptr<MCBrowserViewDataSource>& source) { dataSource_ = source; }
  /// The prefetch source, held weakly; without one the prefetch bookkeeping runs all the same.
  std::shared_ptr<MCBrowserViewPrefetching> prefetchDataSource() const { return prefetchDataSource_.lock(); }
  /// Sets the prefetch source, held weakly.
  void setPrefetchDataSource(const std::shared_ptr<MCBrowserViewPrefetching>& source) { prefetchDataSource_ = source; }
  /// Whether the view draws the layout's grid over the cells (for debugging).
  bool drawsLayoutGrid() const { return drawsLayoutGrid_; }
  /// Turns the layout grid on or off.
  void setDrawsLayoutGrid(bool flag) { drawsLayoutGrid_ = flag; }
  /// Plain storage for the host; the view never reads them.
  /// @name Host storage
  //@{
  /// Storage for the host's own use; the view never reads it.
  std::vector<std::any>& items() { return items_; }
  std::vector<std::any>& groups() { return groups_; }
  //@}
  /// Items whose prefetch was asked for and not cancelled.
  const MCIndexSet& prefetchedIndexes() const { return prefetchedIndexes_; }
  /// Replaces the prefetched items (bookkeeping only; nothing is sent).
  void setPrefetchedIndexes(const MCIndexSet& indexes) { prefetchedIndexes_ = indexes; }
  /// The area the present prefetch covers.
  MCRect prefetchedRect() const { return prefetchedRect_; }
  /// Replaces the prefetched area (bookkeeping only).
  void setPrefetchedRect(const MCRect& rect) { prefetchedRect_ = rect; }
  /// Whether the two selections are swapped (see swapAlternateSelection).
  bool isSelectionSwapped() const { return selectionSwapped_; }
  /// The flags of the sweep in hand (MCBrowserViewSelectionMode); 0 between sweeps.
  uint64_t selectionMode() const { return selectionMode_; }

  // MARK: Scale and layout
  /// The cell scale; cells ask for their size at it.
  double scale() const { return scale_; }
  /// Stores a new scale as given (no clamping), tells the delegate, and sizes to fit holding the
  /// scroll position.
  void setScale(double scale);
  /// Whether the cells run in one horizontal strip instead of rows.
  bool isHorizontal() const { return contentLayout_->isHorizontal(); }
  /// Also sets the minimum spacings: 4 and 4 horizontal, 12 and 24 vertical.
  void setHorizontal(bool horizontal);
  /// How a line of cells aligns in the view's width (the layout's alignment).
  int64_t alignment() const { return contentLayout_->alignment(); }
  /// Sets the layout's alignment; then sizes to fit, unless it is already so.
  void setAlignment(int64_t alignment);
  /// Whether each group has a header band.
  bool showsGroupHeaders() const { return contentLayout_->showsGroupHeaders(); }
  /// Shows or hides the header bands; then sizes to fit, unless already so.
  void setShowsGroupHeaders(bool shows);
  /// How many items all groups hold together.
  uint64_t numberOfItems() const { return contentLayout_->numberOfItems(); }

  /// The name assistive technologies give the view; "Photos" unless set.
  std::string accessibilityLabel() const override { return accessibilityName_; }
  /// Sets the name assistive technologies give the view.
  void setAccessibilityLabel(std::string label);
  /// The focused item's name (the one last selected by a key or a click; the selection's last
  /// otherwise), its place among all items and how many are
  /// selected: "IMG_0042.jpg, 12 of 2,000, 3 selected"; "No selection, 2,000 items" when none is.
  std::string accessibilityValue() const override;
  /// The items shown now, each a cell named as the data source names it, with its place among
  /// all items ("12 of 2,000") and whether it is selected.
  std::vector<MCAccessibilityElement> accessibilityElements() const override;
  /// Lays out for the enclosing scroll view's content size and takes the layout's content size as
  /// the frame size; with `holdScrollPosition`, the same fraction of the content stays at the top.
  void sizeToFit(bool holdScrollPosition);
  /// Scrolls the least that shows the item's cell whole.
  void scrollToIndex(uint64_t item);
  /// Scrolls the least that shows `rect`, each axis on its own; nothing when it shows already.
  void scrollToVisibleRect(const MCRect& rect);

  // MARK: Data
  /// Drops prefetches, both selections and all groups, then appends the groups anew.
  /// @name Data
  //@{
  void reloadData();
  /// Brings the groups up to the data source, keeping both selections; nothing when the source has
  /// fewer groups than the view.
  void appendGroups();
  //@}
  /// The data source added items or groups at the end: the same as appendGroups.
  void noteItemsAppended() { appendGroups(); }
  /// Marks the item's cell for redraw; throws as the layout does for a bad path.
  void reloadItemAtIndexPath(const MCIndexPath& indexPath);

  // MARK: Prefetching
  /// Cancels every prefetch asked for (ascending) and forgets the prefetched area.
  void invalidatePrefetching();
  /// Prefetches the visible area and two lines of cells around it, cancelling first what left it.
  void prefetchVisibleItems();
  /// The area to prefetch for `rect`: it grown by two lines of cells along the scrolling axis, within the bounds.
  MCRect prefetchRectForProposedRect(const MCRect& rect) const;
  /// Makes the prefetched items those of `rect`: cancels those outside it, then asks for the new ones.
  void prefetchItemsInRect(const MCRect& rect);
  /// The toolkit wants `rect` ready before it scrolls there: prefetches it.
  void prepareContentInRect(const MCRect& rect) override;

  // MARK: Cells and hit tests
  /// The shared item cell, refilled by the data source for `indexPath`; none for no path.
  MCBrowserViewCell* preparedItemCellAtIndexPath(const std::optional<MCIndexPath>& indexPath);
  /// The shared header cell, refilled for `group`; none for MCNotFound.
  MCBrowserViewCell* preparedHeaderCellAtIndex(uint64_t group);
  /// In the first selection: true, with `alternate` false. Otherwise, with `alternate` given,
  /// whether it is in the alternate selection (written there too); without, false.
  bool isSelectedItemAtIndexPath(const MCIndexPath& indexPath, bool* alternate = nullptr) const;
  /// Whether `point` hits the item: inside its cell frame, and then as the prepared cell says.
  bool hitTestWithPoint(MCPoint point, uint64_t item);
  /// Whether `rect` takes the item: true when it holds the cell frame whole, false when it misses
  /// it, otherwise as the prepared cell says.
  bool hitTestWithRect(const MCRect& rect, uint64_t item);

  // MARK: Drawing
  /// Always: y grows downward.
  bool isFlipped() const override { return true; }
  /// Always: the view takes the keyboard.
  bool acceptsFirstResponder() const override { return true; }
  /// Draws the headers, the items, the sweep and (when asked) the grid that meet `dirtyRect`.
  void drawRect(const MCRect& dirtyRect) override;
  /// Draws the header cells that meet `rect`.
  void drawGroupHeaders(const MCRect& rect);
  /// Draws the item cells that meet `rect`, each refilled first.
  void drawItems(const MCRect& rect);
  /// Draws the rubber band while a sweep is in hand.
  void drawSelection(const MCRect& rect);
  /// Draws the layout's lines and cells as outlines (the debug grid).
  void drawLayoutGridInRect(const MCRect& rect);

  // MARK: Events
  /// A press: a click, a double click, a sweep or a drag, as the event and what it hits say.
  void mouseDown(const MCEvent& event) override;
  /// Selects the item under the pointer if need be, then tells the delegate of the right click.
  void rightMouseDown(const MCEvent& event) override;
  /// Whether a click that activates the window also acts in the view: when it may begin a drag.
  bool acceptsFirstMouse(const MCEvent* event) override;
  /// Whether the window should wait before coming forward for this press: when it may begin a drag.
  bool shouldDelayWindowOrderingForEvent(const MCEvent& event);
  /// Selects (or extends, or toggles) by a single click at the event's point.
  void leftClick(const MCEvent& event);
  /// Tells the delegate of a right click on an item, or on the background.
  void rightClick(const MCEvent& event);
  /// Tells the delegate of a double click on an item.
  void doubleClick(const MCEvent& event);
  /// Adds the pinch's magnification to the scale, kept within minScale and maxScale.
  void magnifyWithEvent(const MCEvent& event) override;
  /// Escape and space first (see the class), then the key bindings' navigation commands.
  void keyDown(const MCEvent& event) override;
  /// Arrows, Home, End and page keys; false for any other key.
  bool handleNavigationKeyDownEvent(const MCEvent& event);
  /// Escape deselects everything; false for any other key.
  bool handleEscapeKeyDownEvent(const MCEvent& event);
  /// Space shows or hides the preview panel; false for any other key.
  bool handleSpacebarKeyDownEvent(const MCEvent& event);
  /// "copy:" when the selection can be written, "paste:" when the pasteboard can be read,
  /// "selectAll:" when there are items; any other action is enabled.
  bool validateMenuItem(const MCMenuItem& item) override;
  /// Writes the selected items to the general pasteboard.
  void copy();
  /// Reads items from the general pasteboard (through the delegate).
  void paste();

  // MARK: Superview and window
  /// The superview changed size: sizes to fit, holding the scroll position.
  void resizeWithOldSuperviewSize(MCSize oldSize) override;
  /// The superview's frame changed: sizes to fit, holding the scroll position.
  void superviewDidChangeFrame();
  /// Stops watching the old superview's frame.
  void viewWillMoveToSuperview(MCView* newSuperview) override;
  /// Starts watching the new superview's frame.
  void viewDidMoveToSuperview() override;
  /// Prefetches what is visible in the new window.
  void viewDidMoveToWindow() override;

  // MARK: Selection, read side (each with its alternate twin)
  /// @name Selection, read side
  //@{
  /// The selections as they stand, each query with its twin for the alternate selection: whether
  /// there is one, how many items, the first and last item index (MCNotFound when empty), the first
  /// and last index path, the groups that hold selected items, the item indexes and the index paths.
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
  //@}

  // MARK: Selection, write side
  /// @name Selection, write side
  //@{
  /// Changes a selection (each with its twin for the alternate one). `extend` adds to it rather than
  /// replacing it; `autoscroll` brings the item into view; `notify` reports the change to the
  /// delegate. Without allowsMultipleSelection only one item stays selected, and without
  /// allowsEmptySelection a selection does not become empty. Answers, where it does, whether the
  /// selection changed. `setSelectionIndexes` takes none (nullptr) as the empty set.
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
  //@}
  /// Exchanges the two selections (see isSelectionSwapped).
  void swapAlternateSelection();
  /// Empties both selections and reports the change; false when nothing was selected or an empty
  /// selection is not allowed.
  bool deselectAll();
  /// Tells the delegate that the selection changed.
  void notifySelectionDidChange();

  // MARK: The sweep
  /// The rubber band of the sweep in hand; zero between sweeps.
  MCRect selectionRect() const { return selectionRect_; }
  /// Marks only the strips between the old and the new band for redraw.
  void setSelectionRect(const MCRect& rect);
  /// Runs a sweep from a press: tracks the pointer until the release, autoscrolling, and reports
  /// at most one selection change, at the end.
  void startSelectionWithEvent(const MCEvent& event);
  /// Rebuilds the selection in play from the sweep's snapshot and the items in `rect`.
  void makeSelectionInRect(const MCRect& rect);
  /// Ends the sweep: clears the band and reports the change, if any.
  void stopSelection();

  // MARK: Navigation
  /// @name Navigation
  //@{
  /// Move the selection by lines (up, down) or by items (left, right), extending it when `extend`
  /// is set, and scroll to show the new item; the alternate twins move the alternate selection.
  void moveSelectionUp(uint64_t rows, bool extend);
  void moveSelectionDown(uint64_t rows, bool extend);
  void moveSelectionLeft(uint64_t count, bool extend);
  void moveSelectionRight(uint64_t count, bool extend);
  void alternateMoveSelectionLeft(uint64_t count, bool extend);
  void alternateMoveSelectionRight(uint64_t count, bool extend);
  //@}
  /// The item `by` places from `index` (held at the first or last item), moved on in the same
  /// direction past `skippingIndexes`; MCNotFound when there is none.
  uint64_t offsetIndex(uint64_t index, int64_t by, const MCIndexSet& skippingIndexes) const;
  /// @name Scrolling
  //@{
  /// Scroll by a line of cells, by a page, or to either end, leaving the selection as it is.
  void scrollLineUp();
  void scrollLineDown();
  void scrollPageUp();
  void scrollPageDown();
  void scrollToBeginningOfDocument();
  void scrollToEndOfDocument();
  //@}
  /// Selects every item (when multiple selection is allowed).
  void selectAll();

  // MARK: Dragging, pasteboard and preview
  /// Whether a press may start a drag: it hits a selected item, and the delegate gives pasteboard writers.
  bool canBeginDragging(const MCEvent& event);
  /// Whether a press that may drag does: the next event is a drag, or the pointer holds still for
  /// half a second.
  bool isDraggingEvent(const MCEvent& event);
  /// Starts a drag of the selected items, with their images.
  void beginDragging(const MCEvent& event);
  /// The image dragged for an item, drawn by the prepared cell at `size`; `offset` receives where
  /// it lies from the pointer.
  std::shared_ptr<const MCImage> dragImageAtIndexPath(const MCIndexPath& indexPath, MCSize size, MCPoint* offset);
  /// What a drag from the view offers: copy and delete outside the application, copy inside it.
  uint64_t sourceOperationMaskForDraggingContext(MCDraggingSession& session, MCDraggingContext context) override;
  /// Tells the delegate that a drag begins.
  void willBeginAtPoint(MCDraggingSession& session, MCPoint screenPoint) override;
  /// Tells the delegate that a drag ended, with the operation done.
  void endedAtPoint(MCDraggingSession& session, MCPoint screenPoint, uint64_t operation) override;
  /// Asks the delegate whether it takes what is dragged over the view.
  uint64_t draggingEntered(const MCDraggingInfo& info) override;
  /// Asks the delegate to take what was dropped on the view.
  bool performDragOperation(const MCDraggingInfo& info) override;
  /// Whether the delegate reads items from `pasteboard`.
  bool canReadItemsFromPasteboard(MCPasteboard& pasteboard);
  /// Hands `pasteboard` to the delegate to read items from.
  void readItemsFromPasteboard(MCPasteboard& pasteboard);
  /// Whether there is a selection and a delegate that writes items.
  bool canWriteSelectedItemsToPasteboard(MCPasteboard& pasteboard);
  /// Has the delegate write the selected items to `pasteboard`.
  void writeSelectedItemsToPasteboard(MCPasteboard& pasteboard);
  /// @name Preview panel
  //@{
  /// The preview panel's data source and delegate: the view offers the selected items through the
  /// delegate's preview items, moves through them with the arrows, and gives the panel the cell's
  /// image and frame for its zoom transition.
  bool acceptsPreviewPanelControl(MCPreviewPanel& panel) override;
  void beginPreviewPanelControl(MCPreviewPanel& panel) override;
  void endPreviewPanelControl(MCPreviewPanel& panel) override;
  long numberOfPreviewItemsInPreviewPanel(MCPreviewPanel& panel) override;
  std::shared_ptr<MCPreviewItem> previewItemAtIndex(MCPreviewPanel& panel, long index) override;
  bool handleEvent(MCPreviewPanel& panel, const MCEvent& event) override;
  MCRasterImageRef transitionImageForPreviewItem(MCPreviewPanel& panel, const MCPreviewItem& item,
                                                 MCRect* contentRect) override;
  MCRect sourceFrameOnScreenForPreviewItem(MCPreviewPanel& panel, const MCPreviewItem& item) override;
  //@}

  // MARK: The layout's delegate
  /// The item cell's size for `bounds` at the present scale.
  MCSize itemCellSizeForBounds(MCBrowserViewLayout& layout, MCRect bounds) override;
  /// The header cell's size for `bounds` at the present scale.
  MCSize headerCellSizeForBounds(MCBrowserViewLayout& layout, MCRect bounds) override;

 private:
  // The data source's name for the item, or "Item N" when it gives none.
  std::string accessibilityName(uint64_t index) const;
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
  std::string accessibilityName_ = "Photos";
  uint64_t focusIndex_ = NSNotFound;
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
