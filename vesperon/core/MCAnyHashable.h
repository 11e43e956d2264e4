#pragma once
// MCAnyHashable: a small value that wraps any copyable T with std::hash and ==.
//
// Operation identifiers and cache keys are "any hashable object" in the library's contracts. Two
// MCAnyHashable values are equal when they hold the same type and the held values compare equal.
// C strings are stored as std::string so that a literal and a std::string with the same text match.

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <type_traits>
#include <typeinfo>

class MCAnyHashable {
 public:
  /// The empty value: equal only to another empty value.
  MCAnyHashable() = default;

  template <typename T, typename D = std::decay_t<T>,
            typename = std::enable_if_t<!std::is_same_v<D, MCAnyHashable> && !std::is_same_v<D, const char*> &&
                                        !std::is_same_v<D, char*>>>
  /// Wraps `value` (any type with std::hash and ==).
  MCAnyHashable(T&& value) : box_(std::make_shared<Box<D>>(std::forward<T>(value))) {}

  /// Wraps `text` as a std::string.
  MCAnyHashable(const char* text) : MCAnyHashable(std::string(text)) {}

  /// Whether nothing is wrapped.
  bool empty() const { return box_ == nullptr; }
  /// The wrapped value's hash; 0 when empty.
  std::size_t hash() const { return box_ ? box_->hash() : 0; }
  /// The wrapped type; void when empty.
  const std::type_info& type() const { return box_ ? box_->type() : typeid(void); }

  /// The held value when it is a T, else nullptr.
  template <typename T>
  const T* get() const {
    if (!box_ || box_->type() != typeid(T)) return nullptr;
    return &static_cast<const Box<T>*>(box_.get())->value;
  }

  friend bool operator==(const MCAnyHashable& a, const MCAnyHashable& b) {
    if (a.box_ == b.box_) return true;
    if (!a.box_ || !b.box_) return false;
    return a.box_->equals(*b.box_);
  }

 private:
  struct Base {
    virtual ~Base() = default;
    virtual std::size_t hash() const = 0;
    virtual bool equals(const Base& other) const = 0;
    virtual const std::type_info& type() const = 0;
  };
  template <typename T>
  struct Box final : Base {
    template <typename U>
    explicit Box(U&& v) : value(std::forward<U>(v)) {}
    std::size_t hash() const override { return std::hash<T>{}(value); }
    bool equals(const Base& other) const override {
      return other.type() == typeid(T) && static_cast<const Box&>(other).value == value;
    }
    const std::type_info& type() const override { return typeid(T); }
    T value;
  };

  // Shared and immutable: copying an identifier is a pointer copy.
  std::shared_ptr<const Base> box_;
};

template <>
struct std::hash<MCAnyHashable> {
  std::size_t operator()(const MCAnyHashable& v) const { return v.hash(); }
};
