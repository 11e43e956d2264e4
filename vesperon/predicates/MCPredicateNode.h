#pragma once
// The predicate model the predicate vocabulary and the editor stand on: comparisons of two
// expressions (a constant or a key path) under an operator, with a modifier and options, and
// compounds of predicates (and, or, not). A predicate evaluates itself against a property
// dictionary, prints itself in a text form, and MCPredicateParser reads that same form back.
//
// Key paths walk nested dictionaries by keys separated by dots; a key in braces is one key, dots
// and all: "{Exif}.FNumber", "{TIFF}.Model", "name". A path that leads nowhere gives no value, and
// a comparison with no value is false (never an error).
//
// Text: the operators compare under ICU's root collation; the option "c" makes a comparison
// case-insensitive and "d" diacritic-insensitive. "like" takes the wildcards * and ? (no escape:
// a backslash is itself), in time bounded by the text's length times the pattern's; "matches" a
// whole-text ICU regular expression (one that does not compile matches nothing; the parser
// refuses a constant one). A match is bounded in steps and backtracking memory: one that runs
// past either throws MCPredicateEvaluationError rather than answer. Numbers
// compare as numbers, dates (texts in Exif form "YYYY:MM:DD HH:MM:SS" or ISO 8601 on both sides,
// see MCPredicateDate) as the instants they name. "between" takes a two-element array,
// "in" an array (or a text, for a substring), "contains" a text or an array member.
//
// The text form: `{Exif}.FNumber < 2.8 AND {TIFF}.Model BEGINSWITH[c] "nikon"`, with the operators
// <, <=, >, >=, ==, !=, MATCHES, LIKE, BEGINSWITH, ENDSWITH, IN, CONTAINS, BETWEEN, the modifiers
// ANY and ALL before the left expression, the options [c], [d], [cd] after the operator, AND, OR,
// NOT and parentheses; constants are double-quoted texts (with \" and \\), numbers, TRUE, FALSE,
// NIL and arrays in braces {1, 2}.

#include <vesperon/core/MCValue.h>

#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <variant>
#include <vector>

/// The platform's comparison operators, by their numbers.
enum class MCPredicateOperatorType : int {
  LessThan = 0,
  LessThanOrEqualTo = 1,
  GreaterThan = 2,
  GreaterThanOrEqualTo = 3,
  EqualTo = 4,
  NotEqualTo = 5,
  Matches = 6,
  Like = 7,
  BeginsWith = 8,
  EndsWith = 9,
  In = 10,
  CustomSelector = 11,
  Contains = 99,
  Between = 100,
};

/// How the left side's values are taken: as one value, or any / all of the elements of an array.
enum class MCComparisonPredicateModifier : int { Direct = 0, All = 1, Any = 2 };

/// Comparison options, a bit set.
enum MCComparisonPredicateOptions : unsigned { MCCaseInsensitivePredicateOption = 1, MCDiacriticInsensitivePredicateOption = 2 };

/// One side of a comparison: a constant value or a key path.
struct MCPredicateExpression {
  /// Which of the two the expression is.
  enum class Kind { Constant, KeyPath };
  /// Which of the two the expression is.
  Kind kind = Kind::Constant;
  /// The value, for a constant.
  MCValue constant;
  /// The dotted key path ("{Exif}.FNumber"), for a key path.
  std::string keyPath;

  /// A constant expression.
  static MCPredicateExpression constantValue(MCValue value) { return {Kind::Constant, std::move(value), {}}; }
  /// A key path expression.
  static MCPredicateExpression keyPathExpression(std::string path) { return {Kind::KeyPath, {}, std::move(path)}; }

  /// The value against an object: the constant, or what the key path leads to (none when nothing).
  std::optional<MCValue> valueWithObject(const MCDictionary& object) const;
  /// The text form.
  std::string predicateFormat() const;
  /// The keys of a key path, in order: dots separate them, a key in braces is one key, dots and
  /// all ("{Exif}.FNumber" gives "{Exif}" and "FNumber").
  static std::vector<std::string> keysOfKeyPath(const std::string& keyPath);
  friend bool operator==(const MCPredicateExpression&, const MCPredicateExpression&) = default;
};

/// Thrown by evaluateWithObject when a comparison cannot be answered within its bounds (a
/// MATCHES that runs past its time or memory limit); what() says which pattern, on which text.
class MCPredicateEvaluationError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

class MCPredicateNode;
/// A predicate; predicates are immutable and shared.
using MCPredicateRef = std::shared_ptr<const MCPredicateNode>;

/// A predicate: a test of a dictionary, with a text form.
class MCPredicateNode {
 public:
  virtual ~MCPredicateNode() = default;
  /// May throw MCPredicateEvaluationError (see above).
  virtual bool evaluateWithObject(const MCDictionary& object) const = 0;
  /// The text form, which MCPredicateParser reads back into an equal predicate.
  virtual std::string predicateFormat() const = 0;
  /// Whether `other` is the same predicate (same kind, same parts).
  virtual bool isEqual(const MCPredicateNode& other) const = 0;
};

/// Two expressions compared by an operator, with a modifier for lists and string options.
class MCComparisonPredicate : public MCPredicateNode {
 public:
  /// `left` compared with `right` by `type`; Any or All compare each element of a list on the left.
  MCComparisonPredicate(MCPredicateExpression left, MCPredicateExpression right, MCPredicateOperatorType type,
                        MCComparisonPredicateModifier modifier = MCComparisonPredicateModifier::Direct,
                        unsigned options = 0)
      : left_(std::move(left)), right_(std::move(right)), type_(type), modifier_(modifier), options_(options) {}

  /// The left side.
  const MCPredicateExpression& leftExpression() const { return left_; }
  /// The right side.
  const MCPredicateExpression& rightExpression() const { return right_; }
  /// The operator.
  MCPredicateOperatorType predicateOperatorType() const { return type_; }
  /// Direct, or Any or All for a list on the left.
  MCComparisonPredicateModifier comparisonPredicateModifier() const { return modifier_; }
  /// The string options (MCComparisonPredicateOptions bits).
  unsigned options() const { return options_; }

  bool evaluateWithObject(const MCDictionary& object) const override;
  std::string predicateFormat() const override;
  /// Same sides, operator, modifier and options.
  bool isEqual(const MCPredicateNode& other) const override;

  /// What makes the comparison unusable whatever the object, or empty: a constant MATCHES
  /// pattern that does not compile, a constant BETWEEN side that is not an array of two values.
  std::string validationError() const;

  /// The comparison of two values alone. Throws MCPredicateEvaluationError as told above.
  static bool compare(const MCValue& left, const MCValue& right, MCPredicateOperatorType type, unsigned options);

 private:
  MCPredicateExpression left_, right_;
  MCPredicateOperatorType type_;
  MCComparisonPredicateModifier modifier_;
  unsigned options_;
};

/// A predicate of a fixed truth value, whatever the object: TRUEPREDICATE or FALSEPREDICATE.
class MCConstantValuePredicate : public MCPredicateNode {
 public:
  /// TRUEPREDICATE or FALSEPREDICATE.
  explicit MCConstantValuePredicate(bool value) : value_(value) {}
  /// A shared constant predicate.
  static MCPredicateRef predicateWithValue(bool value) { return std::make_shared<MCConstantValuePredicate>(value); }

  /// What the predicate answers for every object.
  bool value() const { return value_; }
  bool evaluateWithObject(const MCDictionary&) const override { return value_; }
  std::string predicateFormat() const override { return value_ ? "TRUEPREDICATE" : "FALSEPREDICATE"; }
  /// A constant predicate of the same value.
  bool isEqual(const MCPredicateNode& other) const override {
    const auto* that = dynamic_cast<const MCConstantValuePredicate*>(&other);
    return that && that->value_ == value_;
  }

 private:
  bool value_;
};

/// NOT, AND or OR over subpredicates.
class MCCompoundPredicate : public MCPredicateNode {
 public:
  /// How the subpredicates combine (NOT takes one).
  enum class Type { Not = 0, And = 1, Or = 2 };
  /// The compound of `subpredicates`; AND of none is true, OR of none false.
  MCCompoundPredicate(Type type, std::vector<MCPredicateRef> subpredicates)
      : type_(type), subpredicates_(std::move(subpredicates)) {}

  /// How the subpredicates combine.
  Type compoundPredicateType() const { return type_; }
  /// The parts, in order.
  const std::vector<MCPredicateRef>& subpredicates() const { return subpredicates_; }

  /// And of none is true, or of none false, not of its first (of none, true).
  bool evaluateWithObject(const MCDictionary& object) const override;
  std::string predicateFormat() const override;
  /// Same type and equal parts in the same order.
  bool isEqual(const MCPredicateNode& other) const override;

 private:
  Type type_;
  std::vector<MCPredicateRef> subpredicates_;
};
