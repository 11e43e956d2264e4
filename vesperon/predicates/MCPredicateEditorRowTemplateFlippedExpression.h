#pragma once
// MCPredicateEditorRowTemplateFlippedExpression: a row for predicates stored with their sides
// swapped — a constant on the left and the key path on the right, as in `"public.jpeg" IN types`
// or `"public.image" == type` written the other way round. It shows such a predicate with the key
// path on the left, and writes predicates in its own order, key path on the left.

#include <vesperon/predicates/MCPredicateEditorRowTemplate.h>

class MCPredicateEditorRowTemplateFlippedExpression : public MCPredicateEditorRowTemplate {
 public:
  using MCPredicateEditorRowTemplate::MCPredicateEditorRowTemplate;
  std::shared_ptr<MCPredicateEditorRowTemplate> copy() const override {
    return std::shared_ptr<MCPredicateEditorRowTemplate>(new MCPredicateEditorRowTemplateFlippedExpression(*this));
  }

  /// 1 for a comparison whose right side is one of the left entries and whose left side is one
  /// of the right entries; otherwise the base's answer.
  double matchForPredicate(const MCPredicateNode& predicate) const override;
  /// Such a comparison is shown with its sides swapped back.
  void setPredicate(const MCPredicateNode& predicate) override;

 protected:
  /// Copies the settings (see copy).
  MCPredicateEditorRowTemplateFlippedExpression(const MCPredicateEditorRowTemplateFlippedExpression&) = default;

 private:
  bool isFlipped(const MCComparisonPredicate& comparison) const;
};
