#pragma once
// Three small exported maths functions.

#include <cmath>
#include <cstdint>

/// Greatest common divisor by Euclid's algorithm; with a = 0 it is b (and gcd(0, 0) is 0).
constexpr uint64_t MC_MATH_GCD(uint64_t a, uint64_t b) {
  while (a != 0) {
    uint64_t r = b % a;
    b = a;
    a = r;
  }
  return b;
}

/// `x` wrapped into [0, y): fmod(y + fmod(x, y), y). For a negative x too: (-1, 360) gives 359.
inline double MC_MATH_ROTATE_DOUBLE_VALUE(double x, double y) { return std::fmod(y + std::fmod(x, y), y); }

/// The cubic Bézier value at t of the control values p1…p4:
/// (1-t)^3 p1 + 3 t (1-t)^2 p2 + 3 t^2 (1-t) p3 + t^3 p4.
constexpr double MC_CUBIC_BEZIER_PATH_VALUE(double t, double p1, double p2, double p3, double p4) {
  const double u = 1.0 - t;
  return u * u * u * p1 + 3.0 * t * u * u * p2 + 3.0 * t * t * u * p3 + t * t * t * p4;
}
