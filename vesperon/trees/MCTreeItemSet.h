#pragma once
// mc_detail::MCTreeItemSet<T>: the small set of items that a tree update looks up once per item
// of every node it passes. Open addressing with linear probing over a power-of-two table, so a
// lookup is a multiply and, mostly, one probe; std::hash<T> alone is a poor spread for pointers.

#include <cstddef>
#include <cstdint>
#include <functional>
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
    size_t i = slot(item);
    while (used_[i]) {
      if (slots_[i] == item) return;
      i = (i + 1) & mask_;
    }
    used_[i] = 1;
    slots_[i] = item;
    ++count_;
  }

  bool contains(const T& item) const {
    if (count_ == 0) return false;
    for (size_t i = slot(item); used_[i]; i = (i + 1) & mask_)
      if (slots_[i] == item) return true;
    return false;
  }

 private:
  size_t slot(const T& item) const {
    return size_t((uint64_t(std::hash<T>{}(item)) * 0x9E3779B97F4A7C15ull) >> shift_) & mask_;
  }
  void rehash(size_t capacity) {
    std::vector<T> old = std::move(slots_);
    std::vector<uint8_t> oldUsed = std::move(used_);
    slots_.assign(capacity, T());
    used_.assign(capacity, 0);
    mask_ = capacity - 1;
    shift_ = 64;
    for (size_t c = capacity; c > 1; c >>= 1) --shift_;
    count_ = 0;
    for (size_t i = 0; i < old.size(); ++i)
      if (oldUsed[i]) insert(old[i]);
  }

  std::vector<T> slots_;
  std::vector<uint8_t> used_;
  size_t mask_ = 0;
  unsigned shift_ = 64;
  size_t count_ = 0;
};

}  // namespace mc_detail
