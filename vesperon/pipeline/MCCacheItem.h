#pragma once
// MCCacheItem: one entry of MCCache's circular list of ages. `nextItem` is the next older item,
// `previousItem` the next younger; the items hold each other strongly, and MCCache breaks the
// cycle itself.

#include <memory>

template <typename Key, typename Object>
class MCCacheItem {
 public:
  /// An entry of `object` under `key`.
  MCCacheItem(Key key, Object object) : key(std::move(key)), object(std::move(object)) {}

  /// The key.
  Key key;
  /// The next older entry.
  std::shared_ptr<MCCacheItem> nextItem;
  /// The next newer entry (the head's is the oldest).
  std::shared_ptr<MCCacheItem> previousItem;
  Object object;  ///< may be none (a null pointer)
};
