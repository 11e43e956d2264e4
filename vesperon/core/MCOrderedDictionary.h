#pragma once
// MCOrderedDictionary<K, V>: a dictionary that remembers the order of its keys.
//
// Two containers: the key order (a vector) and a hash map from key to object, with exactly one map
// entry per key in the order and the other way round. Keys are compared with Hash and KeyEqual
// (std::hash and == by default) and are held as given; objects are compared with isEqualObject
// (pointees for pointer-like objects). Reads that find nothing answer the empty MCNullable value;
// single-index reads past the end answer it too and raise nothing. Iteration walks the keys in
// order. Not thread-safe: one thread at a time.
//
// This class has only the reading operations; MCMutableOrderedDictionary adds the changes.

#include <vesperon/core/MCEnumerationOptions.h>
#include <vesperon/core/MCExceptions.h>
#include <vesperon/core/MCIndexSet.h>
#include <vesperon/core/MCNullable.h>
#include <vesperon/core/MCObjectExtensions.h>
#include <vesperon/core/MCObjectSet.h>
#include <vesperon/core/MCTypes.h>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

template <typename K, typename V, typename Hash = std::hash<K>, typename KeyEqual = std::equal_to<K>>
class MCMutableOrderedDictionary;

template <typename K, typename V, typename Hash = std::hash<K>, typename KeyEqual = std::equal_to<K>>
class MCOrderedDictionary {
 public:
  /// The key type.
  using Key = K;
  /// The object type.
  using Object = V;
  /// The map from keys to objects that holds the entries.
  using HashMap = std::unordered_map<K, V, Hash, KeyEqual>;
  /// Iterates over the keys in order.
  using const_iterator = typename std::vector<K>::const_iterator;

  // --- Construction

  /// The one shared empty dictionary, made on first use (safely from any thread).
  static std::shared_ptr<const MCOrderedDictionary> orderedDictionary() {
    static const std::shared_ptr<const MCOrderedDictionary> empty = std::make_shared<const MCOrderedDictionary>();
    return empty;
  }

  /// An empty dictionary.
  MCOrderedDictionary() = default;

  /// `initWithOrderedDictionary:`: a shallow copy; a null argument gives an empty dictionary.
  static MCOrderedDictionary orderedDictionaryWithOrderedDictionary(const MCOrderedDictionary* other) {
    return other ? MCOrderedDictionary(*other) : MCOrderedDictionary();
  }

  /// `initWithObjects:forKeys:`: the first min(objects, keys) pairs. A repeated key keeps its first
  /// place and takes the later object.
  MCOrderedDictionary(const std::vector<V>& objects, const std::vector<K>& keys) {
    size_t n = std::min(objects.size(), keys.size());
    keys_.reserve(n);
    hashMap_.reserve(n);
    for (size_t i = 0; i < n; ++i) storeAppending(objects[i], keys[i]);
  }

  /// `initWithObjectsAndKeys:`: object, key, object, key, …; stops at the first nil object or key.
  template <typename... Args>
  static MCOrderedDictionary orderedDictionaryWithObjectsAndKeys(const Args&... objectsAndKeys) {
    static_assert(sizeof...(Args) % 2 == 0, "objects and keys come in pairs");
    MCOrderedDictionary result;
    result.appendPairs(objectsAndKeys...);
    return result;
  }

  /// `initWithKeys:hashMap:`: takes both containers as they are. The caller guarantees that every
  /// key of `keys` is in `hashMap` once and that the map has no other keys.
  MCOrderedDictionary(std::vector<K> keys, HashMap hashMap) : keys_(std::move(keys)), hashMap_(std::move(hashMap)) {}

  /// The mutable subclass is used through this class too.
  virtual ~MCOrderedDictionary() = default;
  /// A copy that shares no state with the original.
  MCOrderedDictionary(const MCOrderedDictionary&) = default;
  /// Takes the entries of `other`, which is left empty.
  MCOrderedDictionary(MCOrderedDictionary&&) noexcept = default;
  /// Becomes a copy of `other`.
  MCOrderedDictionary& operator=(const MCOrderedDictionary&) = default;
  /// Takes the entries of `other`.
  MCOrderedDictionary& operator=(MCOrderedDictionary&&) noexcept = default;

  // --- Reading

  /// How many entries there are.
  uint64_t count() const { return keys_.size(); }
  /// Whether there is none.
  bool empty() const { return keys_.empty(); }
  /// A copy of the key order.
  std::vector<K> allKeys() const { return keys_; }
  /// The objects in key order.
  std::vector<V> allObjects() const {
    std::vector<V> objects;
    objects.reserve(keys_.size());
    for (const K& key : keys_) objects.push_back(hashMap_.at(key));
    return objects;
  }
  /// The object of `key`; none when the key is absent.
  MCNullable<V> objectForKey(const K& key) const {
    auto it = hashMap_.find(key);
    if (it == hashMap_.end()) return {};
    return it->second;
  }
  /// The first key; none when the dictionary is empty.
  MCNullable<K> firstKey() const { return keys_.empty() ? MCNullable<K>() : MCNullable<K>(keys_.front()); }
  /// The last key; none when the dictionary is empty.
  MCNullable<K> lastKey() const { return keys_.empty() ? MCNullable<K>() : MCNullable<K>(keys_.back()); }
  /// The object of the first key; none when the dictionary is empty.
  MCNullable<V> firstObject() const { return keys_.empty() ? MCNullable<V>() : MCNullable<V>(hashMap_.at(keys_.front())); }
  /// The object of the last key; none when the dictionary is empty.
  MCNullable<V> lastObject() const { return keys_.empty() ? MCNullable<V>() : MCNullable<V>(hashMap_.at(keys_.back())); }
  /// None at or past count.
  MCNullable<K> keyAtIndex(uint64_t index) const {
    return index < keys_.size() ? MCNullable<K>(keys_[index]) : MCNullable<K>();
  }
  /// The object of the key at `index`; none at or past count.
  MCNullable<V> objectAtIndex(uint64_t index) const {
    return index < keys_.size() ? MCNullable<V>(hashMap_.at(keys_[index])) : MCNullable<V>();
  }
  /// Index of the key, or NSNotFound.
  uint64_t indexOfKey(const K& key) const {
    KeyEqual equal;
    for (uint64_t i = 0; i < keys_.size(); ++i)
      if (equal(keys_[i], key)) return i;
    return NSNotFound;
  }
  /// Index of a key holding the object, or NSNotFound. The key is the first that the hash map
  /// lists for the object, which is not the one with the lowest index as a rule.
  uint64_t indexOfObject(const V& object) const {
    for (const auto& [key, value] : hashMap_)
      if (isEqualObject(value, object)) return indexOfKey(key);
    return NSNotFound;
  }
  /// Keys and objects at the indexes, in index order. An index past the end raises
  /// std::out_of_range.
  std::vector<K> keysAtIndexes(const MCIndexSet& indexes) const {
    checkIndexes(indexes, "MCOrderedDictionary::keysAtIndexes");
    std::vector<K> result;
    for (uint64_t i : indexes) result.push_back(keys_[i]);
    return result;
  }
  /// The objects at the indexes, in index order; an index past the end raises std::out_of_range.
  std::vector<V> objectsAtIndexes(const MCIndexSet& indexes) const {
    checkIndexes(indexes, "MCOrderedDictionary::objectsAtIndexes");
    std::vector<V> result;
    for (uint64_t i : indexes) result.push_back(hashMap_.at(keys_[i]));
    return result;
  }
  /// Objects of the keys in the order given; absent keys are skipped, so the result can be shorter.
  std::vector<V> objectsForKeys(const std::vector<K>& keys) const {
    std::vector<V> result;
    for (const K& key : keys)
      if (auto it = hashMap_.find(key); it != hashMap_.end()) result.push_back(it->second);
    return result;
  }
  /// A new (immutable) dictionary of the keys in `range`; a range past the end raises
  /// std::out_of_range.
  MCOrderedDictionary orderedDictionaryWithRange(MCRange range) const {
    if (range.location > keys_.size() || range.length > keys_.size() - range.location)
      mc_detail::throwIndexOutOfRange("MCOrderedDictionary::orderedDictionaryWithRange",
                                      range.location + range.length - (range.length ? 1 : 0), keys_.size());
    std::vector<K> keys(keys_.begin() + range.location, keys_.begin() + range.location + range.length);
    HashMap map;
    for (const K& key : keys) map.emplace(key, hashMap_.at(key));
    return MCOrderedDictionary(std::move(keys), std::move(map));
  }
  /// Whether `key` is present.
  bool containsKey(const K& key) const { return hashMap_.count(key) != 0; }
  /// Whether some key holds an object equal to `object`.
  bool containsObject(const V& object) const {
    return std::any_of(hashMap_.begin(), hashMap_.end(), [&](const auto& e) { return isEqualObject(e.second, object); });
  }
  /// Indexes of the keys given that are present.
  MCIndexSet indexesOfKeys(const std::vector<K>& keys) const {
    const std::unordered_set<K, Hash, KeyEqual> wanted(keys.begin(), keys.end());
    MCIndexSet result;
    for (uint64_t i = 0; i < keys_.size(); ++i)
      if (wanted.count(keys_[i])) result.addIndex(i);
    return result;
  }
  /// Indexes of all keys whose object is among `objects`.
  MCIndexSet indexesOfObjects(const std::vector<V>& objects) const {
    const mc_detail::ObjectSet<V> wanted(objects);
    MCIndexSet result;
    for (uint64_t i = 0; i < keys_.size(); ++i)
      if (wanted.contains(hashMap_.at(keys_[i]))) result.addIndex(i);
    return result;
  }

  // --- Enumeration

  /// `body(key, index, stop)` in key order until `stop` is set.
  template <typename Body>
  void enumerateKeysUsingBlock(Body&& body) const {
    enumerateKeysWithOptions(0, body);
  }
  /// The same; MCEnumerationReverse walks from the last key.
  template <typename Body>
  void enumerateKeysWithOptions(uint64_t options, Body&& body) const {
    walk(options, [&](uint64_t i, bool& stop) { body(keys_[i], i, stop); });
  }
  /// `body(key, object, index, stop)`.
  template <typename Body>
  void enumerateKeysAndObjectsUsingBlock(Body&& body) const {
    enumerateKeysAndObjectsWithOptions(0, body);
  }
  /// The same; MCEnumerationReverse walks from the last key.
  template <typename Body>
  void enumerateKeysAndObjectsWithOptions(uint64_t options, Body&& body) const {
    walk(options, [&](uint64_t i, bool& stop) { body(keys_[i], hashMap_.at(keys_[i]), i, stop); });
  }
  /// Objects for which `test(key, object, stop)` is true. The order of the result is not a
  /// promise (today it is the key order).
  template <typename Test>
  std::vector<V> filteredObjectsUsingBlock(Test&& test) const {
    std::vector<V> result;
    bool stop = false;
    for (const K& key : keys_) {
      const V& value = hashMap_.at(key);
      if (test(key, value, stop)) result.push_back(value);
      if (stop) break;
    }
    return result;
  }

  /// The first key, for range-for over the keys in order.
  const_iterator begin() const { return keys_.begin(); }
  /// Past the last key.
  const_iterator end() const { return keys_.end(); }

  // --- Copies and text

  /// An immutable copy (a copy of this class whatever the receiver's class).
  MCOrderedDictionary copy() const { return MCOrderedDictionary(keys_, hashMap_); }
  /// A mutable copy.
  MCMutableOrderedDictionary<K, V, Hash, KeyEqual> mutableCopy() const {
    return MCMutableOrderedDictionary<K, V, Hash, KeyEqual>(keys_, hashMap_);
  }

  /// "<MCOrderedDictionary: 0x…>\nKeys: [...]\nObjects:[...]", for keys and objects that fmt can
  /// print.
  std::string description() const {
    return fmt::format("<{}: {}>\nKeys: {}\nObjects:{}", className(), static_cast<const void*>(this),
                       fmt::join(keys_, ", "), fmt::join(allObjects(), ", "));
  }

  /// Same keys in the same order with equal objects.
  friend bool operator==(const MCOrderedDictionary& a, const MCOrderedDictionary& b) {
    if (a.keys_.size() != b.keys_.size()) return false;
    KeyEqual equal;
    for (size_t i = 0; i < a.keys_.size(); ++i)
      if (!equal(a.keys_[i], b.keys_[i]) || !isEqualObject(a.hashMap_.at(a.keys_[i]), b.hashMap_.at(b.keys_[i])))
        return false;
    return true;
  }

 protected:
  /// The class name that description() prints.
  virtual const char* className() const { return "MCOrderedDictionary"; }

  // Sets the object of a present key in place, or appends a new key.
  /// Sets the object of a present key in place, or appends a new key.
  void storeAppending(const V& object, const K& key) {
    auto [it, inserted] = hashMap_.insert_or_assign(key, object);
    if (inserted) keys_.push_back(key);
  }

  /// Raises std::out_of_range, naming `operation`, for an index past the end.
  void checkIndexes(const MCIndexSet& indexes, const char* operation) const {
    if (!indexes.empty() && indexes.lastIndex() >= keys_.size())
      mc_detail::throwIndexOutOfRange(operation, indexes.lastIndex(), keys_.size());
  }

  /// Calls `step(index, stop)` over the indexes, forward or (MCEnumerationReverse) backward, until `stop`.
  template <typename Step>
  void walk(uint64_t options, Step&& step) const {
    bool stop = false;
    const uint64_t n = keys_.size();
    for (uint64_t k = 0; k < n && !stop; ++k) step((options & MCEnumerationReverse) ? n - 1 - k : k, stop);
  }

  /// The keys in order.
  std::vector<K> keys_;
  /// Key to object, for every key of keys_.
  HashMap hashMap_;

 private:
  void appendPairs() {}
  template <typename O, typename Kk, typename... Rest>
  void appendPairs(const O& object, const Kk& key, const Rest&... rest) {
    if constexpr (MCIsNilLiteral<O> || MCIsNilLiteral<Kk>) {
      return;  // a literal nil ends the list where it stands
    } else {
      if (MCIsNil(object) || MCIsNil(key)) return;
      storeAppending(V(object), K(key));
      appendPairs(rest...);
    }
  }
};

// The mutable class completes this one (mutableCopy); including either header gives both.
#include <vesperon/core/MCMutableOrderedDictionary.h>
