#include <vesperon/core/MCValue.h>
#include <vesperon/core/MCNumber.h>

#include <cmath>
#include <limits>

std::optional<double> MCValue::doubleValue() const {
  if (auto* b = std::get_if<bool>(&storage_)) return *b ? 1.0 : 0.0;
  if (auto* i = std::get_if<int64_t>(&storage_)) return static_cast<double>(*i);
  if (auto* d = std::get_if<double>(&storage_)) return *d;
  if (auto* r = std::get_if<MCExifRational>(&storage_)) return r->numberValue();
  return std::nullopt;
}

std::optional<int64_t> MCValue::integerValue() const {
  if (auto* b = std::get_if<bool>(&storage_)) return *b ? 1 : 0;
  if (auto* i = std::get_if<int64_t>(&storage_)) return *i;
  if (auto* d = std::get_if<double>(&storage_)) {
    // Damaged metadata brings doubles no integer holds; a plain cast of those is undefined.
    if (std::isnan(*d)) return 0;
    if (*d >= 9223372036854775807.0) return std::numeric_limits<int64_t>::max();
    if (*d <= -9223372036854775808.0) return std::numeric_limits<int64_t>::min();
    return static_cast<int64_t>(*d);
  }
  return std::nullopt;
}

bool operator==(const MCValue& a, const MCValue& b) {
  if (a.isNumber() && b.isNumber() && a.storage_.index() != b.storage_.index()) {
    // Across kinds by exact value: through double, 2^53 + 1 would equal the double 2^53.
    auto number = [](const MCValue& v) {
      if (auto* d = std::get_if<double>(&v.storage_)) return MCNumber(*d);
      return MCNumber(*v.integerValue());
    };
    return number(a) == number(b);
  }
  return a.storage_ == b.storage_;
}

const MCValue* MCDictionaryGet(const MCDictionary& dictionary, const std::string& key) {
  auto it = dictionary.find(key);
  return it == dictionary.end() ? nullptr : &it->second;
}

const MCDictionary* MCDictionaryGetDictionary(const MCDictionary& dictionary, const std::string& key) {
  const MCValue* v = MCDictionaryGet(dictionary, key);
  return v ? v->dictionary() : nullptr;
}
