#pragma once
// Removing and inserting the elements of a std::vector at the indexes of an MCIndexSet, in one
// pass over the set's ranges: each stretch of kept elements moves once, so the cost follows the
// vector's length and the number of ranges, not a lookup per element.
//
// Range checks are the caller's: each indexed operation raises its own message.

#include <vesperon/core/MCIndexSet.h>

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <vector>

/// Takes the elements at `indexes` out of `vector`, closing the gaps, and gives them in order.
/// Every index must be below the vector's size.
template <typename T>
std::vector<T> MCTakeObjectsAtIndexes(std::vector<T>& vector, const MCIndexSet& indexes) {
  std::vector<T> taken;
  if (indexes.empty()) return taken;
  taken.reserve(indexes.count());
  const auto& ranges = indexes.ranges();
  auto target = vector.begin() + ranges.front().location;
  for (std::size_t r = 0; r < ranges.size(); ++r) {
    auto first = vector.begin() + ranges[r].location, last = first + ranges[r].length;
    std::move(first, last, std::back_inserter(taken));
    auto next = r + 1 < ranges.size() ? vector.begin() + ranges[r + 1].location : vector.end();
    target = std::move(last, next, target);
  }
  vector.erase(target, vector.end());
  return taken;
}

/// Inserts `objects` into `vector` so that afterwards they stand at `indexes`, in order. There
/// must be as many objects as indexes, and every index below the new size.
template <typename T>
void MCInsertObjectsAtIndexes(std::vector<T>& vector, std::vector<T> objects, const MCIndexSet& indexes) {
  if (indexes.empty()) return;
  if (indexes.firstIndex() == vector.size()) {  // with one index per object: all at the end
    vector.insert(vector.end(), std::make_move_iterator(objects.begin()), std::make_move_iterator(objects.end()));
    return;
  }
  // Walk the ranges from the back, moving each stretch of old elements once to its final place.
  const uint64_t finalCount = vector.size() + objects.size();
  uint64_t source = vector.size(), target = finalCount, k = objects.size();
  vector.insert(vector.end(), objects.begin(), objects.end());  // grows the vector; overwritten below
  const auto& ranges = indexes.ranges();
  for (auto range = ranges.rbegin(); range != ranges.rend(); ++range) {
    const uint64_t kept = target - range->end();  // old elements that stand after this range
    std::move_backward(vector.begin() + (source - kept), vector.begin() + source, vector.begin() + target);
    source -= kept;
    target = range->location;
    for (uint64_t i = range->length; i > 0; --i) vector[target + i - 1] = std::move(objects[--k]);
  }
}
