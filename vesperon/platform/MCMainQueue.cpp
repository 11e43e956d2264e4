#include <vesperon/platform/MCMainQueue.h>

#include <glib.h>

#include <atomic>
#include <condition_variable>
#include <mutex>
#include <thread>

namespace {

std::atomic<std::thread::id>& mainThreadId() {
  static std::atomic<std::thread::id> id{std::this_thread::get_id()};
  return id;
}

// Records the loading thread as the main thread when the library is loaded.
[[maybe_unused]] const bool recordedAtLoad = (mainThreadId().load(), true);

gboolean runPosted(gpointer data) {
  auto* work = static_cast<std::function<void()>*>(data);
  (*work)();
  return G_SOURCE_REMOVE;
}

void deletePosted(gpointer data) { delete static_cast<std::function<void()>*>(data); }

gboolean wakeOnly(gpointer flag) {
  *static_cast<bool*>(flag) = true;
  return G_SOURCE_REMOVE;
}

// Wakes the loop now and then, so that a condition changed by another thread without posting to
// the main queue is still seen.
gboolean tick(gpointer) { return G_SOURCE_CONTINUE; }

}  // namespace

void MCMainQueue::async(std::function<void()> work) {
  GSource* source = g_idle_source_new();
  g_source_set_priority(source, G_PRIORITY_DEFAULT);
  g_source_set_callback(source, runPosted, new std::function<void()>(std::move(work)), deletePosted);
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
  async([&] {
    work();
    std::lock_guard lock(m);
    done = true;
    cv.notify_one();
  });
  std::unique_lock lock(m);
  cv.wait(lock, [&] { return done; });
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
