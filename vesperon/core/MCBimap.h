#pragma once
// MCBimap<K, V>: a map that can be read in both directions, through two hash maps (key to object
// and object to key). `count` is the number of forward entries.
//
// setObject writes both directions and does not remove an older reverse entry: after a second
// object is set for a key, the first object still answers keyForObject. Reads that find nothing
// answer the empty MCNullable value. Not thread-safe.

#include <vesperon/core/MCNullable.h>

#include <cstdint>
#include <functional>
#include <unordered_map>
#include <vector>

template <typename K, typename V, typename KeyHash = std::hash<K>, typename KeyEqual = std::equal_to<K>,
          typename ObjectHash = std::hash<V>, typename ObjectEqual = std::equal_to<V>>
class MCBimap {
 public:
  MCBimap() = default;

  /// How many pairs there are.
  uint64_t count() const { return keyToValueMap_.size(); }

  /// The object of `key`; none when absent.
  MCNullable<V> objectForKey(const K& key) const { return lookup(keyToValueMap_, key); }
  /// The key of `object`; none when absent.
  MCNullable<K> keyForObject(const V& object) const { return lookup(valueToKeyMap_, object); }

  /// One result per key, `notFoundMarker` at each miss.
  std::vector<V> objectsForKeys(const std::vector<K>& keys, const V& notFoundMarker) const {
    return lookupMany(keyToValueMap_, keys, notFoundMarker);
  }
  /// The key of each object, `notFoundMarker` for one that is absent.
  std::vector<K> keysForObjects(const std::vector<V>& objects, const K& notFoundMarker) const {
    return lookupMany(valueToKeyMap_, objects, notFoundMarker);
  }

  /// Whether `key` is present.
  bool containsKey(const K& key) const { return keyToValueMap_.count(key) != 0; }
  /// Whether `object` is present.
  bool containsObject(const V& object) const { return valueToKeyMap_.count(object) != 0; }

  /// Maps `key` to `object` and `object` back to `key`, replacing what each mapped to before.
  void setObject(const V& object, const K& key) {
    keyToValueMap_.insert_or_assign(key, object);
    valueToKeyMap_.insert_or_assign(object, key);
  }

  /// Removes the key and its object's reverse entry; answers the object, or none.
  MCNullable<V> removeObjectForKey(const K& key) {
    auto it = keyToValueMap_.find(key);
    if (it == keyToValueMap_.end()) return {};
    V object = std::move(it->second);
    keyToValueMap_.erase(it);
    valueToKeyMap_.erase(object);
    return object;
  }
  /// Removes the object and its key's forward entry; answers the key, or none.
  MCNullable<K> removeKeyForObject(const V& object) {
    auto it = valueToKeyMap_.find(object);
    if (it == valueToKeyMap_.end()) return {};
    K key = std::move(it->second);
    valueToKeyMap_.erase(it);
    keyToValueMap_.erase(key);
    return key;
  }

  /// Looks the objects up and drops the misses. When any are found, removes the given keys forward
  /// and the found objects backward. Answers the found objects.
  std::vector<V> removeObjectsForKeys(const std::vector<K>& keys) {
    std::vector<V> found = foundValues(keyToValueMap_, keys);
    if (!found.empty()) {
      for (const K& key : keys) keyToValueMap_.erase(key);
      for (const V& object : found) valueToKeyMap_.erase(object);
    }
    return found;
  }
  /// The mirror: removes the found keys forward and the given objects backward; answers the keys.
  std::vector<K> removeKeysForObjects(const std::vector<V>& objects) {
    std::vector<K> found = foundValues(valueToKeyMap_, objects);
    if (!found.empty()) {
      for (const K& key : found) keyToValueMap_.erase(key);
      for (const V& object : objects) valueToKeyMap_.erase(object);
    }
    return found;
  }

  /// Removes every pair.
  void removeAllObjects() {
    keyToValueMap_.clear();
    valueToKeyMap_.clear();
  }

 private:
  template <typename Map, typename From>
  static MCNullable<typename Map::mapped_type> lookup(const Map& map, const From& from) {
    auto it = map.find(from);
    if (it == map.end()) return {};
    return it->second;
  }
  template <typename Map, typename From, typename To>
  static std::vector<To> lookupMany(const Map& map, const std::vector<From>& from, const To& marker) {
    std::vector<To> result;
    result.reserve(from.size());
    for (const From& f : from) {
      auto it = map.find(f);
      result.push_back(it == map.end() ? marker : it->second);
    }
    return result;
  }
  template <typename Map, typename From>
  static std::vector<typename Map::mapped_type> foundValues(const Map& map, const std::vector<From>& from) {
    std::vector<typename Map::mapped_type> result;
    for (const From& f : from)
      if (auto it = map.find(f); it != map.end()) result.push_back(it->second);
    return result;
  }

  std::unordered_map<K, V, KeyHash, KeyEqual> keyToValueMap_;
  std::unordered_map<V, K, ObjectHash, ObjectEqual> valueToKeyMap_;
};
