#include <vesperon/core/MCIndexSetExtensions.h>

#include <vesperon/core/MCExceptions.h>

#include <fmt/format.h>

#include <algorithm>
#include <iterator>
#include <stdexcept>

MCIndexSet indexSetByRemovingIndexSet(const MCIndexSet& set, const MCIndexSet& other) {
  MCIndexSet result = set;
  if (!set.empty() && !other.empty()) result.removeIndexes(other);
  return result;
}

uint64_t indexAtIndex(const MCIndexSet& set, uint64_t n) {
  if (n >= set.count()) mc_detail::throwIndexOutOfRange("indexAtIndex", n, set.count());
  for (const MCRange& range : set.ranges()) {
    if (n < range.length) return range.location + n;
    n -= range.length;
  }
  return NSNotFound;  // not reached: count is the sum of the range lengths
}

std::string MCStringFromRange(MCRange range) {
  return fmt::format("{{{}, {}}}", static_cast<int64_t>(range.location), static_cast<int64_t>(range.length));
}

namespace {
[[noreturn]] void throwOutsideRange(const char* operation, uint64_t index, MCRange range) {
  throw std::out_of_range(fmt::format("*** {}: index {} is out of range {}", operation, static_cast<int64_t>(index),
                                      MCStringFromRange(range)));
}
}  // namespace

uint64_t missedIndexGreaterThanOrEqualToIndex(const MCIndexSet& set, uint64_t index, MCRange range) {
  if (!range.contains(index)) throwOutsideRange("missedIndexGreaterThanOrEqualToIndex", index, range);
  const auto& ranges = set.ranges();
  // The first range that ends after the start; ranges are disjoint and never adjacent, so the end
  // of the range holding the start is itself missed.
  auto held = std::partition_point(ranges.begin(), ranges.end(), [&](const MCRange& r) { return r.end() <= index; });
  if (held == ranges.end() || held->location > index) return index;
  return held->end() < range.end() ? held->end() : NSNotFound;
}

uint64_t missedIndexLessThanOrEqualToIndex(const MCIndexSet& set, uint64_t index, MCRange range) {
  if (!range.contains(index)) throwOutsideRange("missedIndexLessThanOrEqualToIndex", index, range);
  const auto& ranges = set.ranges();
  // The last range that begins at or before the start.
  auto after = std::partition_point(ranges.begin(), ranges.end(), [&](const MCRange& r) { return r.location <= index; });
  if (after == ranges.begin()) return index;
  const MCRange& held = *std::prev(after);
  if (held.end() <= index) return index;
  if (held.location == 0 || held.location - 1 < range.location) return NSNotFound;
  return held.location - 1;
}
