#pragma once
// MCPredicateEditorRowTemplateTimeDuration: a duration row — a number and a unit of seconds,
// minutes or hours; the predicate holds seconds (2 minutes is 120). A text that is not wholly a
// number (white space included) yields the defaultValue predicate.

#include <vesperon/predicates/MCPredicateEditorUnitRows.h>

class MCPredicateEditorRowTemplateTimeDuration : public mc_detail::MCPredicateEditorUnitRowTemplate {
 public:
  /// The units of the unit pop-up.
  enum class TimeUnit : long { seconds = 0, minutes = 1, hours = 2 };

  using MCPredicateEditorUnitRowTemplate::MCPredicateEditorUnitRowTemplate;
  std::shared_ptr<MCPredicateEditorRowTemplate> copy() const override {
    return std::shared_ptr<MCPredicateEditorRowTemplate>(new MCPredicateEditorRowTemplateTimeDuration(*this));
  }

  /// The unit pop-up, made on first use: the units in order, the value as tag and represented
  /// object.
  const std::shared_ptr<MCPopUpModel>& timeUnitPopUp() { return unitPopUp(); }

 protected:
  /// Copies the settings (see copy).
  MCPredicateEditorRowTemplateTimeDuration(const MCPredicateEditorRowTemplateTimeDuration&) = default;
  /// Seconds, minutes and hours.
  const std::vector<mc_detail::MCPredicateEditorUnit>& units() const override;
};
