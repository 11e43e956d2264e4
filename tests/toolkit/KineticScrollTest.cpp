// The motion after a flick on a touchpad: it covers the distance its velocity and friction give,
// whatever the frame rate, keeps its direction, slows every frame and stops.

#include <vesperon/toolkit/MCKineticScroll.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace {

// The whole distance of a motion stepped at `fps`, and the number of frames it took.
MCPoint travel(MCPoint velocity, double fps, int* frames = nullptr) {
  MCKineticScroll scroll(velocity);
  MCPoint total{0, 0};
  int n = 0;
  double lastSpeed = std::numeric_limits<double>::infinity();
  while (scroll.isActive() && n < 100000) {
    const MCPoint d = scroll.step(1 / fps);
    const double speed = std::hypot(d.x, d.y);
    EXPECT_LT(speed, lastSpeed) << "frame " << n;  // slower every frame
    lastSpeed = speed;
    total = {total.x + d.x, total.y + d.y};
    ++n;
  }
  if (frames) *frames = n;
  return total;
}

}  // namespace

TEST(KineticScroll, AFlickGlidesItsDistanceAndStops) {
  // 2,000 points a second: v / friction in all, less the part below the stopping speed.
  int frames = 0;
  const MCPoint at60 = travel({0, 2000}, 60, &frames);
  const double full = 2000 / MCKineticScroll::kFriction, cut = MCKineticScroll::kStopSpeed / MCKineticScroll::kFriction;
  EXPECT_EQ(at60.x, 0);
  EXPECT_GT(at60.y, full - cut - 1);
  EXPECT_LT(at60.y, full);
  // About a second: e^(−4t) falls from 2,000 to 30 in ln(66.7) / 4 seconds.
  EXPECT_NEAR(frames / 60.0, std::log(2000.0 / MCKineticScroll::kStopSpeed) / MCKineticScroll::kFriction, 0.05);
  // The same glide at 144 frames a second, and backwards in the other direction.
  EXPECT_NEAR(travel({0, 2000}, 144).y, at60.y, 8);
  const MCPoint back = travel({-900, -300}, 60);
  EXPECT_LT(back.x, 0);
  EXPECT_NEAR(back.y / back.x, 300.0 / 900.0, 1e-9);

  // Too slow to glide, or no velocity a number gives: nothing moves.
  EXPECT_FALSE(MCKineticScroll({10, -10}).isActive());
  EXPECT_FALSE(MCKineticScroll({std::nan(""), 500}).isActive());
  MCKineticScroll stopped({0, 1000});
  stopped.stop();
  EXPECT_EQ(stopped.step(0.016).y, 0);
  MCKineticScroll still({0, 1000});
  EXPECT_EQ(still.step(0).y, 0);  // no time, no distance
  EXPECT_TRUE(still.isActive());
}
