#pragma once
// How the containers speak of "nil" for an element type they know nothing about.
//
// Pointer-like types (shared_ptr, raw pointers, std::optional) already have an empty state, and a
// read that finds nothing answers that empty value. Every other type is wrapped in std::optional, so
// that `MCNullable<T>` is always a type whose default value means "none" and that tests false.

#include <memory>
#include <cstddef>
#include <optional>
#include <type_traits>

namespace mc_detail {

template <typename T>
struct IsNullable : std::false_type {};
template <typename T>
struct IsNullable<std::shared_ptr<T>> : std::true_type {};
template <typename T>
struct IsNullable<T*> : std::true_type {};
template <typename T>
struct IsNullable<std::optional<T>> : std::true_type {};

}  // namespace mc_detail

/// True when T has an empty ("nil") state of its own.
template <typename T>
inline constexpr bool MCIsNullableType = mc_detail::IsNullable<std::remove_cvref_t<T>>::value;

/// T itself when it can be empty, otherwise std::optional<T>.
template <typename T>
using MCNullable = std::conditional_t<MCIsNullableType<T>, T, std::optional<T>>;

/// True when `value` is the empty state of a nullable type; always false for other types.
template <typename T>
constexpr bool MCIsNil(const T& value) {
  if constexpr (MCIsNullableType<T>)
    return !value;
  else
    return false;
}

/// True for the literal nils, nullptr and std::nullopt, which have no value type of their own.
template <typename T>
inline constexpr bool MCIsNilLiteral =
    std::is_same_v<std::remove_cvref_t<T>, std::nullptr_t> || std::is_same_v<std::remove_cvref_t<T>, std::nullopt_t>;
