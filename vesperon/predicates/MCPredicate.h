#pragma once
// MCPredicate: the small value types that name the parts of a comparison as a user sees them —
// what is compared (a constant or a key path), with which operator, and what kind of value an
// entry field takes. The predicate editor builder takes lists of them. Each has an optional
// display name and `localizedString`, the text to show.
//
// Operator texts are localised through gettext in the library's "vesperon" domain, the key being
// the message id, so a missing translation shows the key itself. The key of "greater than" has a
// blank after "is" ("predicate_operator_is greater_than"), as the library has always looked it up;
// custom selectors and unknown operator numbers show "<custom selector>" and "<unknown>", not
// localised.

#include <vesperon/core/MCValue.h>
#include <vesperon/predicates/MCPredicateNode.h>

#include <optional>
#include <string>

namespace MCPredicate {

/// A constant on either side of a comparison.
struct ExpressionConstant {
  /// The value.
  MCValue value;
  /// The text shown; none shows the value.
  std::optional<std::string> name;

  /// The constant as a predicate expression.
  MCPredicateExpression predicateExpression() const { return MCPredicateExpression::constantValue(value); }
  /// The name, else the value's plain text.
  std::string localizedString() const;
};

/// A key path into the compared object.
struct ExpressionKeyPath {
  /// The key path.
  std::string keyPath;
  /// The text shown; none shows the key path.
  std::optional<std::string> name;

  /// The key path as a predicate expression.
  MCPredicateExpression predicateExpression() const { return MCPredicateExpression::keyPathExpression(keyPath); }
  /// The name, else the key path.
  std::string localizedString() const { return name ? *name : keyPath; }
};

/// A comparison operator, by the platform's number (any number, not only those of
/// MCPredicateOperatorType).
struct Operator {
  /// The operator's number.
  int type = int(MCPredicateOperatorType::EqualTo);
  /// The text shown; none shows the standard text.
  std::optional<std::string> name;

  /// The name, else the operator's standard text (see the header comment).
  std::string localizedString() const;
  /// The gettext key of the operator's standard text; empty for the two texts that have none.
  static std::string localizationKey(int type);
};

/// The platform's attribute types of an entry field's value.
enum class AttributeType : unsigned {
  Undefined = 0,
  Integer16 = 100,
  Integer32 = 200,
  Integer64 = 300,
  Decimal = 400,
  Double = 500,
  Float = 600,
  String = 700,
  Boolean = 800,
  Date = 900,
  BinaryData = 1000,
};

/// The kind of value an entry field takes, and its placeholder.
struct ExpressionAttributeType {
  /// The kind of value.
  AttributeType type = AttributeType::String;
  /// The placeholder.
  std::optional<std::string> hint;

  /// The hint, else the empty text.
  std::string localizedString() const { return hint.value_or(""); }
};

}  // namespace MCPredicate
