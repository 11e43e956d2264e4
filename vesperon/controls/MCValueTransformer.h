#pragma once
// MCValueTransformer: the base of the transformers that connect settings to sliders, check boxes
// and labels. A value is an MCValue, or none; each transformer says how a value that is not a
// number counts. The one-way transformers answer their forward value for a reverse request too.

#include <vesperon/core/MCValue.h>

#include <optional>

class MCValueTransformer {
 public:
  virtual ~MCValueTransformer() = default;
  /// Whether reverseTransformedValue works; not by default.
  virtual bool allowsReverseTransformation() const { return false; }
  /// The value as the control shows it; none for none or an unusable value.
  virtual std::optional<MCValue> transformedValue(const std::optional<MCValue>& value) const = 0;
  /// The model's value for what the control shows; none by default.
  virtual std::optional<MCValue> reverseTransformedValue(const std::optional<MCValue>& value) const {
    return transformedValue(value);
  }
};

/// The number of a value, or none when it has none.
std::optional<double> MCValueTransformerNumber(const std::optional<MCValue>& value);
