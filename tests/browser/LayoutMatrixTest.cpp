#include <vesperon/browser/MCLayoutMatrix.h>

#include <gtest/gtest.h>

#include "../support/ThrownMessage.h"

#include <random>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

std::vector<uint64_t> entries(const MCIndexMap& map) { return std::vector<uint64_t>(map.data(), map.data() + map.count()); }

constexpr uint64_t G = NSNotFound;

}  // namespace

TEST(MCLayoutMatrix, FoldsTwoSectionsIntoLinesWithGapCells) {
  MCLayoutMatrix m(4);
  m.addSectionWithSize(6);
  m.addSectionWithSize(3);
  EXPECT_EQ(m.numberOfSections(), 2u);
  EXPECT_EQ(m.numberOfItems(), 9u);
  EXPECT_EQ(m.numberOfLines(), 3u);
  EXPECT_EQ(m.numberOfCells(), 12u);
  EXPECT_EQ(m.itemsRangeOfSectionAtIndex(0), MCMakeRange(0, 6));
  EXPECT_EQ(m.linesRangeOfSectionAtIndex(0), MCMakeRange(0, 2));
  EXPECT_EQ(m.cellsRangeOfSectionAtIndex(0), MCMakeRange(0, 8));
  EXPECT_EQ(m.itemsRangeOfSectionAtIndex(1), MCMakeRange(6, 3));
  EXPECT_EQ(m.linesRangeOfSectionAtIndex(1), MCMakeRange(2, 1));
  EXPECT_EQ(m.cellsRangeOfSectionAtIndex(1), MCMakeRange(8, 4));

  EXPECT_EQ(entries(m.cellToItemMap()), (std::vector<uint64_t>{0, 1, 2, 3, 4, 5, G, G, 6, 7, 8, G}));
  EXPECT_EQ(entries(m.itemToCellMap()), (std::vector<uint64_t>{0, 1, 2, 3, 4, 5, 8, 9, 10}));
  EXPECT_EQ(entries(m.lineToSectionMap()), (std::vector<uint64_t>{0, 0, 1}));

  EXPECT_EQ(m.cellIndexFromItemIndex(6), 8u);
  EXPECT_EQ(m.itemIndexFromCellIndex(7), NSNotFound);
  EXPECT_EQ(m.itemIndexFromCellIndex(10), 8u);
  EXPECT_EQ(m.lineIndexFromItemIndex(5), 1u);
  EXPECT_EQ(m.lineIndexFromItemIndex(6), 2u);
  EXPECT_EQ(m.sectionIndexFromCellIndex(7), 0u) << "a gap cell belongs to its line's section";
  EXPECT_EQ(m.sectionIndexFromCellIndex(11), 1u);
  EXPECT_EQ(m.sectionIndexFromItemIndex(5), 0u);
  EXPECT_EQ(m.sectionIndexFromItemIndex(6), 1u);
  EXPECT_EQ(m.lineIndexFromCellIndex(1000), 250u) << "no range check on the division";

  EXPECT_EQ(m.itemIndexesForSectionIndexes(MCIndexSet{1}), MCIndexSet(MCMakeRange(6, 3)));
  EXPECT_EQ(m.sectionIndexesForItemIndexes(MCIndexSet{5, 6}), (MCIndexSet{0, 1}));
  EXPECT_EQ(m.sectionIndexesForItemIndexes(MCIndexSet{7}), (MCIndexSet{1}));

  // Lookups past the tables raise the index map's range exception.
  EXPECT_EQ(thrownMessage([&] { m.cellIndexFromItemIndex(9); }),
            "*** MCIndexMap::indexAtIndex: index 9 is out of range [0..9]");
  EXPECT_THROW(m.itemIndexFromCellIndex(12), std::out_of_range);
  EXPECT_THROW(m.sectionIndexFromLineIndex(3), std::out_of_range);
  EXPECT_THROW(m.sectionIndexFromItemIndex(NSNotFound), std::out_of_range);
  EXPECT_EQ(thrownMessage([&] { m.itemsRangeOfSectionAtIndex(2); }),
            "*** MCLayoutMatrix::itemsRangeOfSectionAtIndex: index 2 is out of range [0..2]");
}

TEST(MCLayoutMatrix, PassesOverEmptySectionsAndKeepsTheirRanges) {
  MCLayoutMatrix empty(3);
  EXPECT_EQ(empty.numberOfSections(), 0u);
  EXPECT_EQ(empty.numberOfCells(), 0u);
  EXPECT_THROW(empty.cellIndexFromItemIndex(0), std::out_of_range);
  EXPECT_THROW(empty.itemIndexFromCellIndex(0), std::out_of_range);
  EXPECT_THROW(empty.sectionIndexFromLineIndex(0), std::out_of_range);
  EXPECT_THROW(empty.linesRangeOfSectionAtIndex(0), std::out_of_range);

  MCLayoutMatrix m(3);
  m.beginEditing();
  m.addSectionWithSize(4);
  m.addSectionWithSize(0);
  m.addSectionWithSize(2);
  m.endEditing();
  EXPECT_EQ(m.numberOfSections(), 3u);
  EXPECT_EQ(m.numberOfLines(), 3u);
  EXPECT_EQ(entries(m.lineToSectionMap()), (std::vector<uint64_t>{0, 0, 2}));
  EXPECT_EQ(m.itemsRangeOfSectionAtIndex(1), MCMakeRange(0, 0));
  EXPECT_EQ(m.linesRangeOfSectionAtIndex(1), MCMakeRange(0, 0));
  EXPECT_EQ(m.itemsRangeOfSectionAtIndex(2), MCMakeRange(4, 2));
  EXPECT_EQ(m.sectionIndexFromItemIndex(4), 2u);
  EXPECT_EQ(m.sectionIndexesForItemIndexes(MCIndexSet(MCMakeRange(3, 2))), (MCIndexSet{0, 1, 2}));

  // A section that empties keeps the ranges of its last layout; nothing points at it any more.
  m.decreaseSection(2, 2);
  EXPECT_EQ(m.itemsRangeOfSectionAtIndex(2), MCMakeRange(4, 0));
  EXPECT_EQ(m.linesRangeOfSectionAtIndex(2), MCMakeRange(2, 1));
  EXPECT_EQ(m.cellsRangeOfSectionAtIndex(2), MCMakeRange(6, 3));
  EXPECT_EQ(m.numberOfLines(), 2u);
  EXPECT_EQ(entries(m.lineToSectionMap()), (std::vector<uint64_t>{0, 0}));
}

TEST(MCLayoutMatrix, LaysOutOnceWhenTheOutermostBracketCloses) {
  MCLayoutMatrix m(2);
  m.endEditing();  // unmatched: ignored
  EXPECT_EQ(m.editingDepth(), 0u);
  m.addSectionWithSize(3);
  m.beginEditing();
  m.beginEditing();
  m.addSectionWithSize(2);
  m.insertSectionAtIndex(0, 5);
  m.endEditing();
  EXPECT_EQ(m.numberOfSections(), 3u);
  EXPECT_EQ(m.numberOfItems(), 3u) << "still the layout from before the bracket";
  EXPECT_EQ(m.linesRangeOfSectionAtIndex(0), MCMakeRange(0, 0)) << "the inserted section is not laid out yet";

  m.setLineLength(2);  // same value: no layout
  EXPECT_EQ(m.numberOfItems(), 3u);
  m.setLineLength(3);  // new value: lays out at once, bracket or not
  EXPECT_EQ(m.numberOfItems(), 10u);
  EXPECT_EQ(m.numberOfLines(), 2u + 1u + 1u);
  EXPECT_EQ(m.itemsRangeOfSectionAtIndex(1), MCMakeRange(5, 3));

  m.removeSectionAtIndex(0);
  m.increaseSection(1, 4);
  EXPECT_EQ(m.numberOfItems(), 10u);
  m.endEditing();
  EXPECT_EQ(m.editingDepth(), 0u);
  EXPECT_EQ(m.numberOfItems(), 9u);
  EXPECT_EQ(m.itemsRangeOfSectionAtIndex(1), MCMakeRange(3, 6));
  EXPECT_EQ(m.cellsRangeOfSectionAtIndex(1), MCMakeRange(3, 6));

  m.beginEditing();
  m.removeAllSections();  // at once, and the depth stays
  EXPECT_EQ(m.numberOfSections(), 0u);
  EXPECT_EQ(m.numberOfCells(), 0u);
  EXPECT_EQ(m.cellToItemMap().count(), 0u);
  EXPECT_EQ(m.editingDepth(), 1u);
  m.endEditing();
}

TEST(MCLayoutMatrix, RebuildSeesTheOldSizesAndEndsOnNotFound) {
  MCLayoutMatrix m(4);
  m.addSectionWithSize(6);
  m.addSectionWithSize(3);
  std::vector<std::pair<uint64_t, uint64_t>> calls;
  m.rebuild([&](uint64_t section, uint64_t current) -> uint64_t {
    calls.emplace_back(section, current);
    EXPECT_EQ(m.numberOfSections(), 2u) << "old sections stay while the callback runs";
    EXPECT_EQ(m.numberOfItems(), 9u);
    return section < 4 ? current + 1 : NSNotFound;
  });
  EXPECT_EQ(calls, (std::vector<std::pair<uint64_t, uint64_t>>{{0, 6}, {1, 3}, {2, 0}, {3, 0}, {4, 0}}));
  EXPECT_EQ(m.numberOfSections(), 4u);
  EXPECT_EQ(m.numberOfItems(), 7u + 4u + 1u + 1u);
  EXPECT_EQ(m.linesRangeOfSectionAtIndex(3), MCMakeRange(4, 1));

  m.rebuild([](uint64_t, uint64_t) { return NSNotFound; });
  EXPECT_EQ(m.numberOfSections(), 0u);
  EXPECT_EQ(m.numberOfItems(), 0u);
  EXPECT_EQ(m.numberOfLines(), 0u);
  EXPECT_EQ(m.numberOfCells(), 0u);
}

TEST(MCLayoutMatrix, SectionSetsFollowContiguousRuns) {
  MCLayoutMatrix m(3);
  m.rebuild([](uint64_t s, uint64_t) -> uint64_t { return s < 5 ? 2 + s : NSNotFound; });  // 2,3,4,5,6
  // Items 1 and 10 are in sections 0 and 3; a run between them covers 1 and 2 as well.
  EXPECT_EQ(m.sectionIndexesForItemIndexes(MCIndexSet(MCMakeRange(1, 10))), (MCIndexSet{0, 1, 2, 3}));
  // Two separate single items do not fill in between.
  EXPECT_EQ(m.sectionIndexesForItemIndexes(MCIndexSet{1, 10}), (MCIndexSet{0, 3}));
  EXPECT_EQ(m.sectionIndexesForItemIndexes(MCIndexSet(MCMakeRange(2, 3))), (MCIndexSet{1}));
  EXPECT_EQ(m.itemIndexesForSectionIndexes(MCIndexSet{0, 2}), [] {
    MCIndexSet s(MCMakeRange(0, 2));
    s.addIndexesInRange(MCMakeRange(5, 4));
    return s;
  }());
  EXPECT_EQ(m.itemIndexesForSectionIndexes(MCIndexSet{}), MCIndexSet{});
  EXPECT_THROW(m.itemIndexesForSectionIndexes(MCIndexSet{5}), std::out_of_range);
  EXPECT_THROW(m.sectionIndexesForItemIndexes(MCIndexSet{20}), std::out_of_range);
}

TEST(MCLayoutMatrix, AgreesWithACellByCellWalkOnRandomGroupings) {
  std::mt19937 rng(11);
  for (int trial = 0; trial < 200; ++trial) {
    const uint64_t lineLength = 1 + rng() % 7;
    std::vector<uint64_t> sizes(rng() % 9);
    for (auto& s : sizes) s = rng() % 4 == 0 ? 0 : rng() % 15;
    MCLayoutMatrix m(lineLength);
    m.rebuild([&](uint64_t s, uint64_t) { return s < sizes.size() ? sizes[s] : NSNotFound; });

    // Reference: walk the grid one cell at a time.
    std::vector<uint64_t> cellToItem, lineToSection, itemToCell;
    uint64_t item = 0;
    for (uint64_t s = 0; s < sizes.size(); ++s) {
      uint64_t placed = 0;
      while (placed < sizes[s]) {
        lineToSection.push_back(s);
        for (uint64_t c = 0; c < lineLength; ++c) {
          if (placed < sizes[s]) {
            itemToCell.push_back(cellToItem.size());
            cellToItem.push_back(item++);
            ++placed;
          } else {
            cellToItem.push_back(NSNotFound);
          }
        }
      }
    }
    ASSERT_EQ(entries(m.cellToItemMap()), cellToItem);
    ASSERT_EQ(entries(m.itemToCellMap()), itemToCell);
    ASSERT_EQ(entries(m.lineToSectionMap()), lineToSection);
    ASSERT_EQ(m.numberOfCells(), m.numberOfLines() * lineLength);
    uint64_t first = 0;
    for (uint64_t s = 0; s < sizes.size(); ++s) {
      if (sizes[s] == 0) continue;
      EXPECT_EQ(m.itemsRangeOfSectionAtIndex(s), MCMakeRange(first, sizes[s]));
      for (uint64_t i = first; i < first + sizes[s]; ++i) ASSERT_EQ(m.sectionIndexFromItemIndex(i), s);
      first += sizes[s];
    }
  }
}

TEST(MCLayoutMatrix, BadSizesAndIndexesNeitherWrapNorCrash) {
  MCLayoutMatrix m(0);
  m.addSectionWithSize(5);
  EXPECT_EQ(m.numberOfItems(), 0u) << "a line length of 0 holds no cells";
  EXPECT_EQ(m.numberOfCells(), 0u);
  EXPECT_EQ(m.lineIndexFromCellIndex(17), 0u);
  m.setLineLength(2);
  EXPECT_EQ(m.numberOfItems(), 5u);
  EXPECT_EQ(m.numberOfCells(), 6u);

  m.addSectionWithSize(-3);
  EXPECT_EQ(m.itemsRangeOfSectionAtIndex(1).length, 0u) << "a negative size counts as 0";
  m.decreaseSection(0, 9);
  EXPECT_EQ(m.itemsRangeOfSectionAtIndex(0).length, 0u) << "a decrease stops at 0";
  EXPECT_EQ(m.numberOfItems(), 0u);

  EXPECT_EQ(thrownMessage([&] { m.removeSectionAtIndex(NSNotFound); }),
            "*** MCLayoutMatrix::removeSectionAtIndex: index 9223372036854775807 is out of range [0..2]");
  EXPECT_EQ(thrownMessage([&] { m.insertSectionAtIndex(3, 1); }),
            "*** MCLayoutMatrix::insertSectionAtIndex: index 3 is out of range [0..2]");
  EXPECT_THROW(m.increaseSection(2, 1), std::out_of_range);
  EXPECT_THROW(m.decreaseSection(5, 1), std::out_of_range);
  EXPECT_EQ(m.editingDepth(), 0u) << "a refused edit leaves no bracket open";
  m.insertSectionAtIndex(2, 1);  // at the count: appends
  EXPECT_EQ(m.itemsRangeOfSectionAtIndex(2), MCMakeRange(0, 1));

  // A size that cannot be laid out fails before the tables change.
  EXPECT_THROW(m.increaseSection(0, NSNotFound), std::length_error);
  EXPECT_EQ(m.editingDepth(), 0u);
  EXPECT_EQ(m.numberOfItems(), 1u) << "the tables of the last good layout stay";
  EXPECT_EQ(m.cellToItemMap().count(), 2u);
  EXPECT_THROW(m.increaseSection(0, NSNotFound), std::length_error);
  EXPECT_EQ(m.itemsRangeOfSectionAtIndex(0).length, UINT64_MAX - 1) << "increases saturate";
  m.decreaseSection(0, UINT64_MAX);
  EXPECT_EQ(m.numberOfItems(), 1u);
  EXPECT_EQ(m.itemsRangeOfSectionAtIndex(2), MCMakeRange(0, 1));
}
