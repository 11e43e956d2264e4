#pragma once
// MCMatchNameLengthCheckboxTransformer: Two way: 0 (off) and -1 (on: the whole name) to a check box state, and back.

#include <vesperon/controls/MCValueTransformer.h>

#include <vector>

class MCMatchNameLengthCheckboxTransformer : public MCValueTransformer {
 public:
  /// The shared transformer.
  static const MCMatchNameLengthCheckboxTransformer& sharedInstance();
  /// The values, from position 0 upward, made once.
  static const std::vector<double>& possibleValues();
  bool allowsReverseTransformation() const override { return true; }
  std::optional<MCValue> transformedValue(const std::optional<MCValue>& value) const override;
  std::optional<MCValue> reverseTransformedValue(const std::optional<MCValue>& value) const override;
};
