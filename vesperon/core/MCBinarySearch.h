#pragma once
// Binary searches driven by a callback that says on which side of a candidate the sought value lies.
//
// The callback answers greater than 0 when the sought value lies after the candidate, less than 0
// when before it, and 0 when it is the candidate.

#include <vesperon/core/MCTypes.h>

#include <cstdint>

/// Searches [location, location + length) by candidate index. Answers the index of a hit or, without
/// one, the index at which the value would be inserted (location + length past the last element).
/// A length of 0 answers location. Templated so that hot paths (hit testing) inline the callback.
template <typename Callback>
int64_t MCBinarySearchInsertionIndex(int64_t location, int64_t length, Callback&& callback) {
  int64_t low = location, end = location + length;
  int64_t mid = location + length / 2;
  if (low >= end) return mid;
  for (;;) {
    int64_t result = static_cast<int64_t>(callback(mid));
    if (result == 0) return mid;
    if (result > 0)
      low = mid + 1;
    else
      end = mid;
    mid = low + (end - low) / 2;
    if (!(end > low)) return mid;
  }
}

/// Searches the elements [first, end) of a random-access container; the callback is given an
/// element. Answers the index of a hit, or NSNotFound. Which element of a run of equals is hit is
/// not fixed. Unsigned arithmetic throughout, so that no index can overflow.
template <typename Container, typename Callback>
uint64_t MCBinarySearchInArray(const Container& array, uint64_t first, uint64_t end, Callback&& callback) {
  while (end > first) {
    uint64_t mid = first + (end - first) / 2;
    auto result = callback(array[mid]);
    if (result == 0) return mid;
    if (result < 0)
      end = mid;
    else
      first = mid + 1;
  }
  return NSNotFound;
}
