#pragma once
// MCNullAvoidStringTransformer: Two way: none to the empty text; any value as it is.

#include <vesperon/controls/MCValueTransformer.h>

class MCNullAvoidStringTransformer : public MCValueTransformer {
 public:
  /// The shared transformer.
  static const MCNullAvoidStringTransformer& sharedInstance();
  bool allowsReverseTransformation() const override { return true; }
  std::optional<MCValue> transformedValue(const std::optional<MCValue>& value) const override;
  std::optional<MCValue> reverseTransformedValue(const std::optional<MCValue>& value) const override;
};
