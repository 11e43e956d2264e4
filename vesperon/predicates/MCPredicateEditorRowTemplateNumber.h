#pragma once
// MCPredicateEditorRowTemplateNumber: a number row that also reads fractions, as exposure times
// are written: "1/250" is 0.004. White space may stand around the parts; what follows the number
// is ignored ("7 apples" is 7). No number, or a division by zero, yields the defaultValue
// predicate.

#include <vesperon/predicates/MCPredicateEditorRowTemplate.h>

#include <optional>
#include <string_view>

class MCPredicateEditorRowTemplateNumber : public MCPredicateEditorRowTemplate {
 public:
  using MCPredicateEditorRowTemplate::MCPredicateEditorRowTemplate;
  std::shared_ptr<MCPredicateEditorRowTemplate> copy() const override {
    return std::shared_ptr<MCPredicateEditorRowTemplate>(new MCPredicateEditorRowTemplateNumber(*this));
  }
  MCPredicateRef predicateWithSubpredicates(const std::vector<MCPredicateRef>& subpredicates) override;

  /// The number of a field's text, fractions read and divided; none as told above.
  static std::optional<double> numberOfText(std::string_view text);

 protected:
  /// Copies the settings (see copy).
  MCPredicateEditorRowTemplateNumber(const MCPredicateEditorRowTemplateNumber&) = default;
};
