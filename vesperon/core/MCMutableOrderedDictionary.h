#pragma once
// MCMutableOrderedDictionary<K, V>: the changing operations of an ordered dictionary.
//
// Where a key goes:
//   setObject      a new key is appended; a present key keeps its place.
//   addObject      a new key is appended; a present key moves to the end.
//   insertObject   a new key is inserted at the index; a present key moves there (see below).
// Nil objects and keys are refused with std::invalid_argument "*** <operation>: object must not be
// nil". Removals of absent keys and of indexes past the end of the single-index forms do nothing.

#include <vesperon/core/MCBinarySearch.h>
#include <vesperon/core/MCGroupEqualObjects.h>
#include <vesperon/core/MCOrderedDictionary.h>
#include <vesperon/core/MCSortDescriptor.h>
#include <vesperon/core/MCVectorIndexes.h>

#include <algorithm>
#include <memory>
#include <numeric>
#include <unordered_set>

template <typename K, typename V, typename Hash, typename KeyEqual>
class MCMutableOrderedDictionary : public MCOrderedDictionary<K, V, Hash, KeyEqual> {
  using Base = MCOrderedDictionary<K, V, Hash, KeyEqual>;
  using Base::hashMap_;
  using Base::keys_;

 public:
  using typename Base::HashMap;
  /// The room a dictionary made without a capacity has.
  static constexpr uint64_t defaultCapacity = 16;

  /// A new empty dictionary each time (unlike the immutable class's shared one).
  static std::shared_ptr<MCMutableOrderedDictionary> orderedDictionary() {
    return std::make_shared<MCMutableOrderedDictionary>();
  }
  /// An empty dictionary with room for `capacity` entries.
  static MCMutableOrderedDictionary orderedDictionaryWithCapacity(uint64_t capacity) {
    return MCMutableOrderedDictionary(capacity);
  }

  /// An empty dictionary with room for defaultCapacity entries.
  MCMutableOrderedDictionary() : MCMutableOrderedDictionary(defaultCapacity) {}
  /// An empty dictionary with room for `capacity` entries.
  explicit MCMutableOrderedDictionary(uint64_t capacity) {
    keys_.reserve(capacity);
    hashMap_.reserve(capacity);
  }
  /// As the immutable class's: the first min(objects, keys) pairs, a repeated key keeping its first place.
  MCMutableOrderedDictionary(const std::vector<V>& objects, const std::vector<K>& keys) : Base(objects, keys) {}
  /// Makes containers of its own with room for the keys and adds every entry.
  MCMutableOrderedDictionary(const std::vector<K>& keys, const HashMap& hashMap) : MCMutableOrderedDictionary(keys.size()) {
    for (const K& key : keys) this->storeAppending(hashMap.at(key), key);
  }
  /// A mutable copy of `other`.
  explicit MCMutableOrderedDictionary(const Base& other) : Base(other) {}
  /// A mutable copy of `other`; empty for none.
  static MCMutableOrderedDictionary orderedDictionaryWithOrderedDictionary(const Base* other) {
    return other ? MCMutableOrderedDictionary(*other) : MCMutableOrderedDictionary();
  }
  /// Object, key, object, key, …; stops at the first nil object or key.
  template <typename... Args>
  static MCMutableOrderedDictionary orderedDictionaryWithObjectsAndKeys(const Args&... objectsAndKeys) {
    return MCMutableOrderedDictionary(Base::orderedDictionaryWithObjectsAndKeys(objectsAndKeys...));
  }

  // --- Adding

  /// Sets the object of `key`: a new key is appended, a present one keeps its place.
  void setObject(V object, K key) {
    checkNotNil(object, key, "MCMutableOrderedDictionary::setObject");
    this->storeAppending(object, key);
  }

  /// Sets the object of `key` and puts the key last, whether it was there or not.
  void addObject(V object, K key) {
    checkNotNil(object, key, "MCMutableOrderedDictionary::addObject");
    auto [it, inserted] = hashMap_.insert_or_assign(key, std::move(object));
    if (!inserted) keys_.erase(keys_.begin() + this->indexOfKey(key));
    keys_.push_back(std::move(key));
  }

  /// An index above count does nothing at all. A new key is inserted at the index. A present key
  /// stays when the index is its own; otherwise it is taken out and inserted at the index, or at
  /// index - 1 when the index lies after its old place. The object is set in every case but the
  /// first.
  void insertObject(V object, K key, uint64_t index) {
    checkNotNil(object, key, "MCMutableOrderedDictionary::insertObject");
    if (index > keys_.size()) return;
    uint64_t old = this->indexOfKey(key);
    if (old == NSNotFound) {
      keys_.insert(keys_.begin() + index, key);
    } else if (old != index) {
      keys_.erase(keys_.begin() + old);
      keys_.insert(keys_.begin() + (index > old ? index - 1 : index), key);
    }
    hashMap_.insert_or_assign(std::move(key), std::move(object));
  }

  /// In the other's key order, adds each key that is absent (at the end); present keys keep their
  /// object and place.
  void addEntriesFromOrderedDictionary(const Base& other) {
    other.enumerateKeysAndObjectsUsingBlock([this](const K& key, const V& object, uint64_t, bool&) {
      if (!this->containsKey(key)) addObject(object, key);
    });
  }

  /// Adds the entry into the sorted range of the key order. A present key keeps its place (the key
  /// given replaces the one held) and takes the object. Otherwise the key is inserted at the
  /// binary-search insertion index within `range`, found with `comparator(key1, object1, key2,
  /// object2)`, where the new key carries the new object. A range past the end raises
  /// std::out_of_range.
  template <typename Comparator>
  void addObject(V object, K key, MCRange range, const Comparator& comparator) {
    checkNotNil(object, key, "MCMutableOrderedDictionary::addObject");
    uint64_t index = this->indexOfKey(key);
    if (index != NSNotFound) {
      hashMap_.erase(keys_[index]);
      keys_[index] = key;
    } else {
      if (range.location > keys_.size() || range.length > keys_.size() - range.location)
        mc_detail::throwIndexOutOfRange("MCMutableOrderedDictionary::addObject", range.location + range.length,
                                        keys_.size());
      index = uint64_t(MCBinarySearchInsertionIndex(int64_t(range.location), int64_t(range.length), [&](int64_t i) {
        const K& other = keys_[size_t(i)];
        return comparator(key, object, other, hashMap_.at(other));
      }));
      keys_.insert(keys_.begin() + index, key);
    }
    hashMap_.insert_or_assign(std::move(key), std::move(object));
  }

  // --- Removing

  /// Removes every key that maps to an object equal to `object`.
  void removeObject(const V& object) {
    std::erase_if(keys_, [&](const K& key) {
      auto it = hashMap_.find(key);
      if (!isEqualObject(it->second, object)) return false;
      hashMap_.erase(it);
      return true;
    });
  }
  /// Removes the entry of `key`; nothing when it is absent.
  void removeObjectForKey(const K& key) {
    if (hashMap_.erase(key) == 0) return;
    keys_.erase(keys_.begin() + this->indexOfKey(key));
  }
  /// Removes the entries of the keys that are present.
  void removeObjectsForKeys(const std::vector<K>& keys) {
    std::unordered_set<K, Hash, KeyEqual> removed;
    for (const K& key : keys)
      if (hashMap_.erase(key)) removed.insert(key);
    if (!removed.empty()) std::erase_if(keys_, [&](const K& key) { return removed.count(key) != 0; });
  }
  /// Nothing at or past count.
  void removeObjectAtIndex(uint64_t index) {
    if (index >= keys_.size()) return;
    hashMap_.erase(keys_[index]);
    keys_.erase(keys_.begin() + index);
  }
  /// An index past the end raises std::out_of_range and removes nothing.
  void removeObjectsAtIndexes(const MCIndexSet& indexes) {
    this->checkIndexes(indexes, "MCMutableOrderedDictionary::removeObjectsAtIndexes");
    for (const K& key : MCTakeObjectsAtIndexes(keys_, indexes)) hashMap_.erase(key);
  }
  /// Removes the last entry; nothing when empty.
  void removeLastObject() {
    if (!keys_.empty()) removeObjectAtIndex(keys_.size() - 1);
  }
  /// Removes every entry.
  void removeAllObjects() {
    keys_.clear();
    hashMap_.clear();
  }

  // --- Sorting the key order (all stable)

  /// By the keys' own order (< and ==).
  void sortKeys() {
    sortKeysUsingComparator([](const K& a, const K& b) { return MCCompareValues(a, b); });
  }
  /// Sorts the keys by `function(a, b, context)`, a comparison result; equal keys keep their order.
  void sortKeysUsingFunction(int (*function)(const K&, const K&, void*), void* context) {
    sortKeysUsingComparator([&](const K& a, const K& b) { return function(a, b, context); });
  }
  /// Sorts the keys by the descriptors, the first deciding first; equal keys keep their order.
  void sortKeysUsingDescriptors(const std::vector<MCSortDescriptor<K>>& descriptors) {
    sortKeysUsingComparator(MCComparatorWithSortDescriptors(descriptors));
  }
  /// Sorts the keys by `comparator(a, b)`, a comparison result; equal keys keep their order.
  template <typename Comparator>
  void sortKeysUsingComparator(const Comparator& comparator) {
    std::stable_sort(keys_.begin(), keys_.end(), [&](const K& a, const K& b) { return comparator(a, b) < 0; });
  }
  /// The same (the options change nothing: the sort is always stable).
  template <typename Comparator>
  void sortKeysWithOptions(uint64_t /*options*/, const Comparator& comparator) {
    sortKeysUsingComparator(comparator);
  }
  /// `comparator(key1, object1, key2, object2)`.
  template <typename Comparator>
  void sortKeysAndObjectsUsingComparator(const Comparator& comparator) {
    std::stable_sort(keys_.begin(), keys_.end(), [&](const K& a, const K& b) {
      return comparator(a, hashMap_.at(a), b, hashMap_.at(b)) < 0;
    });
  }
  /// The same (the options change nothing: the sort is always stable).
  template <typename Comparator>
  void sortKeysAndObjectsWithOptions(uint64_t /*options*/, const Comparator& comparator) {
    sortKeysAndObjectsUsingComparator(comparator);
  }

  // --- Grouping

  /// Moves entries so that equal objects stand next to each other: the first occurrence of each
  /// object keeps its relative place and later equal entries are pulled up behind it, keys along.
  void groupEqualObjects() {
    std::vector<V> work = this->allObjects();
    mc_detail::groupEqualElements(work, [this](size_t from, size_t to) { mc_detail::moveElement(keys_, from, to); });
  }
  /// The same, with `belongTogether(pivot, candidate)` -> bool deciding (not a comparison result).
  template <typename BelongTogether>
  void groupEqualObjectsUsingComparator(BelongTogether&& belongTogether) {
    std::vector<V> work = this->allObjects();
    mc_detail::groupElements(work, belongTogether,
                             [this](size_t from, size_t to) { mc_detail::moveElement(keys_, from, to); });
  }

 protected:
  /// "MCMutableOrderedDictionary", for description().
  const char* className() const override { return "MCMutableOrderedDictionary"; }

 private:
  static void checkNotNil(const V& object, const K& key, const char* operation) {
    if (MCIsNil(object) || MCIsNil(key)) mc_detail::throwNilObject(operation);
  }
};
