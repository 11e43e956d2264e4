#include <vesperon/predicates/MCPredicateEditorUnitRows.h>

#include <vesperon/controls/MCTextFieldModel.h>

#include <clocale>
#include <cmath>
#include <cstdlib>
#include <string>

namespace mc_detail {

std::optional<double> wholeNumberOfText(std::string_view text) {
  // strtod under the C locale whatever the process's own, so "1.5" is a number and "1,5" not in
  // every language; it takes a sign ("+1.5", "-2") and hexadecimal as strtod does. It would skip
  // white space before the number, which the field must not have.
  static const locale_t cLocale = newlocale(LC_ALL_MASK, "C", locale_t(nullptr));
  if (!cLocale || text.empty() || std::string_view(" \t\n\v\f\r").find(text.front()) != std::string_view::npos)
    return std::nullopt;
  const std::string terminated(text);
  char* end = nullptr;
  const double value = strtod_l(terminated.c_str(), &end, cLocale);
  if (end != terminated.c_str() + terminated.size() || !std::isfinite(value)) return std::nullopt;
  return value;
}

const std::shared_ptr<MCPopUpModel>& MCPredicateEditorUnitRowTemplate::unitPopUp() {
  if (!unitPopUp_) {
    unitPopUp_ = std::make_shared<MCPopUpModel>();
    for (const auto& unit : units())
      unitPopUp_->addItem(MCPopUpItem{MCLocalizedString(unit.title), unit.value, unit.value, false});
  }
  return unitPopUp_;
}

std::vector<std::shared_ptr<MCControlModel>> MCPredicateEditorUnitRowTemplate::templateViews() {
  auto views = MCPredicateEditorRowTemplate::templateViews();
  views.push_back(unitPopUp());
  return views;
}

MCPredicateRef MCPredicateEditorUnitRowTemplate::predicateWithSubpredicates(const std::vector<MCPredicateRef>&) {
  const auto& views = baseViews();
  const auto* field = views.size() > 2 ? dynamic_cast<const MCTextFieldModel*>(views[2].get()) : nullptr;
  const auto left = selectedLeftExpression();
  const auto type = selectedOperator();
  const auto number = field ? wholeNumberOfText(field->stringValue) : std::nullopt;
  const MCPopUpItem* item = unitPopUp()->selectedItem();
  const long* unit = item ? std::any_cast<long>(&item->representedObject) : nullptr;
  if (!left || !type || !number || !unit) return defaultValuePredicate();
  for (const auto& entry : units())
    if (entry.value == *unit)
      return std::make_shared<MCComparisonPredicate>(
          *left, MCPredicateExpression::constantValue(MCValue(*number * entry.multiplier)),
          MCPredicateOperatorType(*type), modifier(), options());
  return defaultValuePredicate();
}

}  // namespace mc_detail
