#pragma once
// MCObservableArray<E>: an observable list of an MCObservableObject. Changes made through its
// accessors emit exactly one change each on the owner's signal, under the list's key path, after
// the list has changed:
//
//   setArray                       Setting      old list, new list
//   insertObject, insertObjects,   Insertion    the inserted objects, their indexes afterwards
//   addObject, addObjects
//   removeObjectAtIndex,           Removal      the removed objects, their indexes before
//   removeObjectsAtIndexes,
//   removeObject, removeLastObject,
//   removeAllObjects
//   replaceObjectAtIndex,          Replacement  the old and the new objects, their indexes
//   replaceObjectsAtIndexes
//
// A call that changes nothing (an empty index set, removing an absent object, emptying an empty
// list) emits nothing. The value type of the changes is std::vector<E> (`Value`), so the list is
// observed with MCValueObserver<MCObservableArray<E>::Value>.
//
// An index past the end raises std::out_of_range "*** MCObservableArray::<operation>: index %ld is
// out of range [0..%ld]" and leaves the list as it was. The list lives inside its owner and is
// neither copied nor moved; read it through array(), count(), objectAtIndex() or iteration.

#include <vesperon/core/MCExceptions.h>
#include <vesperon/core/MCIndexSet.h>
#include <vesperon/core/MCKeyValueChange.h>
#include <vesperon/core/MCObjectExtensions.h>
#include <vesperon/core/MCObservableObject.h>
#include <vesperon/core/MCVectorIndexes.h>

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

template <typename E>
class MCObservableArray {
 public:
  /// The list itself.
  using Value = std::vector<E>;
  /// Iterates over the elements.
  using const_iterator = typename Value::const_iterator;

  /// A list under `keyPath` of `owner`, holding `initial`.
  MCObservableArray(MCObservableObject& owner, std::string keyPath, Value initial = {})
      : owner_(owner), keyPath_(std::move(keyPath)), array_(std::move(initial)) {}
  MCObservableArray(const MCObservableArray&) = delete;
  MCObservableArray& operator=(const MCObservableArray&) = delete;

  /// The key path observers name it by.
  const std::string& keyPath() const { return keyPath_; }

  // --- Reading
  /// The elements.
  const Value& array() const { return array_; }
  /// How many elements there are.
  uint64_t count() const { return array_.size(); }
  /// Whether there is none.
  bool empty() const { return array_.empty(); }
  /// The element at `index`; past the end raises std::out_of_range.
  const E& objectAtIndex(uint64_t index) const {
    if (index >= array_.size()) mc_detail::throwIndexOutOfRange("MCObservableArray::objectAtIndex", index, array_.size());
    return array_[index];
  }
  /// The element at `index`, as objectAtIndex.
  const E& operator[](uint64_t index) const { return objectAtIndex(index); }
  /// Index of the first object equal to `object` (isEqualObject), or NSNotFound.
  uint64_t indexOfObject(const E& object) const {
    for (uint64_t i = 0; i < array_.size(); ++i)
      if (isEqualObject(array_[i], object)) return i;
    return NSNotFound;
  }
  /// Whether an element equals `object`.
  bool containsObject(const E& object) const { return indexOfObject(object) != NSNotFound; }
  /// The first element.
  const_iterator begin() const { return array_.begin(); }
  /// Past the last element.
  const_iterator end() const { return array_.end(); }

  // --- Setting
  /// Replaces the whole list (a setting change).
  void setArray(Value array) {
    Value old = std::exchange(array_, std::move(array));
    emit(MCKeyValueChangeKind::Setting, std::move(old), array_, {});
  }

  // --- Insertion
  /// Inserts `object` at `index` (an insertion change).
  void insertObject(E object, uint64_t index) {
    if (index > array_.size()) mc_detail::throwIndexOutOfRange("MCObservableArray::insertObject", index, array_.size());
    array_.insert(array_.begin() + index, object);
    emit(MCKeyValueChangeKind::Insertion, {}, Value{std::move(object)}, MCIndexSet(index));
  }
  /// Appends `object`.
  void addObject(E object) { insertObject(std::move(object), array_.size()); }
  /// Appends `objects` (one insertion change).
  void addObjects(Value objects) {
    if (objects.empty()) return;
    MCIndexSet indexes(MCRange{array_.size(), objects.size()});
    array_.insert(array_.end(), objects.begin(), objects.end());
    emit(MCKeyValueChangeKind::Insertion, {}, std::move(objects), std::move(indexes));
  }
  /// Inserts the objects so that they stand at `indexes` afterwards (ascending, one per object).
  void insertObjects(Value objects, const MCIndexSet& indexes) {
    if (objects.size() != indexes.count())
      throw std::invalid_argument("*** MCObservableArray::insertObjects: count of objects and indexes differ");
    if (objects.empty()) return;
    uint64_t finalCount = array_.size() + objects.size();
    if (indexes.lastIndex() >= finalCount)
      mc_detail::throwIndexOutOfRange("MCObservableArray::insertObjects", indexes.lastIndex(), array_.size());
    MCInsertObjectsAtIndexes(array_, objects, indexes);
    emit(MCKeyValueChangeKind::Insertion, {}, std::move(objects), indexes);
  }

  // --- Removal
  /// Removes the element at `index` (a removal change).
  void removeObjectAtIndex(uint64_t index) {
    if (index >= array_.size())
      mc_detail::throwIndexOutOfRange("MCObservableArray::removeObjectAtIndex", index, array_.size());
    Value old{std::move(array_[index])};
    array_.erase(array_.begin() + index);
    emit(MCKeyValueChangeKind::Removal, std::move(old), {}, MCIndexSet(index));
  }
  /// Removes the last element; nothing when empty.
  void removeLastObject() {
    if (!array_.empty()) removeObjectAtIndex(array_.size() - 1);
  }
  /// Removes the elements at `indexes` (one removal change).
  void removeObjectsAtIndexes(const MCIndexSet& indexes) {
    if (indexes.empty()) return;
    if (indexes.lastIndex() >= array_.size())
      mc_detail::throwIndexOutOfRange("MCObservableArray::removeObjectsAtIndexes", indexes.lastIndex(), array_.size());
    Value old = MCTakeObjectsAtIndexes(array_, indexes);
    emit(MCKeyValueChangeKind::Removal, std::move(old), {}, indexes);
  }
  /// Removes every object equal to `object` (isEqualObject).
  void removeObject(const E& object) {
    MCIndexSet indexes;
    for (uint64_t i = 0; i < array_.size(); ++i)
      if (isEqualObject(array_[i], object)) indexes.addIndex(i);
    removeObjectsAtIndexes(indexes);
  }
  /// Removes every element.
  void removeAllObjects() { removeObjectsAtIndexes(MCIndexSet(MCRange{0, array_.size()})); }

  // --- Replacement
  /// Replaces the element at `index` (a replacement change).
  void replaceObjectAtIndex(uint64_t index, E object) {
    if (index >= array_.size())
      mc_detail::throwIndexOutOfRange("MCObservableArray::replaceObjectAtIndex", index, array_.size());
    Value old{std::exchange(array_[index], object)};
    emit(MCKeyValueChangeKind::Replacement, std::move(old), Value{std::move(object)}, MCIndexSet(index));
  }
  /// Replaces the objects at `indexes` (ascending) with `objects`, one per index.
  void replaceObjectsAtIndexes(const MCIndexSet& indexes, Value objects) {
    if (objects.size() != indexes.count())
      throw std::invalid_argument("*** MCObservableArray::replaceObjectsAtIndexes: count of objects and indexes differ");
    if (objects.empty()) return;
    if (indexes.lastIndex() >= array_.size())
      mc_detail::throwIndexOutOfRange("MCObservableArray::replaceObjectsAtIndexes", indexes.lastIndex(), array_.size());
    Value old;
    old.reserve(objects.size());
    uint64_t k = 0;
    for (uint64_t index : indexes) old.push_back(std::exchange(array_[index], objects[k++]));
    emit(MCKeyValueChangeKind::Replacement, std::move(old), std::move(objects), indexes);
  }

 private:
  void emit(MCKeyValueChangeKind kind, Value oldValue, Value newValue, MCIndexSet indexes) {
    owner_.didChange(keyPath_, MCKeyValueChange<Value>(kind, std::move(oldValue), std::move(newValue), std::move(indexes)));
  }

  MCObservableObject& owner_;
  std::string keyPath_;
  Value array_;
};
