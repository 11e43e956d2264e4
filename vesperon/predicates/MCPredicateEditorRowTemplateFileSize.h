#pragma once
// MCPredicateEditorRowTemplateFileSize: a file size row — a number and a unit of KB, MB or GB,
// decimal (1 KB is 1000 bytes); the predicate holds bytes (1.5 MB is 1500000). A text that is not
// wholly a number (white space included) yields the defaultValue predicate.

#include <vesperon/predicates/MCPredicateEditorRowTemplate.h>

class MCPredicateEditorRowTemplateFileSize : public MCPredicateEditorRowTemplate {
 public:
  enum class SizeUnit : long { KB = 0, MB = 1, GB = 2 };

  using MCPredicateEditorRowTemplate::MCPredicateEditorRowTemplate;
  std::shared_ptr<MCPredicateEditorRowTemplate> copy() const override {
    return std::shared_ptr<MCPredicateEditorRowTemplate>(new MCPredicateEditorRowTemplateFileSize(*this));
  }

  /// The base's views and the unit pop-up.
  std::vector<std::shared_ptr<MCControlModel>> templateViews() override;
  MCPredicateRef predicateWithSubpredicates(const std::vector<MCPredicateRef>& subpredicates) override;

  /// The unit pop-up, made on first use: the units in order, the value as tag and represented
  /// object.
  const std::shared_ptr<MCPopUpModel>& sizeUnitPopUp();

 protected:
  /// A copy makes its own unit pop-up.
  MCPredicateEditorRowTemplateFileSize(const MCPredicateEditorRowTemplateFileSize& other) : MCPredicateEditorRowTemplate(other) {}

 private:
  std::shared_ptr<MCPopUpModel> unitPopUp_;
};
