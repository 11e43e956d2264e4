#pragma once
// Operations added to arrays (std::vector<T>): binary searches and merge walks over sorted arrays,
// grouping into sorted runs, and copies with elements inserted or removed. The operations that
// change an array in place are in MCMutableArrayExtensions.h.
//
// A comparator is any callable (a, b) -> int answering -1, 0 or 1 (MCComparisonResult); a list of
// MCSortDescriptor may stand in for it. A search block is a callable (element) -> int answering
// greater than 0 when the sought value lies after the element, less than 0 when before, 0 on a hit.

#include <vesperon/core/MCBinarySearch.h>
#include <vesperon/core/MCExceptions.h>
#include <vesperon/core/MCIndexSet.h>
#include <vesperon/core/MCObjectExtensions.h>
#include <vesperon/core/MCObjectSet.h>
#include <vesperon/core/MCSortDescriptor.h>
#include <vesperon/core/MCTypes.h>
#include <vesperon/core/MCVectorIndexes.h>

#include <algorithm>
#include <cstdint>
#include <stdexcept>
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
/// The same, ordered by sort descriptors.
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
/// The same, ordered by sort descriptors.
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

// ---------------------------------------------------------------------------------------------
// Copies and lookups. Elements are compared with isEqualObject: pointer-like elements by what
// they point at.

/// `isEqualArray:toArray:`: nil-safe (a null pointer is nil); same count and equal elements.
template <typename T>
bool isEqualArray(const std::vector<T>* a, const std::vector<T>* b) {
  if (a == b) return true;
  if (!a || !b || a->size() != b->size()) return false;
  for (size_t i = 0; i < a->size(); ++i)
    if (!isEqualObject((*a)[i], (*b)[i])) return false;
  return true;
}

/// The elements for which `test(object, index, stop)` is true, in order.
template <typename T, typename Test>
std::vector<T> filteredArrayUsingBlock(const std::vector<T>& array, Test&& test) {
  std::vector<T> result;
  bool stop = false;
  for (size_t i = 0; i < array.size() && !stop; ++i)
    if (test(array[i], uint64_t(i), stop)) result.push_back(array[i]);
  return result;
}

/// A copy with `objects` standing at `indexes` (ascending, one per object) afterwards. No objects
/// give a plain copy, whatever the indexes. Otherwise mismatched counts raise
/// std::invalid_argument, an index past the new end std::out_of_range.
template <typename T>
std::vector<T> arrayByInsertingObjects(const std::vector<T>& array, const std::vector<T>& objects,
                                       const MCIndexSet& indexes) {
  if (objects.empty()) return array;
  if (objects.size() != indexes.count())
    throw std::invalid_argument("*** arrayByInsertingObjects: count of objects and indexes differ");
  const uint64_t total = array.size() + objects.size();
  if (indexes.lastIndex() >= total) mc_detail::throwIndexOutOfRange("arrayByInsertingObjects", indexes.lastIndex(), array.size());
  std::vector<T> result;
  result.reserve(total);
  result.insert(result.end(), array.begin(), array.end());
  MCInsertObjectsAtIndexes(result, objects, indexes);
  return result;
}

/// A copy with the objects that it does not hold yet appended, in their order, each once. The
/// receiver's elements stay where they are.
template <typename T>
std::vector<T> arrayByInsertingUniqueObjects(const std::vector<T>& array, const std::vector<T>& objects) {
  mc_detail::ObjectSet<T> held(array);
  std::vector<T> result = array;
  for (const T& object : objects) {
    if (held.contains(object)) continue;
    held.add(object);
    result.push_back(object);
  }
  return result;
}

/// The array without its first element (empty stays empty).
template <typename T>
std::vector<T> arrayByRemovingFirstObject(const std::vector<T>& array) {
  return array.empty() ? array : std::vector<T>(array.begin() + 1, array.end());
}
/// The array without its last element (empty stays empty).
template <typename T>
std::vector<T> arrayByRemovingLastObject(const std::vector<T>& array) {
  return array.empty() ? array : std::vector<T>(array.begin(), array.end() - 1);
}
/// A copy without any element equal to `object`.
template <typename T>
std::vector<T> arrayByRemovingObject(const std::vector<T>& array, const T& object) {
  std::vector<T> result;
  for (const T& element : array)
    if (!isEqualObject(element, object)) result.push_back(element);
  return result;
}
/// A copy without any element equal to one of `objects`.
template <typename T>
std::vector<T> arrayByRemovingObjectsInArray(const std::vector<T>& array, const std::vector<T>& objects) {
  if (array.empty() || objects.empty()) return array;
  mc_detail::ObjectSet<T> removed(objects);
  std::vector<T> result;
  for (const T& element : array)
    if (!removed.contains(element)) result.push_back(element);
  return result;
}
/// A copy without the elements at `indexes`; an index past the end raises std::out_of_range.
template <typename T>
std::vector<T> arrayByRemovingObjectsAtIndexes(const std::vector<T>& array, const MCIndexSet& indexes) {
  if (!indexes.empty() && indexes.lastIndex() >= array.size())
    mc_detail::throwIndexOutOfRange("arrayByRemovingObjectsAtIndexes", indexes.lastIndex(), array.size());
  std::vector<T> result = array;
  MCTakeObjectsAtIndexes(result, indexes);
  return result;
}

/// Indexes of the elements found in `objects`, counted: each occurrence in `objects` takes up one
/// element of the receiver, from the front. A, A, B with the argument A gives index 0 only.
template <typename T>
MCIndexSet indexesOfObjects(const std::vector<T>& array, const std::vector<T>& objects) {
  mc_detail::ObjectSet<T> wanted(objects);
  MCIndexSet result;
  for (size_t i = 0; i < array.size(); ++i)
    if (wanted.take(array[i])) result.addIndex(i);
  return result;
}
/// Indexes of all elements found in `objects`, uncounted.
template <typename T>
MCIndexSet indexesOfObjectsInArray(const std::vector<T>& array, const std::vector<T>& objects) {
  mc_detail::ObjectSet<T> wanted(objects);
  MCIndexSet result;
  for (size_t i = 0; i < array.size(); ++i)
    if (wanted.contains(array[i])) result.addIndex(i);
  return result;
}
