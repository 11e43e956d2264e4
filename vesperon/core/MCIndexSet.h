#pragma once
// MCIndexSet: an ordered set of unsigned indexes, stored as sorted, disjoint, non-adjacent ranges.
//
// Range operations cost O(log r + k) in the number of ranges r and ranges touched k, never per
// index. Indexes at or above NSNotFound are refused (ignored), as on the platform.

#include <vesperon/core/MCTypes.h>

#include <cstdint>
#include <functional>
#include <initializer_list>
#include <vector>

class MCIndexSet {
 public:
  MCIndexSet() = default;
  explicit MCIndexSet(uint64_t index) { addIndex(index); }
  explicit MCIndexSet(MCRange range) { addIndexesInRange(range); }
  MCIndexSet(std::initializer_list<uint64_t> indexes) {
    for (uint64_t i : indexes) addIndex(i);
  }
  static MCIndexSet indexSetWithIndexesInRange(MCRange range) { return MCIndexSet(range); }

  // --- Queries
  uint64_t count() const { return count_; }
  bool empty() const { return ranges_.empty(); }
  uint64_t rangeCount() const { return ranges_.size(); }
  const std::vector<MCRange>& ranges() const { return ranges_; }

  uint64_t firstIndex() const { return ranges_.empty() ? NSNotFound : ranges_.front().location; }
  uint64_t lastIndex() const { return ranges_.empty() ? NSNotFound : ranges_.back().end() - 1; }
  uint64_t indexGreaterThanIndex(uint64_t index) const;
  uint64_t indexGreaterThanOrEqualToIndex(uint64_t index) const;
  uint64_t indexLessThanIndex(uint64_t index) const;
  uint64_t indexLessThanOrEqualToIndex(uint64_t index) const;

  bool containsIndex(uint64_t index) const;
  bool containsIndexesInRange(MCRange range) const;
  bool containsIndexes(const MCIndexSet& other) const;
  bool intersectsIndexesInRange(MCRange range) const;
  uint64_t countOfIndexesInRange(MCRange range) const;

  // --- Changes
  void addIndex(uint64_t index) { addIndexesInRange({index, 1}); }
  void addIndexesInRange(MCRange range);
  void addIndexes(const MCIndexSet& other);
  void removeIndex(uint64_t index) { removeIndexesInRange({index, 1}); }
  void removeIndexesInRange(MCRange range);
  void removeIndexes(const MCIndexSet& other);
  void removeAllIndexes();

  /// Moves every index at or above `index` by `delta`. With a negative delta the indexes in
  /// [index + delta, index) are removed first, so that the shifted indexes close the gap; indexes
  /// that would fall below 0 are dropped. With a positive delta the gap opened stays empty.
  void shiftIndexesStartingAtIndex(uint64_t index, int64_t delta);

  // --- Enumeration, ascending
  /// Calls `body(index, stop)` for each index until `stop` is set.
  void enumerateIndexesUsingBlock(const std::function<void(uint64_t, bool&)>& body) const;
  /// Calls `body(range, stop)` for each range until `stop` is set.
  void enumerateRangesUsingBlock(const std::function<void(MCRange, bool&)>& body) const;
  /// All indexes, ascending. Meant for small sets.
  std::vector<uint64_t> allIndexes() const;

  class const_iterator {
   public:
    using value_type = uint64_t;
    using difference_type = std::ptrdiff_t;
    using iterator_category = std::forward_iterator_tag;
    using pointer = const uint64_t*;
    using reference = uint64_t;
    const_iterator() = default;
    uint64_t operator*() const { return (*ranges_)[range_].location + offset_; }
    const_iterator& operator++() {
      if (++offset_ >= (*ranges_)[range_].length) {
        ++range_;
        offset_ = 0;
      }
      return *this;
    }
    const_iterator operator++(int) {
      auto copy = *this;
      ++*this;
      return copy;
    }
    friend bool operator==(const const_iterator& a, const const_iterator& b) {
      return a.range_ == b.range_ && a.offset_ == b.offset_;
    }

   private:
    friend class MCIndexSet;
    const_iterator(const std::vector<MCRange>* r, std::size_t range) : ranges_(r), range_(range) {}
    const std::vector<MCRange>* ranges_ = nullptr;
    std::size_t range_ = 0;
    uint64_t offset_ = 0;
  };
  const_iterator begin() const { return const_iterator(&ranges_, 0); }
  const_iterator end() const { return const_iterator(&ranges_, ranges_.size()); }

  friend bool operator==(const MCIndexSet& a, const MCIndexSet& b) { return a.ranges_ == b.ranges_; }

 private:
  // Index of the first range whose end is greater than `index` (the range holding it or after it).
  std::size_t rangeAtOrAfter(uint64_t index) const;

  std::vector<MCRange> ranges_;
  uint64_t count_ = 0;
};
