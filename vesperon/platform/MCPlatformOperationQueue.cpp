#include <vesperon/platform/MCPlatformOperationQueue.h>

#include <vesperon/core/MCLog.h>

#include <algorithm>
#include <condition_variable>
#include <deque>
#include <exception>
#include <mutex>
#include <thread>
#include <vector>

namespace {
int64_t defaultWidth() { return std::max<int64_t>(1, std::thread::hardware_concurrency()); }
}  // namespace

void MCPlatformOperation::runFromQueue() {
  if (!isCancelled()) {
    executing_.store(true);
    try {
      main();
    } catch (const std::exception& e) {
      MCLog::sdkGeneric()->logError(std::string("operation raised: ") + e.what());
    } catch (...) {
      MCLog::sdkGeneric()->logError("operation raised an unknown exception");
    }
    executing_.store(false);
  }
  finished_.store(true);
  std::function<void()> completion;
  {
    std::lock_guard lock(completionMutex_);
    completion = std::move(completion_);
  }
  if (completion) completion();
}

struct MCPlatformOperationQueue::State : std::enable_shared_from_this<MCPlatformOperationQueue::State> {
  mutable std::mutex mutex;
  std::condition_variable changed;
  std::deque<std::shared_ptr<MCPlatformOperation>> queued;
  std::vector<std::shared_ptr<MCPlatformOperation>> running;
  int64_t width = defaultWidth();
  std::size_t threads = 0;
  std::size_t idle = 0;
  std::chrono::milliseconds idleTimeout{1000};
  bool closing = false;

  static void worker(std::shared_ptr<State> self) {
    std::unique_lock lock(self->mutex);
    for (;;) {
      ++self->idle;
      const bool woken = self->changed.wait_for(lock, self->idleTimeout, [&] {
        return self->closing || (!self->queued.empty() && int64_t(self->running.size()) < self->width);
      });
      --self->idle;
      if (!woken) break;  // idle too long: a later add starts a new thread
      if (self->closing && self->queued.empty()) break;
      if (self->queued.empty() || int64_t(self->running.size()) >= self->width) continue;
      auto op = std::move(self->queued.front());
      self->queued.pop_front();
      self->running.push_back(op);
      lock.unlock();
      op->runFromQueue();
      lock.lock();
      self->running.erase(std::find(self->running.begin(), self->running.end(), op));
      lock.unlock();
      op.reset();  // the last hold may run a destructor; not under the lock
      lock.lock();
      self->changed.notify_all();
    }
    --self->threads;
    self->changed.notify_all();
  }

  // Starts threads until every queued operation has an idle thread or the width is reached.
  void spawnIfNeeded() {
    while (queued.size() > idle && int64_t(threads) < width) {
      ++threads;
      ++idle;  // counted idle until it first waits, so that one add starts one thread
      std::thread([self = shared_from_this()] {
        {
          std::lock_guard lock(self->mutex);
          --self->idle;
        }
        worker(self);
      }).detach();
    }
  }
};

MCPlatformOperationQueue::MCPlatformOperationQueue() : state_(std::make_shared<State>()) {}

MCPlatformOperationQueue::~MCPlatformOperationQueue() {
  std::lock_guard lock(state_->mutex);
  for (auto& op : state_->queued) op->cancel();
  for (auto& op : state_->running) op->cancel();
  state_->closing = true;
  state_->changed.notify_all();
}

void MCPlatformOperationQueue::addOperation(std::shared_ptr<MCPlatformOperation> operation) {
  if (!operation) return;
  std::lock_guard lock(state_->mutex);
  state_->queued.push_back(std::move(operation));
  state_->spawnIfNeeded();
  state_->changed.notify_all();
}

void MCPlatformOperationQueue::cancelAllOperations() {
  std::lock_guard lock(state_->mutex);
  for (auto& op : state_->queued) op->cancel();
  for (auto& op : state_->running) op->cancel();
  // Cancelled queued operations are discarded quickly: wake workers to pass over them.
  state_->changed.notify_all();
}

void MCPlatformOperationQueue::waitUntilAllOperationsAreFinished() {
  std::unique_lock lock(state_->mutex);
  state_->changed.wait(lock, [&] { return state_->queued.empty() && state_->running.empty(); });
}

int64_t MCPlatformOperationQueue::maxConcurrentOperationCount() const {
  std::lock_guard lock(state_->mutex);
  return state_->width;
}

void MCPlatformOperationQueue::setMaxConcurrentOperationCount(int64_t count) {
  std::lock_guard lock(state_->mutex);
  state_->width = count < 1 ? defaultWidth() : count;
  state_->spawnIfNeeded();
  state_->changed.notify_all();
}

std::chrono::milliseconds MCPlatformOperationQueue::idleThreadTimeout() const {
  std::lock_guard lock(state_->mutex);
  return state_->idleTimeout;
}

void MCPlatformOperationQueue::setIdleThreadTimeout(std::chrono::milliseconds timeout) {
  std::lock_guard lock(state_->mutex);
  state_->idleTimeout = std::max(timeout, std::chrono::milliseconds(1));
}

std::size_t MCPlatformOperationQueue::threadCount() const {
  std::lock_guard lock(state_->mutex);
  return state_->threads;
}

std::size_t MCPlatformOperationQueue::operationCount() const {
  std::lock_guard lock(state_->mutex);
  return state_->queued.size() + state_->running.size();
}
