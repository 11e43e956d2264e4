#pragma once
// MCIndexMap: a compact growable table from position to a 64-bit unsigned index, the storage of
// the layout matrix's index spaces. Not thread-safe.

#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

namespace mc_detail {
// Leaves the entries that a resize adds unwritten, so that a table refilled by addIndexRun is
// written once rather than zeroed first; every growth path of MCIndexMap writes them at once.
template <typename T>
struct UninitializedAllocator : std::allocator<T> {
  template <typename U>
  struct rebind {
    using other = UninitializedAllocator<U>;
  };
  UninitializedAllocator() = default;
  template <typename U>
  UninitializedAllocator(const UninitializedAllocator<U>&) noexcept {}
  template <typename U>
  void construct(U* p) noexcept {
    ::new (static_cast<void*>(p)) U;
  }
  template <typename U, typename... Args>
  void construct(U* p, Args&&... args) {
    ::new (static_cast<void*>(p)) U(std::forward<Args>(args)...);
  }
};
}  // namespace mc_detail

class MCIndexMap {
 public:
  MCIndexMap() = default;

  /// How many indexes are mapped.
  uint64_t count() const { return indexes_.size(); }
  /// Appends one entry.
  void addIndex(uint64_t index) { indexes_.push_back(index); }
  /// Appends `count` entries, all equal to `index` (not index, index + 1, …). A count of 0 adds nothing.
  void addIndex(uint64_t index, uint64_t count) { indexes_.insert(indexes_.end(), count, index); }
  /// Appends `count` entries counting up from `first`: first, first + 1, …
  void addIndexRun(uint64_t first, uint64_t count) {
    uint64_t* out = growBy(count);
    for (uint64_t i = 0; i < count; ++i) out[i] = first + i;
  }
  /// Appends `count` entries left for the caller to write, every one of them, before the next
  /// read; answers where they start. For builders that fill several tables in one pass.
  uint64_t* growBy(uint64_t count) {
    const std::size_t start = indexes_.size();
    indexes_.resize(start + count);
    return indexes_.data() + start;
  }
  /// The value at `position`. Throws std::out_of_range
  /// ("*** MCIndexMap::indexAtIndex: index %ld is out of range [0..%ld]") at or past `count`.
  uint64_t indexAtIndex(uint64_t position) const;
  /// Sets the length to zero.
  void removeAllIndexes() { indexes_.clear(); }
  /// Reserves room for `capacity` entries without changing the count.
  void reserve(uint64_t capacity) { indexes_.reserve(capacity); }

  /// The mapped indexes in order.
  const uint64_t* data() const { return indexes_.data(); }

 private:
  std::vector<uint64_t, mc_detail::UninitializedAllocator<uint64_t>> indexes_;
};
