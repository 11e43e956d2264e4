// Keyboard navigation: real key events through the key bindings into the navigation commands,
// across gap cells and group borders, in both layouts.
#include "BrowserViewFixture.h"

#include <gtest/gtest.h>

namespace {
// Four columns; groups of 5, 3 and 9:
//   row 0:  0  1  2  3      row 3:  8  9 10 11
//   row 1:  4  .  .  .      row 4: 12 13 14 15
//   row 2:  5  6  7  .      row 5: 16  .  .  .
BrowserFixture grid() { return BrowserFixture({5, 3, 9}, false, false, {480, 400}); }
}  // namespace

TEST(BrowserNavigation, VerticalMovesGoByTheGridAcrossGapsAndGroups) {
  BrowserFixture f = grid();
  MCBrowserView& v = *f.view;
  ASSERT_EQ(f.layout().numberOfColumns(), 4u);
  f.key(MCUpArrowFunctionKey);  // no selection: up selects the last item
  EXPECT_EQ(v.selectionIndexes(), MCIndexSet{16});
  v.deselectAll();
  f.key(MCDownArrowFunctionKey);  // and down the first
  EXPECT_EQ(v.selectionIndexes(), MCIndexSet{0});

  v.selectIndex(2, false, false);
  f.key(MCDownArrowFunctionKey);  // a gap below: the group's last item
  EXPECT_EQ(v.selectionIndexes(), MCIndexSet{4});
  f.key(MCDownArrowFunctionKey);  // into the next group, same column
  EXPECT_EQ(v.selectionIndexes(), MCIndexSet{5});
  v.selectIndex(6, false, false);
  f.key(MCDownArrowFunctionKey);
  EXPECT_EQ(v.selectionIndexes(), MCIndexSet{9});
  f.key(MCUpArrowFunctionKey, MCEventModifierFlagShift);  // extends from the first item upward
  EXPECT_EQ(v.selectionIndexes(), (MCIndexSet{6, 7, 8, 9}));

  // The last row: nothing changes and nothing is reported.
  v.selectIndex(16, false, false);
  const int notices = f.recorder->selectionChanges;
  f.key(MCDownArrowFunctionKey);
  EXPECT_EQ(v.selectionIndexes(), MCIndexSet{16});
  EXPECT_EQ(f.recorder->selectionChanges, notices);

  // To the beginning of the document keeps the column.
  v.selectIndex(14, false, false);
  f.key(MCHomeFunctionKey, MCEventModifierFlagCommand);
  EXPECT_EQ(v.selectionIndexes(), MCIndexSet{2});
  f.key(MCEndFunctionKey, MCEventModifierFlagCommand);
  EXPECT_EQ(v.selectionIndexes(), MCIndexSet{16});

  // Without multiple selection an extending move is a plain move.
  v.setAllowsMultipleSelection(false);
  v.selectIndex(1, false, false);
  f.key(MCDownArrowFunctionKey, MCEventModifierFlagShift);
  EXPECT_EQ(v.selectionIndexes(), MCIndexSet{4});
  f.key(U'a', MCEventModifierFlagCommand);  // select all: refused
  EXPECT_EQ(v.selectionIndexes(), MCIndexSet{4});
  v.setAllowsMultipleSelection(true);
  f.key(U'a', MCEventModifierFlagCommand);
  EXPECT_EQ(v.selectionCount(), 17u);
}

TEST(BrowserNavigation, SidewaysMovesGoByItemOrderAndSkipTheOtherSet) {
  BrowserFixture f = grid();
  MCBrowserView& v = *f.view;
  v.selectIndex(4, false, false);
  f.key(MCRightArrowFunctionKey);  // from the end of a group's last row to the next group
  EXPECT_EQ(v.selectionIndexes(), MCIndexSet{5});
  f.key(MCRightArrowFunctionKey, MCEventModifierFlagShift);  // adds only the one item
  EXPECT_EQ(v.selectionIndexes(), (MCIndexSet{5, 6}));
  v.selectIndex(0, false, false);
  f.key(MCLeftArrowFunctionKey);
  EXPECT_EQ(v.selectionIndexes(), MCIndexSet{0});
  v.selectIndex(16, false, false);
  f.key(MCRightArrowFunctionKey);
  EXPECT_EQ(v.selectionIndexes(), MCIndexSet{16});

  // Over items of the alternate selection; the word moves act only with it allowed.
  v.selectIndex(5, false, false);
  v.setAlternateSelectionIndexes(MCIndexSet{6, 7}, false);
  f.key(MCRightArrowFunctionKey);
  EXPECT_EQ(v.selectionIndexes(), MCIndexSet{8});
  f.key(MCLeftArrowFunctionKey, MCEventModifierFlagOption);
  EXPECT_EQ(v.alternateSelectionIndexes(), (MCIndexSet{6, 7}));
  v.setAllowsAlternateSelection(true);
  f.key(MCLeftArrowFunctionKey, MCEventModifierFlagOption);  // the alternate set moves, over the first
  EXPECT_EQ(v.alternateSelectionIndexes(), MCIndexSet{5});
  EXPECT_EQ(v.offsetIndex(NSNotFound, 1, MCIndexSet{0, 1}), 2u);
  EXPECT_EQ(v.offsetIndex(NSNotFound, -1, MCIndexSet{16}), 15u);
  EXPECT_EQ(v.offsetIndex(3, 100, MCIndexSet{}), 16u);
  EXPECT_EQ(v.offsetIndex(3, -2, MCIndexSet(MCRange{0, 2})), NSNotFound);
}

TEST(BrowserNavigation, ScrollingCommandsAndTheHorizontalLayout) {
  BrowserFixture f({200}, false, false, {600, 400});
  MCBrowserView& v = *f.view;
  f.key(MCPageDownFunctionKey);
  EXPECT_EQ(f.scrollY(), 400);
  f.key(MCDownArrowFunctionKey, MCEventModifierFlagOption);  // a line is the item height, no spacing
  EXPECT_EQ(f.scrollY(), 500);
  f.key(MCEndFunctionKey);
  EXPECT_EQ(f.scrollY(), v.bounds().size.height - 400);
  f.key(MCHomeFunctionKey);
  EXPECT_EQ(f.scrollY(), 0);

  // Horizontal: up and down go to the base and move nothing; left and right go by item order.
  BrowserFixture h({10, 10}, false, true, {600, 400});
  h.view->selectIndex(3, false, false);
  h.key(MCDownArrowFunctionKey);
  h.key(MCUpArrowFunctionKey);
  EXPECT_EQ(h.view->selectionIndexes(), MCIndexSet{3});
  h.key(MCRightArrowFunctionKey);
  EXPECT_EQ(h.view->selectionIndexes(), MCIndexSet{4});

  // With no items nothing moves and nothing raises.
  BrowserFixture empty({});
  for (char32_t key : {MCUpArrowFunctionKey, MCDownArrowFunctionKey, MCLeftArrowFunctionKey, MCRightArrowFunctionKey,
                       MCPageDownFunctionKey, MCEndFunctionKey})
    empty.key(key);
  empty.key(MCHomeFunctionKey, MCEventModifierFlagCommand);
  empty.key(U'a', MCEventModifierFlagCommand);
  EXPECT_FALSE(empty.view->hasSelection());
  empty.host->render();
}
