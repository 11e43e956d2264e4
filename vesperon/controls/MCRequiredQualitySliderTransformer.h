#pragma once
// MCRequiredQualitySliderTransformer: Two way: a quality v to slider position (v - 16) / 8 (towards zero), and back p × 8 + 16.

#include <vesperon/controls/MCValueTransformer.h>

class MCRequiredQualitySliderTransformer : public MCValueTransformer {
 public:
  /// The shared transformer.
  static const MCRequiredQualitySliderTransformer& sharedInstance();
  bool allowsReverseTransformation() const override { return true; }
  std::optional<MCValue> transformedValue(const std::optional<MCValue>& value) const override;
  std::optional<MCValue> reverseTransformedValue(const std::optional<MCValue>& value) const override;
};
