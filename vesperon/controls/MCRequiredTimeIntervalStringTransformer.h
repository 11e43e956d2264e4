#pragma once
// MCRequiredTimeIntervalStringTransformer: One way: seconds to a text of seconds, minutes or hours "and less".

#include <vesperon/controls/MCValueTransformer.h>

class MCRequiredTimeIntervalStringTransformer : public MCValueTransformer {
 public:
  /// The shared transformer.
  static const MCRequiredTimeIntervalStringTransformer& sharedInstance();
  bool allowsReverseTransformation() const override { return false; }
  std::optional<MCValue> transformedValue(const std::optional<MCValue>& value) const override;
};
