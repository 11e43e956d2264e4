#pragma once
// MCPredicateEditorRowTemplateTimeDuration: a duration row — a number and a unit of seconds,
// minutes or hours; the predicate holds seconds (2 minutes is 120). A text that is not wholly a
// number (white space included) yields the defaultValue predicate.

#include <vesperon/predicates/MCPredicateEditorRowTemplate.h>

class MCPredicateEditorRowTemplateTimeDuration : public MCPredicateEditorRowTemplate {
 public:
  enum class TimeUnit : long { seconds = 0, minutes = 1, hours = 2 };

  using MCPredicateEditorRowTemplate::MCPredicateEditorRowTemplate;
  std::shared_ptr<MCPredicateEditorRowTemplate> copy() const override {
    return std::shared_ptr<MCPredicateEditorRowTemplate>(new MCPredicateEditorRowTemplateTimeDuration(*this));
  }

  /// The base's views and the unit pop-up.
  std::vector<std::shared_ptr<MCControlModel>> templateViews() override;
  MCPredicateRef predicateWithSubpredicates(const std::vector<MCPredicateRef>& subpredicates) override;

  /// The unit pop-up, made on first use: the units in order, the value as tag and represented
  /// object.
  const std::shared_ptr<MCPopUpModel>& timeUnitPopUp();

 protected:
  /// A copy makes its own unit pop-up.
  MCPredicateEditorRowTemplateTimeDuration(const MCPredicateEditorRowTemplateTimeDuration& other) : MCPredicateEditorRowTemplate(other) {}

 private:
  std::shared_ptr<MCPopUpModel> unitPopUp_;
};
