#include <vesperon/predicates/MCCompiledPredicate.h>

#include <vesperon/predicates/MCPredicateDate.h>

#include <algorithm>
#include <cmath>

namespace {

using T = MCPredicateOperatorType;

bool isAscii(const std::string& text) {
  for (unsigned char c : text)
    if (c >= 0x80) return false;
  return true;
}

char lower(char c) { return c >= 'A' && c <= 'Z' ? char(c - 'A' + 'a') : c; }

bool isOrdering(T type) {
  return type == T::LessThan || type == T::LessThanOrEqualTo || type == T::GreaterThan ||
         type == T::GreaterThanOrEqualTo || type == T::EqualTo || type == T::NotEqualTo;
}

// As the evaluator orders two numbers: by -1, 0, 1, so that NaN is "the same" as anything.
bool holds(T type, double a, double b) {
  const int c = a < b ? -1 : a > b ? 1 : 0;
  switch (type) {
    case T::LessThan: return c < 0;
    case T::LessThanOrEqualTo: return c <= 0;
    case T::GreaterThan: return c > 0;
    case T::GreaterThanOrEqualTo: return c >= 0;
    case T::EqualTo: return c == 0;
    case T::NotEqualTo: return c != 0;
    default: return false;
  }
}

}  // namespace

MCCompiledPredicate::MCCompiledPredicate(MCPredicateRef predicate) : predicate_(std::move(predicate)) {
  if (predicate_) root_ = compile(*predicate_);
}

std::size_t MCCompiledPredicate::compile(const MCPredicateNode& source) {
  Node node;
  if (const auto* constant = dynamic_cast<const MCConstantValuePredicate*>(&source)) {
    node.kind = Kind::Constant;
    node.value = constant->value();
  } else if (const auto* comparison = dynamic_cast<const MCComparisonPredicate*>(&source)) {
    node.kind = Kind::Comparison;
    auto side = [](const MCPredicateExpression& expression) {
      Side out;
      out.isConstant = expression.kind == MCPredicateExpression::Kind::Constant;
      if (out.isConstant) out.constant = expression.constant;
      else out.keys = MCPredicateExpression::keysOfKeyPath(expression.keyPath);
      return out;
    };
    node.left = side(comparison->leftExpression());
    node.right = side(comparison->rightExpression());
    node.type = comparison->predicateOperatorType();
    node.modifier = comparison->comparisonPredicateModifier();
    node.options = comparison->options();
    node.mayThrow = node.type == T::Matches;
    node.cost = 2;
    const MCValue& constant = node.right.constant;
    if (node.right.isConstant && isOrdering(node.type)) {
      if ((constant.isInteger() || constant.isDouble()) && !std::isnan(*constant.doubleValue())) {
        node.fast = Fast::Number;
        node.number = *constant.doubleValue();
        node.cost = 0;
      } else if (const std::string* text = constant.string()) {
        if (auto instant = MCPredicateDate::instantOfText(*text)) {
          node.fast = Fast::Date;
          node.number = *instant;
          node.cost = 1;
        }
      }
    }
    // Plain ASCII folds by lower-casing and has no marks to strip: the evaluator's case and
    // diacritic folding of it is what the bytes give.
    const bool textOperator = node.type == T::BeginsWith || node.type == T::EndsWith || node.type == T::Contains;
    if (node.right.isConstant && textOperator && constant.string() && isAscii(*constant.string())) {
      node.fast = Fast::AsciiText;
      node.text = *constant.string();
      if (node.options & MCCaseInsensitivePredicateOption)
        for (char& c : node.text) c = lower(c);
      node.cost = 1;
    }
  } else if (const auto* compound = dynamic_cast<const MCCompoundPredicate*>(&source)) {
    node.kind = compound->compoundPredicateType() == MCCompoundPredicate::Type::And  ? Kind::And
                : compound->compoundPredicateType() == MCCompoundPredicate::Type::Or ? Kind::Or
                                                                                     : Kind::Not;
    for (const auto& sub : compound->subpredicates()) {
      if (node.kind == Kind::Not && !node.children.empty()) break;  // NOT looks at its first only
      const std::size_t child = compile(*sub);
      node.children.push_back(child);
      node.cost = std::max(node.cost, nodes_[child].cost);
      node.mayThrow = node.mayThrow || nodes_[child].mayThrow;
    }
    // Which term settles an AND or OR first does not change its answer, only its cost, unless a
    // term can throw: then they run as written, so the same one throws.
    if (node.kind != Kind::Not && !node.mayThrow)
      std::stable_sort(node.children.begin(), node.children.end(),
                       [&](std::size_t a, std::size_t b) { return nodes_[a].cost < nodes_[b].cost; });
  } else {
    // A kind of predicate this form does not know runs as it is.
    node.kind = Kind::Other;
    node.other = &source;
    node.mayThrow = true;
    node.cost = 3;
  }
  nodes_.push_back(std::move(node));
  return nodes_.size() - 1;
}

bool MCCompiledPredicate::evaluateWithObject(const MCDictionary& object) const {
  if (!predicate_) return false;
  return evaluate(root_, object);
}

namespace {

// How far ahead of the object being evaluated its successors' memory is asked for, and how much
// of it: the nodes of a dictionary built or copied in one go lie near one another, and its first
// and last nodes are the two its own header leads to without a walk.
constexpr std::size_t kFetchAhead = 12;
constexpr int kFetchBefore = 128, kFetchAfter = 640;

}  // namespace

template <typename Passing>
void MCCompiledPredicate::evaluateEach(std::span<const MCDictionary> objects, Passing&& passing) const {
  for (std::size_t i = 0; i < objects.size(); ++i) {
    // Written out here rather than in a function of its own: the compiler finds that a function
    // which only asks for memory does nothing, and drops the calls.
    if (i + kFetchAhead < objects.size() && !objects[i + kFetchAhead].empty()) {
      // An address is only a hint to the processor: one outside the nodes' memory is never read.
      const char* first = reinterpret_cast<const char*>(&*objects[i + kFetchAhead].begin());
      const char* last = reinterpret_cast<const char*>(&*objects[i + kFetchAhead].rbegin());
      for (int at = -kFetchBefore; at < kFetchAfter; at += 64) __builtin_prefetch(first + at);
      for (int at = -kFetchBefore; at < kFetchAfter; at += 64) __builtin_prefetch(last + at);
    }
    if (evaluate(root_, objects[i])) passing(i);
  }
}

std::vector<std::size_t> MCCompiledPredicate::indexesOfObjectsPassing(std::span<const MCDictionary> objects) const {
  std::vector<std::size_t> passing;
  if (predicate_) evaluateEach(objects, [&](std::size_t i) { passing.push_back(i); });
  return passing;
}

std::size_t MCCompiledPredicate::countOfObjectsPassing(std::span<const MCDictionary> objects) const {
  std::size_t count = 0;
  if (predicate_) evaluateEach(objects, [&](std::size_t) { ++count; });
  return count;
}

bool MCCompiledPredicate::compare(const Node& node, const MCValue& left, const MCValue& right) const {
  if (node.fast == Fast::Number) {
    // A number constant against a number, or a text (never equal, never ordered).
    if (left.isNumber() || left.isRational()) return holds(node.type, *left.doubleValue(), node.number);
    if (left.isString()) return node.type == T::NotEqualTo;
  } else if (node.fast == Fast::Date) {
    // Two dates compare as instants; a text that is not a date goes the general way (collation).
    if (const std::string* text = left.string())
      if (auto instant = MCPredicateDate::instantOfText(*text)) return holds(node.type, *instant, node.number);
  } else if (node.fast == Fast::AsciiText) {
    const std::string* text = left.string();
    if (!text) {
      if (!left.array() || node.type != T::Contains) return false;  // CONTAINS of an array: the general way
    } else if (isAscii(*text)) {
      const bool caseless = node.options & MCCaseInsensitivePredicateOption;
      const std::string& pattern = node.text;
      auto same = [&](std::size_t at) {
        for (std::size_t i = 0; i < pattern.size(); ++i)
          if ((caseless ? lower((*text)[at + i]) : (*text)[at + i]) != pattern[i]) return false;
        return true;
      };
      if (pattern.size() > text->size()) return false;
      if (node.type == T::BeginsWith) return same(0);
      if (node.type == T::EndsWith) return same(text->size() - pattern.size());
      for (std::size_t at = 0; at + pattern.size() <= text->size(); ++at)
        if (same(at)) return true;
      return false;
    }
  }
  return MCComparisonPredicate::compare(left, right, node.type, node.options);
}

bool MCCompiledPredicate::evaluate(std::size_t index, const MCDictionary& object) const {
  const Node& node = nodes_[index];
  switch (node.kind) {
    case Kind::Constant: return node.value;
    case Kind::Other: return node.other->evaluateWithObject(object);
    case Kind::And:
      for (std::size_t child : node.children)
        if (!evaluate(child, object)) return false;
      return true;
    case Kind::Or:
      for (std::size_t child : node.children)
        if (evaluate(child, object)) return true;
      return false;
    case Kind::Not: return node.children.empty() || !evaluate(node.children.front(), object);
    case Kind::Comparison: {
      auto lookup = [&](const Side& side) -> const MCValue* {
        if (side.isConstant) return &side.constant;
        const MCDictionary* at = &object;
        for (std::size_t i = 0; i < side.keys.size(); ++i) {
          const MCValue* value = at ? MCDictionaryGet(*at, side.keys[i]) : nullptr;
          if (!value) return nullptr;
          if (i + 1 == side.keys.size()) return value;
          at = value->dictionary();
        }
        return nullptr;
      };
      const MCValue* left = lookup(node.left);
      const MCValue* right = lookup(node.right);
      if (!left || !right) return false;  // a path that leads nowhere: false, not an error
      if (node.modifier == MCComparisonPredicateModifier::Direct) return compare(node, *left, *right);
      const MCArray* items = left->array();
      if (!items) return false;
      for (const MCValue& item : *items) {
        const bool holds = compare(node, item, *right);
        if (node.modifier == MCComparisonPredicateModifier::Any && holds) return true;
        if (node.modifier == MCComparisonPredicateModifier::All && !holds) return false;
      }
      return node.modifier == MCComparisonPredicateModifier::All;
    }
  }
  return false;
}
