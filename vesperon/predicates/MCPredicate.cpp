#include <vesperon/predicates/MCPredicate.h>

#include <vesperon/core/MCLocalizedString.h>

#include <cmath>
#include <cstdio>

namespace MCPredicate {

namespace {

// A value's plain text: texts as they are, numbers without needless digits, lists in parentheses.
std::string plainText(const MCValue& value) {
  if (const std::string* text = value.string()) return *text;
  if (value.isNone()) return "";
  if (value.isBool()) return *value.integerValue() ? "1" : "0";
  if (value.isInteger()) return std::to_string(*value.integerValue());
  if (const MCArray* items = value.array()) {
    std::string out = "(";
    for (std::size_t i = 0; i < items->size(); ++i) out += (i ? ", " : "") + plainText((*items)[i]);
    return out + ")";
  }
  if (auto number = value.doubleValue()) {
    char text[40];
    std::snprintf(text, sizeof text, "%.15g", *number);
    return text;
  }
  return "";
}

}  // namespace

std::string ExpressionConstant::localizedString() const { return name ? *name : plainText(value); }

namespace {

// The keys of the operators' standard texts, with their English wording. The key of "greater
// than" has a blank after "is": the key is the library's, and so is the blank.
const MCLocalizableKey* operatorKey(int type) {
  static constexpr MCLocalizableKey kLessThan{"predicate_operator_is_less_than", "is less than"};
  static constexpr MCLocalizableKey kLessThanOrEqualTo{"predicate_operator_is_less_than_or_equal_to",
                                                       "is less than or equal to"};
  static constexpr MCLocalizableKey kGreaterThan{"predicate_operator_is greater_than", "is greater than"};
  static constexpr MCLocalizableKey kGreaterThanOrEqualTo{"predicate_operator_is_greater_than_or_equal_to",
                                                          "is greater than or equal to"};
  static constexpr MCLocalizableKey kEqualTo{"predicate_operator_is", "is"};
  static constexpr MCLocalizableKey kNotEqualTo{"predicate_operator_is_not", "is not"};
  static constexpr MCLocalizableKey kMatches{"predicate_operator_matches", "matches"};
  static constexpr MCLocalizableKey kLike{"predicate_operator_is_like", "is like"};
  static constexpr MCLocalizableKey kBeginsWith{"predicate_operator_begins_with", "begins with"};
  static constexpr MCLocalizableKey kEndsWith{"predicate_operator_ends_with", "ends with"};
  static constexpr MCLocalizableKey kIn{"predicate_operator_in", "in"};
  static constexpr MCLocalizableKey kContains{"predicate_operator_contains", "contains"};
  static constexpr MCLocalizableKey kBetween{"predicate_operator_between", "between"};
  switch (type) {
    case 0: return &kLessThan;
    case 1: return &kLessThanOrEqualTo;
    case 2: return &kGreaterThan;
    case 3: return &kGreaterThanOrEqualTo;
    case 4: return &kEqualTo;
    case 5: return &kNotEqualTo;
    case 6: return &kMatches;
    case 7: return &kLike;
    case 8: return &kBeginsWith;
    case 9: return &kEndsWith;
    case 10: return &kIn;
    case 99: return &kContains;
    case 100: return &kBetween;
    default: return nullptr;
  }
}

}  // namespace

std::string Operator::localizationKey(int type) {
  const MCLocalizableKey* key = operatorKey(type);
  return key ? key->key : "";
}

std::string Operator::localizedString() const {
  if (name) return *name;
  if (type == int(MCPredicateOperatorType::CustomSelector)) return "<custom selector>";
  const MCLocalizableKey* key = operatorKey(type);
  return key ? MCLocalizedString(*key) : "<unknown>";
}

}  // namespace MCPredicate
