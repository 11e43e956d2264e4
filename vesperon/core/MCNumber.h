#pragma once
// MCNumber: one number as the platform's number objects hold it — a 64-bit integer, signed or
// unsigned, or a double — compared by value across those kinds.
//
// Integers compare as integers: 2^53 and 2^53 + 1 differ, as do INT64_MAX and INT64_MAX - 1,
// although a double holds neither pair apart. An integer and a double compare exactly too: 2^53 + 1
// is above the double 2^53, and 3 is below 3.5. Doubles compare as doubles. A NaN is unordered:
// compare() answers 0 for it (neither before nor after), and == is false, as for doubles.
//
//   MCNumber(int64_t(1) << 60) == MCNumber((int64_t(1) << 60) + 1)   // false
//   MCCompareNumbers(MCNumber(7), MCNumber(7.5))                      // -1

#include <cstdint>
#include <iosfwd>
#include <type_traits>
#include <variant>

class MCNumber {
 public:
  /// The integer 0.
  MCNumber() = default;
  /// Any integer, booleans as 0 and 1. Unsigned values above INT64_MAX stay unsigned.
  template <typename T, std::enable_if_t<std::is_integral_v<T>, int> = 0>
  MCNumber(T value) {
    if constexpr (std::is_unsigned_v<T>) {
      if (static_cast<uint64_t>(value) > static_cast<uint64_t>(INT64_MAX)) {
        storage_ = static_cast<uint64_t>(value);
        return;
      }
    }
    storage_ = static_cast<int64_t>(value);
  }
  /// A double.
  MCNumber(double value) : storage_(value) {}
  /// A double of `value`.
  MCNumber(float value) : storage_(static_cast<double>(value)) {}

  /// Whether it holds an integer.
  bool isInteger() const { return !isDouble(); }
  /// Whether it holds a double.
  bool isDouble() const { return std::holds_alternative<double>(storage_); }
  /// The value as a double; integers beyond 2^53 round to the nearest double.
  double doubleValue() const;

  /// -1, 0 or 1 by value, exactly across kinds; 0 when either is NaN.
  friend int MCCompareNumbers(const MCNumber& a, const MCNumber& b);
  /// Nil-free form of `compareNumber:toNumber:deviation:`: -1 when b - a is above the deviation,
  /// 1 when it is below minus the deviation, otherwise 0 (so exactly the deviation is equal). The
  /// difference is taken exactly when an integer is involved.
  friend int MCCompareNumbers(const MCNumber& a, const MCNumber& b, double deviation);
  /// Equal values; a NaN equals nothing.
  friend bool operator==(const MCNumber& a, const MCNumber& b);
  friend std::ostream& operator<<(std::ostream& stream, const MCNumber& number);

 private:
  using Storage = std::variant<int64_t, uint64_t, double>;
  Storage storage_ = int64_t(0);
};

int MCCompareNumbers(const MCNumber& a, const MCNumber& b);
int MCCompareNumbers(const MCNumber& a, const MCNumber& b, double deviation);
