#pragma once
// MCBrowserViewLayout: the geometry of the browser grid.
//
// The layout puts pixels on the index spaces of its MCLayoutMatrix (a group is a section of the
// matrix): cell and header sizes from its delegate, the number of rows and columns for an area,
// the real spacing, the content size, and the frames and hit tests of everything in the grid.
// Coordinates are flipped: the origin is the top left and y grows downward.
//
// Vertical layout: the matrix's lines are rows, content grows downward, and with group headers a
// header band of the header cell's height stands above every group.
//
// Horizontal layout is vertical layout with the axes exchanged, everywhere. This is the one place
// that says so, and what follows from it. The matrix numbers cells line by line, and in horizontal
// layout its lines are columns; the content grows to the right by one header width per group and
// keeps the area's height. Numbering cells row by row (cell = column + columns × row) and shifting
// rows down by the header height would fit neither once there are several rows: such a cell index
// names another slot than the matrix holds, and a downward header shift has no room in the height.
// So, in horizontal layout:
//   - cells are numbered column by column: cell i is in column i / rows and row i % rows, and
//     cellIndexAtRow(r, c) is r + rows × c. A group is a block of whole columns; its gap cells end
//     its last column, at the bottom, as they end a group's last row in vertical layout.
//   - a group's header band stands to its left: it shifts the columns of its group and of every
//     later group right by one header width, never the rows down. The header frame stands at
//     (left of the group + H / 2, 0).
//   - with an alignment, the free height is shared over the rows + 1 gaps around the rows.
//   - scrollRectForItemAtIndex grows the cell frame by H on both sides and, with headers, by the
//     header width on the left, the mirror of the header height above in vertical layout, so that
//     a cell scrolled to at the start of its group shows its header.
//   - offsetItemIndex moves by rows and columns as they are seen; a move that lands on a gap cell
//     gives the last item of the target column's group.
// With one row and no headers this is the same as row-by-row numbering.
//
// For code that walks the grid (the sweep selection of the view, drawing): the cell of a row and
// a column is cellIndexAtRow(row, column), never column + numberOfColumns() × row. A gap cell ends
// its line, not its row: in horizontal layout the groups after it go on in the same row. A walk
// that stops at the first gap cell must therefore stop a line — a row in vertical layout, a
// column in horizontal layout (walk the columns outside and the rows inside) — or it loses the
// items of every later group in that row.
//
// A group with no items has no lines, and sits where its lines would begin: after the last line
// of the groups before it. Its rectangle is its header band (header height tall in vertical
// layout, header width wide in horizontal layout) or, without headers, a rectangle of no extent
// at that place; its header frame stands there as any other. A user scrolling past it sees its
// header followed directly by the next group, and the content size already holds a band for it.
//
// Results (itemSize, numberOfRows, contentSize, …) are those of the last layoutWithContentSize();
// changing a property has no effect until the next one. An index out of range gives the zero
// rectangle or NSNotFound, never an exception, except for the index-path conversions, which throw
// as documented. A delegate that answers zero, negative, huge or not-a-number sizes gives a
// degenerate grid but no division by zero, no unsigned wrap-around and no crash; the count of
// cells per line is at most maximumLineLength. Not thread-safe: main thread of the owning view.

#include <vesperon/browser/MCBrowserViewLayoutDelegate.h>
#include <vesperon/browser/MCLayoutMatrix.h>
#include <vesperon/core/MCGeometry.h>
#include <vesperon/core/MCIndexPath.h>
#include <vesperon/core/MCIndexSet.h>
#include <vesperon/core/MCTypes.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

class MCBrowserViewLayout {
 public:
  /// The most cells per line a layout uses, whatever the delegate answers: more would be cells
  /// narrower than a pixel on any display, and every group pays a whole line of cells.
  static constexpr uint64_t maximumLineLength = 1024;

  MCBrowserViewLayout();
  MCBrowserViewLayout(const MCBrowserViewLayout&) = delete;
  MCBrowserViewLayout& operator=(const MCBrowserViewLayout&) = delete;

  // --- Settings (take effect at the next layout)

  /// Whether the cells run in one horizontal strip instead of rows.
  bool isHorizontal() const { return horizontal_; }
  /// Sets the direction (takes effect at the next layout).
  void setHorizontal(bool horizontal) { horizontal_ = horizontal; }
  /// Whether each group has a header band.
  bool showsGroupHeaders() const { return showsGroupHeaders_; }
  /// Sets whether groups have header bands (takes effect at the next layout).
  void setShowsGroupHeaders(bool shows) { showsGroupHeaders_ = shows; }
  /// 0 keeps the minimum spacing across the lines; any other value shares the free space out.
  int64_t alignment() const { return alignment_; }
  /// Sets the alignment (takes effect at the next layout).
  void setAlignment(int64_t alignment) { alignment_ = alignment; }
  /// Smallest gap between rows, and above the first row.
  double minVerticalSpacing() const { return minVerticalSpacing_; }
  /// Sets the smallest gap between rows.
  void setMinVerticalSpacing(double spacing) { minVerticalSpacing_ = spacing; }
  /// Smallest gap between columns, and left of the first column.
  double minHorizontalSpacing() const { return minHorizontalSpacing_; }
  /// Sets the smallest gap between columns.
  void setMinHorizontalSpacing(double spacing) { minHorizontalSpacing_ = spacing; }
  /// The delegate that answers the cell sizes; none when it is gone.
  std::shared_ptr<MCBrowserViewLayoutDelegate> delegate() const { return delegate_.lock(); }
  /// Held weakly. Without a delegate every size is zero.
  void setDelegate(const std::shared_ptr<MCBrowserViewLayoutDelegate>& delegate) { delegate_ = delegate; }
  /// The index model: groups as sections of items, cells, lines.
  const std::shared_ptr<MCLayoutMatrix>& layoutMatrix() const { return layoutMatrix_; }
  /// A null matrix is refused (ignored).
  void setLayoutMatrix(std::shared_ptr<MCLayoutMatrix> matrix) {
    if (matrix) layoutMatrix_ = std::move(matrix);
  }

  // --- Results of the last layout

  /// The item cell's size at the last layout.
  MCSize itemSize() const { return itemSize_; }
  /// The header cell's size at the last layout.
  MCSize headerSize() const { return headerSize_; }
  /// How many rows (lines of cells) the last layout made.
  uint64_t numberOfRows() const { return numberOfRows_; }
  /// How many columns the last layout made.
  uint64_t numberOfColumns() const { return numberOfColumns_; }
  /// The size the last layout needs, which the view takes as its frame size.
  MCSize contentSize() const { return contentSize_; }
  /// The gap between rows the last layout chose.
  double verticalSpacing() const { return verticalSpacing_; }
  /// The gap between columns the last layout chose.
  double horizontalSpacing() const { return horizontalSpacing_; }
  /// How many items all groups hold.
  uint64_t numberOfItems() const { return layoutMatrix_->numberOfItems(); }
  /// How many groups there are.
  uint64_t numberOfGroups() const { return layoutMatrix_->numberOfSections(); }

  // --- Layout

  /// Forwards to the matrix: sizeOfGroup(group, currentSize) returns each group's new size, or
  /// NSNotFound to end the list.
  void rebuild(const std::function<uint64_t(uint64_t group, uint64_t currentSize)>& sizeOfGroup) {
    layoutMatrix_->rebuild(sizeOfGroup);
  }
  /// Removes every group from the matrix.
  void removeAllGroups() { layoutMatrix_->removeAllSections(); }

  /// Lays the grid out in an area of the given size (the visible size of the scroll view):
  ///  1. asks the delegate for the item and header sizes, with bounds (0, 0, width, ∞) in vertical
  ///     layout and (0, 0, ∞, height) in horizontal layout;
  ///  2. sets the matrix's line length to the column count for the width (vertical) or the row
  ///     count for the height (horizontal), and takes the rows and columns from the matrix;
  ///  3. the extent along the scrolling axis is L (item + min spacing) + min spacing, plus one
  ///     header per group with headers, for L lines; the content size is the larger of the area and
  ///     that extent along the scrolling axis and the area across it;
  ///  4. the spacing along the scrolling axis is the minimum; across it, the minimum, or with an
  ///     alignment the minimum plus the free space shared over the n + 1 gaps around n lines of
  ///     cells, truncated toward zero (below the minimum when one cell is wider than the area).
  void layoutWithContentSize(MCSize size);
  /// (height - m) / (item height + m) with m the minimum vertical spacing, at least 1, fraction
  /// dropped; the item height comes from the delegate for bounds (0, 0, ∞, height - 2m).
  uint64_t numberOfRowsForContentHeight(double height);
  /// (width - m) / (item width + m) with m the minimum horizontal spacing, at least 1, fraction
  /// dropped; the item width comes from the delegate for bounds (0, 0, width - 2m, ∞). So width
  /// 1000, spacing 12 and cells 200 wide give four columns.
  uint64_t numberOfColumnsForContentWidth(double width);

  // --- Index conversions

  /// NSNotFound for a gap cell or a cell past the grid.
  uint64_t itemIndexFromCellIndex(uint64_t cell) const;
  /// The group and the item within it; none for NSNotFound. An item past the end throws the
  /// matrix's std::out_of_range.
  std::optional<MCIndexPath> indexPathFromItemIndex(uint64_t item) const;
  /// Ascending by item index.
  std::vector<MCIndexPath> indexPathsFromItemIndexes(const MCIndexSet& items) const;
  /// Throws std::invalid_argument, checking the group first:
  /// "*** MCBrowserViewLayout::itemIndexFromIndexPath: indexPath.section (%lu) is out of bounds: 0..%lu"
  /// (group index, group count), then
  /// "*** MCBrowserViewLayout::itemIndexFromIndexPath: indexPath.item (%lu) is out of bounds: 0..%lu"
  /// (item index, group size).
  uint64_t itemIndexFromIndexPath(const MCIndexPath& indexPath) const;
  /// The item indexes of the index paths, with the exceptions of itemIndexFromIndexPath.
  MCIndexSet itemIndexesFromIndexPaths(const std::vector<MCIndexPath>& indexPaths) const;
  /// Forward to the matrix, with its exceptions.
  MCIndexSet itemIndexesForGroupIndexes(const MCIndexSet& groups) const {
    return layoutMatrix_->itemIndexesForSectionIndexes(groups);
  }
  /// The groups that hold the items.
  MCIndexSet groupIndexesForItemIndexes(const MCIndexSet& items) const {
    return layoutMatrix_->sectionIndexesForItemIndexes(items);
  }

  // --- Frames (the zero rectangle for an index out of range)
  //
  // In vertical layout, with H and V the real spacings and S(r) = (group of row r + 1) × header
  // height when headers show:
  //   cell (r, c)   x = c (itemW + H) + H,  y = r (itemH + V) + V + S(r),  itemW × itemH
  //   row r         x = 0, y as the cell,   content width × itemH
  //   column c      x as the cell, y = 0,   itemW × content height
  //   group g       from top = (itemH + V) first + g headerH to bottom = (itemH + V)(first + count)
  //                 + (g + 1) headerH for its lines (first, count), across the content width (no
  //                 header terms without headers). Group rectangles tile the content.
  //   header of g   (0, top + V / 2, headerW, headerH)
  // Horizontal layout exchanges the axes (see the top of this file): S applies to x by the group of
  // the column, a group runs from left to right across the content height, and its header stands
  // at (left + H / 2, 0).

  /// The area of a group: its header and its rows (columns in horizontal layout).
  MCRect rectForGroup(uint64_t group) const;
  /// The area of a row across the content.
  MCRect rectForRow(uint64_t row) const;
  /// The area of a column along the content.
  MCRect rectForColumn(uint64_t column) const;
  /// The frame of a group's header cell.
  MCRect cellFrameAtGroupIndex(uint64_t group) const;
  /// The frame of the cell at (row, column).
  MCRect cellFrameAtRow(uint64_t row, uint64_t column) const;
  /// By cell index: row by row in vertical layout, column by column in horizontal layout.
  MCRect cellFrameAtIndex(uint64_t cell) const;
  /// The cell index of (row, column), gap cells included: column + columns × row in vertical
  /// layout, row + rows × column in horizontal layout. NSNotFound outside the grid.
  uint64_t cellIndexAtRow(uint64_t row, uint64_t column) const;
  /// The zero rectangle for NSNotFound and for an item with no cell.
  MCRect cellFrameAtItemIndex(uint64_t item) const;

  /// (itemW + H, itemH + V).
  MCSize scrollLineSize() const;
  /// The item's frame grown along the scrolling axis by the spacing on both sides and, with
  /// headers, by the header before it, so that a cell scrolled to shows its gaps and its header:
  /// vertical (x, y - V - headerH, w, h + 2V + headerH), horizontal (x - H - headerW, y,
  /// w + 2H + headerW, h), the header terms only with headers. NSNotFound grows the zero rectangle.
  MCRect scrollRectForItemAtIndex(uint64_t item) const;

  // --- Hit testing
  //
  // Along the scrolling axis without headers, and across it, a point maps to a line by one
  // division: at or before the end of the first cell and its spacing gives 0, beyond that
  // trunc(p / (item + spacing)), at most the last. With headers it is a binary search: a point in
  // a gap or a header band gives the line after it, before the first line the first, after the
  // last line the last. NSNotFound when there are no rows (columns, groups).

  /// @name Hits
  //@{
  /// The group, row or column under a point; NSNotFound when there is none.
  uint64_t groupForPoint(MCPoint point) const;
  uint64_t rowForPoint(MCPoint point) const;
  uint64_t columnForPoint(MCPoint point) const;
  //@}
  /// The item whose cell frame holds the point; NSNotFound in the spacing, on a gap cell or on none.
  uint64_t itemIndexAtPoint(MCPoint point) const;
  /// The group under a point (as groupForPoint).
  uint64_t groupIndexAtPoint(MCPoint point) const { return groupForPoint(point); }
  /// Whether the frame of cell (row, column) meets the rectangle.
  bool hitTestItemAtRow(uint64_t row, uint64_t column, MCRect withinRect) const;

  /// The cells of the rows and columns that the rectangle touches, gap cells included, added one
  /// line at a time. When `boundingRect` is given it receives the union of `rect` and the area
  /// those cells fill; with no rows or no columns the set is empty and it is not written.
  MCIndexSet cellIndexesInRect(MCRect rect, MCRect* boundingRect = nullptr) const;
  /// The same cells mapped to items, gap cells left out.
  MCIndexSet itemIndexesInRect(MCRect rect, MCRect* boundingRect = nullptr) const;

  /// The item `rows` rows and `columns` columns away from `item`, the one step of key navigation.
  /// Moves stop at the edges of the grid rather than wrap. A move that lands on a gap cell, or
  /// past the end of the target line's group, gives that group's last item. NSNotFound for
  /// NSNotFound, an item past the end, or a grid not laid out.
  uint64_t offsetItemIndex(uint64_t item, int64_t rows, int64_t columns) const;

 private:
  MCSize itemCellSize(MCRect bounds);
  MCSize headerCellSize(MCRect bounds);

  // Positions along the line axis (rows in vertical layout, columns in horizontal) and across it.
  struct Interval {
    double start = 0, length = 0;
  };
  uint64_t numberOfLines() const { return horizontal_ ? numberOfColumns_ : numberOfRows_; }
  uint64_t lineLength() const { return horizontal_ ? numberOfRows_ : numberOfColumns_; }
  double lineItemExtent() const { return horizontal_ ? itemSize_.width : itemSize_.height; }
  double lineSpacing() const { return horizontal_ ? horizontalSpacing_ : verticalSpacing_; }
  double crossItemExtent() const { return horizontal_ ? itemSize_.height : itemSize_.width; }
  double crossSpacing() const { return horizontal_ ? verticalSpacing_ : horizontalSpacing_; }
  double headerExtent() const { return horizontal_ ? headerSize_.width : headerSize_.height; }
  // Where line `line` starts; none when it is not in the matrix.
  std::optional<double> lineStart(uint64_t line) const;
  double crossStart(uint64_t position) const { return position * (crossItemExtent() + crossSpacing()) + crossSpacing(); }
  // The group's band along the line axis; none for a group out of range.
  std::optional<Interval> groupInterval(uint64_t group) const;
  // The first line of a group, also for a group with no lines.
  uint64_t firstLineOfGroup(uint64_t group) const;
  uint64_t lineForCoordinate(double coordinate) const;
  uint64_t crossPositionForCoordinate(double coordinate) const;
  MCRect rectFromIntervals(double lineStart, double lineLength, double crossStart, double crossLength) const;

  bool horizontal_ = false;
  bool showsGroupHeaders_ = false;
  int64_t alignment_ = 0;
  double minVerticalSpacing_ = 0;
  double minHorizontalSpacing_ = 0;
  std::weak_ptr<MCBrowserViewLayoutDelegate> delegate_;
  uint64_t numberOfRows_ = 0;
  uint64_t numberOfColumns_ = 0;
  std::shared_ptr<MCLayoutMatrix> layoutMatrix_;
  double verticalSpacing_ = 0;
  double horizontalSpacing_ = 0;
  MCSize itemSize_;
  MCSize headerSize_;
  MCSize contentSize_;
};
