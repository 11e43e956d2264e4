#include <vesperon/core/MCNumber.h>

#include <cmath>
#include <ostream>

namespace {

using Wide = __int128;

// Beyond this a double has no fraction, and sums of two such values still fit a Wide.
constexpr double kWideLimit = 0x1p125;

int sign(Wide value) { return value > 0 ? 1 : (value < 0 ? -1 : 0); }
int sign(double value) { return value > 0 ? 1 : (value < 0 ? -1 : 0); }

// The sign of whole + fraction, for a fraction of magnitude below 2.
int signOfSum(Wide whole, double fraction) {
  if (whole > 2 || whole < -2) return sign(whole);
  return sign(static_cast<double>(whole) + fraction);
}

// A value split into an exact integer part and a fraction in (-1, 1); only for |value| below
// kWideLimit.
struct Split {
  Wide whole;
  double fraction;
};
Split split(double value) {
  const double whole = std::trunc(value);
  return {static_cast<Wide>(whole), value - whole};  // both exact
}

}  // namespace

double MCNumber::doubleValue() const {
  return std::visit([](auto v) { return static_cast<double>(v); }, storage_);
}

int MCCompareNumbers(const MCNumber& a, const MCNumber& b) {
  auto wide = [](const MCNumber::Storage& s) -> Wide {
    return std::holds_alternative<int64_t>(s) ? Wide(std::get<int64_t>(s)) : Wide(std::get<uint64_t>(s));
  };
  if (!a.isDouble() && !b.isDouble()) return sign(wide(a.storage_) - wide(b.storage_));
  if (a.isDouble() && b.isDouble()) {
    const double x = std::get<double>(a.storage_), y = std::get<double>(b.storage_);
    return x < y ? -1 : (x > y ? 1 : 0);
  }
  // An integer against a double: exactly, by the double's integer part and then its fraction.
  const bool integerFirst = !a.isDouble();
  const Wide integer = wide(integerFirst ? a.storage_ : b.storage_);
  const double d = std::get<double>(integerFirst ? b.storage_ : a.storage_);
  int order;  // integer against d
  if (std::isnan(d)) return 0;
  if (d >= kWideLimit) {
    order = -1;
  } else if (d <= -kWideLimit) {
    order = 1;
  } else {
    const Split s = split(d);
    order = integer != s.whole ? sign(integer - s.whole) : -sign(s.fraction);
  }
  return integerFirst ? order : -order;
}

int MCCompareNumbers(const MCNumber& a, const MCNumber& b, double deviation) {
  auto plainDoubles = [&] {
    const double difference = b.doubleValue() - a.doubleValue();
    if (difference > deviation) return -1;
    if (difference < -deviation) return 1;
    return 0;
  };
  if (a.isDouble() && b.isDouble()) return plainDoubles();
  // With an integer, the difference is taken as an exact integer part plus a fraction, so that
  // integers beyond 2^53 that differ by one do differ.
  auto parts = [](const MCNumber& n, Split& out) {
    if (auto* i = std::get_if<int64_t>(&n.storage_)) out = {Wide(*i), 0.0};
    else if (auto* u = std::get_if<uint64_t>(&n.storage_)) out = {Wide(*u), 0.0};
    else if (std::fabs(std::get<double>(n.storage_)) < kWideLimit) out = split(std::get<double>(n.storage_));
    else return false;  // NaN, infinite or huge: the integers are lost in it anyway
    return true;
  };
  Split pa, pb;
  if (!parts(a, pa) || !parts(b, pb) || !(std::fabs(deviation) < kWideLimit)) return plainDoubles();
  const Wide whole = pb.whole - pa.whole;
  const double fraction = pb.fraction - pa.fraction;  // one of the two is 0: exact
  const Split dev = split(deviation);
  if (signOfSum(whole - dev.whole, fraction - dev.fraction) > 0) return -1;  // b - a > deviation
  if (signOfSum(whole + dev.whole, fraction + dev.fraction) < 0) return 1;   // b - a < -deviation
  return 0;
}

bool operator==(const MCNumber& a, const MCNumber& b) {
  if (a.isDouble() && std::isnan(std::get<double>(a.storage_))) return false;
  if (b.isDouble() && std::isnan(std::get<double>(b.storage_))) return false;
  return MCCompareNumbers(a, b) == 0;
}

std::ostream& operator<<(std::ostream& stream, const MCNumber& number) {
  std::visit([&](auto v) { stream << v; }, number.storage_);
  return stream;
}
