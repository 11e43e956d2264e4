#include <vesperon/metadata/MCFraction.h>

#include <numeric>

std::shared_ptr<const MCFraction> MCFraction::fractionWithNumerator(uint64_t numerator, uint64_t denominator) {
  if (denominator == 0) return nullptr;
  uint64_t divisor = std::gcd(numerator, denominator);
  return std::shared_ptr<const MCFraction>(
      new MCFraction(static_cast<int64_t>(numerator / divisor), static_cast<int64_t>(denominator / divisor)));
}

MCComparisonResult MCFraction::compare(const MCFraction& other) const {
  double a = doubleValue(), b = other.doubleValue();
  if (a < b) return MCOrderedAscending;
  if (a > b) return MCOrderedDescending;
  return MCOrderedSame;
}

MCComparisonResult MCFraction::compareFraction(const std::shared_ptr<const MCFraction>& a,
                                               const std::shared_ptr<const MCFraction>& b) {
  if (a == b) return MCOrderedSame;
  if (!a) return MCOrderedAscending;
  if (!b) return MCOrderedDescending;
  return a->compare(*b);
}
