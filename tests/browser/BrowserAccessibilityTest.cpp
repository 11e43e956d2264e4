// What the browser view tells assistive technologies, and when its window's host hears of it.
#include "BrowserViewFixture.h"

#include <gtest/gtest.h>

namespace {

// An offscreen host that writes down what a screen reader would be told, each time it is told.
class ListeningHost : public MCOffscreenHost {
 public:
  using MCOffscreenHost::MCOffscreenHost;
  std::vector<std::string> heard;
  void accessibilityDidChange(MCView& view) override {
    heard.push_back(view.accessibilityLabel() + ": " + view.accessibilityValue());
  }
};

}  // namespace

TEST(BrowserAccessibility, FocusedItemPlaceAndSelectionCountFollowTheKeys) {
  BrowserFixture f({1500, 700});
  MCBrowserView& v = *f.view;
  f.host.reset();
  auto host = std::make_unique<ListeningHost>(f.window);
  ListeningHost& heard = *host;
  f.host = std::move(host);
  EXPECT_EQ(v.accessibilityLabel(), "Photos");
  EXPECT_EQ(v.accessibilityValue(), "No selection, 2,200 items");

  // Without names from the data source, items are numbered across the groups, from one.
  v.setSelectionIndexes(MCIndexSet{1511}, false);
  ASSERT_EQ(heard.heard.size(), 1u);
  EXPECT_EQ(heard.heard.back(), "Photos: Item 1,512, 1,512 of 2,200");

  f.recorder->namesItems = true;
  f.key(MCRightArrowFunctionKey);
  EXPECT_EQ(heard.heard.back(), "Photos: 1.12.jpg, 1,513 of 2,200");
  f.key(MCLeftArrowFunctionKey, MCEventModifierFlagShift);
  f.key(MCLeftArrowFunctionKey, MCEventModifierFlagShift);
  // Extending leftwards, the focus is the left end that moved, with the count after it.
  EXPECT_EQ(v.selectionCount(), 3u);
  EXPECT_EQ(heard.heard.back(), "Photos: 1.10.jpg, 1,511 of 2,200, 3 selected");
  // The first group's last item, across the group boundary.
  v.setSelectionIndexes(MCIndexSet{1499}, false);
  EXPECT_EQ(heard.heard.back(), "Photos: 0.1499.jpg, 1,500 of 2,200");

  v.setAccessibilityLabel("Holiday");
  EXPECT_EQ(heard.heard.back(), "Holiday: 0.1499.jpg, 1,500 of 2,200");
  const size_t told = heard.heard.size();
  v.setAccessibilityLabel("Holiday");  // the same name is no news
  EXPECT_EQ(heard.heard.size(), told);

  // Reloading empties the selection and counts again.
  f.recorder->groupSizes = {1};
  v.reloadData();
  EXPECT_EQ(heard.heard.back(), "Holiday: No selection, 1 item");
}

TEST(BrowserAccessibility, TheItemsShownAreCellsWithTheirPlaceAndSelection) {
  // Five columns of 100 in a 600 × 400 window: four rows show, partly the fourth.
  BrowserFixture f({30, 20});
  MCBrowserView& v = *f.view;
  f.recorder->namesItems = true;
  v.setSelectionIndexes(MCIndexSet{1}, false);

  auto cells = MCAccessibilityElement::elementsOfWindow(*f.window);
  ASSERT_FALSE(cells.empty());
  EXPECT_EQ(cells.size() % 5, 0u);
  EXPECT_LE(cells.size(), 20u);
  EXPECT_EQ(cells[0].role, MCAccessibilityRole::Cell);
  EXPECT_EQ(cells[0].label, "0.0.jpg");
  EXPECT_EQ(cells[0].value, "1 of 50");
  EXPECT_EQ(cells[0].checked, std::optional<bool>(false));
  EXPECT_EQ(cells[1].checked, std::optional<bool>(true));
  // The first cell at the window's top left, the second to its right.
  EXPECT_DOUBLE_EQ(MCMaxY(cells[0].frame), 400 - v.contentLayout()->cellFrameAtItemIndex(0).origin.y);
  EXPECT_GT(cells[1].frame.origin.x, MCMaxX(cells[0].frame));
  EXPECT_DOUBLE_EQ(cells[1].frame.origin.y, cells[0].frame.origin.y);

  // Scrolled to the end: the last items of the second group, none of the first rows.
  v.scrollToIndex(49);
  cells = MCAccessibilityElement::elementsOfWindow(*f.window);
  ASSERT_FALSE(cells.empty());
  EXPECT_EQ(cells.back().label, "1.19.jpg");
  EXPECT_EQ(cells.back().value, "50 of 50");
  for (const auto& cell : cells) EXPECT_NE(cell.label, "0.0.jpg");
}
