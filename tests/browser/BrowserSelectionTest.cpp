// The two selections: setters, clicks with modifiers, sweeps, and a random check of the sweep's
// rebuild against a plain model of its table of results.
#include "BrowserViewFixture.h"

#include <gtest/gtest.h>

#include <random>

TEST(BrowserSelection, SettersRefuseWhatTheyMustAndReport) {
  BrowserFixture f({20});
  MCBrowserView& v = *f.view;
  EXPECT_TRUE(v.setSelectionIndexes(MCIndexSet{1, 2}, false));
  EXPECT_FALSE(v.setSelectionIndexes(MCIndexSet{1, 2}, false));  // the same set
  EXPECT_FALSE(v.setSelectionIndexes(MCIndexSet{2}, true));       // a subset with extend
  EXPECT_TRUE(v.setSelectionIndexes(MCIndexSet{2, 9}, true));     // extend adds, never removes
  EXPECT_EQ(v.selectionIndexes(), (MCIndexSet{1, 2, 9}));
  EXPECT_EQ(f.recorder->selectionChanges, 2);
  EXPECT_TRUE(v.setSelectionIndexes(MCIndexSet{3}, false, false));  // no notice
  EXPECT_EQ(f.recorder->selectionChanges, 2);
  // Emptying: allowed by default, refused when the selection must not be empty.
  EXPECT_TRUE(v.setSelectionIndexes(nullptr, false));
  EXPECT_FALSE(v.hasSelection());
  v.setSelectionIndexes(MCIndexSet{4}, false);
  v.setAllowsEmptySelection(false);
  EXPECT_FALSE(v.setSelectionIndexes(MCIndexSet(), false));
  EXPECT_FALSE(v.deselectAll());
  EXPECT_EQ(v.selectionIndexes(), MCIndexSet{4});
  v.setAllowsEmptySelection(true);

  // deselectAll reports once although both sets change.
  v.setAlternateSelectionIndexes(MCIndexSet{7}, false);
  const int notices = f.recorder->selectionChanges;
  EXPECT_TRUE(v.deselectAll());
  EXPECT_EQ(f.recorder->selectionChanges, notices + 1);
  EXPECT_FALSE(v.deselectAll());
  // Escape deselects through the keys.
  v.setSelectionIndexes(MCIndexSet{4}, false);
  f.key(MCEscapeCharacter);
  EXPECT_FALSE(v.hasSelection());

  // Group selection, index paths, and the read side's twins.
  f.recorder->groupSizes = {20, 6};
  v.appendGroups();
  v.selectGroupAtIndex(1, false);
  EXPECT_EQ(v.selectionIndexes(), MCIndexSet(MCRange{20, 6}));
  EXPECT_EQ(v.firstSelectedIndexPath(), (MCIndexPath{1, 0}));
  EXPECT_EQ(v.lastSelectedIndexPath(), (MCIndexPath{1, 5}));
  EXPECT_EQ(v.selectedGroupsIndexes(), MCIndexSet{1});
  EXPECT_FALSE(v.alternateFirstSelectedIndexPath().has_value());
  EXPECT_TRUE(v.setAlternateSelectionIndexPaths({{0, 3}, {1, 1}}));
  EXPECT_EQ(v.alternateSelectionIndexes(), (MCIndexSet{3, 21}));
  bool alternate = true;
  EXPECT_TRUE(v.isSelectedItemAtIndexPath({1, 1}, &alternate));
  EXPECT_FALSE(alternate);
  EXPECT_TRUE(v.isSelectedItemAtIndexPath({0, 3}, &alternate));
  EXPECT_TRUE(alternate);
  EXPECT_FALSE(v.isSelectedItemAtIndexPath({0, 3}));
}

TEST(BrowserSelection, ClicksWithShiftCommandAndOption) {
  // Groups of 7 and 6 in five columns: each group's last row ends in gap cells.
  BrowserFixture f({7, 6}, false, false, {600, 600});
  MCBrowserView& v = *f.view;
  f.click(2);
  EXPECT_EQ(v.selectionIndexes(), MCIndexSet{2});
  // Shift below: from the selection's end to the click, across the gap cells and the group border.
  f.click(9, MCEventModifierFlagShift);
  EXPECT_EQ(v.selectionIndexes(), MCIndexSet(MCRange{2, 8}));
  // Shift above: from the click to the selection's start.
  f.click(0, MCEventModifierFlagShift);
  EXPECT_EQ(v.selectionIndexes(), MCIndexSet(MCRange{0, 10}));
  // Command toggles one item either way.
  f.click(4, MCEventModifierFlagCommand);
  f.click(12, MCEventModifierFlagCommand);
  EXPECT_EQ(v.selectionIndexes(), (MCIndexSet{0, 1, 2, 3, 5, 6, 7, 8, 9, 12}));
  // A plain click in empty space clears; each click reported once.
  const int notices = f.recorder->selectionChanges;
  f.host->click(f.windowPoint({598, 10}));
  f.host->run();
  EXPECT_FALSE(v.hasSelection());
  EXPECT_EQ(f.recorder->selectionChanges, notices + 1);

  // Option with the alternate selection allowed: a sweep of the alternate set, then an option-click
  // on an item of the first selection swaps the sets, and again swaps them back.
  v.setAllowsAlternateSelection(true);
  v.setSelectionIndexes(MCIndexSet{1, 2}, false);
  f.click(3, MCEventModifierFlagOption);
  EXPECT_EQ(v.selectionIndexes(), (MCIndexSet{1, 2}));
  EXPECT_EQ(v.alternateSelectionIndexes(), MCIndexSet{3});
  EXPECT_FALSE(v.isSelectionSwapped());
  // The swap comes first; the click's own sweep then rebuilds the new first set, in which the
  // clicked item no longer is (it belongs to the other set now): it keeps nothing.
  f.click(1, MCEventModifierFlagOption);
  EXPECT_TRUE(v.isSelectionSwapped());
  EXPECT_EQ(v.alternateSelectionIndexes(), (MCIndexSet{1, 2}));
  EXPECT_FALSE(v.hasSelection());
  v.setSelectionIndexes(MCIndexSet{4}, false);
  f.click(4, MCEventModifierFlagOption);
  EXPECT_FALSE(v.isSelectionSwapped());
  EXPECT_EQ(v.alternateSelectionIndexes(), MCIndexSet{4});
  // A shift-click never takes items of the other set.
  v.setSelectionIndexes(MCIndexSet{0}, false);
  v.setAlternateSelectionIndexes(MCIndexSet{2}, false);
  f.click(4, MCEventModifierFlagShift);
  EXPECT_EQ(v.selectionIndexes(), (MCIndexSet{0, 1, 3, 4}));

  // Without multiple selection a press selects the item under it and nothing more.
  v.setAllowsAlternateSelection(false);
  v.setAllowsMultipleSelection(false);
  f.host->mouseDown(f.windowPointOfItem(5));
  f.host->mouseDragged(f.windowPointOfItem(8));
  f.host->mouseUp(f.windowPointOfItem(8));
  f.host->run();
  EXPECT_EQ(v.selectionIndexes(), MCIndexSet{5});
}

TEST(BrowserSelection, ASweepRedrawsAsItGoesAndReportsOnceAtItsEnd) {
  BrowserFixture f({30});
  MCBrowserView& v = *f.view;
  const int notices = f.recorder->selectionChanges;
  // From the spacing above item 1 down to the middle of item 13 (rows 0 to 2, columns 1 to 3).
  const MCRect first = f.layout().cellFrameAtItemIndex(1);
  f.host->mouseDown(f.windowPoint({first.origin.x - 2, 5}));
  f.host->mouseDragged(f.windowPointOfItem(7));
  f.host->mouseDragged(f.windowPointOfItem(13));
  f.host->mouseUp(f.windowPointOfItem(13));
  f.host->run();
  EXPECT_EQ(v.selectionIndexes(), (MCIndexSet{1, 2, 3, 6, 7, 8, 11, 12, 13}));
  EXPECT_EQ(f.recorder->selectionChanges, notices + 1);
  EXPECT_EQ(v.selectionRect(), MCRect{});
  // A sweep that ends as it began sends nothing.
  f.host->mouseDown(f.windowPoint({first.origin.x - 2, 5}));
  f.host->mouseDragged(f.windowPointOfItem(0));
  f.host->mouseDragged(f.windowPointOfItem(13));
  f.host->mouseUp(f.windowPointOfItem(13));
  f.host->run();
  EXPECT_EQ(f.recorder->selectionChanges, notices + 1);
  // Only the strips between the old and the new band are marked.
  v.setSelectionRect(MCMakeRect(10, 10, 100, 100));
  f.host->render();
  f.host->takeInvalidatedRect();
  v.setSelectionRect(MCMakeRect(10, 10, 100, 150));
  EXPECT_TRUE(v.needsToDrawRect(MCMakeRect(50, 130, 10, 10)));  // the new strip
  EXPECT_TRUE(v.needsToDrawRect(MCMakeRect(9, 50, 1, 1)));      // the edges, one point wide
  EXPECT_FALSE(v.needsToDrawRect(MCMakeRect(50, 50, 10, 10)));  // the unchanged inside
  EXPECT_FALSE(v.needsToDrawRect(MCMakeRect(200, 130, 10, 10)));
}

TEST(BrowserSelection, SweepRebuildMatchesTheTableOfResults) {
  // Random sets, rectangles and modifiers against a model of the table: an item is inside when its
  // cell's frame meets the rectangle (this cell answers as its frame does), "was" is read from the
  // snapshot in range and toggle sweeps, and no item of the other set is ever taken. The sweep
  // starts in empty space, so that its snapshot is the set as it was.
  for (bool horizontal : {false, true}) {
    for (bool headers : {false, true}) {
      BrowserFixture f({7, 1, 12, 5, 9}, headers, horizontal, {600, 400});
      MCBrowserView& v = *f.view;
      v.setAllowsAlternateSelection(true);
      const uint64_t n = v.numberOfItems();
      const MCSize content = v.bounds().size;
      std::mt19937 random(unsigned(horizontal * 2 + headers));
      const std::vector<uint64_t> modifiers = {0,
                                               MCEventModifierFlagShift,
                                               MCEventModifierFlagCommand,
                                               MCEventModifierFlagOption,
                                               MCEventModifierFlagOption | MCEventModifierFlagCommand,
                                               MCEventModifierFlagOption | MCEventModifierFlagShift};
      int rounds = 0;
      while (rounds < 200) {
        const MCPoint start = {double(random() % uint64_t(content.width)), double(random() % uint64_t(content.height))};
        if (f.layout().itemIndexAtPoint(start) != NSNotFound) continue;
        ++rounds;
        MCIndexSet first, second;
        for (uint64_t i = 0; i < n; ++i) {
          const auto pick = random() % 5;
          if (pick == 0) first.addIndex(i);
          else if (pick == 1) second.addIndex(i);
        }
        v.setSelectionIndexes(first, false, false);
        v.setAlternateSelectionIndexes(second, false, false);
        const uint64_t flags = modifiers[random() % modifiers.size()];
        v.startSelectionWithEvent(MCEvent::mouseEvent(MCEventType::LeftMouseDown, f.windowPoint(start), flags));
        const uint64_t mode = v.selectionMode();
        const bool alternate = flags & MCEventModifierFlagOption;
        ASSERT_EQ(bool(mode & MCBrowserViewSelectionModeAlternate), alternate);
        const MCIndexSet& snapshot = alternate ? second : first;
        const MCIndexSet& other = alternate ? first : second;
        const double x = std::min(start.x, double(random() % uint64_t(content.width))) - 0.5;
        const double y = std::min(start.y, double(random() % uint64_t(content.height))) - 0.5;
        const MCRect r = MCMakeRect(x, y, double(random() % 700) + 1, double(random() % 700) + 1);
        v.makeSelectionInRect(r);

        const bool toggle = mode & MCBrowserViewSelectionModeToggle;
        const bool readsOld = mode & (MCBrowserViewSelectionModeRange | MCBrowserViewSelectionModeToggle);
        MCIndexSet expected;
        for (uint64_t i = 0; i < n; ++i) {
          if (other.containsIndex(i)) continue;
          const bool inside = MCIntersectsRect(r, f.layout().cellFrameAtItemIndex(i));
          const bool was = readsOld && snapshot.containsIndex(i);
          if ((inside && !toggle) || (inside && toggle && !was) || (!inside && was)) expected.addIndex(i);
        }
        const MCIndexSet actual = alternate ? v.alternateSelectionIndexes() : v.selectionIndexes();
        ASSERT_EQ(actual, expected) << "horizontal " << horizontal << " headers " << headers << " flags " << flags
                                    << " rect " << r.origin.x << "," << r.origin.y << " " << r.size.width << "x"
                                    << r.size.height;
        EXPECT_EQ(alternate ? v.selectionIndexes() : v.alternateSelectionIndexes(), other);
        v.stopSelection();
      }
    }
  }
}
