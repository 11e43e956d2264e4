#pragma once
// MCDate: an instant, counted in whole microseconds since 1970-01-01 00:00:00 UTC.
//
// Microseconds in a 64-bit count keep every fraction the date texts carry (ICU works in
// milliseconds) and still reach some 290,000 years either side of 1970, so an Exif year 0001 fits.
// Seconds and fractions round-trip exactly, which a double of seconds would not promise.

#include <chrono>
#include <cmath>
#include <optional>

using MCDate = std::chrono::sys_time<std::chrono::microseconds>;

/// `date` minus `since`, in seconds.
inline double MCDateTimeIntervalSince(MCDate date, MCDate since) {
  return std::chrono::duration<double>(date - since).count();
}

/// The instant `seconds` after 1970, rounded to the microsecond; none when out of range or not finite.
inline std::optional<MCDate> MCDateWithTimeIntervalSince1970(double seconds) {
  const double micros = std::round(seconds * 1e6);
  if (!std::isfinite(micros) || std::fabs(micros) > 9.2e18) return std::nullopt;
  return MCDate(std::chrono::microseconds(static_cast<int64_t>(micros)));
}
