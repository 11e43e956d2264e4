#pragma once
// MCObservableObject: the base of every object whose values can be observed by key path.
//
// The object carries a signal: observers register a handler for one key path, and the object's
// observable values (MCObservableProperty, MCObservableArray) emit an MCKeyValueChange on it after
// every change, synchronously, on the thread that made the change. Observe through
// MCValueObserver, which keeps the object weakly and unregisters itself when it goes; the
// registration calls here are its plumbing.
//
// Observable objects have identity: they are held by std::shared_ptr and are neither copied nor
// moved. A handler may add or remove observers (even itself) while it runs; one removed during a
// change is not called again, not even for the rest of that change.

#include <vesperon/core/MCKeyValueChange.h>

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

class MCObservableObject {
 public:
  /// Hears a change.
  using Handler = std::function<void(const MCKeyValueChangeBase& change)>;

  MCObservableObject() = default;
  MCObservableObject(const MCObservableObject&) = delete;
  MCObservableObject& operator=(const MCObservableObject&) = delete;
  virtual ~MCObservableObject() = default;

  /// Registers `handler` for changes of `keyPath` and answers a token for removeObserver.
  uint64_t addObserver(std::string keyPath, Handler handler);
  /// Unregisters; an unknown token is ignored.
  void removeObserver(uint64_t token);
  /// Number of registered observers of `keyPath`.
  uint64_t observerCount(const std::string& keyPath) const;

  /// Emits `change` to every observer of `keyPath`. Called by the observable values after they
  /// have changed; an object with values of its own making may call it the same way.
  void didChange(const std::string& keyPath, const MCKeyValueChangeBase& change) const;

 private:
  struct Registration {
    uint64_t token;
    std::string keyPath;
    Handler handler;
    std::atomic<bool> active{true};
  };

  mutable std::mutex mutex_;
  std::vector<std::shared_ptr<Registration>> registrations_;
  uint64_t nextToken_ = 1;
};
