#include <vesperon/predicates/MCPredicateEditorUnitRows.h>

#include <vesperon/controls/MCTextFieldModel.h>

#include <charconv>
#include <cmath>

namespace mc_detail {

std::optional<double> wholeNumberOfText(std::string_view text) {
  double value = 0;
  const char* end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, value);
  if (text.empty() || error != std::errc() || stop != end || !std::isfinite(value)) return std::nullopt;
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
