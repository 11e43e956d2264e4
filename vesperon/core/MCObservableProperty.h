#pragma once
// MCObservableProperty<T>: one observable value of an MCObservableObject. Every set() emits a
// Setting change with the old and the new value on the owner's signal, under the property's key
// path — also when the new value equals the old, as an assignment is a change of its own.
//
//   class Album : public MCObservableObject {
//    public:
//     MCObservableProperty<std::string> title{*this, "title"};
//   };
//   album->title.set("Holidays");   // observers of "title" get onSet("", "Holidays")
//
// The property lives inside its owner and is neither copied nor moved.

#include <vesperon/core/MCKeyValueChange.h>
#include <vesperon/core/MCObservableObject.h>

#include <string>
#include <utility>

template <typename T>
class MCObservableProperty {
 public:
  /// The value type.
  using Value = T;

  /// A property under `keyPath` of `owner`, holding `initial`.
  MCObservableProperty(MCObservableObject& owner, std::string keyPath, T initial = T())
      : owner_(owner), keyPath_(std::move(keyPath)), value_(std::move(initial)) {}
  MCObservableProperty(const MCObservableProperty&) = delete;
  MCObservableProperty& operator=(const MCObservableProperty&) = delete;

  /// The key path observers name it by.
  const std::string& keyPath() const { return keyPath_; }
  /// The value.
  const T& get() const { return value_; }
  /// The value.
  operator const T&() const { return value_; }

  /// Stores `value`, then emits Setting(old, new).
  void set(T value) {
    T old = std::exchange(value_, std::move(value));
    owner_.didChange(keyPath_, MCKeyValueChange<T>(MCKeyValueChangeKind::Setting, std::move(old), value_));
  }
  /// Sets the value (a setting change), as set().
  MCObservableProperty& operator=(T value) {
    set(std::move(value));
    return *this;
  }

 private:
  MCObservableObject& owner_;
  std::string keyPath_;
  T value_;
};
