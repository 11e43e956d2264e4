#pragma once
// MCKeyValueChange: what an observable object tells its observers after one of its values changed.
//
// Exactly four kinds of change exist, numbered as the platform numbers them:
//   Setting (1)      the whole value was set: oldValue and newValue are the value before and after.
//   Insertion (2)    objects were inserted into a list: newValue holds them, indexes says where
//                    they now stand.
//   Removal (3)      objects were removed from a list: oldValue holds them, indexes says where they
//                    stood.
//   Replacement (4)  objects of a list were replaced: oldValue and newValue hold them, indexes
//                    says where.
// For a list of E the value type V is std::vector<E>; a list change carries only the objects it
// touched, in index order.

#include <vesperon/core/MCIndexSet.h>

#include <utility>

enum class MCKeyValueChangeKind : int {
  Setting = 1,
  Insertion = 2,
  Removal = 3,
  Replacement = 4,
};

/// The part of a change that does not depend on the value type; what the object's signal carries.
struct MCKeyValueChangeBase {
  /// A change of `kind` at `indexes`.
  explicit MCKeyValueChangeBase(MCKeyValueChangeKind k, MCIndexSet i = {}) : kind(k), indexes(std::move(i)) {}
  virtual ~MCKeyValueChangeBase() = default;

  /// Setting, insertion, removal or replacement.
  MCKeyValueChangeKind kind;
  /// Empty for a setting.
  MCIndexSet indexes;
};

template <typename V>
struct MCKeyValueChange final : MCKeyValueChangeBase {
  /// A change of `kind` from `oldV` to `newV` at `i`.
  MCKeyValueChange(MCKeyValueChangeKind k, V oldV, V newV, MCIndexSet i = {})
      : MCKeyValueChangeBase(k, std::move(i)), oldValue(std::move(oldV)), newValue(std::move(newV)) {}

  /// Empty (default) for an insertion.
  V oldValue;
  /// Empty (default) for a removal.
  V newValue;
};
