#include <vesperon/predicates/MCPredicateDate.h>

#include <cmath>
#include <cstdio>
#include <ctime>

namespace {

// Reads exactly `digits` decimal digits at `at`.
bool number(std::string_view text, std::size_t& at, int digits, int& out) {
  if (text.size() - at < std::size_t(digits)) return false;
  out = 0;
  for (int i = 0; i < digits; ++i) {
    const char c = text[at + std::size_t(i)];
    if (c < '0' || c > '9') return false;
    out = out * 10 + (c - '0');
  }
  at += std::size_t(digits);
  return true;
}

bool take(std::string_view text, std::size_t& at, char c) {
  if (at < text.size() && text[at] == c) {
    ++at;
    return true;
  }
  return false;
}

}  // namespace

std::optional<double> MCPredicateDate::instantOfText(std::string_view text) {
  std::size_t at = 0;
  int year, month, day, hour = 0, minute = 0, second = 0;
  if (!number(text, at, 4, year) || at >= text.size()) return std::nullopt;
  const char separator = text[at];
  if (separator != ':' && separator != '-') return std::nullopt;
  const bool exif = separator == ':';
  if (!take(text, at, separator) || !number(text, at, 2, month) || !take(text, at, separator) ||
      !number(text, at, 2, day))
    return std::nullopt;
  double fraction = 0;
  std::optional<int> offsetMinutes;
  if (at < text.size()) {
    if (!take(text, at, exif ? ' ' : 'T') && !(!exif && take(text, at, ' '))) return std::nullopt;
    if (!number(text, at, 2, hour) || !take(text, at, ':') || !number(text, at, 2, minute)) return std::nullopt;
    if (take(text, at, ':') && !number(text, at, 2, second)) return std::nullopt;
    if (take(text, at, '.')) {
      double scale = 0.1;
      std::size_t digits = 0;
      while (at < text.size() && text[at] >= '0' && text[at] <= '9') {
        fraction += (text[at++] - '0') * scale;
        scale /= 10;
        ++digits;
      }
      if (digits == 0) return std::nullopt;
    }
    if (take(text, at, 'Z')) {
      offsetMinutes = 0;
    } else if (at < text.size() && (text[at] == '+' || text[at] == '-')) {
      const int sign = text[at++] == '-' ? -1 : 1;
      int h, m;
      if (!number(text, at, 2, h)) return std::nullopt;
      take(text, at, ':');
      if (!number(text, at, 2, m)) return std::nullopt;
      offsetMinutes = sign * (h * 60 + m);
    }
  }
  if (at != text.size()) return std::nullopt;
  if (month < 1 || month > 12 || day < 1 || day > 31 || hour > 23 || minute > 59 || second > 60) return std::nullopt;

  std::tm parts{};
  parts.tm_year = year - 1900;
  parts.tm_mon = month - 1;
  parts.tm_mday = day;
  parts.tm_hour = hour;
  parts.tm_min = minute;
  parts.tm_sec = second;
  time_t seconds;
  if (offsetMinutes) {
    seconds = timegm(&parts) - time_t(*offsetMinutes) * 60;
  } else {
    parts.tm_isdst = -1;
    seconds = mktime(&parts);
  }
  return double(seconds) + fraction;
}

std::string MCPredicateDate::textOfInstant(double seconds) {
  const time_t whole = time_t(std::floor(seconds));
  std::tm local{};
  localtime_r(&whole, &local);
  const long offset = local.tm_gmtoff / 60;
  char text[64];
  std::snprintf(text, sizeof text, "%04d-%02d-%02dT%02d:%02d:%02d%c%02ld:%02ld", local.tm_year + 1900, local.tm_mon + 1,
                local.tm_mday, local.tm_hour, local.tm_min, local.tm_sec, offset < 0 ? '-' : '+', std::labs(offset) / 60,
                std::labs(offset) % 60);
  return text;
}
