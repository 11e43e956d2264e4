#pragma once
// MCPlatformOperationQueue: runs MCPlatformOperations on a pool of worker threads.
//
// Operations start in the order they were added, up to `maxConcurrentOperationCount` at a time
// (default: the number of cores). Destroying the queue cancels what is queued; running operations
// finish on their threads, which end when the queue is gone and idle.

#include <vesperon/platform/MCPlatformOperation.h>

#include <cstdint>
#include <memory>

class MCPlatformOperationQueue {
 public:
  MCPlatformOperationQueue();
  ~MCPlatformOperationQueue();
  MCPlatformOperationQueue(const MCPlatformOperationQueue&) = delete;
  MCPlatformOperationQueue& operator=(const MCPlatformOperationQueue&) = delete;

  void addOperation(std::shared_ptr<MCPlatformOperation> operation);
  /// Cancels every queued and running operation.
  void cancelAllOperations();
  /// Blocks until nothing is queued or running. Not for the main thread of a GUI.
  void waitUntilAllOperationsAreFinished();

  int64_t maxConcurrentOperationCount() const;
  /// Values below 1 restore the default, the number of cores.
  void setMaxConcurrentOperationCount(int64_t count);
  /// Operations queued or running.
  std::size_t operationCount() const;

 private:
  struct State;
  std::shared_ptr<State> state_;
};
