#pragma once
// MCMergeController: walks two lists sorted in one order side by side and reports every element
// once — as only in the old list, only in the new list, or as an equal pair.
//
// Each report carries the element's position in the merged sequence, in which an equal pair takes
// a single place. With old 1, 3 and new 2, 3 the calls are old(1, 0), new(2, 1), equal(3, 3, 2).
// MCTreeController diffs a node's children against freshly built candidates with it.
//
//   MCMergeController<int> merge;
//   merge.setOldBlock([](const int& gone, uint64_t at) { … });
//   merge.setNewBlock([](const int& added, uint64_t at) { … });
//   merge.setEqualBlock([](const int& before, const int& after, uint64_t at) { … });
//   merge.merge(oldList, newList, [](const int& a, const int& b) { return MCCompareValues(a, b); });
//
// The comparator is given (old element, new element) and answers -1, 0 or 1; both lists must be
// sorted in its order. All three blocks must be set before merge(); a missing one raises
// std::invalid_argument "*** MCMergeController::merge: block must not be nil".

#include <vesperon/core/MCExceptions.h>

#include <cstdint>
#include <functional>
#include <utility>
#include <vector>

template <typename Old, typename New = Old>
class MCMergeController {
 public:
  /// Hears an element only the old list has.
  using OldBlock = std::function<void(const Old& oldElement, uint64_t position)>;
  /// Hears an element only the new list has.
  using NewBlock = std::function<void(const New& newElement, uint64_t position)>;
  /// Hears an element both lists have.
  using EqualBlock = std::function<void(const Old& oldElement, const New& newElement, uint64_t position)>;

  /// What hears old-only elements.
  const OldBlock& oldBlock() const { return oldBlock_; }
  /// What hears new-only elements.
  const NewBlock& newBlock() const { return newBlock_; }
  /// What hears elements in both.
  const EqualBlock& equalBlock() const { return equalBlock_; }
  /// Sets what hears old-only elements.
  void setOldBlock(OldBlock block) { oldBlock_ = std::move(block); }
  /// Sets what hears new-only elements.
  void setNewBlock(NewBlock block) { newBlock_ = std::move(block); }
  /// Sets what hears elements in both.
  void setEqualBlock(EqualBlock block) { equalBlock_ = std::move(block); }

  /// Walks both lists and calls one block per element (per pair for equal ones).
  template <typename Comparator>
  void merge(const std::vector<Old>& oldList, const std::vector<New>& newList, const Comparator& comparator) const {
    if (!oldBlock_ || !newBlock_ || !equalBlock_) mc_detail::throwNilBlock("MCMergeController::merge");
    size_t i = 0, j = 0;
    uint64_t position = 0;
    while (i < oldList.size() && j < newList.size()) {
      // Any result above 0 counts as 1 and any below as -1, so that a comparator answering
      // a plain difference cannot stall the walk.
      auto order = comparator(oldList[i], newList[j]);
      if (order > 0) {
        newBlock_(newList[j], position);
        ++j;
      } else if (order == 0) {
        equalBlock_(oldList[i], newList[j], position);
        ++i;
        ++j;
      } else {
        oldBlock_(oldList[i], position);
        ++i;
      }
      ++position;
    }
    for (; i < oldList.size(); ++i) oldBlock_(oldList[i], position++);
    for (; j < newList.size(); ++j) newBlock_(newList[j], position++);
  }

 private:
  OldBlock oldBlock_;
  NewBlock newBlock_;
  EqualBlock equalBlock_;
};
