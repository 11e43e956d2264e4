#pragma once
// MCTimer: a one-shot or repeating timer on the main queue (a GLib timeout on the default main
// context), as the platform's scheduled timers. It fires only while the main context runs — the
// host's main loop, a nested event loop, or MCMainQueue::runUntil in a program or test.
//
// The timer holds its block until it is invalidated (a one-shot timer invalidates itself after
// firing); destroying the last reference invalidates it too, so an owner that keeps its timer as
// a member never hears from it after its own end.

#include <functional>
#include <memory>

class MCTimer : public std::enable_shared_from_this<MCTimer> {
 public:
  /// Starts a timer that first fires after `interval` seconds (at least 1 ms) and, when `repeats`,
  /// every `interval` seconds after. Must be called on the main thread.
  static std::shared_ptr<MCTimer> scheduledTimer(double interval, bool repeats, std::function<void(MCTimer&)> block);
  /// Like `scheduledTimer`, with a first delay different from the period.
  static std::shared_ptr<MCTimer> scheduledTimer(double delay, double period, std::function<void(MCTimer&)> block);
  ~MCTimer();
  MCTimer(const MCTimer&) = delete;
  MCTimer& operator=(const MCTimer&) = delete;

  /// Stops the timer; it fires no more.
  void invalidate();
  /// Whether it will still fire.
  bool isValid() const { return source_ != 0; }
  /// The period in seconds (0 for a one-shot timer).
  double timeInterval() const { return period_; }

 private:
  MCTimer() = default;
  static int onFirst(void* data);
  static int onRepeat(void* data);
  void fire();

  unsigned source_ = 0;
  double period_ = 0;
  bool repeats_ = false;
  std::function<void(MCTimer&)> block_;
};

using MCTimerRef = std::shared_ptr<MCTimer>;
