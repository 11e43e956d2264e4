#pragma once
// Operations on numbers: nil-safe comparisons (std::nullopt is nil and sorts first), the best
// fraction under a denominator limit, and the monotonic tick count.

#include <cstdint>
#include <optional>

/// `numberWithMachAbsoluteTime`: the monotonic clock in nanosecond ticks. Only differences mean
/// anything.
uint64_t numberWithMachAbsoluteTime();

/// -1, 0 or 1; nil sorts before any number and equals only nil.
int compareNumber(std::optional<double> a, std::optional<double> b);
/// Nil-safe. With b - a above `deviation`, -1; below -deviation, 1; otherwise 0, so a difference of
/// exactly the deviation compares as equal.
int compareNumber(std::optional<double> a, std::optional<double> b, double deviation);
bool isEqualNumber(std::optional<double> a, std::optional<double> b);

inline double minNumber(double receiver, double other) { return other < receiver ? other : receiver; }
inline double maxNumber(double receiver, double other) { return other > receiver ? other : receiver; }

/// `getFractionForDenominator:num:denom:`: the best fraction of `value` whose denominator is not
/// above `limit`, by continued fractions with a final semiconvergent. The sign goes on the
/// numerator. With a limit of 1 or less: the value truncated to an integer, over 1. When the
/// limit stops the expansion, the semiconvergent with the largest k that fits is taken when the
/// partial quotient is at most 2k (so on the tie too), otherwise the last convergent.
void getFractionForDenominator(double value, int64_t limit, int64_t& numerator, int64_t& denominator);
