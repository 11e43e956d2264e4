#pragma once
// MCRequiredBlurStringTransformer: One way: a blur v to "transformer_pixels_format" with v.

#include <vesperon/controls/MCValueTransformer.h>

class MCRequiredBlurStringTransformer : public MCValueTransformer {
 public:
  /// The shared transformer.
  static const MCRequiredBlurStringTransformer& sharedInstance();
  bool allowsReverseTransformation() const override { return false; }
  std::optional<MCValue> transformedValue(const std::optional<MCValue>& value) const override;
};
