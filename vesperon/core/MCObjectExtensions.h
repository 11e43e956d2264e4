#pragma once
// Nil-safe equality of objects, and the callable test the containers use for "a nil block".
//
// The rule of all nil-safe comparisons in the library: identical pointers are equal, nil sorts
// before anything, and nil is equal only to nil. Pointer-like values (shared_ptr, raw pointers,
// optional) are compared by what they point at when that type has ==, else by identity.

#include <vesperon/core/MCNullable.h>

#include <concepts>
#include <functional>
#include <memory>
#include <optional>
#include <type_traits>

namespace mc_detail {

template <typename T>
struct IsStdFunction : std::false_type {};
template <typename R, typename... A>
struct IsStdFunction<std::function<R(A...)>> : std::true_type {};

/// True for an empty std::function or a null function pointer; other callables are never nil.
template <typename F>
bool isNilCallable(const F& f) {
  using D = std::remove_cvref_t<F>;
  if constexpr (IsStdFunction<D>::value || std::is_pointer_v<D>)
    return !f;
  else
    return false;
}

template <typename T>
const void* identityOf(const T& value) {
  if constexpr (std::is_pointer_v<T>)
    return static_cast<const void*>(value);
  else if constexpr (requires { value.get(); })
    return static_cast<const void*>(value.get());
  else
    return static_cast<const void*>(&value);
}

}  // namespace mc_detail

/// `isEqualObject:toObject:` — nil-safe equality. For pointer-like values: same pointer, or both
/// non-nil and the pointees compare equal. For plain values: ==.
template <typename T>
bool isEqualObject(const T& a, const T& b) {
  if constexpr (MCIsNullableType<T>) {
    if (!a || !b) return !a && !b;
    if constexpr (std::is_pointer_v<T> || requires { a.get(); }) {
      if (mc_detail::identityOf(a) == mc_detail::identityOf(b)) return true;
      if constexpr (std::equality_comparable<std::remove_cvref_t<decltype(*a)>>)
        return *a == *b;
      else
        return false;
    } else {
      return *a == *b;
    }
  } else {
    return a == b;
  }
}

/// `removeObjectIdenticalTo:` and its sisters: the very same object. Pointer-like values compare
/// their pointers; plain values have no identity apart from their value and compare with ==.
template <typename T>
bool isIdenticalObject(const T& a, const T& b) {
  if constexpr (std::is_pointer_v<T> || requires { a.get(); })
    return mc_detail::identityOf(a) == mc_detail::identityOf(b);
  else
    return a == b;
}
