#include <vesperon/core/MCObservableObject.h>

#include <algorithm>

uint64_t MCObservableObject::addObserver(std::string keyPath, Handler handler) {
  auto registration = std::make_shared<Registration>();
  registration->keyPath = std::move(keyPath);
  registration->handler = std::move(handler);
  std::lock_guard lock(mutex_);
  registration->token = nextToken_++;
  registrations_.push_back(std::move(registration));
  return registrations_.back()->token;
}

void MCObservableObject::removeObserver(uint64_t token) {
  std::lock_guard lock(mutex_);
  auto it = std::find_if(registrations_.begin(), registrations_.end(),
                         [token](const auto& r) { return r->token == token; });
  if (it == registrations_.end()) return;
  (*it)->active = false;
  registrations_.erase(it);
}

uint64_t MCObservableObject::observerCount(const std::string& keyPath) const {
  std::lock_guard lock(mutex_);
  return uint64_t(std::count_if(registrations_.begin(), registrations_.end(),
                                [&](const auto& r) { return r->keyPath == keyPath; }));
}

void MCObservableObject::didChange(const std::string& keyPath, const MCKeyValueChangeBase& change) const {
  // Handlers run outside the lock on a snapshot, so that they may register and unregister freely.
  std::vector<std::shared_ptr<Registration>> targets;
  {
    std::lock_guard lock(mutex_);
    for (const auto& r : registrations_)
      if (r->keyPath == keyPath) targets.push_back(r);
  }
  for (const auto& r : targets)
    if (r->active) r->handler(change);
}
