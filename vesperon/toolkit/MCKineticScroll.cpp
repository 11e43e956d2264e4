#include <vesperon/toolkit/MCKineticScroll.h>

#include <cmath>

MCKineticScroll::MCKineticScroll(MCPoint velocity)
    : velocity_(velocity),
      active_(std::isfinite(velocity.x) && std::isfinite(velocity.y) &&
              (std::fabs(velocity.x) >= kStopSpeed || std::fabs(velocity.y) >= kStopSpeed)) {}

MCPoint MCKineticScroll::step(double seconds) {
  if (!active_ || !(seconds > 0) || !std::isfinite(seconds)) return {0, 0};
  // The integral of v·e^(−kt) over the step, so that any frame rate covers the same distance.
  const double decay = std::exp(-kFriction * seconds);
  const double reach = (1 - decay) / kFriction;
  const MCPoint moved = {velocity_.x * reach, velocity_.y * reach};
  velocity_ = {velocity_.x * decay, velocity_.y * decay};
  if (std::fabs(velocity_.x) < kStopSpeed && std::fabs(velocity_.y) < kStopSpeed) active_ = false;
  return moved;
}
