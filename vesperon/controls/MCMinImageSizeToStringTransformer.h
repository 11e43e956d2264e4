#pragma once
// MCMinImageSizeToStringTransformer: One way: a fraction of a linear scale to the text of the smallest image size, its
// squared value × 10,000 rounded up to a multiple of 16 ("transformer_pixel_format"), or
// "transformer_any_size".

#include <vesperon/controls/MCValueTransformer.h>

class MCMinImageSizeToStringTransformer : public MCValueTransformer {
 public:
  /// The shared transformer.
  static const MCMinImageSizeToStringTransformer& sharedInstance();
  bool allowsReverseTransformation() const override { return false; }
  std::optional<MCValue> transformedValue(const std::optional<MCValue>& value) const override;
};
