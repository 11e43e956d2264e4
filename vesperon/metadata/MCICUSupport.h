#pragma once
// Internal: the ICU objects behind MCTimeZone and MCCalendar, and conversions between ICU's
// millisecond dates and MCDate. Not installed for users; ICU stays out of the public headers.

#include <vesperon/metadata/MCCalendar.h>
#include <vesperon/metadata/MCTimeZone.h>

#include <unicode/calendar.h>
#include <unicode/timezone.h>
#include <unicode/unistr.h>

#include <memory>
#include <optional>
#include <string>

namespace mc_detail {

struct ICUAccess {
  static const icu::TimeZone& timeZone(const MCTimeZone& zone);
  /// A fresh working copy of the calendar, in its zone.
  static std::unique_ptr<icu::Calendar> calendar(const MCCalendar& calendar);
};

/// ICU's milliseconds, rounded to the microsecond; none when MCDate cannot hold it.
std::optional<MCDate> dateFromUDate(UDate milliseconds);
UDate udateFromDate(MCDate date);

inline icu::UnicodeString unicodeString(const std::string& utf8) { return icu::UnicodeString::fromUTF8(utf8); }
inline std::string utf8String(const icu::UnicodeString& text) {
  std::string out;
  return text.toUTF8String(out);
}

}  // namespace mc_detail
