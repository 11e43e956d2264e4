#include <vesperon/predicates/MCPredicateEditorRowTemplateFileSize.h>

#include <vesperon/controls/MCTextFieldModel.h>
#include <vesperon/predicates/MCPredicateEditorUnitRows.h>

namespace {

const std::vector<mc_detail::MCPredicateEditorUnit>& units() {
  static const std::vector<mc_detail::MCPredicateEditorUnit> table = {
      {0, MCLocalizableKey{"predicate_file_size_unit_kb", "KB"}, 1e3},
      {1, MCLocalizableKey{"predicate_file_size_unit_mb", "MB"}, 1e6},
      {2, MCLocalizableKey{"predicate_file_size_unit_gb", "GB"}, 1e9}};
  return table;
}

}  // namespace

const std::shared_ptr<MCPopUpModel>& MCPredicateEditorRowTemplateFileSize::sizeUnitPopUp() {
  if (!unitPopUp_) unitPopUp_ = mc_detail::makeUnitPopUp(units());
  return unitPopUp_;
}

std::vector<std::shared_ptr<MCControlModel>> MCPredicateEditorRowTemplateFileSize::templateViews() {
  auto views = MCPredicateEditorRowTemplate::templateViews();
  views.push_back(sizeUnitPopUp());
  return views;
}

MCPredicateRef MCPredicateEditorRowTemplateFileSize::predicateWithSubpredicates(const std::vector<MCPredicateRef>&) {
  const auto& views = baseViews();
  const auto* field = views.size() > 2 ? dynamic_cast<const MCTextFieldModel*>(views[2].get()) : nullptr;
  if (!field) return defaultValuePredicate();
  auto predicate = mc_detail::unitComparison(selectedLeftExpression(), selectedOperator(), field->stringValue,
                                             sizeUnitPopUp().get(), units(), modifier(), options());
  return predicate ? predicate : defaultValuePredicate();
}
