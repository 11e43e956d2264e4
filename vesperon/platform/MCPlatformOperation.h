#pragma once
// MCPlatformOperation: a unit of work for MCPlatformOperationQueue, with the life cycle of the
// platform's operations: ready, executing, finished; a cancelled flag; a completion action.
//
// `cancel` only sets the flag. An operation cancelled before it starts never runs `main`; one
// cancelled while running runs to its end. The completion action runs once, on a worker thread,
// after `main` returned or after the queue discarded the cancelled operation.

#include <atomic>
#include <functional>
#include <mutex>

class MCPlatformOperation {
 public:
  virtual ~MCPlatformOperation() = default;

  /// The work. Subclasses override it; the default does nothing.
  virtual void main() {}

  /// Marks the operation cancelled; a queued one does not start.
  void cancel() { cancelled_.store(true); }
  /// Whether it was cancelled.
  bool isCancelled() const { return cancelled_.load(); }
  /// Whether it is running.
  bool isExecuting() const { return executing_.load(); }
  /// Whether it finished (or was cancelled before starting).
  bool isFinished() const { return finished_.load(); }

  /// Replaces the completion action.
  void setCompletionBlock(std::function<void()> block) {
    std::lock_guard lock(completionMutex_);
    completion_ = std::move(block);
  }

 private:
  friend class MCPlatformOperationQueue;
  // Called by the queue on a worker thread when the operation's turn comes.
  void runFromQueue();

  std::atomic<bool> cancelled_{false};
  std::atomic<bool> executing_{false};
  std::atomic<bool> finished_{false};
  std::mutex completionMutex_;
  std::function<void()> completion_;
};
