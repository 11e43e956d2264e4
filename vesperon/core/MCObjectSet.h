#pragma once
// mc_detail::ObjectSet: a small hash set and counted set of objects that agrees with
// isEqualObject (pointer-like objects by what they point at), for the array extensions.

#include <vesperon/core/MCGroupEqualObjects.h>
#include <vesperon/core/MCObjectExtensions.h>

#include <cstddef>
#include <cstdint>
#include <unordered_map>
#include <vector>

namespace mc_detail {

template <typename T>
class ObjectSet {
 public:
  ObjectSet() = default;
  explicit ObjectSet(const std::vector<T>& objects) {
    for (const T& object : objects) add(object);
  }

  /// Adds one occurrence.
  void add(const T& object) {
    auto& bucket = buckets_[objectHash(object)];
    for (auto& entry : bucket)
      if (isEqualObject(entry.object, object)) {
        ++entry.count;
        return;
      }
    bucket.push_back({object, 1});
  }
  bool contains(const T& object) const { return countOf(object) != 0; }
  uint64_t countOf(const T& object) const {
    auto it = buckets_.find(objectHash(object));
    if (it == buckets_.end()) return 0;
    for (const auto& entry : it->second)
      if (isEqualObject(entry.object, object)) return entry.count;
    return 0;
  }
  /// Takes one occurrence away; answers false when there was none.
  bool take(const T& object) {
    auto it = buckets_.find(objectHash(object));
    if (it == buckets_.end()) return false;
    for (auto& entry : it->second)
      if (isEqualObject(entry.object, object) && entry.count > 0) {
        --entry.count;
        return true;
      }
    return false;
  }

 private:
  struct Entry {
    T object;
    uint64_t count;
  };
  std::unordered_map<std::size_t, std::vector<Entry>> buckets_;
};

}  // namespace mc_detail
