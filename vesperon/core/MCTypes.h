#pragma once
// Shared vocabulary of the whole library: the not-found index, comparison results, ranges.

#include <cstdint>
#include <functional>
#include <limits>

namespace vesperon {}

/// The "none" value of every index space: 2^63 - 1.
inline constexpr uint64_t NSNotFound = static_cast<uint64_t>(std::numeric_limits<int64_t>::max());
/// The library's name for NSNotFound.
inline constexpr uint64_t MCNotFound = NSNotFound;

/// Result of a comparison: ascending (-1), same (0), descending (1).
enum MCComparisonResult : int {
  MCOrderedAscending = -1,
  MCOrderedSame = 0,
  MCOrderedDescending = 1,
};

/// Turns any three-way result into -1, 0 or 1.
template <typename T>
constexpr MCComparisonResult MCCompareValues(const T& a, const T& b) {
  return a < b ? MCOrderedAscending : (b < a ? MCOrderedDescending : MCOrderedSame);
}

/// A half-open run of indexes [location, location + length).
struct MCRange {
  /// The first index.
  uint64_t location = 0;
  /// How many indexes.
  uint64_t length = 0;

  /// One past the last index.
  constexpr uint64_t end() const { return location + length; }
  /// Whether `index` lies in the range.
  constexpr bool contains(uint64_t index) const { return index >= location && index - location < length; }
  friend constexpr bool operator==(const MCRange&, const MCRange&) = default;
};

/// The range of `length` indexes from `location`.
constexpr MCRange MCMakeRange(uint64_t location, uint64_t length) { return MCRange{location, length}; }
