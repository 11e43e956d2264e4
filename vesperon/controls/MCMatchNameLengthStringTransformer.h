#pragma once
// MCMatchNameLengthStringTransformer: One way: characters to compare to a text.

#include <vesperon/controls/MCValueTransformer.h>

class MCMatchNameLengthStringTransformer : public MCValueTransformer {
 public:
  /// The shared transformer.
  static const MCMatchNameLengthStringTransformer& sharedInstance();
  bool allowsReverseTransformation() const override { return false; }
  std::optional<MCValue> transformedValue(const std::optional<MCValue>& value) const override;
};
