#pragma once
// MCCache: a count-limited cache with least-recently-used eviction — a hash map for look-up and a
// circular doubly linked list for age, the head being the most recently used item and its
// `previousItem` the oldest (the tail).
//
// Capacity counts objects, not bytes; the default is 64. Eviction happens only when a new key is
// set: `removeOldObjects` first brings the count to one below the capacity (so a capacity of 0
// still holds the newest object), then the new item goes in at the head. `setCacheSize` evicts
// nothing; a smaller capacity takes effect at the next new key. Setting a key that is already
// there never evicts.
//
// `Object` is a pointer-like type (usually std::shared_ptr) whose null value is "none": an item
// with no object takes a place but answers a look-up as a miss.
//
// No lock: a cache belongs to one thread (the main thread, in the pipeline).

#include <vesperon/pipeline/MCCacheItem.h>

#include <cstdint>
#include <memory>
#include <unordered_map>

template <typename Key, typename Object, typename Hash = std::hash<Key>>
class MCCache {
 public:
  /// One entry of the recency list.
  using Item = MCCacheItem<Key, Object>;
  /// A shared entry.
  using ItemRef = std::shared_ptr<Item>;

  MCCache() : MCCache(64) {}
  /// An empty cache of at most `size` objects.
  explicit MCCache(uint64_t size) : cacheSize_(size) {}
  ~MCCache() { removeAllItems(); }
  MCCache(const MCCache&) = delete;
  MCCache& operator=(const MCCache&) = delete;

  /// How many objects are cached.
  uint64_t count() const { return cacheMap_.size(); }
  /// How many objects the cache keeps at most.
  uint64_t cacheSize() const { return cacheSize_; }
  /// Sets the most objects kept (takes effect at the next store).
  void setCacheSize(uint64_t size) { cacheSize_ = size; }
  /// The most recently used entry; none when empty.
  const ItemRef& cacheHead() const { return cacheHead_; }
  /// The oldest item, or none.
  ItemRef cacheTail() const { return cacheHead_ ? cacheHead_->previousItem : nullptr; }

  /// The object, or none; a hit makes the item the most recently used.
  Object objectForKey(const Key& key) {
    auto it = cacheMap_.find(key);
    if (it == cacheMap_.end()) return Object{};
    moveItemToHead(it->second);
    return it->second->object;
  }

  /// Stores `object` under `key` as the most recent, dropping the least recent past cacheSize.
  void setObject(Object object, const Key& key) {
    if (auto it = cacheMap_.find(key); it != cacheMap_.end()) {
      const ItemRef item = it->second;
      if (!(item->object == object)) item->object = std::move(object);
      moveItemToHead(item);
      return;
    }
    removeOldObjects();
    auto item = std::make_shared<Item>(key, std::move(object));
    insertItem(item);
    cacheMap_.emplace(key, std::move(item));
  }

  /// Forgets `key`.
  void removeObjectForKey(const Key& key) {
    auto it = cacheMap_.find(key);
    if (it == cacheMap_.end()) return;
    ItemRef item = it->second;
    cacheMap_.erase(it);
    removeItem(item);
  }

  /// Forgets everything.
  void removeAllObjects() {
    removeAllItems();
    cacheMap_.clear();
  }

  /// Makes room for one new object: with n objects and capacity s, removes the oldest n - s + 1
  /// times when n ≥ s.
  void removeOldObjects() {
    const uint64_t n = count();
    if (n < cacheSize_) return;
    for (uint64_t i = 0; i < n - cacheSize_ + 1 && cacheHead_; ++i) {
      ItemRef oldest = cacheTail();
      cacheMap_.erase(oldest->key);
      removeItem(oldest);
    }
  }

  // The list operations. They keep the list circular and do not touch the map.

  /// Links `item` in as the new head (to itself when the list is empty).
  void insertItem(const ItemRef& item) {
    if (!cacheHead_) {
      item->nextItem = item;
      item->previousItem = item;
    } else {
      insertItemBefore(item, cacheHead_);
    }
    cacheHead_ = item;
  }

  /// @name Recency list
  //@{
  /// The recency list's own steps: link an entry after or before another, move one to the head,
  /// unlink one.
  void insertItemAfter(const ItemRef& item, const ItemRef& afterItem) {
    item->previousItem = afterItem;
    item->nextItem = afterItem->nextItem;
    afterItem->nextItem->previousItem = item;
    afterItem->nextItem = item;
  }

  void insertItemBefore(const ItemRef& item, const ItemRef& beforeItem) {
    item->nextItem = beforeItem;
    item->previousItem = beforeItem->previousItem;
    beforeItem->previousItem->nextItem = item;
    beforeItem->previousItem = item;
  }

  void moveItemToHead(const ItemRef& item) {
    if (item == cacheHead_) return;
    if (item->nextItem == cacheHead_) {
      // The oldest item: in a circular list only the head pointer moves.
      cacheHead_ = item;
      return;
    }
    item->previousItem->nextItem = item->nextItem;
    item->nextItem->previousItem = item->previousItem;
    insertItemBefore(item, cacheHead_);
    cacheHead_ = item;
  }

  void removeItem(const ItemRef& item) {
    if (item == cacheHead_) cacheHead_ = item->nextItem == item ? nullptr : item->nextItem;
  //@}
    if (item->previousItem && item->nextItem) {
      item->previousItem->nextItem = item->nextItem;
      item->nextItem->previousItem = item->previousItem;
    }
    item->nextItem.reset();
    item->previousItem.reset();
  }

  /// Unlinks every item, which also breaks the strong cycle of the list.
  void removeAllItems() {
    ItemRef item = cacheHead_;
    while (item) {
      ItemRef next = std::move(item->nextItem);
      item->nextItem.reset();
      item->previousItem.reset();
      item = std::move(next);
    }
    cacheHead_.reset();
  }

 private:
  uint64_t cacheSize_;
  ItemRef cacheHead_;
  std::unordered_map<Key, ItemRef, Hash> cacheMap_;
};
