#pragma once
// MCFraction: an exact fraction in lowest terms, an immutable value shared by pointer.

#include <vesperon/core/MCTypes.h>

#include <cstddef>
#include <cstdint>
#include <memory>

class MCFraction {
 public:
  /// None when `denominator` is 0; otherwise both divided by their greatest common divisor, so 6
  /// and 4 give 3/2 and 0 and 5 give 0/1.
  static std::shared_ptr<const MCFraction> fractionWithNumerator(uint64_t numerator, uint64_t denominator);

  /// The numerator.
  int64_t numerator() const { return numerator_; }
  /// The denominator.
  int64_t denominator() const { return denominator_; }
  /// Numerator over denominator, each first converted to the result's width.
  float floatValue() const { return static_cast<float>(numerator_) / static_cast<float>(denominator_); }
  /// The quotient.
  double doubleValue() const { return static_cast<double>(numerator_) / static_cast<double>(denominator_); }

  /// By doubleValue: less is ascending, greater descending, else same.
  MCComparisonResult compare(const MCFraction& other) const;
  /// The same object compares same; a missing first operand sorts first, a missing second last.
  static MCComparisonResult compareFraction(const std::shared_ptr<const MCFraction>& a,
                                            const std::shared_ptr<const MCFraction>& b);

  /// Denominator OR numerator shifted left 32 bits.
  std::size_t hash() const { return static_cast<std::size_t>(uint64_t(denominator_) | (uint64_t(numerator_) << 32)); }
  /// Equal numerators and equal denominators.
  bool isEqual(const MCFraction& other) const {
    return this == &other || (numerator_ == other.numerator_ && denominator_ == other.denominator_);
  }
  friend bool operator==(const MCFraction& a, const MCFraction& b) { return a.isEqual(b); }

  /// Immutable: a copy is the object itself.
  std::shared_ptr<const MCFraction> copy(const std::shared_ptr<const MCFraction>& self) const { return self; }

 private:
  MCFraction(int64_t numerator, int64_t denominator) : numerator_(numerator), denominator_(denominator) {}
  int64_t numerator_;
  int64_t denominator_;
};

template <>
struct std::hash<MCFraction> {
  std::size_t operator()(const MCFraction& f) const { return f.hash(); }
};
