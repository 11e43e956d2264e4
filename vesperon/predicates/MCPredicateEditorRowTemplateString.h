#pragma once
// MCPredicateEditorRowTemplateString: a text row. Besides the text operators it reads the two
// "is empty" tests (equal to, not equal to, named as such by the builder): they compare with the
// empty text and hide the field, which shows again once another operator is chosen. An empty
// field under another operator yields the defaultValue predicate.

#include <vesperon/predicates/MCPredicateEditorRowTemplate.h>

class MCPredicateEditorRowTemplateString : public MCPredicateEditorRowTemplate {
 public:
  using MCPredicateEditorRowTemplate::MCPredicateEditorRowTemplate;
  std::shared_ptr<MCPredicateEditorRowTemplate> copy() const override {
    return std::shared_ptr<MCPredicateEditorRowTemplate>(new MCPredicateEditorRowTemplateString(*this));
  }
  MCPredicateRef predicateWithSubpredicates(const std::vector<MCPredicateRef>& subpredicates) override;

 protected:
  /// Copies the settings (see copy).
  MCPredicateEditorRowTemplateString(const MCPredicateEditorRowTemplateString&) = default;
};
