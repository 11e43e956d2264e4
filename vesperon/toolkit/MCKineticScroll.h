#pragma once
// MCKineticScroll: the scrolling that goes on by itself after a flick on a touchpad, slowing down
// as in GTK's own scrolled windows — the velocity decays exponentially (friction 4 a second), and
// the motion stops once it is slower than a few pixels a frame. A host asks it, frame by frame,
// how far to move; the distance over a time does not depend on the frame rate.

#include <vesperon/core/MCGeometry.h>

class MCKineticScroll {
 public:
  /// How fast the velocity decays: it is multiplied by e^(−friction × seconds).
  static constexpr double kFriction = 4.0;
  /// Below this speed (points a second, along either axis) the motion stops.
  static constexpr double kStopSpeed = 30.0;

  /// None: not moving.
  MCKineticScroll() = default;
  /// A motion starting at `velocity`, in points a second.
  explicit MCKineticScroll(MCPoint velocity);

  /// Whether the content is still moving.
  bool isActive() const { return active_; }
  /// The speed now, in points a second along each axis.
  MCPoint velocity() const { return velocity_; }
  /// The distance to move over the next `seconds` (none when not moving, or for no time); the
  /// velocity drops accordingly, and the motion ends when it is slow enough.
  MCPoint step(double seconds);
  /// Ends the motion (a new touch, a click).
  void stop() { active_ = false; }

 private:
  MCPoint velocity_{0, 0};
  bool active_ = false;
};
