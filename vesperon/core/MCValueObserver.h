#pragma once
// MCValueObserver<V>: observes one key path of one MCObservableObject and turns its changes into
// four callbacks, one per kind of change. V is the value type of the key path: T for an
// MCObservableProperty<T>, std::vector<E> for an MCObservableArray<E>.
//
//   MCValueObserver<std::vector<Photo>> observer(album, "photos");
//   observer.setOnInsert([](const auto& inserted, const MCIndexSet& at) { … });
//
// The observer holds the object weakly, and its lifetime is that of the registration: destroying
// the observer unregisters it, after which no callback runs. There is no initial call. Callbacks
// run synchronously on the thread that made the change. A change of a kind whose callback is not
// set has no effect; set the callbacks before the changes happen. Changes whose value type is not V
// are ignored. Neither copied nor moved; hold it by value or in a smart pointer.

#include <vesperon/core/MCIndexSet.h>
#include <vesperon/core/MCKeyValueChange.h>
#include <vesperon/core/MCObservableObject.h>

#include <functional>
#include <memory>
#include <string>
#include <type_traits>
#include <utility>

template <typename V>
class MCValueObserver {
 public:
  /// Hears a setting: the old and new value.
  using SetCallback = std::function<void(const V& oldValue, const V& newValue)>;
  /// Hears an insertion: the new elements and where they now stand.
  using InsertCallback = std::function<void(const V& newValues, const MCIndexSet& indexes)>;
  /// Hears a removal: the old elements and where they stood.
  using RemoveCallback = std::function<void(const V& oldValues, const MCIndexSet& indexes)>;
  /// Hears a replacement: old and new elements and where.
  using ReplaceCallback = std::function<void(const V& oldValues, const V& newValues, const MCIndexSet& indexes)>;

  /// `initWithObject:keyPath:`. A null object gives an observer that never calls.
  template <typename O, typename = std::enable_if_t<std::is_base_of_v<MCObservableObject, O>>>
  MCValueObserver(const std::shared_ptr<O>& object, std::string keyPath)
      : object_(std::static_pointer_cast<MCObservableObject>(object)),
        keyPath_(std::move(keyPath)),
        callbacks_(std::make_shared<Callbacks>()) {
    if (!object) return;
    token_ = object->addObserver(keyPath_, [callbacks = callbacks_](const MCKeyValueChangeBase& change) {
      callbacks->dispatch(change);
    });
  }
  MCValueObserver(const MCValueObserver&) = delete;
  MCValueObserver& operator=(const MCValueObserver&) = delete;
  ~MCValueObserver() {
    if (auto object = object_.lock()) object->removeObserver(token_);
  }

  /// The observed object, or null once it has gone.
  std::shared_ptr<MCObservableObject> object() const { return object_.lock(); }
  /// The key path observed.
  const std::string& keyPath() const { return keyPath_; }

  /// What hears settings.
  const SetCallback& onSet() const { return callbacks_->onSet; }
  /// What hears insertions.
  const InsertCallback& onInsert() const { return callbacks_->onInsert; }
  /// What hears removals.
  const RemoveCallback& onRemove() const { return callbacks_->onRemove; }
  /// What hears replacements.
  const ReplaceCallback& onReplace() const { return callbacks_->onReplace; }
  /// Sets what hears settings.
  void setOnSet(SetCallback callback) { callbacks_->onSet = std::move(callback); }
  /// Sets what hears insertions.
  void setOnInsert(InsertCallback callback) { callbacks_->onInsert = std::move(callback); }
  /// Sets what hears removals.
  void setOnRemove(RemoveCallback callback) { callbacks_->onRemove = std::move(callback); }
  /// Sets what hears replacements.
  void setOnReplace(ReplaceCallback callback) { callbacks_->onReplace = std::move(callback); }

 private:
  // Shared with the registration, so that a change already under way never reaches a destroyed
  // observer's members.
  struct Callbacks {
    SetCallback onSet;
    InsertCallback onInsert;
    RemoveCallback onRemove;
    ReplaceCallback onReplace;

    void dispatch(const MCKeyValueChangeBase& base) const {
      // Each callback is copied before the call, so that it may replace itself while it runs.
      auto* change = dynamic_cast<const MCKeyValueChange<V>*>(&base);
      if (!change) return;
      switch (change->kind) {
        case MCKeyValueChangeKind::Setting:
          if (auto callback = onSet) callback(change->oldValue, change->newValue);
          break;
        case MCKeyValueChangeKind::Insertion:
          if (auto callback = onInsert) callback(change->newValue, change->indexes);
          break;
        case MCKeyValueChangeKind::Removal:
          if (auto callback = onRemove) callback(change->oldValue, change->indexes);
          break;
        case MCKeyValueChangeKind::Replacement:
          if (auto callback = onReplace) callback(change->oldValue, change->newValue, change->indexes);
          break;
      }
    }
  };

  std::weak_ptr<MCObservableObject> object_;
  std::string keyPath_;
  std::shared_ptr<Callbacks> callbacks_;
  uint64_t token_ = 0;
};
