#pragma once
// MCSmartTreeRule<T>: one level of an MCSmartTreeNode tree. Two items fall in one node of the
// level when the comparator answers 0 for them; the nodes of the level stand in comparator order
// of their first items.
//
//   auto byYear = std::make_shared<MCSmartTreeRule<PhotoPtr>>(
//       [](const PhotoPtr& a, const PhotoPtr& b) { return MCCompareValues(a->year, b->year); });
//
// Rules are compared by identity only: two rules are the same rule when they are the same object.

#include <functional>
#include <memory>
#include <utility>

template <typename T>
class MCSmartTreeRule {
 public:
  /// Orders the rule's groups.
  using Comparator = std::function<int(const T&, const T&)>;

  /// A rule whose groups sort by `comparator`.
  explicit MCSmartTreeRule(Comparator comparator) : comparator_(std::move(comparator)) {}
  virtual ~MCSmartTreeRule() = default;

  /// The order of the groups.
  const Comparator& comparator() const { return comparator_; }
  /// Replaces the order.
  void setComparator(Comparator comparator) { comparator_ = std::move(comparator); }

 private:
  Comparator comparator_;
};
