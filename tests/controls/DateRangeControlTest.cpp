// The date range control: the parts that show for each type, the numbers its field takes, and one
// action per change of any part.

#include <vesperon/controls/MCDateRangeControl.h>

#include <gtest/gtest.h>

namespace {

std::vector<bool> shown(MCDateRangeControl& control) {
  std::vector<bool> out;
  for (const auto& view : control.arrangedViews()) out.push_back(!view->isHidden());
  return out;
}

}  // namespace

TEST(DateRangeControl, TypesShowTheirPartsAndChangesSendOneAction) {
  MCDateRangeControl control;
  EXPECT_EQ(control.controlType(), MCDateRangeControl::ControlType::empty);
  EXPECT_EQ(shown(control), (std::vector<bool>{false, false, false})) << "a new control shows nothing";
  control.setControlType(MCDateRangeControl::ControlType::datePicker);
  EXPECT_EQ(shown(control), (std::vector<bool>{true, false, false}));
  control.setControlType(MCDateRangeControl::ControlType::dateRange);
  EXPECT_EQ(shown(control), (std::vector<bool>{false, true, true}));
  control.setControlType(MCDateRangeControl::ControlType::empty);
  EXPECT_EQ(shown(control), (std::vector<bool>{false, false, false}));

  auto& units = *control.timeIntervalPopUp();
  ASSERT_EQ(units.numberOfItems(), 4u);
  EXPECT_EQ(units.items()[0].title, "days");
  EXPECT_EQ(units.items()[3].title, "years");
  EXPECT_EQ(units.items()[3].tag, MCDateRangeControl::years);

  // Whole numbers from 0 to 10000, nothing else.
  auto& field = *control.timeIntervalTextField();
  for (const char* good : {"0", "7", "10000"}) EXPECT_TRUE(field.isAcceptable(good)) << good;
  for (const char* bad : {"-1", "10001", "2.5", "", "3 days", " 3", "abc"}) EXPECT_FALSE(field.isAcceptable(bad)) << bad;

  // No action set: changes do nothing. Then each change sends the control's action once.
  units.chooseItemAtIndex(1);
  int sent = 0;
  control.action = [&](MCControlModel& sender) {
    EXPECT_EQ(&sender, &control);
    ++sent;
  };
  units.chooseItemAtIndex(2);
  EXPECT_EQ(sent, 1);
  units.chooseItemAtIndex(2);
  EXPECT_EQ(sent, 1) << "choosing the chosen unit is no change";
  EXPECT_FALSE(field.enterText("12000"));
  EXPECT_EQ(sent, 1);
  EXPECT_TRUE(field.enterText("3"));
  EXPECT_EQ(field.integerValue(), 3);
  control.datePicker()->chooseDate(86400);
  EXPECT_EQ(sent, 3);
}
