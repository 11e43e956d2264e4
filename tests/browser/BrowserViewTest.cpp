// The browser view: scale, groups, prefetching, sizing, drawing and mouse dispatch, driven
// offscreen through real scripted events.
#include "BrowserViewFixture.h"

#include <gtest/gtest.h>

TEST(BrowserView, DefaultsScaleAndMagnifyClamping) {
  BrowserFixture f({10});
  MCBrowserView& v = *f.view;
  EXPECT_EQ(v.scale(), 0.5);
  EXPECT_EQ(v.minScale(), 0.25);
  EXPECT_EQ(v.maxScale(), 1.0);
  EXPECT_TRUE(v.allowsEmptySelection() && v.allowsMultipleSelection() && v.allowsDrop() && v.allowsPreviewPanel());
  EXPECT_FALSE(v.allowsAlternateSelection());
  EXPECT_EQ(v.contentLayout()->alignment(), 1);
  EXPECT_EQ(v.contentLayout()->minHorizontalSpacing(), 12);
  EXPECT_EQ(v.contentLayout()->minVerticalSpacing(), 24);

  v.setScale(0.5);
  EXPECT_EQ(f.recorder->scaleChanges, 0);
  v.setScale(3.0);  // stored as given
  EXPECT_EQ(v.scale(), 3.0);
  EXPECT_EQ(f.recorder->scaleChanges, 1);
  EXPECT_EQ(f.layout().itemSize(), MCMakeSize(600, 600));
  v.setScale(0.9);
  f.host->magnify({10, 10}, 0.3);  // would overshoot: lands on the maximum
  f.host->run();
  EXPECT_EQ(v.scale(), 1.0);
  const int changes = f.recorder->scaleChanges;
  f.host->magnify({10, 10}, 0.1);  // at the bound, same direction: nothing
  f.host->run();
  EXPECT_EQ(f.recorder->scaleChanges, changes);
  f.host->magnify({10, 10}, -0.2);
  f.host->magnify({10, 10}, -5);
  f.host->run();
  EXPECT_EQ(v.scale(), 0.25);

  // Horizontal layout changes the spacing defaults.
  v.setHorizontal(true);
  EXPECT_EQ(v.contentLayout()->minHorizontalSpacing(), 4);
  EXPECT_EQ(v.contentLayout()->minVerticalSpacing(), 4);
}

TEST(BrowserView, AppendGroupsMovesBothSelectionsPastAGrownGroup) {
  BrowserFixture f({3, 4, 5});
  MCBrowserView& v = *f.view;
  v.setSelectionIndexes(MCIndexSet{4, 7, 8}, false);
  v.setAlternateSelectionIndexes(MCIndexSet{9}, false);
  const int notices = f.recorder->selectionChanges;
  f.recorder->groupSizes = {3, 6, 5, 2};
  v.appendGroups();
  EXPECT_EQ(v.numberOfItems(), 16u);
  EXPECT_EQ(v.selectionIndexes(), (MCIndexSet{4, 9, 10}));
  EXPECT_EQ(v.alternateSelectionIndexes(), MCIndexSet{11});
  EXPECT_EQ(f.recorder->selectionChanges, notices);
  EXPECT_EQ(v.selectionIndexPaths(), (std::vector<MCIndexPath>{{1, 1}, {2, 0}, {2, 1}}));

  // Fewer groups than the view has: nothing at all changes, not even the frame.
  const MCRect frame = v.frame();
  f.recorder->groupSizes = {3, 7};
  v.appendGroups();
  EXPECT_EQ(v.numberOfItems(), 16u);
  EXPECT_EQ(v.frame(), frame);

  // A bad index path is refused by the layout.
  EXPECT_THROW(v.reloadItemAtIndexPath({4, 0}), std::invalid_argument);
  EXPECT_THROW(v.isSelectedItemAtIndexPath({0, 3}), std::invalid_argument);
}

TEST(BrowserView, PrefetchAsksAheadCancelsFirstAndKeepsQuietInside) {
  BrowserFixture f({200});
  MCBrowserView& v = *f.view;
  // reloadData asked for the visible rows and two more below (none above the top).
  v.reloadData();
  ASSERT_FALSE(f.recorder->log.empty());
  EXPECT_EQ(f.recorder->log.back(), "prefetch 0.0..0.29 (30)");
  f.recorder->log.clear();

  f.scrollView->scrollClipViewToPoint({0, 50});  // inside what is covered
  EXPECT_TRUE(f.recorder->log.empty());
  // Rows 20 to 23 show; two lines of 124 points each way reach rows 18 to 25.
  f.scrollView->scrollClipViewToPoint({0, 2480});
  ASSERT_EQ(f.recorder->log.size(), 2u);
  EXPECT_EQ(f.recorder->log[0], "cancel 0.0..0.29 (30)");
  EXPECT_EQ(f.recorder->log[1], "prefetch 0.90..0.129 (40)");

  // reloadData cancels what is prefetched before it drops the groups, and reports no selection.
  v.selectIndex(5, false, false);
  const int notices = f.recorder->selectionChanges;
  f.recorder->log.clear();
  v.reloadData();
  ASSERT_GE(f.recorder->log.size(), 1u);
  EXPECT_EQ(f.recorder->log[0], "cancel 0.90..0.129 (40)");
  EXPECT_EQ(f.recorder->selectionChanges, notices);
  EXPECT_FALSE(v.hasSelection());
}

TEST(BrowserView, SizeToFitKeepsTheSameFractionAtTheTop) {
  BrowserFixture f({200});
  MCBrowserView& v = *f.view;
  f.scrollView->scrollClipViewToPoint({0, 1240});
  const double oldHeight = v.bounds().size.height;
  f.window->setContentSize({800, 400});  // six columns instead of five
  const double newHeight = v.bounds().size.height;
  ASSERT_LT(newHeight, oldHeight);
  EXPECT_DOUBLE_EQ(f.scrollY(), std::trunc(1240 / oldHeight * newHeight));
  // A change of scale holds the position the same way.
  const double before = f.scrollY(), height = v.bounds().size.height;
  v.setScale(0.25);
  EXPECT_DOUBLE_EQ(f.scrollY(), std::trunc(before / height * v.bounds().size.height));
  EXPECT_EQ(v.frame().size.width, 800);
}

TEST(BrowserView, DrawingPreparesOnlyTheCellsThatNeedIt) {
  BrowserFixture f({12, 30}, true, false, {600, 500});
  f.host->render();
  // Rows of 124 points under a 20-point header: the visible 500 points hold the header of group
  // 0, its three rows (12 items), group 1's header (at 404) and its first row (from 436).
  EXPECT_EQ(f.itemCell->drawn, 17);
  EXPECT_EQ(f.headerCell->drawn, 2);
  f.itemCell->drawn = 0;
  f.itemCell->prepared = 0;
  f.view->reloadItemAtIndexPath({0, 7});
  f.host->render();
  EXPECT_EQ(f.itemCell->drawn, 1);
  EXPECT_EQ(f.itemCell->prepared, 1);
  // No cells set: nothing draws, and the items have no size.
  f.view->setItemCell(nullptr);
  f.view->sizeToFit(false);
  EXPECT_EQ(f.layout().itemSize(), MCMakeSize(0, 0));
  f.host->render();
}

TEST(BrowserView, ClicksDoubleClicksAndRightClicks) {
  BrowserFixture f({3, 4});
  MCBrowserView& v = *f.view;
  f.host->click(f.windowPointOfItem(4), 0, 2);
  f.host->run();
  f.host->click(f.windowPointOfItem(4), 0, 3);  // a triple click does nothing
  f.host->run();
  EXPECT_EQ(f.recorder->log, std::vector<std::string>{"double 1.1"});

  // Right clicks: on the background, on an unselected item (selects it), on a selected one
  // (keeps the selection), with control as a right click.
  f.recorder->log.clear();
  v.setSelectionIndexes(MCIndexSet{0, 1}, false);
  f.host->rightMouseDown(f.windowPoint({595, 395}));
  f.host->rightMouseDown(f.windowPointOfItem(1));
  f.host->mouseDown(f.windowPointOfItem(5), MCEventModifierFlagControl);
  f.host->run();
  EXPECT_EQ(f.recorder->log, (std::vector<std::string>{"right background", "right 0.1", "right 1.2"}));
  EXPECT_EQ(v.selectionIndexes(), MCIndexSet{5});

  // On an item of the alternate selection: the sets swap, reported once, nothing selected on top.
  v.setAllowsAlternateSelection(true);
  v.setAlternateSelectionIndexes(MCIndexSet{2, 3}, false);
  const int notices = f.recorder->selectionChanges;
  f.host->rightMouseDown(f.windowPointOfItem(3));
  f.host->run();
  EXPECT_EQ(f.recorder->selectionChanges, notices + 1);
  EXPECT_EQ(v.selectionIndexes(), (MCIndexSet{2, 3}));
  EXPECT_EQ(v.alternateSelectionIndexes(), MCIndexSet{5});
  EXPECT_TRUE(v.isSelectionSwapped());
}

TEST(BrowserView, ScrollToVisibleRectMovesTheLeastAndAlignsTallRectsAtTheBottom) {
  BrowserFixture f({200});
  MCBrowserView& v = *f.view;
  v.scrollToVisibleRect(MCMakeRect(0, 100, 10, 10));  // shows already
  EXPECT_EQ(f.scrollY(), 0);
  v.scrollToVisibleRect(MCMakeRect(0, 1000, 10, 100));
  EXPECT_EQ(f.scrollY(), 700);  // bottom edge aligned
  v.scrollToVisibleRect(MCMakeRect(0, 300, 10, 10));
  EXPECT_EQ(f.scrollY(), 300);  // top edge aligned
  v.scrollToVisibleRect(MCMakeRect(0, 400, 10, 1000));  // taller than the view: its bottom shows
  EXPECT_EQ(f.scrollY(), 1000);
  v.scrollToVisibleRect(MCMakeRect(0, v.bounds().size.height - 5, 10, 50));  // held to the content
  EXPECT_EQ(f.scrollY(), v.bounds().size.height - 400);
}

TEST(BrowserView, IsItsLayoutsDelegateFromTheStart) {
  auto view = std::make_shared<MCBrowserView>(MCMakeRect(0, 0, 300, 200));
  std::shared_ptr<MCBrowserViewLayout> layout = view->contentLayout();
  ASSERT_NE(layout->delegate(), nullptr);
  EXPECT_EQ(layout->delegate().get(), static_cast<MCBrowserViewLayoutDelegate*>(view.get()));

  // Before any sizing, the layout already measures through the view's cell at the view's scale.
  view->setItemCell(std::make_shared<FixedCell>(false));
  layout->layoutWithContentSize({600, 400});
  EXPECT_EQ(layout->itemSize(), MCMakeSize(100, 100));

  // A layout that outlives its view is left with no delegate, not a dangling one.
  view.reset();
  EXPECT_EQ(layout->delegate(), nullptr);
  layout->layoutWithContentSize({600, 400});
  EXPECT_EQ(layout->itemSize(), MCMakeSize(0, 0));
}
