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
