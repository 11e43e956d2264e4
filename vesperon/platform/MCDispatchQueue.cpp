#include <vesperon/platform/MCDispatchQueue.h>

#include <condition_variable>
#include <deque>
#include <future>
#include <mutex>
#include <thread>

struct MCDispatchQueue::State {
  struct Item {
    std::function<void()> work;
    bool barrier;
  };
  std::string label;
  std::size_t width = 1;
  std::mutex mutex;
  std::condition_variable changed;
  std::deque<Item> items;
  std::size_t threads = 0;
  std::size_t idle = 0;
  std::size_t running = 0;
  bool barrierRunning = false;
  bool closing = false;

  // Whether the head item may start now.
  bool headRunnable() const {
    if (items.empty() || barrierRunning) return false;
    return items.front().barrier ? running == 0 : running < width;
  }

  static void worker(std::shared_ptr<State> self) {
    std::unique_lock lock(self->mutex);
    for (;;) {
      ++self->idle;
      self->changed.wait(lock, [&] { return self->headRunnable() || (self->closing && self->items.empty()); });
      --self->idle;
      if (self->items.empty()) break;  // closing and nothing left
      Item item = std::move(self->items.front());
      self->items.pop_front();
      ++self->running;
      if (item.barrier) self->barrierRunning = true;
      lock.unlock();
      item.work();
      item.work = nullptr;  // release captured state outside the lock
      lock.lock();
      --self->running;
      if (item.barrier) self->barrierRunning = false;
      self->changed.notify_all();
    }
    --self->threads;
  }
};

MCDispatchQueue::MCDispatchQueue(std::string label, Kind kind, std::size_t width) : state_(std::make_shared<State>()) {
  state_->label = std::move(label);
  if (kind == Kind::Serial) {
    state_->width = 1;
  } else {
    state_->width = width ? width : std::max(1u, std::thread::hardware_concurrency());
  }
}

MCDispatchQueue::~MCDispatchQueue() {
  std::lock_guard lock(state_->mutex);
  state_->closing = true;
  state_->changed.notify_all();
}

const std::string& MCDispatchQueue::label() const { return state_->label; }

void MCDispatchQueue::enqueue(std::function<void()> work, bool barrier) {
  std::lock_guard lock(state_->mutex);
  state_->items.push_back({std::move(work), barrier});
  // Start threads until every queued item has an idle thread or the width is reached.
  while (state_->items.size() > state_->idle && state_->threads < state_->width) {
    ++state_->threads;
    ++state_->idle;  // counted idle until it first waits
    std::thread([self = state_] {
      {
        std::lock_guard lock(self->mutex);
        --self->idle;
      }
      State::worker(self);
    }).detach();
  }
  state_->changed.notify_all();
}

void MCDispatchQueue::async(std::function<void()> work) { enqueue(std::move(work), false); }

void MCDispatchQueue::barrierAsync(std::function<void()> work) { enqueue(std::move(work), true); }

void MCDispatchQueue::sync(const std::function<void()>& work) { enqueueAndWait(work, false); }

void MCDispatchQueue::barrierSync(const std::function<void()>& work) { enqueueAndWait(work, true); }

// The caller waits on the promise, so the item may refer to `work` and `done` by reference;
// an exception thrown by the work is carried back to the caller.
void MCDispatchQueue::enqueueAndWait(const std::function<void()>& work, bool barrier) {
  std::promise<void> done;
  enqueue([&] {
    try {
      work();
      done.set_value();
    } catch (...) {
      done.set_exception(std::current_exception());
    }
  }, barrier);
  done.get_future().get();
}
