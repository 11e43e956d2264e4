#pragma once
// The grouping walk shared by the mutable array extensions and MCMutableOrderedDictionary: it
// moves elements so that equal ones stand next to each other. The first occurrence of each value
// keeps its relative place, and later equal elements are pulled up behind it in their present
// order: A B A C B becomes A A B B C. Quadratic, as the callers' lists are short.

#include <vesperon/core/MCObjectExtensions.h>

#include <algorithm>
#include <cstddef>
#include <functional>
#include <type_traits>
#include <vector>

namespace mc_detail {

/// A hash that agrees with isEqualObject: pointer-like values hash what they point at when that
/// type has std::hash; types without a hash answer 0, which only takes the shortcut away.
template <typename T>
std::size_t objectHash(const T& value) {
  if constexpr (MCIsNullableType<T>) {
    if (!value) return 0;
    using Pointee = std::remove_cvref_t<decltype(*value)>;
    if constexpr (requires(const Pointee& p) { std::hash<Pointee>{}(p); })
      return std::hash<Pointee>{}(*value);
    else
      return 0;
  } else if constexpr (requires { std::hash<T>{}(value); }) {
    return std::hash<T>{}(value);
  } else {
    return 0;
  }
}

/// Groups `work` in place. `belongTogether(pivot, candidate)` decides; the pivot of a pass is the
/// element taken at its start. `moved(from, to)` is told of every move, so that a parallel list
/// can be moved the same way (take the element at `from` out and insert it at `to`).
template <typename T, typename BelongTogether, typename Moved>
void groupElements(std::vector<T>& work, BelongTogether&& belongTogether, Moved&& moved) {
  if (work.size() < 2) return;
  for (std::size_t i = 0; i + 1 < work.size(); ++i) {
    const T pivot = work[i];
    for (std::size_t j = i + 1; j < work.size(); ++j) {
      if (!belongTogether(pivot, work[j])) continue;
      ++i;
      if (i < j) {
        std::rotate(work.begin() + i, work.begin() + j, work.begin() + j + 1);
        moved(j, i);
      }
    }
  }
}

/// Groups by equality: the hash test first, so that isEqualObject runs only on likely matches.
template <typename T, typename Moved>
void groupEqualElements(std::vector<T>& work, Moved&& moved) {
  groupElements(
      work,
      [](const T& pivot, const T& candidate) {
        return objectHash(pivot) == objectHash(candidate) && isEqualObject(pivot, candidate);
      },
      moved);
}

/// Moves the element at `from` to `to` in a parallel list.
template <typename T>
void moveElement(std::vector<T>& list, std::size_t from, std::size_t to) {
  if (from > to)
    std::rotate(list.begin() + to, list.begin() + from, list.begin() + from + 1);
  else if (from < to)
    std::rotate(list.begin() + from, list.begin() + from + 1, list.begin() + to + 1);
}

}  // namespace mc_detail
