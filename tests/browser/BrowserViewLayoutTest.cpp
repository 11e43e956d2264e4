#include <vesperon/browser/MCBrowserViewLayout.h>

#include <gtest/gtest.h>

#include "../support/ThrownMessage.h"

#include <cmath>
#include <limits>
#include <map>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

constexpr double kMax = std::numeric_limits<double>::max();

// A delegate of fixed sizes that remembers what it was asked.
class FixedSizes : public MCBrowserViewLayoutDelegate {
 public:
  FixedSizes(MCSize item, MCSize header) : item(item), header(header) {}
  MCSize itemCellSizeForBounds(MCBrowserViewLayout&, MCRect bounds) override {
    asked.push_back("item " + describe(bounds));
    return item;
  }
  MCSize headerCellSizeForBounds(MCBrowserViewLayout&, MCRect bounds) override {
    asked.push_back("header " + describe(bounds));
    return header;
  }
  static std::string describe(MCRect r) {
    auto d = [](double v) { return v == kMax ? std::string("max") : std::to_string(int(v)); };
    return d(r.origin.x) + "," + d(r.origin.y) + "," + d(r.size.width) + "," + d(r.size.height);
  }
  MCSize item, header;
  std::vector<std::string> asked;
};

struct Grid {
  std::shared_ptr<FixedSizes> sizes;
  MCBrowserViewLayout layout;
  Grid(MCSize item, MCSize header, std::vector<uint64_t> groups) : sizes(std::make_shared<FixedSizes>(item, header)) {
    layout.setDelegate(sizes);
    layout.rebuild([groups](uint64_t g, uint64_t) { return g < groups.size() ? groups[g] : NSNotFound; });
  }
};

// The grid built independently, one group, line and cell at a time, with a running offset along
// the scrolling axis. Frames are worked out as if vertical and transposed for horizontal layout.
struct Reference {
  struct Cell {
    uint64_t line, position, item, group;
    MCRect frame;
  };
  std::vector<Cell> cells;                            // in grid order
  std::map<std::pair<uint64_t, uint64_t>, size_t> at;  // (line, position) -> cell
  std::vector<MCRect> itemFrames;
  std::vector<std::pair<double, double>> groupBands;  // along the scrolling axis
  std::vector<MCRect> headerFrames;
  std::vector<MCRange> groupItems;
  uint64_t lines = 0;

  Reference(const MCBrowserViewLayout& layout, const std::vector<uint64_t>& groups) {
    const bool horizontal = layout.isHorizontal();
    const MCSize item = layout.itemSize(), header = layout.headerSize();
    const double lineItem = horizontal ? item.width : item.height, crossItem = horizontal ? item.height : item.width;
    const double lineGap = horizontal ? layout.horizontalSpacing() : layout.verticalSpacing();
    const double crossGap = horizontal ? layout.verticalSpacing() : layout.horizontalSpacing();
    const double headerBand = layout.showsGroupHeaders() ? (horizontal ? header.width : header.height) : 0;
    const uint64_t perLine = horizontal ? layout.numberOfRows() : layout.numberOfColumns();
    auto place = [&](double lineAt, double lineLen, double crossAt, double crossLen) {
      return horizontal ? MCMakeRect(lineAt, crossAt, lineLen, crossLen) : MCMakeRect(crossAt, lineAt, crossLen, lineLen);
    };
    double offset = 0;
    uint64_t nextItem = 0;
    for (uint64_t g = 0; g < groups.size(); ++g) {
      const double top = offset;
      headerFrames.push_back(horizontal ? MCMakeRect(top + lineGap / 2, 0, header.width, header.height)
                                        : MCMakeRect(0, top + lineGap / 2, header.width, header.height));
      offset += headerBand;
      groupItems.push_back(MCMakeRange(nextItem, groups[g]));
      for (uint64_t placed = 0; placed < groups[g]; ++lines) {
        for (uint64_t p = 0; p < perLine; ++p) {
          const MCRect frame = place(offset + lineGap, lineItem, crossGap + p * (crossItem + crossGap), crossItem);
          const uint64_t it = placed < groups[g] ? nextItem++ : NSNotFound;
          if (it != NSNotFound) {
            ++placed;
            itemFrames.push_back(frame);
          }
          at[{lines, p}] = cells.size();
          cells.push_back({lines, p, it, g, frame});
        }
        offset += lineItem + lineGap;
      }
      groupBands.emplace_back(top, offset);
    }
  }
};

// The item whose frame the 1 by 1 rectangle at p meets (spacing of at least 2 leaves at most one).
uint64_t itemMeeting(const Reference& ref, MCPoint p) {
  for (size_t i = 0; i < ref.itemFrames.size(); ++i)
    if (MCIntersectsRect(ref.itemFrames[i], MCMakeRect(p.x, p.y, 1, 1))) return i;
  return NSNotFound;
}

}  // namespace

TEST(MCBrowserViewLayout, CountsColumnsAndSizesTheContent) {
  Grid grid({200, 150}, {1000, 30}, {});
  MCBrowserViewLayout& layout = grid.layout;
  layout.setMinHorizontalSpacing(12);
  layout.setMinVerticalSpacing(10);
  layout.layoutWithContentSize({1000, 700});
  EXPECT_EQ(grid.sizes->asked,
            (std::vector<std::string>{"item 0,0,1000,max", "header 0,0,1000,max", "item 0,0,976,max"}));
  EXPECT_EQ(layout.numberOfColumns(), 4u) << "(1000 - 12) / 212 = 4.66";
  EXPECT_EQ(layout.numberOfRows(), 0u);
  EXPECT_EQ(layout.contentSize(), MCMakeSize(1000, 700)) << "no items: the area as given";
  EXPECT_EQ(layout.itemSize(), MCMakeSize(200, 150));
  EXPECT_EQ(layout.headerSize(), MCMakeSize(1000, 30));
  EXPECT_EQ(layout.horizontalSpacing(), 12);
  EXPECT_EQ(layout.numberOfColumnsForContentWidth(150), 1u) << "less than one cell fits: one column";

  layout.rebuild([](uint64_t g, uint64_t) { return g < 2 ? uint64_t(9) : NSNotFound; });  // 3 + 3 rows
  layout.setShowsGroupHeaders(true);
  layout.layoutWithContentSize({1000, 700});
  EXPECT_EQ(layout.numberOfRows(), 6u);
  EXPECT_EQ(layout.contentSize(), MCMakeSize(1000, 6 * 160 + 10 + 2 * 30));
  EXPECT_EQ(layout.scrollLineSize(), MCMakeSize(212, 160));

  // Alignment shares the free width over the five gaps around four columns, truncated.
  layout.setAlignment(1);
  layout.layoutWithContentSize({1000, 700});
  EXPECT_EQ(layout.horizontalSpacing(), 12 + 28) << "free 1000 - 860 = 140, 140 / 5";
  EXPECT_EQ(layout.verticalSpacing(), 10) << "the scrolling axis keeps the minimum";
  EXPECT_EQ(layout.cellFrameAtRow(0, 3), MCMakeRect(3 * 240 + 40, 10 + 30, 200, 150));
  layout.layoutWithContentSize({1003, 700});
  EXPECT_EQ(layout.horizontalSpacing(), 40) << "143 / 5 = 28.6 truncates";
  layout.layoutWithContentSize({150, 700});
  EXPECT_EQ(layout.numberOfColumns(), 1u);
  EXPECT_EQ(layout.horizontalSpacing(), 12 - 37) << "one cell wider than the area: below the minimum";

  // Horizontal layout counts rows from the height and grows to the right.
  layout.setHorizontal(true);
  layout.setAlignment(0);
  grid.sizes->asked.clear();
  layout.layoutWithContentSize({500, 700});
  EXPECT_EQ(grid.sizes->asked,
            (std::vector<std::string>{"item 0,0,max,700", "header 0,0,max,700", "item 0,0,max,680"}));
  EXPECT_EQ(layout.numberOfRows(), 4u) << "(700 - 10) / 160 = 4.3";
  EXPECT_EQ(layout.numberOfColumns(), 6u) << "3 + 3 columns for two groups of 9";
  EXPECT_EQ(layout.contentSize(), MCMakeSize(6 * 212 + 12 + 2 * 1000, 700));
}

TEST(MCBrowserViewLayout, FramesOfTheWorkedExample) {
  // Four columns, groups of 6 and 3: items 0-5 in rows 0-1, items 6-8 in row 2.
  Grid grid({100, 80}, {450, 30}, {6, 3});
  MCBrowserViewLayout& layout = grid.layout;
  layout.setMinHorizontalSpacing(10);
  layout.setMinVerticalSpacing(8);
  layout.layoutWithContentSize({450, 200});
  ASSERT_EQ(layout.numberOfColumns(), 4u);
  ASSERT_EQ(layout.numberOfRows(), 3u);
  EXPECT_EQ(layout.contentSize(), MCMakeSize(450, 3 * 88 + 8));
  EXPECT_EQ(layout.cellFrameAtItemIndex(6), MCMakeRect(10, 2 * 88 + 8, 100, 80));
  EXPECT_EQ(layout.cellFrameAtIndex(7), MCMakeRect(3 * 110 + 10, 88 + 8, 100, 80)) << "a gap cell has a frame";
  EXPECT_EQ(layout.rectForRow(1), MCMakeRect(0, 96, 450, 80));
  EXPECT_EQ(layout.rectForColumn(2), MCMakeRect(230, 0, 100, 272));
  EXPECT_EQ(layout.rectForGroup(0), MCMakeRect(0, 0, 450, 176));
  EXPECT_EQ(layout.rectForGroup(1), MCMakeRect(0, 176, 450, 88));
  EXPECT_EQ(layout.scrollRectForItemAtIndex(6), MCMakeRect(10, 176, 100, 96));

  layout.setShowsGroupHeaders(true);
  layout.layoutWithContentSize({450, 200});
  EXPECT_EQ(layout.contentSize(), MCMakeSize(450, 3 * 88 + 8 + 2 * 30));
  EXPECT_EQ(layout.cellFrameAtItemIndex(0), MCMakeRect(10, 8 + 30, 100, 80));
  EXPECT_EQ(layout.cellFrameAtItemIndex(6), MCMakeRect(10, 2 * 88 + 8 + 60, 100, 80));
  EXPECT_EQ(layout.rectForGroup(0), MCMakeRect(0, 0, 450, 176 + 30));
  EXPECT_EQ(layout.rectForGroup(1), MCMakeRect(0, 206, 450, 88 + 30));
  EXPECT_EQ(layout.cellFrameAtGroupIndex(1), MCMakeRect(0, 206 + 4, 450, 30)) << "half a gap below the group's top";
  EXPECT_EQ(layout.scrollRectForItemAtIndex(6), MCMakeRect(10, 244 - 8 - 30, 100, 80 + 16 + 30)) << "with its header";
  EXPECT_EQ(layout.scrollRectForItemAtIndex(NSNotFound), MCMakeRect(0, -8 - 30, 0, 16 + 30));

  // Everything out of range is the zero rectangle.
  for (uint64_t bad : {uint64_t(3), uint64_t(4), NSNotFound}) {
    EXPECT_EQ(layout.rectForRow(bad), MCZeroRect);
    EXPECT_EQ(layout.cellFrameAtRow(bad, 0), MCZeroRect);
    EXPECT_EQ(layout.cellFrameAtRow(0, bad + 1), MCZeroRect);
    EXPECT_EQ(layout.cellFrameAtIndex(bad * 4), MCZeroRect);
  }
  EXPECT_EQ(layout.rectForColumn(4), MCZeroRect);
  EXPECT_EQ(layout.rectForGroup(2), MCZeroRect);
  EXPECT_EQ(layout.cellFrameAtGroupIndex(NSNotFound), MCZeroRect);
  EXPECT_EQ(layout.cellFrameAtItemIndex(9), MCZeroRect);
  EXPECT_EQ(layout.cellFrameAtItemIndex(NSNotFound), MCZeroRect);
}

TEST(MCBrowserViewLayout, HitTestsPointsWithAndWithoutHeaders) {
  Grid grid({100, 80}, {450, 30}, {6, 3});
  MCBrowserViewLayout& layout = grid.layout;
  layout.setMinHorizontalSpacing(10);
  layout.setMinVerticalSpacing(8);
  for (bool headers : {false, true}) {
    SCOPED_TRACE(headers);
    layout.setShowsGroupHeaders(headers);
    layout.layoutWithContentSize({450, 200});
    const double shift = headers ? 30 : 0;
    EXPECT_EQ(layout.itemIndexAtPoint({5, 10 + shift}), NSNotFound) << "left of the first column";
    EXPECT_EQ(layout.itemIndexAtPoint({340 + 50, 96 + 40 + shift}), NSNotFound) << "on a gap cell";
    EXPECT_EQ(layout.rowForPoint({0, -50}), 0u);
    EXPECT_EQ(layout.rowForPoint({0, 5000}), 2u);
    EXPECT_EQ(layout.columnForPoint({-5, 0}), 0u);
    EXPECT_EQ(layout.columnForPoint({5000, 0}), 3u);
    EXPECT_EQ(layout.groupForPoint({0, 5000}), 1u);
    EXPECT_EQ(layout.groupForPoint({0, -1}), 0u);
    EXPECT_EQ(layout.groupIndexAtPoint({0, 180 + 2 * shift}), 1u);
    EXPECT_TRUE(layout.hitTestItemAtRow(2, 1, MCMakeRect(200, 100, 30, 300)));
    EXPECT_FALSE(layout.hitTestItemAtRow(2, 1, MCMakeRect(111, 0, 8, 500)));
    EXPECT_FALSE(layout.hitTestItemAtRow(3, 1, MCMakeRect(0, 0, 1000, 1000)));
  }
  // With headers, a point in a header band belongs to the row below it.
  EXPECT_EQ(layout.rowForPoint({0, 176 + 30 + 5}), 2u);
  EXPECT_EQ(layout.rowForPoint({0, 176 + 30 + 1}), 2u) << "the half gap above a header";

  MCBrowserViewLayout none;
  EXPECT_EQ(none.rowForPoint({1, 1}), NSNotFound);
  EXPECT_EQ(none.columnForPoint({1, 1}), NSNotFound);
  EXPECT_EQ(none.groupForPoint({1, 1}), NSNotFound);
  EXPECT_EQ(none.itemIndexAtPoint({1, 1}), NSNotFound);
  MCRect untouched = MCMakeRect(1, 2, 3, 4);
  EXPECT_TRUE(none.cellIndexesInRect(MCMakeRect(0, 0, 100, 100), &untouched).empty());
  EXPECT_EQ(untouched, MCMakeRect(1, 2, 3, 4)) << "not written without rows or columns";
  EXPECT_TRUE(none.itemIndexesInRect(MCMakeRect(0, 0, 100, 100)).empty());
}

TEST(MCBrowserViewLayout, FindsCellsInARectangleWithGapsAndItsExactBounds) {
  // Four columns, groups of 6 and 3: gap cells 6, 7 and 11.
  Grid grid({100, 80}, {450, 30}, {6, 3});
  MCBrowserViewLayout& layout = grid.layout;
  layout.setMinHorizontalSpacing(10);
  layout.setMinVerticalSpacing(8);
  layout.layoutWithContentSize({450, 200});

  // Rows 1-2, columns 1-3: whole line segments, gap cells included.
  MCRect bounding;
  EXPECT_EQ(layout.cellIndexesInRect(MCMakeRect(150, 100, 250, 100), &bounding), (MCIndexSet{5, 6, 7, 9, 10, 11}));
  EXPECT_EQ(bounding, MCMakeRect(120, 96, 320, 168)) << "from column 1's left to column 3's right, row 1 to row 2";
  EXPECT_EQ(layout.itemIndexesInRect(MCMakeRect(150, 100, 250, 100)), (MCIndexSet{5, 7, 8}));
  // A rectangle reaching past the grid: the cells clamp, the bounds never shrink below it.
  EXPECT_EQ(layout.cellIndexesInRect(MCMakeRect(150, 100, 400, 100), &bounding), (MCIndexSet{5, 6, 7, 9, 10, 11}));
  EXPECT_EQ(bounding, MCMakeRect(120, 96, 430, 168));
  // Only gap cells: cells but no items.
  EXPECT_EQ(layout.cellIndexesInRect(MCMakeRect(240, 100, 150, 50), &bounding), (MCIndexSet{6, 7}));
  EXPECT_EQ(bounding, MCMakeRect(230, 96, 210, 80));
  EXPECT_TRUE(layout.itemIndexesInRect(MCMakeRect(240, 100, 150, 50)).empty());

  // With headers the rows move down by a header per group, and so do the bounds.
  layout.setShowsGroupHeaders(true);
  layout.layoutWithContentSize({450, 200});
  EXPECT_EQ(layout.cellIndexesInRect(MCMakeRect(150, 130, 250, 130), &bounding), (MCIndexSet{5, 6, 7, 9, 10, 11}));
  EXPECT_EQ(bounding, MCMakeRect(120, 96 + 30, 320, 168 + 30));
}

TEST(MCBrowserViewLayout, AnItemIsHitByAPointUpToOneUnitBeforeItsEdges) {
  // The hit test uses the 1 by 1 rectangle at the point, so it reaches one unit before a cell's
  // left and top edges, and stops at its right and bottom edges.
  Grid grid({100, 80}, {450, 30}, {6, 3});
  MCBrowserViewLayout& layout = grid.layout;
  layout.setMinHorizontalSpacing(10);
  layout.setMinVerticalSpacing(8);
  for (bool headers : {false, true}) {
    SCOPED_TRACE(headers);
    layout.setShowsGroupHeaders(headers);
    layout.layoutWithContentSize({450, 200});
    const double shift = headers ? 30 : 0;
    // Item 5 is at row 1, column 1: (120, 96 + shift, 100, 80).
    EXPECT_EQ(layout.itemIndexAtPoint({119.5, 130 + shift}), 5u);
    EXPECT_EQ(layout.itemIndexAtPoint({119, 130 + shift}), NSNotFound) << "touching is not meeting";
    EXPECT_EQ(layout.itemIndexAtPoint({150, 95.5 + shift}), 5u);
    EXPECT_EQ(layout.itemIndexAtPoint({150, 95 + shift}), NSNotFound);
    EXPECT_EQ(layout.itemIndexAtPoint({219.5, 175.5 + shift}), 5u) << "the last unit inside";
    EXPECT_EQ(layout.itemIndexAtPoint({220, 130 + shift}), NSNotFound) << "the right edge is outside";
    EXPECT_EQ(layout.itemIndexAtPoint({150, 176 + shift}), NSNotFound) << "the bottom edge is outside";
    EXPECT_EQ(layout.itemIndexAtPoint({229.5, 50 + shift}), 2u) << "just before column 2";
    EXPECT_EQ(layout.itemIndexAtPoint({229.5, 130 + shift}), NSNotFound) << "just before a gap cell";
    EXPECT_EQ(layout.itemIndexAtPoint({9.5, 7.5 + shift}), 0u) << "before the first cell, both axes";
  }
  // With headers, just above the first row of group 1, inside the header band's gap.
  EXPECT_EQ(layout.itemIndexAtPoint({20, 243.5}), 6u);
  EXPECT_EQ(layout.itemIndexAtPoint({20, 243}), NSNotFound);
}

TEST(MCBrowserViewLayout, HorizontalLayoutExchangesTheAxes) {
  // Two rows; group 0 has 5 items in columns 0-2 (cell 5, the bottom of column 2, is a gap),
  // group 1 has 2 items in column 3.
  Grid grid({100, 80}, {40, 300}, {5, 2});
  MCBrowserViewLayout& layout = grid.layout;
  layout.setHorizontal(true);
  layout.setMinHorizontalSpacing(10);
  layout.setMinVerticalSpacing(8);
  layout.setAlignment(1);
  layout.layoutWithContentSize({500, 203});
  ASSERT_EQ(layout.numberOfRows(), 2u) << "(203 - 8) / 88 = 2.2";
  ASSERT_EQ(layout.numberOfColumns(), 4u);
  // Alignment shares the free height over the three gaps around two rows; the scrolling axis keeps
  // the minimum.
  EXPECT_EQ(layout.verticalSpacing(), 8 + 6) << "free 203 - 184 = 19, 19 / 3 = 6.33 truncates";
  EXPECT_EQ(layout.horizontalSpacing(), 10);
  EXPECT_EQ(layout.contentSize(), MCMakeSize(500, 203)) << "4 columns need 450";
  EXPECT_EQ(layout.cellFrameAtItemIndex(1), MCMakeRect(10, 14 + 94, 100, 80)) << "column by column";
  EXPECT_EQ(layout.cellFrameAtItemIndex(5), MCMakeRect(340, 14, 100, 80));
  EXPECT_EQ(layout.scrollRectForItemAtIndex(5), MCMakeRect(330, 14, 120, 80)) << "grown by H on both sides only";

  // Cell indexes of (row, column) follow the matrix: column by column.
  EXPECT_EQ(layout.cellIndexAtRow(1, 0), 1u);
  EXPECT_EQ(layout.cellIndexAtRow(0, 1), 2u);
  EXPECT_EQ(layout.cellIndexAtRow(1, 2), 5u);
  EXPECT_EQ(layout.itemIndexFromCellIndex(layout.cellIndexAtRow(1, 2)), NSNotFound) << "the gap ends column 2";
  EXPECT_EQ(layout.itemIndexFromCellIndex(layout.cellIndexAtRow(1, 3)), 6u) << "row 1 goes on past the gap";
  EXPECT_EQ(layout.cellIndexAtRow(2, 0), NSNotFound);
  EXPECT_EQ(layout.cellIndexAtRow(0, 4), NSNotFound);

  // Headers stand left of each group and shift its columns and all later ones right.
  layout.setShowsGroupHeaders(true);
  layout.layoutWithContentSize({500, 203});
  EXPECT_EQ(layout.contentSize(), MCMakeSize(450 + 2 * 40, 203));
  EXPECT_EQ(layout.cellFrameAtItemIndex(0), MCMakeRect(50, 14, 100, 80));
  EXPECT_EQ(layout.cellFrameAtItemIndex(4), MCMakeRect(270, 14, 100, 80));
  EXPECT_EQ(layout.cellFrameAtItemIndex(6), MCMakeRect(420, 108, 100, 80));
  EXPECT_EQ(layout.cellFrameAtGroupIndex(0), MCMakeRect(5, 0, 40, 300));
  EXPECT_EQ(layout.cellFrameAtGroupIndex(1), MCMakeRect(375, 0, 40, 300)) << "half a gap right of the group's left";
  EXPECT_EQ(layout.rectForGroup(1), MCMakeRect(370, 0, 150, 203));
  EXPECT_EQ(layout.rectForColumn(3), MCMakeRect(420, 0, 100, 203));
  EXPECT_EQ(layout.rectForRow(1), MCMakeRect(0, 108, 530, 80));
  // Scrolled to, the first item of a group shows its gap and its header band on the left.
  EXPECT_EQ(layout.scrollRectForItemAtIndex(5), MCMakeRect(420 - 10 - 40, 14, 100 + 20 + 40, 80));
  EXPECT_EQ(layout.scrollRectForItemAtIndex(NSNotFound), MCMakeRect(-50, 0, 60, 0));
  EXPECT_EQ(layout.itemIndexAtPoint({425, 150}), 6u);
  EXPECT_EQ(layout.itemIndexAtPoint({400, 150}), NSNotFound) << "in the header band";

  MCRect bounding;
  EXPECT_EQ(layout.cellIndexesInRect(MCMakeRect(100, 50, 200, 100), &bounding), (MCIndexSet{0, 1, 2, 3, 4, 5}));
  EXPECT_EQ(bounding, MCMakeRect(50, 14, 320, 174));
  EXPECT_EQ(layout.itemIndexesInRect(MCMakeRect(100, 50, 200, 100)), (MCIndexSet{0, 1, 2, 3, 4}));

  EXPECT_EQ(layout.offsetItemIndex(2, 0, 1), 4u) << "right along row 0";
  EXPECT_EQ(layout.offsetItemIndex(1, 0, 2), 4u) << "onto the gap: the group's last item";
  EXPECT_EQ(layout.offsetItemIndex(1, 0, 3), 6u) << "row 1 of the next group";
  EXPECT_EQ(layout.offsetItemIndex(0, 1, 0), 1u) << "down within the column";
}

TEST(MCBrowserViewLayout, ConvertsIndexPathsAndRefusesBadOnes) {
  Grid grid({10, 10}, {10, 10}, {6, 0, 3});
  MCBrowserViewLayout& layout = grid.layout;
  layout.layoutWithContentSize({45, 100});
  EXPECT_EQ(layout.numberOfItems(), 9u);
  EXPECT_EQ(layout.numberOfGroups(), 3u);
  EXPECT_EQ(layout.indexPathFromItemIndex(7), MCIndexPath::indexPathForItem(1, 2));
  EXPECT_EQ(layout.indexPathFromItemIndex(NSNotFound), std::nullopt);
  EXPECT_THROW(layout.indexPathFromItemIndex(9), std::out_of_range);
  EXPECT_EQ(layout.itemIndexFromIndexPath(MCIndexPath::indexPathForItem(2, 2)), 8u);
  const MCIndexSet items{0, 5, 6, 8};
  const auto paths = layout.indexPathsFromItemIndexes(items);
  EXPECT_EQ(paths, (std::vector<MCIndexPath>{{0, 0}, {0, 5}, {2, 0}, {2, 2}}));
  EXPECT_EQ(layout.itemIndexesFromIndexPaths(paths), items);
  EXPECT_EQ(layout.itemIndexesForGroupIndexes(MCIndexSet{1, 2}), MCIndexSet(MCMakeRange(6, 3)));
  EXPECT_EQ(layout.groupIndexesForItemIndexes(MCIndexSet(MCMakeRange(5, 2))), (MCIndexSet{0, 1, 2}));

  EXPECT_EQ(thrownMessage([&] { layout.itemIndexFromIndexPath(MCIndexPath::indexPathForItem(0, 3)); }),
            "*** MCBrowserViewLayout::itemIndexFromIndexPath: indexPath.section (3) is out of bounds: 0..3");
  EXPECT_EQ(thrownMessage([&] { layout.itemIndexFromIndexPath(MCIndexPath::indexPathForItem(NSNotFound, NSNotFound)); }),
            "*** MCBrowserViewLayout::itemIndexFromIndexPath: indexPath.section (9223372036854775807) is out of "
            "bounds: 0..3");
  EXPECT_EQ(thrownMessage([&] { layout.itemIndexFromIndexPath(MCIndexPath::indexPathForItem(3, 2)); }),
            "*** MCBrowserViewLayout::itemIndexFromIndexPath: indexPath.item (3) is out of bounds: 0..3");
  EXPECT_EQ(thrownMessage([&] { layout.itemIndexFromIndexPath(MCIndexPath::indexPathForItem(0, 1)); }),
            "*** MCBrowserViewLayout::itemIndexFromIndexPath: indexPath.item (0) is out of bounds: 0..0");
  EXPECT_THROW(layout.itemIndexesFromIndexPaths({{0, 0}, {0, 6}}), std::invalid_argument);
}

TEST(MCBrowserViewLayout, NavigatesAcrossGapsAndGroupBorders) {
  // Four columns; group 0 has 6 items (rows 0-1), group 1 has 3 (row 2), group 2 has 9 (rows 3-5).
  Grid grid({100, 80}, {450, 30}, {6, 3, 9});
  MCBrowserViewLayout& layout = grid.layout;
  layout.setMinHorizontalSpacing(10);
  layout.layoutWithContentSize({450, 200});
  ASSERT_EQ(layout.numberOfColumns(), 4u);
  EXPECT_EQ(layout.offsetItemIndex(0, -1, 0), 0u) << "stops at the top edge";
  EXPECT_EQ(layout.offsetItemIndex(3, 0, 1), 3u) << "does not wrap to the next line";
  EXPECT_EQ(layout.offsetItemIndex(3, 1, 0), 5u) << "column 3 onto a row of two: the group's last item";
  EXPECT_EQ(layout.offsetItemIndex(5, 1, 0), 7u) << "into the next group, same column";
  EXPECT_EQ(layout.offsetItemIndex(4, 1, 3), 8u) << "past the next group's end: its last item";
  EXPECT_EQ(layout.offsetItemIndex(12, -1, 1), 8u) << "up onto the gap of group 1";
  EXPECT_EQ(layout.offsetItemIndex(0, 100, 100), 17u) << "the bottom right gap is pulled back";
  EXPECT_EQ(layout.offsetItemIndex(17, INT64_MIN, INT64_MIN), 0u);
  EXPECT_EQ(layout.offsetItemIndex(0, INT64_MAX, 0), 17u);
  EXPECT_EQ(layout.offsetItemIndex(NSNotFound, 1, 0), NSNotFound);
  EXPECT_EQ(layout.offsetItemIndex(18, 0, 0), NSNotFound);

  MCBrowserViewLayout unlaid;
  unlaid.rebuild([](uint64_t g, uint64_t) { return g == 0 ? uint64_t(3) : NSNotFound; });
  EXPECT_EQ(unlaid.offsetItemIndex(0, 1, 1), NSNotFound) << "no grid yet: no division by zero";
}

TEST(MCBrowserViewLayout, AgreesWithAWalkOfEveryCellOnRandomGroupings) {
  std::mt19937 rng(5);
  std::uniform_real_distribution<double> unit(0, 1);
  for (int trial = 0; trial < 160; ++trial) {
    std::vector<uint64_t> groups(1 + rng() % 6);
    for (auto& g : groups) g = rng() % 5 == 0 ? 0 : rng() % 14;
    Grid grid({double(20 + rng() % 60), double(20 + rng() % 60)}, {double(10 + rng() % 40), double(10 + rng() % 40)},
              groups);
    MCBrowserViewLayout& layout = grid.layout;
    layout.setHorizontal(trial % 2);
    layout.setShowsGroupHeaders(trial % 4 >= 2);
    layout.setAlignment(trial % 8 >= 4);
    layout.setMinHorizontalSpacing(2 + rng() % 10);
    layout.setMinVerticalSpacing(2 + rng() % 10);
    layout.layoutWithContentSize({double(100 + rng() % 400), double(100 + rng() % 400)});
    SCOPED_TRACE(testing::Message() << "trial " << trial << " horizontal " << layout.isHorizontal() << " headers "
                                    << layout.showsGroupHeaders() << " alignment " << layout.alignment());
    const Reference ref(layout, groups);
    ASSERT_EQ(ref.itemFrames.size(), layout.numberOfItems());
    ASSERT_EQ(ref.lines, layout.isHorizontal() ? layout.numberOfColumns() : layout.numberOfRows());

    for (uint64_t i = 0; i < ref.itemFrames.size(); ++i) ASSERT_EQ(layout.cellFrameAtItemIndex(i), ref.itemFrames[i]);
    for (uint64_t c = 0; c < ref.cells.size(); ++c) ASSERT_EQ(layout.cellFrameAtIndex(c), ref.cells[c].frame);
    for (uint64_t r = 0; r < layout.numberOfRows(); ++r) ASSERT_FALSE(MCIsEmptyRect(layout.rectForRow(r)));
    for (uint64_t c = 0; c < layout.numberOfColumns(); ++c) ASSERT_FALSE(MCIsEmptyRect(layout.rectForColumn(c)));
    for (uint64_t g = 0; g < groups.size(); ++g) {
      const MCRect band = layout.rectForGroup(g);
      const auto [top, bottom] = ref.groupBands[g];
      EXPECT_EQ(layout.isHorizontal() ? MCMinX(band) : MCMinY(band), top) << "group " << g;
      EXPECT_EQ(layout.isHorizontal() ? MCMaxX(band) : MCMaxY(band), bottom) << "group " << g;
      if (layout.showsGroupHeaders()) {
        EXPECT_EQ(layout.cellFrameAtGroupIndex(g), ref.headerFrames[g]);
      }
    }

    const MCSize content = layout.contentSize();
    for (int probe = 0; probe < 300; ++probe) {
      // Half the probes on whole units, where the edges lie, half between them.
      const double half = probe % 2 ? 0.5 : 0;
      const MCPoint p{std::floor(unit(rng) * (content.width + 40)) - 20 + half,
                      std::floor(unit(rng) * (content.height + 40)) - 20 + half};
      ASSERT_EQ(layout.itemIndexAtPoint(p), itemMeeting(ref, p)) << p.x << "," << p.y;
      // The group whose band holds the point (with headers every band counts; without them only
      // groups with lines, and a point past the last band belongs to the last group).
      const double along = layout.isHorizontal() ? p.x : p.y;
      uint64_t group = NSNotFound;
      for (uint64_t g = 0; g < groups.size() && group == NSNotFound; ++g) {
        const auto [top, bottom] = ref.groupBands[g];
        if ((layout.showsGroupHeaders() || groups[g] > 0) && along < bottom) group = g;
      }
      if (group == NSNotFound)
        for (uint64_t g = groups.size(); g-- > 0 && group == NSNotFound;)
          if (layout.showsGroupHeaders() || groups[g] > 0) group = g;
      // (Between units only: on the end of the first line itself the division gives line 0.)
      if ((layout.numberOfItems() > 0 || layout.showsGroupHeaders()) && half != 0) {
        ASSERT_EQ(layout.groupForPoint(p), group);
      }
    }

    for (int query = 0; query < 40; ++query) {
      const MCRect r = MCMakeRect(unit(rng) * content.width - 30, unit(rng) * content.height - 30,
                                  unit(rng) * content.width / 2, unit(rng) * content.height / 2);
      MCRect bounding;
      const MCIndexSet items = layout.itemIndexesInRect(r, &bounding);
      for (uint64_t i = 0; i < ref.itemFrames.size(); ++i) {
        if (MCIntersectsRect(ref.itemFrames[i], r)) {
          ASSERT_TRUE(items.containsIndex(i)) << "missed item " << i;
        }
        if (items.containsIndex(i)) {
          ASSERT_TRUE(MCIntersectsRect(ref.itemFrames[i], bounding)) << "stray item " << i;
        }
      }
      if (!items.empty()) {
        ASSERT_TRUE(MCContainsRect(bounding, r) || MCIsEmptyRect(r));
      }
    }

    // Navigation against the cell table: clamp to the grid, then a gap gives the group's last item.
    const bool horizontal = layout.isHorizontal();
    const uint64_t rows = layout.numberOfRows(), columns = layout.numberOfColumns();
    for (const auto& cell : ref.cells) {
      if (cell.item == NSNotFound) continue;
      const int64_t dr = int64_t(rng() % 7) - 3, dc = int64_t(rng() % 7) - 3;
      const int64_t row = int64_t(horizontal ? cell.position : cell.line) + dr;
      const int64_t column = int64_t(horizontal ? cell.line : cell.position) + dc;
      const uint64_t r = uint64_t(std::clamp<int64_t>(row, 0, int64_t(rows) - 1));
      const uint64_t c = uint64_t(std::clamp<int64_t>(column, 0, int64_t(columns) - 1));
      const auto& target = ref.cells[ref.at.at(horizontal ? std::make_pair(c, r) : std::make_pair(r, c))];
      const uint64_t expected = target.item != NSNotFound ? target.item : ref.groupItems[target.group].end() - 1;
      ASSERT_EQ(layout.offsetItemIndex(cell.item, dr, dc), expected) << "from " << cell.item << " by " << dr << "," << dc;
    }
  }
}

TEST(MCBrowserViewLayout, SurvivesDegenerateSizesFromItsDelegate) {
  struct Case {
    MCSize item;
    MCSize area;
  };
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const double inf = std::numeric_limits<double>::infinity();
  for (const Case& c : std::vector<Case>{{{0, 0}, {800, 600}},
                                         {{kMax, kMax}, {800, 600}},
                                         {{-50, -50}, {800, 600}},
                                         {{nan, nan}, {800, 600}},
                                         {{inf, 0}, {800, 600}},
                                         {{100, 100}, {-10, 0}},
                                         {{100, 100}, {nan, inf}}}) {
    for (bool horizontal : {false, true})
      for (bool headers : {false, true}) {
        Grid grid(c.item, c.item, {3, 0, 7});
        MCBrowserViewLayout& layout = grid.layout;
        layout.setHorizontal(horizontal);
        layout.setShowsGroupHeaders(headers);
        layout.setAlignment(1);
        layout.layoutWithContentSize(c.area);
        EXPECT_GE(layout.numberOfRows(), 1u);
        EXPECT_LE(layout.numberOfRows(), 2 * MCBrowserViewLayout::maximumLineLength);
        EXPECT_LE(layout.numberOfColumns(), 2 * MCBrowserViewLayout::maximumLineLength);
        for (double x : {-1e9, -1.0, 0.0, 5.0, 1e9, nan})
          for (double y : {-1e9, 0.0, 7.0, 1e300, nan}) {
            const uint64_t item = layout.itemIndexAtPoint({x, y});
            EXPECT_TRUE(item == NSNotFound || item < 10);
            EXPECT_LE(layout.groupForPoint({x, y}), 2u);
            layout.itemIndexesInRect(MCMakeRect(x, y, 100, 100));
          }
        for (uint64_t i = 0; i < 10; ++i) EXPECT_LT(layout.offsetItemIndex(i, 1, -1), 10u);
      }
  }
  // Zero-size cells with no spacing: as many columns as allowed, and nothing divides by zero.
  Grid zero({0, 0}, {0, 0}, {5});
  zero.layout.layoutWithContentSize({800, 600});
  EXPECT_EQ(zero.layout.numberOfColumns(), MCBrowserViewLayout::maximumLineLength);
  EXPECT_EQ(zero.layout.columnForPoint({10, 0}), MCBrowserViewLayout::maximumLineLength - 1);

  MCBrowserViewLayout orphan;  // no delegate: every size is zero
  orphan.rebuild([](uint64_t g, uint64_t) { return g == 0 ? uint64_t(2) : NSNotFound; });
  orphan.setMinHorizontalSpacing(10);
  orphan.layoutWithContentSize({100, 100});
  EXPECT_EQ(orphan.itemSize(), MCZeroSize);
  EXPECT_EQ(orphan.numberOfColumns(), 9u);
  orphan.setLayoutMatrix(nullptr);
  EXPECT_NE(orphan.layoutMatrix(), nullptr) << "a null matrix is refused";
}
