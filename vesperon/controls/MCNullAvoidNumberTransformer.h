#pragma once
// MCNullAvoidNumberTransformer: Two way: none to the number 0; any value as it is.

#include <vesperon/controls/MCValueTransformer.h>

class MCNullAvoidNumberTransformer : public MCValueTransformer {
 public:
  /// The shared transformer.
  static const MCNullAvoidNumberTransformer& sharedInstance();
  bool allowsReverseTransformation() const override { return true; }
  std::optional<MCValue> transformedValue(const std::optional<MCValue>& value) const override;
  std::optional<MCValue> reverseTransformedValue(const std::optional<MCValue>& value) const override;
};
