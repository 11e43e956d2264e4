#pragma once
// Operations added to arrays (std::vector<T>): binary searches and merge walks over sorted arrays,
// and grouping into sorted runs.
//
// A comparator is any callable (a, b) -> int answering -1, 0 or 1 (MCComparisonResult); a list of
// MCSortDescriptor may stand in for it. A search block is a callable (element) -> int answering
// greater than 0 when the sought value lies after the element, less than 0 when before, 0 on a hit.

#include <vesperon/core/MCBinarySearch.h>
#include <vesperon/core/MCExceptions.h>
#include <vesperon/core/MCIndexSet.h>
#include <vesperon/core/MCObjectExtensions.h>
#include <vesperon/core/MCSortDescriptor.h>
#include <vesperon/core/MCTypes.h>

#include <algorithm>
#include <cstdint>
#include <vector>

// ---------------------------------------------------------------------------------------------
// Sorted arrays

/// Index of an element for which `block` answers 0, or NSNotFound. Which element of a run of
/// equals is hit is not fixed. A nil block (empty std::function, null pointer) raises
/// std::invalid_argument "*** binarySearchWithBlock: block must not be nil".
template <typename T, typename Block>
uint64_t binarySearchWithBlock(const std::vector<T>& array, const Block& block) {
  if (mc_detail::isNilCallable(block)) mc_detail::throwNilBlock("binarySearchWithBlock");
  return MCBinarySearchInArray(array, 0, array.size(), block);
}

/// The index at which `object` would be inserted to keep the array sorted; among equal elements
/// the place is not fixed.
template <typename T, typename Comparator>
uint64_t insertionIndexForObject(const std::vector<T>& array, const T& object, const Comparator& comparator) {
  return uint64_t(MCBinarySearchInsertionIndex(0, int64_t(array.size()),
                                               [&](int64_t i) { return comparator(object, array[size_t(i)]); }));
}

/// Merges the sorted receiver with the sorted `objects` and answers the indexes at which the
/// objects stand in the merged sequence — ready for an insertion of `objects` at those indexes. An
/// object equal to an element of the receiver goes after it. The result has objects.size() indexes.
template <typename T, typename Comparator>
MCIndexSet insertionIndexesForObjects(const std::vector<T>& array, const std::vector<T>& objects,
                                      const Comparator& comparator) {
  MCIndexSet result;
  uint64_t position = 0;
  size_t r = 0;
  for (size_t a = 0; a < objects.size(); ++position) {
    if (r < array.size() && comparator(array[r], objects[a]) <= 0) {
      ++r;
    } else {
      result.addIndex(position);
      ++a;
    }
  }
  return result;
}
template <typename T>
MCIndexSet insertionIndexesForObjects(const std::vector<T>& array, const std::vector<T>& objects,
                                      const std::vector<MCSortDescriptor<T>>& sortDescriptors) {
  return insertionIndexesForObjects(array, objects, MCComparatorWithSortDescriptors(sortDescriptors));
}

/// Walks the sorted receiver and the sorted `objects` together and answers the receiver's indexes
/// of the elements equal to an object; each match uses up one element on each side.
template <typename T, typename Comparator>
MCIndexSet indexesOfSortedObjects(const std::vector<T>& array, const std::vector<T>& objects,
                                  const Comparator& comparator) {
  MCIndexSet result;
  size_t r = 0, a = 0;
  while (r < array.size() && a < objects.size()) {
    int order = comparator(array[r], objects[a]);
    if (order < 0) {
      ++r;
    } else if (order > 0) {
      ++a;
    } else {
      result.addIndex(r);
      ++r;
      ++a;
    }
  }
  return result;
}
template <typename T>
MCIndexSet indexesOfSortedObjects(const std::vector<T>& array, const std::vector<T>& objects,
                                  const std::vector<MCSortDescriptor<T>>& sortDescriptors) {
  return indexesOfSortedObjects(array, objects, MCComparatorWithSortDescriptors(sortDescriptors));
}

/// Sorts a copy by `sortingComparator` (stable) and cuts it into runs: a run goes on while
/// `comparator` answers 0 for each neighbouring pair (previous, next). Answers the runs in sorted
/// order; an empty receiver gives no runs and calls no comparator. Sorting by a finer order than
/// the grouping keeps each group in that finer order.
template <typename T, typename Comparator, typename SortingComparator>
std::vector<std::vector<T>> splitArraysUsingComparator(const std::vector<T>& array, const Comparator& comparator,
                                                       const SortingComparator& sortingComparator) {
  std::vector<std::vector<T>> groups;
  if (array.empty()) return groups;
  std::vector<T> sorted = array;
  std::stable_sort(sorted.begin(), sorted.end(),
                   [&](const T& a, const T& b) { return sortingComparator(a, b) < 0; });
  groups.push_back({sorted.front()});
  for (size_t i = 1; i < sorted.size(); ++i) {
    if (comparator(sorted[i - 1], sorted[i]) != 0) groups.emplace_back();
    groups.back().push_back(sorted[i]);
  }
  return groups;
}
/// The same, sorting and grouping by one comparator.
template <typename T, typename Comparator>
std::vector<std::vector<T>> splitArraysUsingComparator(const std::vector<T>& array, const Comparator& comparator) {
  return splitArraysUsingComparator(array, comparator, comparator);
}
