#pragma once
// Operations that change an array (std::vector<T>) in place.

#include <vesperon/core/MCGroupEqualObjects.h>

#include <cstdint>
#include <vector>

/// Keeps the elements for which `test(object, index, stop)` is true; once `stop` is set the rest
/// are kept unseen.
template <typename T, typename Test>
void filterUsingBlock(std::vector<T>& array, Test&& test) {
  bool stop = false;
  uint64_t index = 0;
  std::erase_if(array, [&](const T& object) {
    if (stop) return false;
    return !test(object, index++, stop);
  });
}

/// Pulls equal elements (isEqualObject) up behind their first occurrence: A B A C B becomes
/// A A B B C.
template <typename T>
void groupEqualObjects(std::vector<T>& array) {
  mc_detail::groupEqualElements(array, [](size_t, size_t) {});
}

/// The same with `belongTogether(pivot, candidate)` -> bool deciding.
template <typename T, typename BelongTogether>
void groupEqualObjectsUsingComparator(std::vector<T>& array, BelongTogether&& belongTogether) {
  mc_detail::groupElements(array, belongTogether, [](size_t, size_t) {});
}
