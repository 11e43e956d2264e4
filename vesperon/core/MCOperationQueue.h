#pragma once
// MCOperationQueue: an operation queue whose operations can be found and cancelled by identifier.
//
// The queue remembers, per identifier, the operation last added under it, until that operation
// finishes or is cancelled. An older operation under the same identifier keeps running but can
// then only be reached by `cancelAllOperations`; when it finishes late it does not remove the newer
// entry. Every operation may be called from any thread.

#include <vesperon/core/MCOperation.h>
#include <vesperon/platform/MCPlatformOperationQueue.h>

#include <memory>
#include <mutex>
#include <unordered_map>
#include <vector>

class MCOperationQueue : public std::enable_shared_from_this<MCOperationQueue> {
 public:
  /// Queues are shared: an operation's completion action holds its queue weakly.
  static std::shared_ptr<MCOperationQueue> create();
  ~MCOperationQueue();
  MCOperationQueue(const MCOperationQueue&) = delete;
  MCOperationQueue& operator=(const MCOperationQueue&) = delete;

  /// How many operations run at once; -1 for the platform's default.
  int64_t maxConcurrentOperationCount() const;
  /// Sets how many operations run at once.
  void setMaxConcurrentOperationCount(int64_t count);

  /// Replaces the operation's completion action with one that forgets it here when it ends.
  void addOperation(const std::shared_ptr<MCOperation>& operation);
  /// Forgets the operation if its identifier's entry is this very operation. No cancelling.
  void removeOperation(const std::shared_ptr<MCOperation>& operation);
  /// Cancels the operation of `identifier`.
  void cancelOperationWithIdentifier(const MCAnyHashable& identifier);
  /// Cancels the operations of these identifiers.
  void cancelOperationsWithIdentifiers(const std::vector<MCAnyHashable>& identifiers);
  /// Cancels every operation.
  void cancelAllOperations();

  /// The operation known under `identifier`, or nullptr.
  std::shared_ptr<MCOperation> operationWithIdentifier(const MCAnyHashable& identifier) const;
  /// Blocks until every queued operation has run or been discarded. For tests and tools.
  void waitUntilAllOperationsAreFinished();
  /// The platform queue underneath: its threads, and how long idle ones live.
  MCPlatformOperationQueue& operationQueue() { return operationQueue_; }

 private:
  MCOperationQueue() = default;

  mutable std::recursive_mutex operationsLock_;
  std::unordered_map<MCAnyHashable, std::shared_ptr<MCOperation>> operations_;
  MCPlatformOperationQueue operationQueue_;
};
