#include <vesperon/browser/MCBrowserViewLayout.h>
#include <vesperon/core/MCBinarySearch.h>

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <stdexcept>

namespace {

constexpr double kUnconstrained = std::numeric_limits<double>::max();

// A count of cells per line from a quotient: at least 1, fraction dropped, and safe for any double.
uint64_t countFromQuotient(double quotient) {
  if (!(quotient >= 1.0)) return 1;
  if (quotient >= static_cast<double>(MCBrowserViewLayout::maximumLineLength)) return MCBrowserViewLayout::maximumLineLength;
  return static_cast<uint64_t>(quotient);
}

// The line of `count` lines of pitch `pitch` that a coordinate falls in: 0 up to the end of the
// first pitch, then trunc(coordinate / pitch), at most the last line.
uint64_t lineByDivision(double coordinate, double pitch, uint64_t count) {
  if (count == 0) return NSNotFound;
  if (!(coordinate > pitch)) return 0;
  const double quotient = coordinate / pitch;
  if (!(quotient > 0)) return 0;
  if (!(quotient < static_cast<double>(count - 1))) return count - 1;
  return std::min(static_cast<uint64_t>(quotient), count - 1);
}

// value + offset, kept within [0, maximum] without overflowing.
uint64_t offsetWithin(uint64_t value, int64_t offset, uint64_t maximum) {
  const __int128 moved = static_cast<__int128>(value) + offset;
  if (moved < 0) return 0;
  if (moved > static_cast<__int128>(maximum)) return maximum;
  return static_cast<uint64_t>(moved);
}

}  // namespace

MCBrowserViewLayout::MCBrowserViewLayout() : layoutMatrix_(std::make_shared<MCLayoutMatrix>(1)) {}

MCSize MCBrowserViewLayout::itemCellSize(MCRect bounds) {
  auto delegate = delegate_.lock();
  return delegate ? delegate->itemCellSizeForBounds(*this, bounds) : MCZeroSize;
}

MCSize MCBrowserViewLayout::headerCellSize(MCRect bounds) {
  auto delegate = delegate_.lock();
  return delegate ? delegate->headerCellSizeForBounds(*this, bounds) : MCZeroSize;
}

// --- Layout

uint64_t MCBrowserViewLayout::numberOfColumnsForContentWidth(double width) {
  const double m = minHorizontalSpacing_;
  const double cell = itemCellSize(MCMakeRect(0, 0, width - 2 * m, kUnconstrained)).width;
  return countFromQuotient((width - m) / (cell + m));
}

uint64_t MCBrowserViewLayout::numberOfRowsForContentHeight(double height) {
  const double m = minVerticalSpacing_;
  const double cell = itemCellSize(MCMakeRect(0, 0, kUnconstrained, height - 2 * m)).height;
  return countFromQuotient((height - m) / (cell + m));
}

void MCBrowserViewLayout::layoutWithContentSize(MCSize size) {
  const double w = size.width, h = size.height;
  const MCRect bounds = horizontal_ ? MCMakeRect(0, 0, kUnconstrained, h) : MCMakeRect(0, 0, w, kUnconstrained);
  itemSize_ = itemCellSize(bounds);
  headerSize_ = headerCellSize(bounds);

  MCLayoutMatrix& matrix = *layoutMatrix_;
  if (horizontal_) {
    matrix.setLineLength(numberOfRowsForContentHeight(h));
    numberOfRows_ = matrix.lineLength();
    numberOfColumns_ = matrix.numberOfLines();
  } else {
    matrix.setLineLength(numberOfColumnsForContentWidth(w));
    numberOfRows_ = matrix.numberOfLines();
    numberOfColumns_ = matrix.lineLength();
  }

  const double lines = static_cast<double>(matrix.numberOfLines());
  const double groups = static_cast<double>(matrix.numberOfSections());
  const double minV = minVerticalSpacing_, minH = minHorizontalSpacing_;
  double contentWidth = w, contentHeight = h;
  if (horizontal_) {
    double total = lines * (itemSize_.width + minH) + minH;
    if (showsGroupHeaders_) total += groups * headerSize_.width;
    contentWidth = std::max(w, total);
    horizontalSpacing_ = minH;
    verticalSpacing_ = minV;
    if (alignment_ != 0) {
      const double rows = static_cast<double>(numberOfRows_);
      const double free = contentHeight - (rows * (itemSize_.height + minV) + minV);
      verticalSpacing_ = minV + std::trunc(free / (rows + 1));
    }
  } else {
    double total = lines * (itemSize_.height + minV) + minV;
    if (showsGroupHeaders_) total += groups * headerSize_.height;
    contentHeight = std::max(h, total);
    verticalSpacing_ = minV;
    horizontalSpacing_ = minH;
    if (alignment_ != 0) {
      const double columns = static_cast<double>(numberOfColumns_);
      const double free = contentWidth - (columns * (itemSize_.width + minH) + minH);
      horizontalSpacing_ = minH + std::trunc(free / (columns + 1));
    }
  }
  contentSize_ = MCMakeSize(contentWidth, contentHeight);
}

// --- Index conversions

uint64_t MCBrowserViewLayout::itemIndexFromCellIndex(uint64_t cell) const {
  if (cell >= layoutMatrix_->numberOfCells()) return NSNotFound;
  return layoutMatrix_->itemIndexFromCellIndex(cell);
}

std::optional<MCIndexPath> MCBrowserViewLayout::indexPathFromItemIndex(uint64_t item) const {
  if (item == NSNotFound) return std::nullopt;
  const uint64_t group = layoutMatrix_->sectionIndexFromItemIndex(item);
  return MCIndexPath::indexPathForItem(item - layoutMatrix_->itemsRangeOfSectionAtIndex(group).location, group);
}

std::vector<MCIndexPath> MCBrowserViewLayout::indexPathsFromItemIndexes(const MCIndexSet& items) const {
  std::vector<MCIndexPath> paths;
  paths.reserve(items.count());
  for (uint64_t item : items) paths.push_back(*indexPathFromItemIndex(item));
  return paths;
}

uint64_t MCBrowserViewLayout::itemIndexFromIndexPath(const MCIndexPath& indexPath) const {
  const uint64_t groups = layoutMatrix_->numberOfSections();
  if (indexPath.groupIndex() >= groups)
    throw std::invalid_argument(
        fmt::format("*** MCBrowserViewLayout::itemIndexFromIndexPath: indexPath.section ({}) is out of bounds: 0..{}",
                    indexPath.groupIndex(), groups));
  const MCRange items = layoutMatrix_->itemsRangeOfSectionAtIndex(indexPath.groupIndex());
  if (indexPath.itemIndex() >= items.length)
    throw std::invalid_argument(
        fmt::format("*** MCBrowserViewLayout::itemIndexFromIndexPath: indexPath.item ({}) is out of bounds: 0..{}",
                    indexPath.itemIndex(), items.length));
  return items.location + indexPath.itemIndex();
}

MCIndexSet MCBrowserViewLayout::itemIndexesFromIndexPaths(const std::vector<MCIndexPath>& indexPaths) const {
  MCIndexSet items;
  for (const MCIndexPath& path : indexPaths) items.addIndex(itemIndexFromIndexPath(path));
  return items;
}

// --- Frames

std::optional<double> MCBrowserViewLayout::lineStart(uint64_t line) const {
  double start = static_cast<double>(line) * (lineItemExtent() + lineSpacing()) + lineSpacing();
  if (showsGroupHeaders_) {
    const MCIndexMap& sections = layoutMatrix_->lineToSectionMap();
    if (line >= sections.count()) return std::nullopt;
    start += static_cast<double>(sections.data()[line] + 1) * headerExtent();
  }
  return start;
}

uint64_t MCBrowserViewLayout::firstLineOfGroup(uint64_t group) const {
  const MCIndexMap& sections = layoutMatrix_->lineToSectionMap();
  const uint64_t* begin = sections.data();
  return static_cast<uint64_t>(std::lower_bound(begin, begin + sections.count(), group) - begin);
}

std::optional<MCBrowserViewLayout::Interval> MCBrowserViewLayout::groupInterval(uint64_t group) const {
  if (group >= layoutMatrix_->numberOfSections()) return std::nullopt;
  const MCLayoutMatrixSection& section = layoutMatrix_->sections()[group];
  // A group with no items keeps stale ranges; it sits where its lines would begin.
  const MCRange lines = section.size() > 0 ? section.linesRange() : MCMakeRange(firstLineOfGroup(group), 0);
  const double pitch = lineItemExtent() + lineSpacing();
  double top = pitch * static_cast<double>(lines.location);
  double bottom = pitch * static_cast<double>(lines.location + lines.length);
  if (showsGroupHeaders_) {
    top += static_cast<double>(group) * headerExtent();
    bottom += static_cast<double>(group + 1) * headerExtent();
  }
  return Interval{top, bottom - top};
}

MCRect MCBrowserViewLayout::rectFromIntervals(double lineStart, double lineLength, double crossStart,
                                              double crossLength) const {
  return horizontal_ ? MCMakeRect(lineStart, crossStart, lineLength, crossLength)
                     : MCMakeRect(crossStart, lineStart, crossLength, lineLength);
}

MCRect MCBrowserViewLayout::rectForGroup(uint64_t group) const {
  const auto band = groupInterval(group);
  if (!band) return MCZeroRect;
  return rectFromIntervals(band->start, band->length, 0, horizontal_ ? contentSize_.height : contentSize_.width);
}

MCRect MCBrowserViewLayout::cellFrameAtGroupIndex(uint64_t group) const {
  if (group >= layoutMatrix_->numberOfSections()) return MCZeroRect;
  const MCLayoutMatrixSection& section = layoutMatrix_->sections()[group];
  const uint64_t first = section.size() > 0 ? section.linesRange().location : firstLineOfGroup(group);
  const double start = (lineItemExtent() + lineSpacing()) * static_cast<double>(first) +
                       static_cast<double>(group) * headerExtent() + lineSpacing() / 2;
  return horizontal_ ? MCMakeRect(start, 0, headerSize_.width, headerSize_.height)
                     : MCMakeRect(0, start, headerSize_.width, headerSize_.height);
}

MCRect MCBrowserViewLayout::rectForRow(uint64_t row) const {
  if (row >= numberOfRows_) return MCZeroRect;
  double y = crossStart(row);
  if (!horizontal_) {
    const auto start = lineStart(row);
    if (!start) return MCZeroRect;
    y = *start;
  }
  return MCMakeRect(0, y, contentSize_.width, itemSize_.height);
}

MCRect MCBrowserViewLayout::rectForColumn(uint64_t column) const {
  if (column >= numberOfColumns_) return MCZeroRect;
  double x = crossStart(column);
  if (horizontal_) {
    const auto start = lineStart(column);
    if (!start) return MCZeroRect;
    x = *start;
  }
  return MCMakeRect(x, 0, itemSize_.width, contentSize_.height);
}

MCRect MCBrowserViewLayout::cellFrameAtRow(uint64_t row, uint64_t column) const {
  if (row >= numberOfRows_ || column >= numberOfColumns_) return MCZeroRect;
  const auto start = lineStart(horizontal_ ? column : row);
  if (!start) return MCZeroRect;
  const double cross = crossStart(horizontal_ ? row : column);
  return horizontal_ ? MCMakeRect(*start, cross, itemSize_.width, itemSize_.height)
                     : MCMakeRect(cross, *start, itemSize_.width, itemSize_.height);
}

MCRect MCBrowserViewLayout::cellFrameAtIndex(uint64_t cell) const {
  const uint64_t perLine = lineLength();
  if (perLine == 0) return MCZeroRect;
  const uint64_t line = cell / perLine, position = cell % perLine;
  return horizontal_ ? cellFrameAtRow(position, line) : cellFrameAtRow(line, position);
}

uint64_t MCBrowserViewLayout::cellIndexAtRow(uint64_t row, uint64_t column) const {
  if (row >= numberOfRows_ || column >= numberOfColumns_) return NSNotFound;
  return horizontal_ ? row + numberOfRows_ * column : column + numberOfColumns_ * row;
}

MCRect MCBrowserViewLayout::cellFrameAtItemIndex(uint64_t item) const {
  if (item >= layoutMatrix_->numberOfItems()) return MCZeroRect;
  return cellFrameAtIndex(layoutMatrix_->cellIndexFromItemIndex(item));
}

MCSize MCBrowserViewLayout::scrollLineSize() const {
  return MCMakeSize(itemSize_.width + horizontalSpacing_, itemSize_.height + verticalSpacing_);
}

MCRect MCBrowserViewLayout::scrollRectForItemAtIndex(uint64_t item) const {
  MCRect frame = cellFrameAtItemIndex(item);
  if (horizontal_) {
    frame.origin.x -= horizontalSpacing_;
    frame.size.width += 2 * horizontalSpacing_;
    if (showsGroupHeaders_) {
      frame.origin.x -= headerSize_.width;
      frame.size.width += headerSize_.width;
    }
  } else {
    frame.origin.y -= verticalSpacing_;
    frame.size.height += 2 * verticalSpacing_;
    if (showsGroupHeaders_) {
      frame.origin.y -= headerSize_.height;
      frame.size.height += headerSize_.height;
    }
  }
  return frame;
}

// --- Hit testing

uint64_t MCBrowserViewLayout::lineForCoordinate(double coordinate) const {
  uint64_t lines = numberOfLines();
  if (!showsGroupHeaders_) return lineByDivision(coordinate, lineItemExtent() + lineSpacing(), lines);
  // Headers shift the lines of each group by a different amount: search.
  const MCIndexMap& sections = layoutMatrix_->lineToSectionMap();
  lines = std::min(lines, sections.count());
  if (lines == 0) return NSNotFound;
  const uint64_t* sectionOfLine = sections.data();
  const double pitch = lineItemExtent() + lineSpacing(), spacing = lineSpacing(), header = headerExtent(),
               extent = lineItemExtent();
  return static_cast<uint64_t>(
      MCBinarySearchInsertionIndex(0, static_cast<int64_t>(lines - 1), [&](int64_t line) -> int {
        const double start = static_cast<double>(line) * pitch + spacing +
                             static_cast<double>(sectionOfLine[line] + 1) * header;
        if (coordinate < start) return -1;
        if (coordinate >= start + extent) return 1;
        return 0;
      }));
}

uint64_t MCBrowserViewLayout::crossPositionForCoordinate(double coordinate) const {
  return lineByDivision(coordinate, crossItemExtent() + crossSpacing(), lineLength());
}

uint64_t MCBrowserViewLayout::rowForPoint(MCPoint point) const {
  return horizontal_ ? crossPositionForCoordinate(point.y) : lineForCoordinate(point.y);
}

uint64_t MCBrowserViewLayout::columnForPoint(MCPoint point) const {
  return horizontal_ ? lineForCoordinate(point.x) : crossPositionForCoordinate(point.x);
}

uint64_t MCBrowserViewLayout::groupForPoint(MCPoint point) const {
  const uint64_t groups = layoutMatrix_->numberOfSections();
  if (groups == 0) return NSNotFound;
  const double coordinate = horizontal_ ? point.x : point.y;
  if (showsGroupHeaders_) {
    return static_cast<uint64_t>(
        MCBinarySearchInsertionIndex(0, static_cast<int64_t>(groups - 1), [&](int64_t group) -> int {
          const Interval band = *groupInterval(static_cast<uint64_t>(group));
          if (coordinate < band.start) return -1;
          if (coordinate >= band.start + band.length) return 1;
          return 0;
        }));
  }
  const uint64_t line = lineForCoordinate(coordinate);
  if (line == NSNotFound || line >= layoutMatrix_->numberOfLines()) return NSNotFound;
  return layoutMatrix_->sectionIndexFromLineIndex(line);
}

bool MCBrowserViewLayout::hitTestItemAtRow(uint64_t row, uint64_t column, MCRect withinRect) const {
  return MCIntersectsRect(cellFrameAtRow(row, column), withinRect);
}

uint64_t MCBrowserViewLayout::itemIndexAtPoint(MCPoint point) const {
  const uint64_t row = rowForPoint(point), column = columnForPoint(point);
  if (row == NSNotFound || column == NSNotFound) return NSNotFound;
  if (!hitTestItemAtRow(row, column, MCMakeRect(point.x, point.y, 1, 1))) return NSNotFound;
  return itemIndexFromCellIndex(cellIndexAtRow(row, column));
}

MCIndexSet MCBrowserViewLayout::cellIndexesInRect(MCRect rect, MCRect* boundingRect) const {
  MCIndexSet cells;
  if (numberOfRows_ == 0 || numberOfColumns_ == 0) return cells;
  const MCPoint nearPoint = rect.origin, farPoint = MCMakePoint(MCMaxX(rect), MCMaxY(rect));
  uint64_t r1 = rowForPoint(nearPoint), c1 = columnForPoint(nearPoint);
  uint64_t r2 = rowForPoint(farPoint), c2 = columnForPoint(farPoint);
  if (r1 == NSNotFound || c1 == NSNotFound || r2 == NSNotFound || c2 == NSNotFound) return cells;
  if (r2 < r1) std::swap(r1, r2);  // a rectangle of negative size
  if (c2 < c1) std::swap(c1, c2);
  if (horizontal_) {
    for (uint64_t c = c1; c <= c2; ++c) cells.addIndexesInRange(MCMakeRange(r1 + numberOfRows_ * c, r2 - r1 + 1));
  } else {
    for (uint64_t r = r1; r <= r2; ++r) cells.addIndexesInRange(MCMakeRange(c1 + numberOfColumns_ * r, c2 - c1 + 1));
  }
  if (boundingRect) {
    const MCRect rows = MCUnionRect(rectForRow(r1), rectForRow(r2));
    const MCRect columns = MCUnionRect(rectForColumn(c1), rectForColumn(c2));
    *boundingRect = MCUnionRect(rect, MCIntersectionRect(rows, columns));
  }
  return cells;
}

MCIndexSet MCBrowserViewLayout::itemIndexesInRect(MCRect rect, MCRect* boundingRect) const {
  MCIndexSet items;
  if (numberOfRows_ == 0 || numberOfColumns_ == 0) return items;
  const MCIndexSet cells = cellIndexesInRect(rect, boundingRect);
  const MCIndexMap& cellToItem = layoutMatrix_->cellToItemMap();
  const uint64_t* itemOfCell = cellToItem.data();
  const uint64_t cellCount = cellToItem.count();
  // Items of consecutive cells are consecutive until a gap: add them a run at a time.
  for (const MCRange& range : cells.ranges()) {
    uint64_t runStart = NSNotFound, runLength = 0;
    const uint64_t end = std::min(range.end(), cellCount);
    for (uint64_t cell = range.location; cell < end; ++cell) {
      const uint64_t item = itemOfCell[cell];
      if (item != NSNotFound && runLength > 0 && item == runStart + runLength) {
        ++runLength;
        continue;
      }
      if (runLength > 0) items.addIndexesInRange(MCMakeRange(runStart, runLength));
      runStart = item;
      runLength = item == NSNotFound ? 0 : 1;
    }
    if (runLength > 0) items.addIndexesInRange(MCMakeRange(runStart, runLength));
  }
  return items;
}

uint64_t MCBrowserViewLayout::offsetItemIndex(uint64_t item, int64_t rows, int64_t columns) const {
  const MCLayoutMatrix& matrix = *layoutMatrix_;
  if (item >= matrix.numberOfItems() || numberOfRows_ == 0 || numberOfColumns_ == 0) return NSNotFound;
  const uint64_t cell = matrix.cellIndexFromItemIndex(item);
  uint64_t row, column;
  if (horizontal_) {
    column = cell / numberOfRows_;
    row = cell - column * numberOfRows_;
  } else {
    row = cell / numberOfColumns_;
    column = cell - row * numberOfColumns_;
  }
  column = offsetWithin(column, columns, numberOfColumns_ - 1);
  row = offsetWithin(row, rows, numberOfRows_ - 1);

  const uint64_t line = horizontal_ ? column : row;
  const uint64_t target = cellIndexAtRow(row, column);
  if (line >= matrix.numberOfLines() || target >= matrix.numberOfCells()) return NSNotFound;
  const MCRange groupItems = matrix.itemsRangeOfSectionAtIndex(matrix.sectionIndexFromLineIndex(line));
  // A gap cell answers NSNotFound, above every real item: it is pulled back to the group's last item.
  const uint64_t found = matrix.itemIndexFromCellIndex(target);
  return found < groupItems.end() ? found : groupItems.end() - 1;
}
