#pragma once
// MCPredicateParser: reads the text form that MCPredicateNode::predicateFormat prints (see
// MCPredicateNode.h) back into a predicate. A text that does not parse gives no predicate and the
// reason with its byte position ("expected an operator at 17"); so does a comparison that could
// never be evaluated — a constant MATCHES pattern that does not compile, a BETWEEN whose constant
// side is not an array of two values — pointing at that side. Nesting — NOT, parentheses and
// arrays, each a level — is bounded at kMaximumDepth, so a very deep text is refused rather than
// exhausting the stack; what is read prints a text no deeper, which reads back.

#include <vesperon/predicates/MCPredicateNode.h>

#include <cstddef>
#include <string>
#include <string_view>

/// A parse's outcome: the predicate, or why there is none.
struct MCPredicateParseResult {
  MCPredicateRef predicate;  ///< none when the text does not parse
  std::string error;         ///< why, when it does not
  std::size_t position = 0;  ///< where, in bytes from the start
  /// Whether a predicate was read.
  explicit operator bool() const { return predicate != nullptr; }
};

class MCPredicateParser {
 public:
  /// The deepest nesting read; deeper text fails.
  static constexpr int kMaximumDepth = 200;
  /// Reads a predicate from its text form.
  static MCPredicateParseResult parse(std::string_view text);
};
