#include "BrowseCacheWriter.h"

#include <pthread.h>
#include <sched.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

// Idle scheduling where the kernel offers it, else the lowest niceness: an unprivileged thread
// may lower its own priority either way.
void lowerPriorityOfThisThread() {
  sched_param none{};
  if (pthread_setschedparam(pthread_self(), SCHED_IDLE, &none) == 0) return;
  setpriority(PRIO_PROCESS, id_t(::syscall(SYS_gettid)), 19);
}

}  // namespace

BrowseCacheWriter::BrowseCacheWriter(std::size_t capacity) : capacity_(capacity) {
  thread_ = std::jthread([this](std::stop_token stop) { run(stop); });
}

BrowseCacheWriter::~BrowseCacheWriter() {
  thread_.request_stop();
  thread_.join();
  // The idle thread may have had no turn on a busy machine: what waits is written here, at this
  // thread's own priority.
  for (auto& write : queue_) write();
}

void BrowseCacheWriter::submit(std::function<void()> write) {
  {
    std::lock_guard lock(mutex_);
    if (queue_.size() < capacity_) {
      queue_.push_back(std::move(write));
      wake_.notify_one();
      return;
    }
  }
  write();
}

void BrowseCacheWriter::flush() {
  std::unique_lock lock(mutex_);
  idle_.wait(lock, [&] { return queue_.empty() && !writing_; });
}

std::size_t BrowseCacheWriter::waitingCount() const {
  std::lock_guard lock(mutex_);
  return queue_.size();
}

void BrowseCacheWriter::run(std::stop_token stop) {
  lowerPriorityOfThisThread();
  std::unique_lock lock(mutex_);
  while (true) {
    wake_.wait(lock, stop, [&] { return !queue_.empty(); });
    if (stop.stop_requested() || queue_.empty()) return;  // the rest is the destructor's
    std::function<void()> write = std::move(queue_.front());
    queue_.pop_front();
    writing_ = true;
    lock.unlock();
    write();
    write = nullptr;  // the pixels it held go now, not at the next turn
    lock.lock();
    writing_ = false;
    if (queue_.empty()) idle_.notify_all();
  }
}
