#pragma once
// MCPlatformOperationQueue: runs MCPlatformOperations on a pool of worker threads.
//
// Operations start in the order they were added, up to `maxConcurrentOperationCount` at a time
// (default: the number of cores). Threads are started as work comes and end after
// `idleThreadTimeout` (default one second) without work, so an idle queue holds no threads: a
// program with many loaders and caches, each with its own queue, keeps only the threads that are
// working or were just working. Destroying the queue cancels what is queued; running operations
// finish on their threads, which then end.

#include <vesperon/platform/MCPlatformOperation.h>

#include <chrono>
#include <cstdint>
#include <memory>

class MCPlatformOperationQueue {
 public:
  MCPlatformOperationQueue();
  ~MCPlatformOperationQueue();
  MCPlatformOperationQueue(const MCPlatformOperationQueue&) = delete;
  MCPlatformOperationQueue& operator=(const MCPlatformOperationQueue&) = delete;

  /// Queues an operation.
  void addOperation(std::shared_ptr<MCPlatformOperation> operation);
  /// Cancels every queued and running operation.
  void cancelAllOperations();
  /// Blocks until nothing is queued or running. Not for the main thread of a GUI.
  void waitUntilAllOperationsAreFinished();

  /// How many operations run at once.
  int64_t maxConcurrentOperationCount() const;
  /// Values below 1 restore the default, the number of cores.
  void setMaxConcurrentOperationCount(int64_t count);
  /// Operations queued or running.
  std::size_t operationCount() const;

  /// How long a worker waits for new work before it ends; a change applies from a worker's next wait.
  std::chrono::milliseconds idleThreadTimeout() const;
  /// How long an idle worker thread waits before it ends.
  void setIdleThreadTimeout(std::chrono::milliseconds timeout);
  /// Worker threads alive now, working or idle.
  std::size_t threadCount() const;

 private:
  struct State;
  std::shared_ptr<State> state_;
};
