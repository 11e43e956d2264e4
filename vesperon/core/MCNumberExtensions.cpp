#include <vesperon/core/MCNumberExtensions.h>

#include <cmath>
#include <cstdint>
#include <ctime>

uint64_t numberWithMachAbsoluteTime() {
  timespec now{};
  clock_gettime(CLOCK_MONOTONIC, &now);
  return uint64_t(now.tv_sec) * 1000000000ull + uint64_t(now.tv_nsec);
}

int compareNumber(const std::optional<MCNumber>& a, const std::optional<MCNumber>& b) {
  if (!a || !b) return a ? 1 : (b ? -1 : 0);
  return MCCompareNumbers(*a, *b);
}

int compareNumber(const std::optional<MCNumber>& a, const std::optional<MCNumber>& b, double deviation) {
  if (!a || !b) return a ? 1 : (b ? -1 : 0);
  return MCCompareNumbers(*a, *b, deviation);
}

bool isEqualNumber(const std::optional<MCNumber>& a, const std::optional<MCNumber>& b) {
  if (!a || !b) return !a && !b;
  return *a == *b;
}

void getFractionForDenominator(double value, int64_t limit, int64_t& numerator, int64_t& denominator) {
  if (limit <= 1 || !std::isfinite(value)) {
    numerator = std::isfinite(value) ? int64_t(value) : 0;
    denominator = 1;
    return;
  }
  const bool negative = value < 0;
  double x = std::fabs(value);
  if (x >= 0x1p62) {  // whole already, and no room left for a denominator
    numerator = x >= 0x1p63 ? (negative ? INT64_MIN : INT64_MAX) : int64_t(value);
    denominator = 1;
    return;
  }

  // The exact ratio N / D with D a power of two. Doubling stops at 2^62: bits below that are far
  // beyond any denominator limit that fits the result.
  using Wide = unsigned __int128;
  Wide D = 1;
  int doublings = 0;
  while (x != std::floor(x) && doublings < 62) {
    x *= 2;
    D <<= 1;
    ++doublings;
  }
  Wide N = Wide(std::floor(x));

  // Convergents: (p1, q1) the last, (p0, q0) the one before. Wide, so that a large partial
  // quotient cannot overflow before the limit test.
  using Signed = __int128;
  Signed p0 = 0, q0 = 1, p1 = 1, q1 = 0;
  Signed a = 0;
  bool stoppedByLimit = false;
  for (int step = 0; step < 63; ++step) {
    if (D == 0) break;
    a = Signed(N / D);
    Signed qNext = a * q1 + q0;
    if (step > 0 && qNext > limit) {
      stoppedByLimit = true;
      break;
    }
    Signed pNext = a * p1 + p0;
    p0 = p1;
    q0 = q1;
    p1 = pNext;
    q1 = qNext;
    Wide remainder = N - Wide(a) * D;
    N = D;
    D = remainder;
  }

  Signed p = p1, q = q1;
  if (stoppedByLimit) {
    Signed k = (limit - q0) / q1;
    if (a <= 2 * k) {
      p = p0 + k * p1;
      q = q0 + k * q1;
    }
  }
  numerator = int64_t(negative ? -p : p);
  denominator = int64_t(q);
}
