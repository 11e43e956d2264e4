#include <vesperon/controls/MCTextFieldModel.h>

#include <charconv>
#include <cmath>
#include <cstdlib>

bool MCTextFieldModel::isAcceptable(const std::string& text) const {
  if (!numberFormat) return true;
  double value = 0;
  const char* end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, value);
  if (text.empty() || error != std::errc() || stop != end || !std::isfinite(value)) return false;
  if (!numberFormat->allowsFloats && value != std::floor(value)) return false;
  return value >= numberFormat->minimum && value <= numberFormat->maximum;
}

bool MCTextFieldModel::enterText(const std::string& text) {
  if (!isAcceptable(text)) return false;
  stringValue = text;
  sendAction();
  return true;
}

long MCTextFieldModel::integerValue() const { return std::strtol(stringValue.c_str(), nullptr, 10); }
