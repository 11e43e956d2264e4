// The settings value transformers, one family.
#include <vesperon/controls/MCMatchNameLengthCheckboxTransformer.h>
#include <vesperon/controls/MCMatchNameLengthSliderTransformer.h>
#include <vesperon/controls/MCMatchNameLengthStringTransformer.h>
#include <vesperon/controls/MCMinImageSizeToStringTransformer.h>
#include <vesperon/controls/MCNullAvoidNumberTransformer.h>
#include <vesperon/controls/MCNullAvoidStringTransformer.h>
#include <vesperon/controls/MCRequiredBlurStringTransformer.h>
#include <vesperon/controls/MCRequiredQualitySliderTransformer.h>
#include <vesperon/controls/MCRequiredQualityStringTransformer.h>
#include <vesperon/controls/MCRequiredTimeIntervalSliderTransformer.h>
#include <vesperon/controls/MCRequiredTimeIntervalStringTransformer.h>
#include <vesperon/core/MCLocalizedString.h>
#include <vesperon/core/MCTypes.h>

#include <algorithm>
#include <cmath>

std::optional<double> MCValueTransformerNumber(const std::optional<MCValue>& value) {
  if (!value || !value->isNumber()) return std::nullopt;
  return value->doubleValue();
}

namespace {

int64_t integerOf(const std::optional<MCValue>& value) {
  if (!value || !value->isNumber()) return 0;
  return value->integerValue().value_or(0);
}

std::string text(int64_t n) { return std::to_string(n); }

/// Index of a value in a list, or NSNotFound.
MCValue indexIn(const std::vector<double>& list, double v) {
  auto it = std::find(list.begin(), list.end(), v);
  return it == list.end() ? MCValue(uint64_t(NSNotFound)) : MCValue(int64_t(it - list.begin()));
}

}  // namespace

#define MC_SHARED_INSTANCE(Class)          \
  const Class& Class::sharedInstance() {   \
    static const Class instance;           \
    return instance;                       \
  }

MC_SHARED_INSTANCE(MCMinImageSizeToStringTransformer)
MC_SHARED_INSTANCE(MCRequiredQualitySliderTransformer)
MC_SHARED_INSTANCE(MCRequiredQualityStringTransformer)
MC_SHARED_INSTANCE(MCRequiredBlurStringTransformer)
MC_SHARED_INSTANCE(MCRequiredTimeIntervalSliderTransformer)
MC_SHARED_INSTANCE(MCRequiredTimeIntervalStringTransformer)
MC_SHARED_INSTANCE(MCMatchNameLengthSliderTransformer)
MC_SHARED_INSTANCE(MCMatchNameLengthStringTransformer)
MC_SHARED_INSTANCE(MCMatchNameLengthCheckboxTransformer)
MC_SHARED_INSTANCE(MCNullAvoidStringTransformer)
MC_SHARED_INSTANCE(MCNullAvoidNumberTransformer)
#undef MC_SHARED_INSTANCE

std::optional<MCValue> MCMinImageSizeToStringTransformer::transformedValue(const std::optional<MCValue>& value) const {
  const double v = MCValueTransformerNumber(value).value_or(0);
  const double count = v > 0 ? std::ceil(v * v * 10000 * 0.0625) * 16 : 0;
  if (count > 0) return MCValue(MCLocalizedStringWithFormat("transformer_pixel_format", "%ld pixels", {text(int64_t(count))}));
  return MCValue(MCLocalizedString("transformer_any_size", "Any size"));
}

std::optional<MCValue> MCRequiredQualitySliderTransformer::transformedValue(const std::optional<MCValue>& value) const {
  if (!MCValueTransformerNumber(value)) return MCValue(int64_t(0));
  return MCValue(int64_t((integerOf(value) - 16) / 8));  // C++ division goes towards zero
}

std::optional<MCValue> MCRequiredQualitySliderTransformer::reverseTransformedValue(
    const std::optional<MCValue>& value) const {
  if (!MCValueTransformerNumber(value)) return MCValue(int64_t(0));
  return MCValue(integerOf(value) * 8 + 16);
}

std::optional<MCValue> MCRequiredQualityStringTransformer::transformedValue(const std::optional<MCValue>& value) const {
  const int64_t v = integerOf(value);
  return MCValue(MCLocalizedStringWithFormat("transformer_pixels_format_two_params", "%ld × %ld pixels", {text(v), text(v)}));
}

std::optional<MCValue> MCRequiredBlurStringTransformer::transformedValue(const std::optional<MCValue>& value) const {
  return MCValue(MCLocalizedStringWithFormat("transformer_pixels_format", "%ld pixels", {text(integerOf(value))}));
}

const std::vector<double>& MCRequiredTimeIntervalSliderTransformer::possibleValues() {
  static const std::vector<double> values = {86400, 43200, 21600, 10800, 7200, 3600, 1800, 600, 300, 180,
                                             120,   60,    30,    10,    5,    3,    2,    1,   0};
  return values;
}

std::optional<MCValue> MCRequiredTimeIntervalSliderTransformer::transformedValue(
    const std::optional<MCValue>& value) const {
  const auto number = MCValueTransformerNumber(value);
  if (!number) return MCValue(int64_t(0));
  if (*number < 0) return MCValue(int64_t(-1));
  return indexIn(possibleValues(), double(integerOf(value)));
}

std::optional<MCValue> MCRequiredTimeIntervalSliderTransformer::reverseTransformedValue(
    const std::optional<MCValue>& value) const {
  const auto number = MCValueTransformerNumber(value);
  if (!number) return MCValue(int64_t(0));
  const int64_t position = integerOf(value);
  if (position < 0) return MCValue(int64_t(-1));
  if (uint64_t(position) >= possibleValues().size()) return MCValue(int64_t(0));
  return MCValue(possibleValues()[std::size_t(position)]);
}

std::optional<MCValue> MCRequiredTimeIntervalStringTransformer::transformedValue(
    const std::optional<MCValue>& value) const {
  const auto number = MCValueTransformerNumber(value);
  if (!number || *number == 0) return MCValue(MCLocalizedString("transformer_zero_seconds", "0 seconds"));
  const double seconds = *number;
  if (seconds < 0) return MCValue(MCLocalizedString("transformer_unlimited", "Unlimited"));
  if (seconds < 60) {
    const int64_t s = int64_t(seconds);
    if (s <= 1) return MCValue(MCLocalizedString("transformer_one_second_and_less", "1 second and less"));
    return MCValue(MCLocalizedStringWithFormat("transformer_seconds_and_less_format", "%ld seconds and less", {text(s)}));
  }
  if (seconds < 3600) {
    const int64_t minutes = int64_t(std::lround(seconds / 60));
    if (minutes == 1) return MCValue(MCLocalizedString("transformer_one_minute_and_less", "1 minute and less"));
    return MCValue(MCLocalizedStringWithFormat("transformer_minutes_and_less_format", "%ld minutes and less", {text(minutes)}));
  }
  const int64_t hours = int64_t(std::lround(seconds / 3600));
  if (hours == 1) return MCValue(MCLocalizedString("transformer_one_hour_and_less_format", "1 hour and less"));
  return MCValue(MCLocalizedStringWithFormat("transformer_hours_less_format", "%ld hours and less", {text(hours)}));
}

const std::vector<double>& MCMatchNameLengthSliderTransformer::possibleValues() {
  static const std::vector<double> values = [] {
    std::vector<double> v;
    for (int i = 0; i <= 24; ++i) v.push_back(i);
    v.push_back(-1);
    return v;
  }();
  return values;
}

std::optional<MCValue> MCMatchNameLengthSliderTransformer::transformedValue(const std::optional<MCValue>& value) const {
  if (!MCValueTransformerNumber(value)) return MCValue(int64_t(0));
  return indexIn(possibleValues(), double(integerOf(value)));
}

std::optional<MCValue> MCMatchNameLengthSliderTransformer::reverseTransformedValue(
    const std::optional<MCValue>& value) const {
  const int64_t position = integerOf(value);
  if (!MCValueTransformerNumber(value) || position < 0 || uint64_t(position) >= possibleValues().size())
    return MCValue(int64_t(0));
  return MCValue(int64_t(possibleValues()[std::size_t(position)]));
}

std::optional<MCValue> MCMatchNameLengthStringTransformer::transformedValue(const std::optional<MCValue>& value) const {
  const auto number = MCValueTransformerNumber(value);
  const int64_t v = integerOf(value);
  if (!number || v == 0) return MCValue(MCLocalizedString("transformer_dont_match", "Don't match"));
  if (v == 1) return MCValue(MCLocalizedString("transformer_match_first_character", "Match the first character"));
  if (v == -1) return MCValue(MCLocalizedString("transformer_full_match", "Full match"));
  return MCValue(MCLocalizedStringWithFormat("transformer_match_first_characters_format", "Match the first %ld characters", {text(v)}));
}

const std::vector<double>& MCMatchNameLengthCheckboxTransformer::possibleValues() {
  static const std::vector<double> values = {0, -1};
  return values;
}

std::optional<MCValue> MCMatchNameLengthCheckboxTransformer::transformedValue(
    const std::optional<MCValue>& value) const {
  const int64_t v = integerOf(value);
  if (!MCValueTransformerNumber(value) || v < 0) return MCValue(int64_t(0));
  return indexIn(possibleValues(), double(v));
}

std::optional<MCValue> MCMatchNameLengthCheckboxTransformer::reverseTransformedValue(
    const std::optional<MCValue>& value) const {
  if (!MCValueTransformerNumber(value)) return MCValue(int64_t(0));
  const int64_t position = integerOf(value);
  if (position < 0) return MCValue(int64_t(-1));
  if (uint64_t(position) >= possibleValues().size()) return MCValue(int64_t(0));
  return MCValue(int64_t(possibleValues()[std::size_t(position)]));
}

std::optional<MCValue> MCNullAvoidStringTransformer::transformedValue(const std::optional<MCValue>& value) const {
  if (!value || value->isNone()) return MCValue(std::string());
  return value;
}

std::optional<MCValue> MCNullAvoidStringTransformer::reverseTransformedValue(const std::optional<MCValue>& value) const {
  return transformedValue(value);
}

std::optional<MCValue> MCNullAvoidNumberTransformer::transformedValue(const std::optional<MCValue>& value) const {
  if (!value || value->isNone()) return MCValue(int64_t(0));
  return value;
}

std::optional<MCValue> MCNullAvoidNumberTransformer::reverseTransformedValue(const std::optional<MCValue>& value) const {
  return transformedValue(value);
}
