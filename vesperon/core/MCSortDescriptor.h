#pragma once
// MCSortDescriptor: one level of a sort order — a comparator over the objects and a direction —
// and the comparator made from a list of them.

#include <vesperon/core/MCTypes.h>

#include <functional>
#include <utility>
#include <vector>

template <typename T>
class MCSortDescriptor {
 public:
  /// Compares two objects: -1, 0 or 1.
  using Comparator = std::function<int(const T&, const T&)>;

  /// Sorts by `comparator`, ascending or descending.
  MCSortDescriptor(Comparator comparator, bool ascending = true)
      : comparator_(std::move(comparator)), ascending_(ascending) {}

  /// Builds the comparator from a key of the object, compared with < and ==.
  template <typename KeyFunction>
  static MCSortDescriptor sortDescriptorWithKey(KeyFunction key, bool ascending = true) {
    return MCSortDescriptor(
        [key](const T& a, const T& b) -> int { return MCCompareValues(key(a), key(b)); }, ascending);
  }

  /// Whether the order is ascending.
  bool ascending() const { return ascending_; }
  /// The comparison.
  const Comparator& comparator() const { return comparator_; }

  /// The comparator's answer, reversed for a descending descriptor.
  int compareObject(const T& a, const T& b) const {
    int result = comparator_(a, b);
    return ascending_ ? result : -result;
  }

  /// The same comparison in the other direction.
  MCSortDescriptor reversedSortDescriptor() const { return MCSortDescriptor(comparator_, !ascending_); }

 private:
  Comparator comparator_;
  bool ascending_;
};

/// Asks each descriptor in turn and answers the first result that is not 0, or 0.
template <typename T>
std::function<int(const T&, const T&)> MCComparatorWithSortDescriptors(std::vector<MCSortDescriptor<T>> descriptors) {
  return [descriptors = std::move(descriptors)](const T& a, const T& b) -> int {
    for (const auto& descriptor : descriptors) {
      int result = descriptor.compareObject(a, b);
      if (result != 0) return result;
    }
    return 0;
  };
}
