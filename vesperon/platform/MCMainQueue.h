#pragma once
// MCMainQueue: the main queue of the process, on GLib's default main context.
//
// Work posted here runs on whichever thread iterates the default main context — the host's GTK or
// GLib main loop, or, in tests and the command-line program, `runUntil` / `drain`. The main thread
// is the thread that loaded the library, unless the host says otherwise with `setMainThread`.
//
// Posted work goes through a queue of our own under a std::mutex; GLib is only asked to wake the
// loop (one idle source while work is waiting). So the hand-off from a worker to the main thread is
// made by a lock that ThreadSanitizer and any reader of the code can see, not by GLib's internal
// locking. Each iteration of the loop runs the work that was waiting when it began, in the order it
// was posted; work posted meanwhile runs at the next iteration. Work that throws is logged
// ("main queue work raised: …" in sdkGeneric) and the rest runs on: one faulty completion neither
// stops the loop nor loses the answers queued behind it.

#include <chrono>
#include <functional>

class MCMainQueue {
 public:
  MCMainQueue() = delete;

  /// Queues `work` to run on the main queue, never on the caller's stack. Safe from any thread.
  static void async(std::function<void()> work);

  /// Runs `work` on the main thread and waits for it. On the main thread it runs at once;
  /// from another thread the main context must be running (or be run) for this to return.
  /// An exception from `work` is passed back to the caller.
  static void sync(const std::function<void()>& work);

  /// True on the main thread.
  static bool isMainThread();

  /// Marks the calling thread as the main thread (a host that loads the library elsewhere).
  static void setMainThread();

  /// Iterates the main context until `done()` answers true or `timeout` passes; answers `done()`.
  /// For tests and the command-line program; must be called on the main thread.
  static bool runUntil(const std::function<bool()>& done,
                       std::chrono::milliseconds timeout = std::chrono::seconds(10));

  /// Runs everything already pending, and what that work posts, until the context is idle or the
  /// timeout passes.
  static void drain(std::chrono::milliseconds timeout = std::chrono::seconds(1));
};
