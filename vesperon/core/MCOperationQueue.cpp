#include <vesperon/core/MCOperationQueue.h>

std::shared_ptr<MCOperationQueue> MCOperationQueue::create() {
  return std::shared_ptr<MCOperationQueue>(new MCOperationQueue());
}

MCOperationQueue::~MCOperationQueue() {
  // Without the lock: nobody else can hold a reference any more.
  operationQueue_.cancelAllOperations();
}

int64_t MCOperationQueue::maxConcurrentOperationCount() const { return operationQueue_.maxConcurrentOperationCount(); }

void MCOperationQueue::setMaxConcurrentOperationCount(int64_t count) {
  operationQueue_.setMaxConcurrentOperationCount(count);
}

void MCOperationQueue::addOperation(const std::shared_ptr<MCOperation>& operation) {
  if (!operation) return;
  std::weak_ptr<MCOperationQueue> weakQueue = weak_from_this();
  std::weak_ptr<MCOperation> weakOperation = operation;
  operation->setCompletionBlock([weakQueue, weakOperation] {
    auto queue = weakQueue.lock();
    auto op = weakOperation.lock();
    if (queue && op) queue->removeOperation(op);
  });
  std::lock_guard lock(operationsLock_);
  operations_[operation->identifier()] = operation;
  operationQueue_.addOperation(operation);
}

void MCOperationQueue::removeOperation(const std::shared_ptr<MCOperation>& operation) {
  if (!operation) return;
  std::lock_guard lock(operationsLock_);
  auto it = operations_.find(operation->identifier());
  if (it != operations_.end() && it->second == operation) operations_.erase(it);
}

void MCOperationQueue::cancelOperationWithIdentifier(const MCAnyHashable& identifier) {
  std::lock_guard lock(operationsLock_);
  auto it = operations_.find(identifier);
  if (it == operations_.end()) return;
  it->second->cancel();
  operations_.erase(it);
}

void MCOperationQueue::cancelOperationsWithIdentifiers(const std::vector<MCAnyHashable>& identifiers) {
  std::lock_guard lock(operationsLock_);
  for (const auto& identifier : identifiers) {
    auto it = operations_.find(identifier);
    if (it != operations_.end()) it->second->cancel();
  }
  for (const auto& identifier : identifiers) operations_.erase(identifier);
}

void MCOperationQueue::cancelAllOperations() {
  std::lock_guard lock(operationsLock_);
  operationQueue_.cancelAllOperations();
  operations_.clear();
}

std::shared_ptr<MCOperation> MCOperationQueue::operationWithIdentifier(const MCAnyHashable& identifier) const {
  std::lock_guard lock(operationsLock_);
  auto it = operations_.find(identifier);
  return it == operations_.end() ? nullptr : it->second;
}

void MCOperationQueue::waitUntilAllOperationsAreFinished() { operationQueue_.waitUntilAllOperationsAreFinished(); }
