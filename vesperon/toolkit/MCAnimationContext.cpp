#include <vesperon/toolkit/MCAnimationContext.h>

#include <vesperon/platform/MCMainQueue.h>
#include <vesperon/toolkit/MCTimer.h>
#include <vesperon/toolkit/MCView.h>

#include <algorithm>
#include <chrono>

namespace {

MCAnimationContext* settingUp = nullptr;

struct RunningGroup {
  std::vector<std::function<void(double)>> steps;
  std::function<void()> completion;
  double duration = 0;
  std::chrono::steady_clock::time_point start;
  std::shared_ptr<MCTimer> timer;
};

}  // namespace

double MCAnimationContext::easeInEaseOut(double t) {
  t = std::clamp(t, 0.0, 1.0);
  return t * t * (3 - 2 * t);
}

MCAnimationContext* MCAnimationContext::currentContext() { return settingUp; }

void MCAnimationContext::runAnimationGroup(const Changes& changes, std::function<void()> completionHandler) {
  MCAnimationContext context;
  MCAnimationContext* outer = settingUp;
  settingUp = &context;
  if (changes) changes(context);
  settingUp = outer;

  auto group = std::make_shared<RunningGroup>();
  group->steps = std::move(context.steps_);
  group->completion = std::move(completionHandler);
  group->duration = context.duration_;
  if (group->duration <= 0 || group->steps.empty()) {
    for (auto& step : group->steps) step(1.0);
    if (group->completion) MCMainQueue::async(group->completion);
    return;
  }
  group->start = std::chrono::steady_clock::now();
  for (auto& step : group->steps) step(0.0);
  // The timer's block holds the group; the group holds the timer until the last frame.
  group->timer = MCTimer::scheduledTimer(1.0 / 60, true, [group](MCTimer& timer) {
    const double elapsed = std::chrono::duration<double>(std::chrono::steady_clock::now() - group->start).count();
    const double t = std::min(1.0, elapsed / group->duration);
    const double eased = t >= 1 ? 1.0 : easeInEaseOut(t);
    for (auto& step : group->steps) step(eased);
    if (t >= 1) {
      auto completion = std::move(group->completion);
      auto self = group->timer;  // keep the timer while it invalidates itself
      group->timer.reset();
      timer.invalidate();
      if (completion) completion();
    }
  });
}

void MCAnimationContext::animate(std::function<void(double progress)> step) {
  if (step) steps_.push_back(std::move(step));
}

void MCAnimationContext::animateFrame(const std::shared_ptr<MCView>& view, const MCRect& frame) {
  if (!view) return;
  const MCRect from = view->frame();
  animate([view, from, frame](double t) {
    auto mix = [t](double a, double b) { return t >= 1 ? b : a + (b - a) * t; };
    view->setFrame(MCMakeRect(mix(from.origin.x, frame.origin.x), mix(from.origin.y, frame.origin.y),
                              mix(from.size.width, frame.size.width), mix(from.size.height, frame.size.height)));
  });
}

void MCAnimationContext::animateAlphaValue(const std::shared_ptr<MCView>& view, double alpha) {
  if (!view) return;
  const double from = view->alphaValue();
  animate([view, from, alpha](double t) { view->setAlphaValue(t >= 1 ? alpha : from + (alpha - from) * t); });
}
