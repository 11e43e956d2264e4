#pragma once
// Operations on numbers: nil-safe comparisons (std::nullopt is nil and sorts first), the best
// fraction under a denominator limit, and the monotonic tick count.

#include <vesperon/core/MCNumber.h>

#include <cstdint>
#include <optional>

/// `numberWithMachAbsoluteTime`: the monotonic clock in nanosecond ticks. Only differences mean
/// anything.
uint64_t numberWithMachAbsoluteTime();

/// -1, 0 or 1; nil sorts before any number and equals only nil. Numbers compare by value, integers
/// as integers (see MCNumber), so integers beyond 2^53 that differ by one are not equal.
int compareNumber(const std::optional<MCNumber>& a, const std::optional<MCNumber>& b);
/// Nil-safe. With b - a above `deviation`, -1; below -deviation, 1; otherwise 0, so a difference of
/// exactly the deviation compares as equal. With an integer involved the difference is exact.
int compareNumber(const std::optional<MCNumber>& a, const std::optional<MCNumber>& b, double deviation);
/// Nil-safe equality of numbers: none equals only none.
bool isEqualNumber(const std::optional<MCNumber>& a, const std::optional<MCNumber>& b);

/// The smaller or larger of the two; the receiver on a tie.
inline MCNumber minNumber(const MCNumber& receiver, const MCNumber& other) {
  return MCCompareNumbers(other, receiver) < 0 ? other : receiver;
}
/// The larger of the two.
inline MCNumber maxNumber(const MCNumber& receiver, const MCNumber& other) {
  return MCCompareNumbers(other, receiver) > 0 ? other : receiver;
}

/// `getFractionForDenominator:num:denom:`: the best fraction of `value` whose denominator is not
/// above `limit`, by continued fractions with a final semiconvergent. The sign goes on the
/// numerator. With a limit of 1 or less: the value truncated to an integer, over 1. When the
/// limit stops the expansion, the semiconvergent with the largest k that fits is taken when the
/// partial quotient is at most 2k (so on the tie too), otherwise the last convergent.
void getFractionForDenominator(double value, int64_t limit, int64_t& numerator, int64_t& denominator);
