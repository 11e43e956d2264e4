#include <vesperon/core/MCIndexSet.h>

#include <algorithm>

namespace {
// Clamps a range so that it stays below NSNotFound.
MCRange clampRange(MCRange r) {
  if (r.location >= NSNotFound) return {NSNotFound, 0};
  if (r.length > NSNotFound - r.location) r.length = NSNotFound - r.location;
  return r;
}
}  // namespace

std::size_t MCIndexSet::rangeAtOrAfter(uint64_t index) const {
  auto it = std::upper_bound(ranges_.begin(), ranges_.end(), index,
                             [](uint64_t i, const MCRange& r) { return i < r.end(); });
  return static_cast<std::size_t>(it - ranges_.begin());
}

bool MCIndexSet::containsIndex(uint64_t index) const {
  std::size_t i = rangeAtOrAfter(index);
  return i < ranges_.size() && ranges_[i].contains(index);
}

bool MCIndexSet::containsIndexesInRange(MCRange range) const {
  range = clampRange(range);
  if (range.length == 0) return false;
  std::size_t i = rangeAtOrAfter(range.location);
  return i < ranges_.size() && ranges_[i].location <= range.location && ranges_[i].end() >= range.end();
}

bool MCIndexSet::containsIndexes(const MCIndexSet& other) const {
  for (const MCRange& r : other.ranges_)
    if (!containsIndexesInRange(r)) return false;
  return true;
}

bool MCIndexSet::intersectsIndexesInRange(MCRange range) const { return countOfIndexesInRange(range) > 0; }

uint64_t MCIndexSet::countOfIndexesInRange(MCRange range) const {
  range = clampRange(range);
  if (range.length == 0) return 0;
  uint64_t total = 0;
  for (std::size_t i = rangeAtOrAfter(range.location); i < ranges_.size(); ++i) {
    const MCRange& r = ranges_[i];
    if (r.location >= range.end()) break;
    uint64_t lo = std::max(r.location, range.location), hi = std::min(r.end(), range.end());
    total += hi - lo;
  }
  return total;
}

uint64_t MCIndexSet::indexGreaterThanOrEqualToIndex(uint64_t index) const {
  if (index >= NSNotFound) return NSNotFound;
  std::size_t i = rangeAtOrAfter(index);
  if (i == ranges_.size()) return NSNotFound;
  return std::max(index, ranges_[i].location);
}

uint64_t MCIndexSet::indexGreaterThanIndex(uint64_t index) const {
  if (index >= NSNotFound - 1) return NSNotFound;
  return indexGreaterThanOrEqualToIndex(index + 1);
}

uint64_t MCIndexSet::indexLessThanOrEqualToIndex(uint64_t index) const {
  if (ranges_.empty()) return NSNotFound;
  if (index >= NSNotFound) index = NSNotFound - 1;
  std::size_t i = rangeAtOrAfter(index);
  if (i < ranges_.size() && ranges_[i].contains(index)) return index;
  if (i == 0) return NSNotFound;
  return ranges_[i - 1].end() - 1;
}

uint64_t MCIndexSet::indexLessThanIndex(uint64_t index) const {
  if (index == 0) return NSNotFound;
  return indexLessThanOrEqualToIndex(index - 1);
}

void MCIndexSet::addIndexesInRange(MCRange range) {
  range = clampRange(range);
  if (range.length == 0) return;
  // First range that touches or follows the new one (adjacent ranges merge).
  auto first = std::lower_bound(ranges_.begin(), ranges_.end(), range.location,
                                [](const MCRange& r, uint64_t loc) { return r.end() < loc; });
  auto last = first;
  uint64_t lo = range.location, hi = range.end();
  while (last != ranges_.end() && last->location <= hi) {
    lo = std::min(lo, last->location);
    hi = std::max(hi, last->end());
    count_ -= last->length;
    ++last;
  }
  MCRange merged{lo, hi - lo};
  count_ += merged.length;
  if (first == last) {
    ranges_.insert(first, merged);
  } else {
    *first = merged;
    ranges_.erase(first + 1, last);
  }
}

void MCIndexSet::addIndexes(const MCIndexSet& other) {
  if (ranges_.empty()) {
    *this = other;
    return;
  }
  for (const MCRange& r : other.ranges_) addIndexesInRange(r);
}

void MCIndexSet::removeIndexesInRange(MCRange range) {
  range = clampRange(range);
  if (range.length == 0) return;
  std::size_t i = rangeAtOrAfter(range.location);
  std::vector<MCRange> keep;  // at most two pieces survive at the edges
  std::size_t j = i;
  while (j < ranges_.size() && ranges_[j].location < range.end()) {
    const MCRange r = ranges_[j];
    count_ -= r.length;
    if (r.location < range.location) keep.push_back({r.location, range.location - r.location});
    if (r.end() > range.end()) keep.push_back({range.end(), r.end() - range.end()});
    ++j;
  }
  if (i == j) return;
  for (const MCRange& r : keep) count_ += r.length;
  ranges_.erase(ranges_.begin() + static_cast<std::ptrdiff_t>(i), ranges_.begin() + static_cast<std::ptrdiff_t>(j));
  ranges_.insert(ranges_.begin() + static_cast<std::ptrdiff_t>(i), keep.begin(), keep.end());
}

void MCIndexSet::removeIndexes(const MCIndexSet& other) {
  for (const MCRange& r : other.ranges_) removeIndexesInRange(r);
}

void MCIndexSet::removeAllIndexes() {
  ranges_.clear();
  count_ = 0;
}

void MCIndexSet::shiftIndexesStartingAtIndex(uint64_t index, int64_t delta) {
  if (delta == 0 || index >= NSNotFound) return;
  if (delta < 0) {
    uint64_t down = static_cast<uint64_t>(-(delta + 1)) + 1;
    uint64_t gapStart = index > down ? index - down : 0;
    removeIndexesInRange({gapStart, index - gapStart});
    // Indexes shifted below zero are dropped: those were below `down` after the gap removal.
    std::size_t i = rangeAtOrAfter(index);
    std::vector<MCRange> moved(ranges_.begin() + static_cast<std::ptrdiff_t>(i), ranges_.end());
    for (const MCRange& r : moved) count_ -= r.length;
    ranges_.erase(ranges_.begin() + static_cast<std::ptrdiff_t>(i), ranges_.end());
    for (MCRange r : moved) {
      if (r.end() <= down) continue;
      if (r.location < down) r = {down, r.end() - down};
      addIndexesInRange({r.location - down, r.length});
    }
    return;
  }
  uint64_t up = static_cast<uint64_t>(delta);
  std::size_t i = rangeAtOrAfter(index);
  if (i == ranges_.size()) return;
  // Split a range that straddles `index`.
  if (ranges_[i].location < index) {
    MCRange r = ranges_[i];
    ranges_[i] = {r.location, index - r.location};
    ranges_.insert(ranges_.begin() + static_cast<std::ptrdiff_t>(i) + 1, {index, r.end() - index});
    ++i;
  }
  for (std::size_t k = ranges_.size(); k-- > i;) {
    MCRange& r = ranges_[k];
    if (r.location >= NSNotFound - up) {  // pushed past the top: dropped
      count_ -= r.length;
      ranges_.erase(ranges_.begin() + static_cast<std::ptrdiff_t>(k));
      continue;
    }
    r.location += up;
    if (r.length > NSNotFound - r.location) {
      count_ -= r.length - (NSNotFound - r.location);
      r.length = NSNotFound - r.location;
    }
  }
}

void MCIndexSet::enumerateIndexesUsingBlock(const std::function<void(uint64_t, bool&)>& body) const {
  bool stop = false;
  for (const MCRange& r : ranges_)
    for (uint64_t i = r.location; i < r.end(); ++i) {
      body(i, stop);
      if (stop) return;
    }
}

void MCIndexSet::enumerateRangesUsingBlock(const std::function<void(MCRange, bool&)>& body) const {
  bool stop = false;
  for (const MCRange& r : ranges_) {
    body(r, stop);
    if (stop) return;
  }
}

std::vector<uint64_t> MCIndexSet::allIndexes() const {
  std::vector<uint64_t> out;
  out.reserve(count_);
  for (uint64_t i : *this) out.push_back(i);
  return out;
}
