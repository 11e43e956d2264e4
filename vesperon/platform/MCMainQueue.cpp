#include <vesperon/platform/MCMainQueue.h>

#include <vesperon/core/MCLog.h>

#include <glib.h>

#include <atomic>
#include <condition_variable>
#include <deque>
#include <exception>
#include <mutex>
#include <thread>

namespace {

std::atomic<std::thread::id>& mainThreadId() {
  static std::atomic<std::thread::id> id{std::this_thread::get_id()};
  return id;
}

// Records the loading thread as the main thread when the library is loaded, and makes GLib's
// default context there too. A worker posting to the main queue must find the context (and its
// wakeup descriptor) already made: GLib creates it once under its own atomics, which
// ThreadSanitizer cannot see, so a first creation racing a worker's post reads as a data race.
[[maybe_unused]] const bool recordedAtLoad = (mainThreadId().load(), g_main_context_default(), true);

// The posted work. `scheduled` is true while an idle source is attached to run it; it is changed
// only under `mutex`, together with `work`, so a post either finds the source scheduled and its
// work still to be seen, or schedules a new one.
struct Posted {
  std::mutex mutex;
  std::deque<std::function<void()>> work;
  bool scheduled = false;
};

Posted& posted() {
  static Posted* queue = new Posted();  // never destroyed: workers may post while the process exits
  return *queue;
}

void runLogged(std::function<void()>& work) {
  try {
    work();
  } catch (const std::exception& e) {
    MCLog::sdkGeneric()->logError(std::string("main queue work raised: ") + e.what());
  } catch (...) {
    MCLog::sdkGeneric()->logError("main queue work raised an unknown exception");
  }
}

gboolean runPosted(gpointer) {
  Posted& queue = posted();
  std::deque<std::function<void()>> batch;
  {
    std::lock_guard lock(queue.mutex);
    batch.swap(queue.work);
  }
  for (auto& work : batch) {
    runLogged(work);
    work = nullptr;  // what the work holds is released here, on the main thread
  }
  std::lock_guard lock(queue.mutex);
  if (!queue.work.empty()) return G_SOURCE_CONTINUE;  // posted while the batch ran: next iteration
  queue.scheduled = false;
  return G_SOURCE_REMOVE;
}

gboolean wakeOnly(gpointer flag) {
  *static_cast<bool*>(flag) = true;
  return G_SOURCE_REMOVE;
}

// Wakes the loop now and then, so that a condition changed by another thread without posting to
// the main queue is still seen.
gboolean tick(gpointer) { return G_SOURCE_CONTINUE; }

}  // namespace

void MCMainQueue::async(std::function<void()> work) {
  Posted& queue = posted();
  std::lock_guard lock(queue.mutex);
  queue.work.push_back(std::move(work));
  if (queue.scheduled) return;
  queue.scheduled = true;
  GSource* source = g_idle_source_new();
  g_source_set_priority(source, G_PRIORITY_DEFAULT);
  g_source_set_callback(source, runPosted, nullptr, nullptr);
  g_source_attach(source, g_main_context_default());  // wakes the context from any thread
  g_source_unref(source);
}

void MCMainQueue::sync(const std::function<void()>& work) {
  if (isMainThread()) {
    work();
    return;
  }
  std::mutex m;
  std::condition_variable cv;
  bool done = false;
  std::exception_ptr raised;
  async([&] {
    try {
      work();
    } catch (...) {
      raised = std::current_exception();
    }
    std::lock_guard lock(m);
    done = true;
    cv.notify_one();
  });
  std::unique_lock lock(m);
  cv.wait(lock, [&] { return done; });
  if (raised) std::rethrow_exception(raised);
}

bool MCMainQueue::isMainThread() { return std::this_thread::get_id() == mainThreadId().load(); }

void MCMainQueue::setMainThread() { mainThreadId().store(std::this_thread::get_id()); }

bool MCMainQueue::runUntil(const std::function<bool()>& done, std::chrono::milliseconds timeout) {
  GMainContext* context = g_main_context_default();
  if (done()) return true;
  bool timedOut = false;
  GSource* timer = g_timeout_source_new(static_cast<guint>(timeout.count()));
  g_source_set_callback(timer, wakeOnly, &timedOut, nullptr);
  g_source_attach(timer, context);
  GSource* ticker = g_timeout_source_new(2);
  g_source_set_callback(ticker, tick, nullptr, nullptr);
  g_source_attach(ticker, context);
  while (!done() && !timedOut) g_main_context_iteration(context, TRUE);
  g_source_destroy(ticker);
  g_source_unref(ticker);
  g_source_destroy(timer);
  g_source_unref(timer);
  return done();
}

void MCMainQueue::drain(std::chrono::milliseconds timeout) {
  GMainContext* context = g_main_context_default();
  auto deadline = std::chrono::steady_clock::now() + timeout;
  while (g_main_context_pending(context) && std::chrono::steady_clock::now() < deadline)
    g_main_context_iteration(context, FALSE);
}
