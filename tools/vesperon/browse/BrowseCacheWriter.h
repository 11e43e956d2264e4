#pragma once
// Writes entries of the desktop's shared thumbnail cache for `vesperon browse` behind the screen's
// back: a thumbnail goes to its cell first and to disk afterwards, on a thread of its own that
// runs only when the cores have nothing else to do. Encoding two PNG entries costs more than
// decoding a camera JPEG at thumbnail size, so writing them before answering made the first screen
// wait for the disk cache of the next run.
//
// At most `capacity` writes wait; beyond that the caller writes itself, so scrolling through a
// large folder faster than the disk takes it slows the thumbnails down rather than holding their
// pixels in memory. What still waits when the writer goes is written by the thread that destroys
// it, so the next run finds every entry.

#include <condition_variable>
#include <cstddef>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>

class BrowseCacheWriter {
 public:
  explicit BrowseCacheWriter(std::size_t capacity = 16);
  ~BrowseCacheWriter();
  BrowseCacheWriter(const BrowseCacheWriter&) = delete;
  BrowseCacheWriter& operator=(const BrowseCacheWriter&) = delete;

  /// Queues `write`, or runs it at once on the calling thread when `capacity` writes wait already.
  void submit(std::function<void()> write);
  /// Returns once every write submitted so far is done.
  void flush();
  /// How many writes wait now (not counting one being written).
  std::size_t waitingCount() const;

 private:
  void run(std::stop_token stop);

  const std::size_t capacity_;
  mutable std::mutex mutex_;
  std::condition_variable_any wake_;
  std::condition_variable idle_;
  std::deque<std::function<void()>> queue_;
  bool writing_ = false;
  std::jthread thread_;
};
