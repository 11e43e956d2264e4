#include <vesperon/predicates/MCPredicateEditorUnitRows.h>

#include <charconv>
#include <cmath>

namespace mc_detail {

std::shared_ptr<MCPopUpModel> makeUnitPopUp(const std::vector<MCPredicateEditorUnit>& units) {
  auto popUp = std::make_shared<MCPopUpModel>();
  for (const auto& unit : units) popUp->addItem(MCPopUpItem{MCLocalizedString(unit.title), unit.value, unit.value, false});
  return popUp;
}

std::optional<double> wholeNumberOfText(std::string_view text) {
  double value = 0;
  const char* end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, value);
  if (text.empty() || error != std::errc() || stop != end || !std::isfinite(value)) return std::nullopt;
  return value;
}

MCPredicateRef unitComparison(const std::optional<MCPredicateExpression>& left, std::optional<int> type,
                              std::string_view text, const MCPopUpModel* units,
                              const std::vector<MCPredicateEditorUnit>& table, MCComparisonPredicateModifier modifier,
                              unsigned options) {
  const auto number = wholeNumberOfText(text);
  const MCPopUpItem* item = units ? units->selectedItem() : nullptr;
  const long* unit = item ? std::any_cast<long>(&item->representedObject) : nullptr;
  if (!left || !type || !number || !unit) return nullptr;
  for (const auto& entry : table)
    if (entry.value == *unit)
      return std::make_shared<MCComparisonPredicate>(
          *left, MCPredicateExpression::constantValue(MCValue(*number * entry.multiplier)),
          MCPredicateOperatorType(*type), modifier, options);
  return nullptr;
}

}  // namespace mc_detail
