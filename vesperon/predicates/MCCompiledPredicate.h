#pragma once
// MCCompiledPredicate: a predicate prepared once to be evaluated against many objects, as a filter
// over a whole collection does. It gives exactly the answers of the predicate it was made from
// (and throws where that one throws), faster: key paths are split into keys once and followed
// without copying the values they lead to; a number constant is converted once and compared with
// a number directly, a date constant read into its instant once, a text constant of plain ASCII
// lower-cased once for BEGINSWITH, ENDSWITH and CONTAINS against plain ASCII texts; and the terms of an AND or OR
// run cheapest first (a number before a text comparison) where none of them can throw.

#include <vesperon/predicates/MCPredicateNode.h>

#include <cstddef>
#include <span>
#include <string>
#include <vector>

class MCCompiledPredicate {
 public:
  /// Prepares `predicate`, which the compiled form keeps.
  explicit MCCompiledPredicate(MCPredicateRef predicate);

  /// What `predicate->evaluateWithObject(object)` answers. May throw MCPredicateEvaluationError.
  bool evaluateWithObject(const MCDictionary& object) const;

  /// The indexes of the objects that satisfy it, in order: what evaluateWithObject answers for
  /// each, faster over a large collection, whose dictionaries are each a tree of nodes in memory
  /// of their own. While one object is evaluated, the memory around the first and last nodes of an
  /// object a few places ahead is fetched, so that the walks of its keys do not wait for memory one
  /// node at a time. That only pays where a dictionary's nodes lie close together (built or copied
  /// in one go); it never changes an answer.
  /// May throw MCPredicateEvaluationError, at the first object that does.
  std::vector<std::size_t> indexesOfObjectsPassing(std::span<const MCDictionary> objects) const;
  /// How many of the objects satisfy it (see indexesOfObjectsPassing).
  std::size_t countOfObjectsPassing(std::span<const MCDictionary> objects) const;

  /// The predicate it was prepared from.
  const MCPredicateRef& predicate() const { return predicate_; }

 private:
  struct Side {
    bool isConstant = true;
    MCValue constant;
    std::vector<std::string> keys;
  };
  enum class Kind { Constant, And, Or, Not, Comparison, Other };
  enum class Fast { None, Number, Date, AsciiText };
  struct Node {
    Kind kind = Kind::Constant;
    bool value = false;                 // Constant
    std::vector<std::size_t> children;  // And, Or, Not
    Side left, right;                   // Comparison
    MCPredicateOperatorType type = MCPredicateOperatorType::EqualTo;
    MCComparisonPredicateModifier modifier = MCComparisonPredicateModifier::Direct;
    unsigned options = 0;
    Fast fast = Fast::None;
    double number = 0;     // the constant's number, or its instant
    std::string text;      // AsciiText: the constant, lower-cased when the comparison ignores case
    int cost = 0;          // for ordering the terms of AND and OR
    bool mayThrow = false;
    const MCPredicateNode* other = nullptr;  // Other: evaluated as it is
  };

  std::size_t compile(const MCPredicateNode& node);
  bool evaluate(std::size_t index, const MCDictionary& object) const;
  template <typename Passing>
  void evaluateEach(std::span<const MCDictionary> objects, Passing&& passing) const;
  bool compare(const Node& node, const MCValue& left, const MCValue& right) const;

  MCPredicateRef predicate_;
  std::vector<Node> nodes_;
  std::size_t root_ = 0;
};
