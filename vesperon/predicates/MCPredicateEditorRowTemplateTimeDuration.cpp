#include <vesperon/predicates/MCPredicateEditorRowTemplateTimeDuration.h>

#include <vesperon/controls/MCTextFieldModel.h>
#include <vesperon/predicates/MCPredicateEditorUnitRows.h>

namespace {

const std::vector<mc_detail::MCPredicateEditorUnit>& units() {
  static const std::vector<mc_detail::MCPredicateEditorUnit> table = {
      {0, MCLocalizableKey{"predicate_unit_time_seconds", "seconds"}, 1},
      {1, MCLocalizableKey{"predicate_unit_time_minutes", "minutes"}, 60},
      {2, MCLocalizableKey{"predicate_unit_time_hours", "hours"}, 3600}};
  return table;
}

}  // namespace

const std::shared_ptr<MCPopUpModel>& MCPredicateEditorRowTemplateTimeDuration::timeUnitPopUp() {
  if (!unitPopUp_) unitPopUp_ = mc_detail::makeUnitPopUp(units());
  return unitPopUp_;
}

std::vector<std::shared_ptr<MCControlModel>> MCPredicateEditorRowTemplateTimeDuration::templateViews() {
  auto views = MCPredicateEditorRowTemplate::templateViews();
  views.push_back(timeUnitPopUp());
  return views;
}

MCPredicateRef MCPredicateEditorRowTemplateTimeDuration::predicateWithSubpredicates(const std::vector<MCPredicateRef>&) {
  const auto& views = baseViews();
  const auto* field = views.size() > 2 ? dynamic_cast<const MCTextFieldModel*>(views[2].get()) : nullptr;
  if (!field) return defaultValuePredicate();
  auto predicate = mc_detail::unitComparison(selectedLeftExpression(), selectedOperator(), field->stringValue,
                                             timeUnitPopUp().get(), units(), modifier(), options());
  return predicate ? predicate : defaultValuePredicate();
}
