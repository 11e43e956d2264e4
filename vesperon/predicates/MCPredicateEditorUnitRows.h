#pragma once
// What the duration and file size rows share: a unit pop-up appended to the row's views, and a
// field read as a whole C-locale number, multiplied by the selected unit's multiplier.

#include <vesperon/controls/MCPopUpModel.h>
#include <vesperon/core/MCLocalizedString.h>
#include <vesperon/predicates/MCPredicateNode.h>

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

/// A pop-up of the units in order: the value as tag and represented object.
std::shared_ptr<MCPopUpModel> makeUnitPopUp(const std::vector<MCPredicateEditorUnit>& units);

/// The whole text as a finite number in the C locale: no white space before or after, nothing
/// left over.
std::optional<double> wholeNumberOfText(std::string_view text);

/// left <operator> (number × the multiplier of the pop-up's selected unit), or none when the
/// text or the selection is unusable.
MCPredicateRef unitComparison(const std::optional<MCPredicateExpression>& left, std::optional<int> type,
                              std::string_view text, const MCPopUpModel* units,
                              const std::vector<MCPredicateEditorUnit>& table, MCComparisonPredicateModifier modifier,
                              unsigned options);

}  // namespace mc_detail
