#include <vesperon/toolkit/MCTimer.h>

#include <glib.h>

#include <algorithm>
#include <cmath>

namespace {
unsigned milliseconds(double seconds) { return unsigned(std::max(1.0, std::round(seconds * 1000.0))); }
}  // namespace

std::shared_ptr<MCTimer> MCTimer::scheduledTimer(double interval, bool repeats, std::function<void(MCTimer&)> block) {
  auto timer = scheduledTimer(interval, interval, std::move(block));
  timer->repeats_ = repeats;
  return timer;
}

std::shared_ptr<MCTimer> MCTimer::scheduledTimer(double delay, double period, std::function<void(MCTimer&)> block) {
  auto timer = std::shared_ptr<MCTimer>(new MCTimer());
  timer->period_ = period;
  timer->repeats_ = true;
  timer->block_ = std::move(block);
  // The source holds a plain pointer: the timer removes its source before it goes away.
  timer->source_ = g_timeout_add(milliseconds(delay), &MCTimer::onFirst, timer.get());
  return timer;
}

MCTimer::~MCTimer() { invalidate(); }

void MCTimer::invalidate() {
  if (source_) g_source_remove(source_);
  source_ = 0;
  block_ = nullptr;
}

int MCTimer::onFirst(void* data) {
  auto* timer = static_cast<MCTimer*>(data);
  std::shared_ptr<MCTimer> keep = timer->weak_from_this().lock();
  // The first delay may differ from the period: the repeating source starts after the first fire.
  timer->source_ = 0;
  if (timer->repeats_) timer->source_ = g_timeout_add(milliseconds(timer->period_), &MCTimer::onRepeat, timer);
  timer->fire();
  return G_SOURCE_REMOVE;
}

int MCTimer::onRepeat(void* data) {
  auto* timer = static_cast<MCTimer*>(data);
  // The block may drop the last reference to its timer: hold it until the answer is read.
  std::shared_ptr<MCTimer> keep = timer->weak_from_this().lock();
  timer->fire();
  return timer->source_ != 0 ? G_SOURCE_CONTINUE : G_SOURCE_REMOVE;
}

void MCTimer::fire() {
  auto block = block_;
  if (block) block(*this);
  if (!repeats_) invalidate();
}
