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

std::string Operator::localizationKey(int type) {
  switch (type) {
    case 0: return "predicate_operator_is_less_than";
    case 1: return "predicate_operator_is_less_than_or_equal_to";
    case 2: return "predicate_operator_is greater_than";  // the blank is the key's own
    case 3: return "predicate_operator_is_greater_than_or_equal_to";
    case 4: return "predicate_operator_is";
    case 5: return "predicate_operator_is_not";
    case 6: return "predicate_operator_matches";
    case 7: return "predicate_operator_is_like";
    case 8: return "predicate_operator_begins_with";
    case 9: return "predicate_operator_ends_with";
    case 10: return "predicate_operator_in";
    case 99: return "predicate_operator_contains";
    case 100: return "predicate_operator_between";
    default: return "";
  }
}

std::string Operator::localizedString() const {
  if (name) return *name;
  if (type == int(MCPredicateOperatorType::CustomSelector)) return "<custom selector>";
  const std::string key = localizationKey(type);
  return key.empty() ? "<unknown>" : MCLocalizedString(key);
}

}  // namespace MCPredicate
