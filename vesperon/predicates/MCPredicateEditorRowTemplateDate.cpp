#include <vesperon/predicates/MCPredicateEditorRowTemplateDate.h>

#include <vesperon/core/MCLocalizedString.h>
#include <vesperon/predicates/MCPredicateDate.h>

#include <unicode/calendar.h>

#include <memory>

namespace {

using Op = MCPredicateEditorRowTemplateDate::DateOperator;

// A calendar unit's interval [start, end) in seconds: the day, week, month or year that holds the
// moment, in the user's calendar and zone.
struct Interval {
  double start, end;
};

enum class Unit { day, week, month, year };

std::optional<Interval> intervalContaining(double moment, Unit unit) {
  UErrorCode status = U_ZERO_ERROR;
  std::unique_ptr<icu::Calendar> calendar(icu::Calendar::createInstance(status));
  if (U_FAILURE(status)) return std::nullopt;
  calendar->setTime(moment * 1000.0, status);
  calendar->set(UCAL_HOUR_OF_DAY, 0);
  calendar->set(UCAL_MINUTE, 0);
  calendar->set(UCAL_SECOND, 0);
  calendar->set(UCAL_MILLISECOND, 0);
  UCalendarDateFields step = UCAL_DATE;
  switch (unit) {
    case Unit::day: break;
    case Unit::week:
      calendar->set(UCAL_DAY_OF_WEEK, calendar->getFirstDayOfWeek(status));
      step = UCAL_WEEK_OF_YEAR;
      break;
    case Unit::month:
      calendar->set(UCAL_DATE, 1);
      step = UCAL_MONTH;
      break;
    case Unit::year:
      calendar->set(UCAL_DAY_OF_YEAR, 1);
      step = UCAL_YEAR;
      break;
  }
  const UDate start = calendar->getTime(status);
  calendar->add(step, 1, status);
  const UDate end = calendar->getTime(status);
  if (U_FAILURE(status)) return std::nullopt;
  return Interval{start / 1000.0, end / 1000.0};
}

// The moment moved by `count` units in the calendar.
std::optional<double> moved(double moment, Unit unit, int count) {
  UErrorCode status = U_ZERO_ERROR;
  std::unique_ptr<icu::Calendar> calendar(icu::Calendar::createInstance(status));
  if (U_FAILURE(status)) return std::nullopt;
  calendar->setTime(moment * 1000.0, status);
  const UCalendarDateFields field = unit == Unit::day     ? UCAL_DATE
                                    : unit == Unit::week  ? UCAL_WEEK_OF_YEAR
                                    : unit == Unit::month ? UCAL_MONTH
                                                          : UCAL_YEAR;
  calendar->add(field, count, status);
  const UDate out = calendar->getTime(status);
  if (U_FAILURE(status)) return std::nullopt;
  return out / 1000.0;
}

MCPredicateExpression dateConstant(double seconds) {
  return MCPredicateExpression::constantValue(MCValue(MCPredicateDate::textOfInstant(seconds)));
}

MCPredicateRef single(const MCPredicateExpression& left, MCPredicateOperatorType type, double date) {
  return std::make_shared<MCComparisonPredicate>(left, dateConstant(date), type);
}

MCPredicateRef range(const MCPredicateExpression& left, double start, double end) {
  return std::make_shared<MCCompoundPredicate>(
      MCCompoundPredicate::Type::And,
      std::vector<MCPredicateRef>{single(left, MCPredicateOperatorType::GreaterThanOrEqualTo, start),
                                  single(left, MCPredicateOperatorType::LessThanOrEqualTo, end)});
}

}  // namespace

MCPredicateEditorRowTemplateDate::MCPredicateEditorRowTemplateDate(const std::vector<Expression>& leftExpressions,
                                                                   const std::vector<Operator>& operators,
                                                                   const AttributeType& rightAttributeType,
                                                                   MCComparisonPredicateModifier modifier,
                                                                   unsigned options, std::optional<bool> defaultValue)
    : MCPredicateEditorRowTemplate(leftExpressions, operators, rightAttributeType, modifier, options, defaultValue) {
  static constexpr MCLocalizableKey kTitles[] = {
      MCLocalizableKey{"predicate_operator_within_last", "within last"},
      MCLocalizableKey{"predicate_operator_exactly", "exactly"},
      MCLocalizableKey{"predicate_operator_before", "before"},
      MCLocalizableKey{"predicate_operator_after", "after"},
      MCLocalizableKey{"predicate_operator_today", "today"},
      MCLocalizableKey{"predicate_operator_yesterday", "yesterday"},
      MCLocalizableKey{"predicate_operator_this_week", "this week"},
      MCLocalizableKey{"predicate_operator_this_month", "this month"},
      MCLocalizableKey{"predicate_operator_this_year", "this year"}};
  auto* popUp = dynamic_cast<MCPopUpModel*>(baseViews().at(1).get());
  long value = 0;
  for (const auto& title : kTitles) {
    popUp->addItem(MCPopUpItem{MCLocalizedString(title), value, DateOperator(value), false});
    ++value;
  }
}

MCDateRangeControl::ControlType MCPredicateEditorRowTemplateDate::controlTypeForOperator(DateOperator op) {
  switch (op) {
    case Op::withinLast: return MCDateRangeControl::ControlType::dateRange;
    case Op::exactly:
    case Op::before:
    case Op::after: return MCDateRangeControl::ControlType::datePicker;
    default: return MCDateRangeControl::ControlType::empty;
  }
}

const std::shared_ptr<MCDateRangeControl>& MCPredicateEditorRowTemplateDate::dateRangeControl() {
  if (!dateRangeControl_) dateRangeControl_ = std::make_shared<MCDateRangeControl>();
  return dateRangeControl_;
}

std::optional<Op> MCPredicateEditorRowTemplateDate::selectedDateOperator() const {
  const auto* popUp = baseViews().size() > 1 ? dynamic_cast<const MCPopUpModel*>(baseViews()[1].get()) : nullptr;
  const MCPopUpItem* item = popUp ? popUp->selectedItem() : nullptr;
  const Op* op = item ? std::any_cast<Op>(&item->representedObject) : nullptr;
  return op ? std::optional(*op) : std::nullopt;
}

std::vector<std::shared_ptr<MCControlModel>> MCPredicateEditorRowTemplateDate::templateViews() {
  auto views = MCPredicateEditorRowTemplate::templateViews();
  if (views.size() > 2) views[2] = dateRangeControl();
  if (auto op = selectedDateOperator()) dateRangeControl()->setControlType(controlTypeForOperator(*op));
  return views;
}

MCPredicateRef MCPredicateEditorRowTemplateDate::predicateWithSubpredicates(const std::vector<MCPredicateRef>&) {
  return predicateAtDate(double(std::time(nullptr)));
}

MCPredicateRef MCPredicateEditorRowTemplateDate::predicateAtDate(double now) {
  const auto left = selectedLeftExpression();
  const auto op = selectedDateOperator();
  if (!left || !op) return defaultValuePredicate();
  const auto& control = dateRangeControl();
  std::optional<Interval> interval;
  switch (*op) {
    case Op::exactly:
    case Op::before:
    case Op::after: {
      const auto day = intervalContaining(control->datePicker()->dateValue, Unit::day);
      if (!day) return defaultValuePredicate();
      if (*op == Op::before) return single(*left, MCPredicateOperatorType::LessThanOrEqualTo, day->start);
      if (*op == Op::after) return single(*left, MCPredicateOperatorType::GreaterThanOrEqualTo, day->end);
      interval = day;
      break;
    }
    case Op::withinLast: {
      const long tag = control->timeIntervalPopUp()->selectedItem() ? control->timeIntervalPopUp()->selectedItem()->tag : 0;
      const Unit unit = tag == 1 ? Unit::week : tag == 2 ? Unit::month : tag == 3 ? Unit::year : Unit::day;
      const long count = control->timeIntervalTextField()->integerValue();
      const auto present = intervalContaining(now, unit);
      const auto back = moved(now, unit, -int(count));
      const auto first = back ? intervalContaining(*back, unit) : std::nullopt;
      if (!present || !first) return defaultValuePredicate();
      interval = Interval{first->start, present->end};
      break;
    }
    case Op::today: interval = intervalContaining(now, Unit::day); break;
    case Op::yesterday:
      if (auto day = moved(now, Unit::day, -1)) interval = intervalContaining(*day, Unit::day);
      break;
    case Op::thisWeek: interval = intervalContaining(now, Unit::week); break;
    case Op::thisMonth: interval = intervalContaining(now, Unit::month); break;
    case Op::thisYear: interval = intervalContaining(now, Unit::year); break;
  }
  if (!interval) return defaultValuePredicate();
  return range(*left, interval->start, interval->end);
}
