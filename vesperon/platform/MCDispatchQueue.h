#pragma once
// MCDispatchQueue: a labelled work queue on threads of its own, serial or concurrent.
//
// A serial queue runs one item at a time in the order they were queued (the log writer's queue).
// A concurrent queue runs up to `width` items at once; a barrier item waits for everything queued
// before it to finish, runs alone, and holds back everything queued after it — the reader-writer
// pattern of the persistent cache. Threads start on demand and end when the queue is destroyed
// and idle; work already queued still runs.

#include <cstddef>
#include <functional>
#include <memory>
#include <string>

class MCDispatchQueue {
 public:
  /// One task at a time, or many.
  enum class Kind { Serial, Concurrent };

  /// `width` 0 means the number of cores; a serial queue always has width 1.
  MCDispatchQueue(std::string label, Kind kind, std::size_t width = 0);
  ~MCDispatchQueue();
  MCDispatchQueue(const MCDispatchQueue&) = delete;
  MCDispatchQueue& operator=(const MCDispatchQueue&) = delete;

  /// The queue's name.
  const std::string& label() const;

  /// Queues `work` and returns.
  void async(std::function<void()> work);
  /// Queues and waits. Must not be called from an item of the same serial queue.
  void sync(const std::function<void()>& work);
  /// Queues `work` to run alone, after what is queued before it, and returns.
  void barrierAsync(std::function<void()> work);
  /// Queues `work` to run alone and waits for it.
  void barrierSync(const std::function<void()>& work);

 private:
  struct State;
  void enqueue(std::function<void()> work, bool barrier);
  void enqueueAndWait(const std::function<void()>& work, bool barrier);
  std::shared_ptr<State> state_;
};
