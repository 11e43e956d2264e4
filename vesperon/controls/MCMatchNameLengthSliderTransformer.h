#pragma once
// MCMatchNameLengthSliderTransformer: Two way: characters to compare (0 to 24, then -1 for all) to a slider position, and back.

#include <vesperon/controls/MCValueTransformer.h>

#include <vector>

class MCMatchNameLengthSliderTransformer : public MCValueTransformer {
 public:
  /// The shared transformer.
  static const MCMatchNameLengthSliderTransformer& sharedInstance();
  /// The values, from position 0 upward, made once.
  static const std::vector<double>& possibleValues();
  bool allowsReverseTransformation() const override { return true; }
  std::optional<MCValue> transformedValue(const std::optional<MCValue>& value) const override;
  std::optional<MCValue> reverseTransformedValue(const std::optional<MCValue>& value) const override;
};
