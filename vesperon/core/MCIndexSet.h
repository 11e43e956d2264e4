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
  /// A set of one index.
  explicit MCIndexSet(uint64_t index) { addIndex(index); }
  /// The indexes of `range`.
  explicit MCIndexSet(MCRange range) { addIndexesInRange(range); }
  /// The indexes listed, in any order.
  MCIndexSet(std::initializer_list<uint64_t> indexes) {
    for (uint64_t i : indexes) addIndex(i);
  }
  /// The indexes of `range`.
  static MCIndexSet indexSetWithIndexesInRange(MCRange range) { return MCIndexSet(range); }

  // --- Queries
  /// How many indexes there are.
  uint64_t count() const { return count_; }
  /// Whether there is none.
  bool empty() const { return ranges_.empty(); }
  /// How many runs of consecutive indexes there are.
  uint64_t rangeCount() const { return ranges_.size(); }
  /// The runs, ascending, neither touching nor overlapping.
  const std::vector<MCRange>& ranges() const { return ranges_; }

  /// The smallest index; NSNotFound when empty.
  uint64_t firstIndex() const { return ranges_.empty() ? NSNotFound : ranges_.front().location; }
  /// The largest index; NSNotFound when empty.
  uint64_t lastIndex() const { return ranges_.empty() ? NSNotFound : ranges_.back().end() - 1; }
  /// @name Neighbours
  //@{
  /// The nearest index of the set above (or at) and below (or at) `index`; NSNotFound when there is
  /// none.
  uint64_t indexGreaterThanIndex(uint64_t index) const;
  uint64_t indexGreaterThanOrEqualToIndex(uint64_t index) const;
  uint64_t indexLessThanIndex(uint64_t index) const;
  uint64_t indexLessThanOrEqualToIndex(uint64_t index) const;
  //@}

  /// Whether `index` is in the set.
  bool containsIndex(uint64_t index) const;
  /// Whether every index of `range` is in the set.
  bool containsIndexesInRange(MCRange range) const;
  /// Whether every index of `other` is in the set.
  bool containsIndexes(const MCIndexSet& other) const;
  /// Whether some index of `range` is in the set.
  bool intersectsIndexesInRange(MCRange range) const;
  /// How many indexes of the set lie in `range`.
  uint64_t countOfIndexesInRange(MCRange range) const;

  // --- Changes
  /// Adds `index`.
  void addIndex(uint64_t index) { addIndexesInRange({index, 1}); }
  /// Adds the indexes of `range`.
  void addIndexesInRange(MCRange range);
  /// Adds every index of `other`.
  void addIndexes(const MCIndexSet& other);
  /// Removes `index`.
  void removeIndex(uint64_t index) { removeIndexesInRange({index, 1}); }
  /// Removes the indexes of `range`.
  void removeIndexesInRange(MCRange range);
  /// Removes every index of `other`.
  void removeIndexes(const MCIndexSet& other);
  /// Empties the set.
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

  /// Walks the indexes in ascending order.
  class const_iterator {
   public:
    /// @name Iterator traits
    //@{
    /// The standard iterator types.
    using value_type = uint64_t;
    using difference_type = std::ptrdiff_t;
    using iterator_category = std::forward_iterator_tag;
    using pointer = const uint64_t*;
    using reference = uint64_t;
    //@}
    const_iterator() = default;
    /// The index at hand.
    uint64_t operator*() const { return (*ranges_)[range_].location + offset_; }
    /// Steps to the next index.
    const_iterator& operator++() {
      if (++offset_ >= (*ranges_)[range_].length) {
        ++range_;
        offset_ = 0;
      }
      return *this;
    }
    /// Steps to the next index, answering the iterator as it was.
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
  /// The smallest index, for range-for in ascending order.
  const_iterator begin() const { return const_iterator(&ranges_, 0); }
  /// Past the largest index.
  const_iterator end() const { return const_iterator(&ranges_, ranges_.size()); }

  friend bool operator==(const MCIndexSet& a, const MCIndexSet& b) { return a.ranges_ == b.ranges_; }

 private:
  // Index of the first range whose end is greater than `index` (the range holding it or after it).
  std::size_t rangeAtOrAfter(uint64_t index) const;

  std::vector<MCRange> ranges_;
  uint64_t count_ = 0;
};
