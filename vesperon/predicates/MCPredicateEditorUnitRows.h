#pragma once
// What the duration and file size rows share: a number with a unit. The unit pop-up is appended
// to the row's views; the field is read as a whole number by strtod in the C locale, in every
// locale (a sign, "+1.5" too, but no white space before or after, nothing left over), and
// multiplied by the selected unit's multiplier, so a stored predicate holds seconds or bytes.
// Unusable text, or no unit, yields the defaultValue predicate.

#include <vesperon/controls/MCPopUpModel.h>
#include <vesperon/core/MCLocalizedString.h>
#include <vesperon/predicates/MCPredicateEditorRowTemplate.h>

#include <memory>
#include <optional>
#include <string_view>
#include <vector>

namespace mc_detail {

struct MCPredicateEditorUnit {
  long value;
  MCLocalizableKey title;
  double multiplier;
};

/// The whole text as a finite number, as strtod reads it in the C locale, or none.
std::optional<double> wholeNumberOfText(std::string_view text);

class MCPredicateEditorUnitRowTemplate : public MCPredicateEditorRowTemplate {
 public:
  using MCPredicateEditorRowTemplate::MCPredicateEditorRowTemplate;

  /// The base's views and the unit pop-up.
  std::vector<std::shared_ptr<MCControlModel>> templateViews() override;
  MCPredicateRef predicateWithSubpredicates(const std::vector<MCPredicateRef>& subpredicates) override;

 protected:
  /// A copy makes its own unit pop-up.
  MCPredicateEditorUnitRowTemplate(const MCPredicateEditorUnitRowTemplate& other) : MCPredicateEditorRowTemplate(other) {}
  /// The units in order of the pop-up.
  virtual const std::vector<MCPredicateEditorUnit>& units() const = 0;
  /// Made on first use: the units in order, the value as tag and represented object.
  const std::shared_ptr<MCPopUpModel>& unitPopUp();

 private:
  std::shared_ptr<MCPopUpModel> unitPopUp_;
};

}  // namespace mc_detail
