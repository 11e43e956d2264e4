#pragma once
// MCAnimationContext: changes carried out over a duration, frame by frame on the main queue (a
// 60 Hz MCTimer), then a completion — the platform's animation grouping.
//
//   MCAnimationContext::runAnimationGroup([&](MCAnimationContext& context) {
//     context.setDuration(0.2);
//     context.animateFrame(view, newFrame);
//     context.animateAlphaValue(oldView, 0);
//   }, [] { /* all done */ });
//
// Each animation gets the eased progress (0 to 1) on every frame and always ends with exactly 1,
// so the final state is exact. With a duration of 0 the changes happen at once; the completion
// still comes later, from the main queue, never on the caller's stack.

#include <vesperon/core/MCGeometry.h>

#include <functional>
#include <memory>
#include <vector>

class MCView;
class MCTimer;

class MCAnimationContext {
 public:
  /// Makes the changes of a group.
  using Changes = std::function<void(MCAnimationContext& context)>;
  /// Runs `changes` animated over the group's duration; `completionHandler` after the last frame.
  static void runAnimationGroup(const Changes& changes, std::function<void()> completionHandler = {});
  /// The context of the group whose changes are being set up, or none outside `runAnimationGroup`.
  static MCAnimationContext* currentContext();

  /// The duration of a group unless set, in seconds.
  static constexpr double kDefaultDuration = 0.25;
  /// The group's duration in seconds.
  double duration() const { return duration_; }
  /// Sets the duration (negative is 0: the change is immediate).
  void setDuration(double seconds) { duration_ = seconds > 0 ? seconds : 0; }

  /// Calls `step` with the progress on every frame of the group.
  void animate(std::function<void(double progress)> step);
  /// Moves the view to `frame` over the duration.
  void animateFrame(const std::shared_ptr<MCView>& view, const MCRect& frame);
  /// Fades the view to `alpha` over the duration.
  void animateAlphaValue(const std::shared_ptr<MCView>& view, double alpha);

  /// The ease-in-ease-out curve the frames follow.
  static double easeInEaseOut(double t);

 private:
  MCAnimationContext() = default;
  double duration_ = kDefaultDuration;
  std::vector<std::function<void(double)>> steps_;
};
