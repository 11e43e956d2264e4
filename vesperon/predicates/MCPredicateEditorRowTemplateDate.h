#pragma once
// MCPredicateEditorRowTemplateDate: a date row with relative operators — within the last N days,
// weeks, months or years; exactly, before or after a day; today, yesterday, this week, month or
// year. Its right side is an MCDateRangeControl that shows a date picker, a number and unit, or
// nothing, by the operator.
//
// Days, weeks, months and years are those of the user's calendar and time zone (ICU's default),
// taken at the moment the predicate is made, so the predicate holds fixed dates: "within last"
// and the other relative operators cannot be read back from it. A range is the AND of
// left >= start and left <= end, where a day runs from its midnight to the next:
//   exactly    the picker's day;            before  left <= the start of the picker's day;
//   after      left >= the end of that day; today, yesterday, this week, this month, this year;
//   within last N units: from the start of the unit N units back to the end of the present one.

#include <vesperon/controls/MCDateRangeControl.h>
#include <vesperon/predicates/MCPredicateEditorRowTemplate.h>

class MCPredicateEditorRowTemplateDate : public MCPredicateEditorRowTemplate {
 public:
  /// In their order in the operator pop-up.
  enum class DateOperator : long {
    withinLast = 0,
    exactly = 1,
    before = 2,
    after = 3,
    today = 4,
    yesterday = 5,
    thisWeek = 6,
    thisMonth = 7,
    thisYear = 8,
  };

  /// A date row over these key paths with these operators.
  MCPredicateEditorRowTemplateDate(const std::vector<Expression>& leftExpressions, const std::vector<Operator>& operators,
                                   const AttributeType& rightAttributeType, MCComparisonPredicateModifier modifier,
                                   unsigned options, std::optional<bool> defaultValue = std::nullopt);
  std::shared_ptr<MCPredicateEditorRowTemplate> copy() const override {
    return std::shared_ptr<MCPredicateEditorRowTemplate>(new MCPredicateEditorRowTemplateDate(*this));
  }

  /// The right-side control type that an operator shows.
  static MCDateRangeControl::ControlType controlTypeForOperator(DateOperator op);

  /// The base's views with the date range control at position 2, set to the selected operator.
  std::vector<std::shared_ptr<MCControlModel>> templateViews() override;
  MCPredicateRef predicateWithSubpredicates(const std::vector<MCPredicateRef>& subpredicates) override;
  /// The same at a given moment instead of now.
  MCPredicateRef predicateAtDate(double now);

  /// Made on first use.
  const std::shared_ptr<MCDateRangeControl>& dateRangeControl();

 protected:
  /// A copy makes its own control.
  MCPredicateEditorRowTemplateDate(const MCPredicateEditorRowTemplateDate& other) : MCPredicateEditorRowTemplate(other) {}

 private:
  std::optional<DateOperator> selectedDateOperator() const;

  std::shared_ptr<MCDateRangeControl> dateRangeControl_;
};
