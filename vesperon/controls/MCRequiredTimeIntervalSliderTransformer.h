#pragma once
// MCRequiredTimeIntervalSliderTransformer: Two way: seconds to their position among `possibleValues` (a day down to 0), and back.

#include <vesperon/controls/MCValueTransformer.h>

#include <vector>

class MCRequiredTimeIntervalSliderTransformer : public MCValueTransformer {
 public:
  /// The shared transformer.
  static const MCRequiredTimeIntervalSliderTransformer& sharedInstance();
  /// The values, from position 0 upward, made once.
  static const std::vector<double>& possibleValues();
  bool allowsReverseTransformation() const override { return true; }
  std::optional<MCValue> transformedValue(const std::optional<MCValue>& value) const override;
  std::optional<MCValue> reverseTransformedValue(const std::optional<MCValue>& value) const override;
};
