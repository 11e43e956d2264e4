#include <vesperon/predicates/MCPredicateEditorRowTemplateFlippedExpression.h>

#include <algorithm>

bool MCPredicateEditorRowTemplateFlippedExpression::isFlipped(const MCComparisonPredicate& comparison) const {
  const auto& left = leftExpressions();
  const auto& right = rightExpressions();
  return std::find(left.begin(), left.end(), comparison.rightExpression()) != left.end() &&
         std::find(right.begin(), right.end(), comparison.leftExpression()) != right.end();
}

double MCPredicateEditorRowTemplateFlippedExpression::matchForPredicate(const MCPredicateNode& predicate) const {
  const auto* comparison = dynamic_cast<const MCComparisonPredicate*>(&predicate);
  if (comparison && isFlipped(*comparison)) return 1.0;
  return MCPredicateEditorRowTemplate::matchForPredicate(predicate);
}

void MCPredicateEditorRowTemplateFlippedExpression::setPredicate(const MCPredicateNode& predicate) {
  const auto* comparison = dynamic_cast<const MCComparisonPredicate*>(&predicate);
  if (comparison && isFlipped(*comparison)) {
    const MCComparisonPredicate swapped(comparison->rightExpression(), comparison->leftExpression(),
                                        comparison->predicateOperatorType(), comparison->comparisonPredicateModifier(),
                                        comparison->options());
    MCPredicateEditorRowTemplate::setPredicate(swapped);
    return;
  }
  MCPredicateEditorRowTemplate::setPredicate(predicate);
}
