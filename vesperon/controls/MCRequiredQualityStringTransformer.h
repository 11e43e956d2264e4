#pragma once
// MCRequiredQualityStringTransformer: One way: a quality v to "transformer_pixels_format_two_params" with v and v.

#include <vesperon/controls/MCValueTransformer.h>

class MCRequiredQualityStringTransformer : public MCValueTransformer {
 public:
  /// The shared transformer.
  static const MCRequiredQualityStringTransformer& sharedInstance();
  bool allowsReverseTransformation() const override { return false; }
  std::optional<MCValue> transformedValue(const std::optional<MCValue>& value) const override;
};
