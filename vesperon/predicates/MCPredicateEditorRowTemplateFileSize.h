#pragma once
// MCPredicateEditorRowTemplateFileSize: a file size row — a number and a unit of KB, MB or GB,
// decimal (1 KB is 1000 bytes); the predicate holds bytes (1.5 MB is 1500000). A text that is not
// wholly a number (white space included) yields the defaultValue predicate.

#include <vesperon/predicates/MCPredicateEditorUnitRows.h>

class MCPredicateEditorRowTemplateFileSize : public mc_detail::MCPredicateEditorUnitRowTemplate {
 public:
  /// The units of the unit pop-up.
  enum class SizeUnit : long { KB = 0, MB = 1, GB = 2 };

  using MCPredicateEditorUnitRowTemplate::MCPredicateEditorUnitRowTemplate;
  std::shared_ptr<MCPredicateEditorRowTemplate> copy() const override {
    return std::shared_ptr<MCPredicateEditorRowTemplate>(new MCPredicateEditorRowTemplateFileSize(*this));
  }

  /// The unit pop-up, made on first use: the units in order, the value as tag and represented
  /// object.
  const std::shared_ptr<MCPopUpModel>& sizeUnitPopUp() { return unitPopUp(); }

 protected:
  /// Copies the settings (see copy).
  MCPredicateEditorRowTemplateFileSize(const MCPredicateEditorRowTemplateFileSize&) = default;
  /// KB, MB and GB.
  const std::vector<mc_detail::MCPredicateEditorUnit>& units() const override;
};
