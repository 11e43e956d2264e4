#pragma once
// mc_detail::MCTreeItemSet<T>: the small set of items that a tree update looks up once per item
// of every node it passes. Nearly all of those look-ups miss, so a bitmap of about 32 bits per
// item answers most of them from one word before the table is touched; the table itself is open
// addressing with linear probing over a power of two. std::hash<T> alone is a poor spread for
// pointers, so the hash is multiplied first and its high bits pick both the bit and the slot.

#include <cstddef>
#include <cstdint>
#include <functional>
#include <iterator>
#include <vector>

namespace mc_detail {

template <typename T>
class MCTreeItemSet {
 public:
  MCTreeItemSet() = default;
  template <typename Iterator>
  MCTreeItemSet(Iterator first, Iterator last) {
    reserve(size_t(std::distance(first, last)));
    for (; first != last; ++first) insert(*first);
  }

  bool empty() const { return count_ == 0; }
  size_t size() const { return count_; }

  void reserve(size_t count) {
    size_t capacity = 16;
    while (capacity < count * 2) capacity *= 2;
    if (capacity > slots_.size()) rehash(capacity);
  }

  void insert(const T& item) {
    if ((count_ + 1) * 2 > slots_.size()) rehash(slots_.empty() ? 16 : slots_.size() * 2);
    const uint64_t h = spread(item);
    size_t i = slot(h);
    while (used_[i]) {
      if (slots_[i] == item) return;
      i = (i + 1) & mask_;
    }
    used_[i] = 1;
    slots_[i] = item;
    mark(h);
    ++count_;
  }

  bool contains(const T& item) const { return contains(item, spread(item)); }

  /// The same, for a caller that looks one item up in several sets: `h` is spread(item).
  bool contains(const T& item, uint64_t h) const {
    if (count_ == 0) return false;
    const uint64_t bit = h >> filterShift_;
    if (!(filter_[bit >> 6] & (uint64_t(1) << (bit & 63)))) [[likely]]
      return false;
    return probe(item, h);
  }

  static uint64_t spread(const T& item) { return uint64_t(std::hash<T>{}(item)) * 0x9E3779B97F4A7C15ull; }

 private:
  bool probe(const T& item, uint64_t h) const {
    for (size_t i = slot(h); used_[i]; i = (i + 1) & mask_)
      if (slots_[i] == item) return true;
    return false;
  }
  size_t slot(uint64_t h) const { return size_t(h >> shift_) & mask_; }
  void mark(uint64_t h) {
    const uint64_t bit = h >> filterShift_;
    filter_[bit >> 6] |= uint64_t(1) << (bit & 63);
  }
  void rehash(size_t capacity) {
    std::vector<T> old = std::move(slots_);
    std::vector<uint8_t> oldUsed = std::move(used_);
    slots_.assign(capacity, T());
    used_.assign(capacity, 0);
    mask_ = capacity - 1;
    shift_ = 64;
    for (size_t c = capacity; c > 1; c >>= 1) --shift_;
    // capacity is at least twice the count, so 16 bits a slot is at least 32 an item.
    filter_.assign(capacity / 4, 0);
    filterShift_ = shift_ - 4;
    count_ = 0;
    for (size_t i = 0; i < old.size(); ++i)
      if (oldUsed[i]) insert(old[i]);
  }

  std::vector<T> slots_;
  std::vector<uint8_t> used_;
  std::vector<uint64_t> filter_;
  size_t mask_ = 0;
  unsigned shift_ = 64;
  unsigned filterShift_ = 60;
  size_t count_ = 0;
};

}  // namespace mc_detail
