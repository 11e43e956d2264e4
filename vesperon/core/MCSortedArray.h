#pragma once
// MCSortedArray: an array kept sorted by a comparator fixed at creation. Comparator-equal objects
// may coexist; among them the place of a newly inserted object is not fixed.
//
// The comparator returns -1, 0 or 1 (MCComparisonResult) for (a, b). Objects that are nil
// (an empty shared_ptr, a null pointer, an empty optional) are refused with std::invalid_argument
// "*** MCSortedArray::<operation>: object must not be nil". Not thread-safe.

#include <vesperon/core/MCBinarySearch.h>
#include <vesperon/core/MCExceptions.h>
#include <vesperon/core/MCNullable.h>
#include <vesperon/core/MCObjectExtensions.h>
#include <vesperon/core/MCTypes.h>

#include <algorithm>
#include <cstdint>
#include <functional>
#include <memory>
#include <stdexcept>
#include <utility>
#include <vector>

template <typename T, typename Compare = std::function<int(const T&, const T&)>>
class MCSortedArray {
 public:
  /// The ordering.
  using Comparator = Compare;
  /// Iterates in order.
  using const_iterator = typename std::vector<T>::const_iterator;

  /// `initWithComparator:`: none for a nil comparator.
  static std::shared_ptr<MCSortedArray> create(Comparator comparator) {
    if (mc_detail::isNilCallable(comparator)) return nullptr;
    return std::make_shared<MCSortedArray>(std::move(comparator));
  }

  /// Throws std::invalid_argument for a nil comparator; use create() to get none instead.
  explicit MCSortedArray(Comparator comparator) : comparator_(std::move(comparator)) {
    if (mc_detail::isNilCallable(comparator_))
      throw std::invalid_argument("*** MCSortedArray::initWithComparator: comparator must not be nil");
  }

  /// How many objects there are.
  uint64_t count() const { return array_.size(); }
  /// Whether there is none.
  bool empty() const { return array_.empty(); }
  /// The ordering.
  const Comparator& comparator() const { return comparator_; }
  /// The sorted contents.
  const std::vector<T>& array() const { return array_; }

  /// Inserts at the binary-search insertion index and answers that index.
  uint64_t insertObject(T object) {
    if (MCIsNil(object)) mc_detail::throwNilObject("MCSortedArray::insertObject");
    int64_t index = MCBinarySearchInsertionIndex(0, static_cast<int64_t>(array_.size()),
                                                 [&](int64_t i) { return comparator_(object, array_[size_t(i)]); });
    array_.insert(array_.begin() + index, std::move(object));
    return uint64_t(index);
  }

  /// Removes every object that is comparator-equal to `object`.
  void removeObject(const T& object) {
    if (MCIsNil(object)) mc_detail::throwNilObject("MCSortedArray::removeObject");
    auto first = lowerBound(object);
    if (first == array_.cend() || comparator_(*first, object) != 0) return;
    auto last = std::upper_bound(first, array_.cend(), object,
                                 [this](const T& value, const T& element) { return comparator_(value, element) < 0; });
    array_.erase(first, last);
  }

  /// Removes every object equal to `object` (isEqualObject); the comparator plays no part.
  void removeObjectEqualTo(const T& object) {
    if (MCIsNil(object)) mc_detail::throwNilObject("MCSortedArray::removeObjectEqualTo");
    std::erase_if(array_, [&](const T& element) { return isEqualObject(element, object); });
  }

  /// Removes every occurrence of that very object (the same pointer, for pointer-like types).
  void removeObjectIdenticalTo(const T& object) {
    if (MCIsNil(object)) mc_detail::throwNilObject("MCSortedArray::removeObjectIdenticalTo");
    std::erase_if(array_, [&](const T& element) { return isIdenticalObject(element, object); });
  }

  /// Removes every object.
  void removeAllObjects() { array_.clear(); }

  /// The first comparator-equal index, or NSNotFound.
  uint64_t indexOfObject(const T& object) const {
    if (MCIsNil(object)) mc_detail::throwNilObject("MCSortedArray::indexOfObject");
    auto first = lowerBound(object);
    if (first == array_.end() || comparator_(*first, object) != 0) return NSNotFound;
    return uint64_t(first - array_.begin());
  }

  /// Throws std::out_of_range at or past count.
  const T& objectAtIndex(uint64_t index) const {
    if (index >= array_.size()) mc_detail::throwIndexOutOfRange("MCSortedArray::objectAtIndex", index, array_.size());
    return array_[index];
  }
  /// The object at `index`, as objectAtIndex.
  const T& operator[](uint64_t index) const { return objectAtIndex(index); }

  /// Calls `body(object, index, stop)` in order until `stop` is set.
  template <typename Body>
  void enumerateObjectsUsingBlock(Body&& body) const {
    bool stop = false;
    for (uint64_t i = 0; i < array_.size() && !stop; ++i) body(array_[i], i, stop);
  }

  /// The first object.
  const_iterator begin() const { return array_.begin(); }
  /// Past the last object.
  const_iterator end() const { return array_.end(); }

 private:
  const_iterator lowerBound(const T& object) const {
    return std::lower_bound(array_.begin(), array_.end(), object,
                            [this](const T& element, const T& value) { return comparator_(element, value) < 0; });
  }

  std::vector<T> array_;
  Comparator comparator_;
};
