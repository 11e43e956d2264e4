#include <vesperon/predicates/MCPredicateEditorRowTemplateString.h>

#include <vesperon/controls/MCTextFieldModel.h>

MCPredicateRef MCPredicateEditorRowTemplateString::predicateWithSubpredicates(
    const std::vector<MCPredicateRef>& subpredicates) {
  const auto& views = baseViews();
  auto* field = views.size() > 2 ? dynamic_cast<MCTextFieldModel*>(views[2].get()) : nullptr;
  const auto left = selectedLeftExpression();
  const auto type = selectedOperator();
  if (!field || !left || !type) return MCPredicateEditorRowTemplate::predicateWithSubpredicates(subpredicates);

  const bool anyModifier = modifier() != MCComparisonPredicateModifier::Direct;
  const auto empty = MCPredicateExpression::constantValue(MCValue(std::string()));
  if (*type == int(MCPredicateOperatorType::NotEqualTo)) {
    field->setHidden(true);
    // Some element not empty, for a list of texts.
    return std::make_shared<MCComparisonPredicate>(
        *left, empty, MCPredicateOperatorType::NotEqualTo,
        anyModifier ? MCComparisonPredicateModifier::Any : MCComparisonPredicateModifier::Direct, options());
  }
  if (*type == int(MCPredicateOperatorType::EqualTo)) {
    field->setHidden(true);
    // Every element empty, for a list of texts.
    return std::make_shared<MCComparisonPredicate>(
        *left, empty, MCPredicateOperatorType::EqualTo,
        anyModifier ? MCComparisonPredicateModifier::All : MCComparisonPredicateModifier::Direct, options());
  }
  field->setHidden(false);
  if (field->stringValue.empty()) return defaultValuePredicate();
  return MCPredicateEditorRowTemplate::predicateWithSubpredicates(subpredicates);
}
