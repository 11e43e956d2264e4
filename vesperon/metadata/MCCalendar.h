#pragma once
// MCCalendar: a Gregorian calendar with a locale and a time zone, on ICU. It assembles instants from
// calendar fields and moves a wall-clock time from one zone to another.
//
// A value type; const operations work on a private copy of the calendar, so one MCCalendar may be
// shared by threads as long as nobody sets its zone meanwhile.

#include <vesperon/metadata/MCDate.h>
#include <vesperon/metadata/MCTimeZone.h>

#include <memory>
#include <optional>
#include <string>

namespace mc_detail {
struct ICUAccess;
}

class MCCalendar {
 public:
  /// A Gregorian calendar for `localeIdentifier`, in the default time zone.
  explicit MCCalendar(const std::string& localeIdentifier = "en_US_POSIX");

  /// The locale the calendar follows.
  const std::string& localeIdentifier() const { return localeIdentifier_; }
  /// The time zone dates are told in.
  const MCTimeZone& timeZone() const { return timeZone_; }
  /// Sets the time zone.
  void setTimeZone(MCTimeZone zone);

  /// The instant of these fields in the calendar's zone. Fields out of their range roll over
  /// (February 31 is March 2 or 3); none when the result lies beyond what MCDate holds.
  std::optional<MCDate> dateWithEra(int era, int year, int month, int day, int hour, int minute, int second,
                                    int nanosecond) const;

  /// Keeps the wall-clock reading and changes its zone, so the instant moves: 12:00 in `from`
  /// becomes 12:00 in `to`. None if any argument is none; `date` itself if the zones are equal.
  /// A wall-clock time that `to` skips (the hour lost to daylight saving time) lands after the gap.
  std::optional<MCDate> convertDate(const std::optional<MCDate>& date, const std::optional<MCTimeZone>& fromTimeZone,
                                    const std::optional<MCTimeZone>& toTimeZone) const;
  /// convertDate with the calendar's own zone as the target.
  std::optional<MCDate> convertDateFromTimeZone(const std::optional<MCDate>& date,
                                                const std::optional<MCTimeZone>& fromTimeZone) const;
  /// convertDate with the calendar's own zone as the source.
  std::optional<MCDate> convertDateToTimeZone(const std::optional<MCDate>& date,
                                              const std::optional<MCTimeZone>& toTimeZone) const;

 private:
  friend struct mc_detail::ICUAccess;
  struct Prototype;
  static std::shared_ptr<const Prototype> makePrototype(const std::string& locale, const MCTimeZone& zone);

  std::string localeIdentifier_;
  MCTimeZone timeZone_;
  std::shared_ptr<const Prototype> prototype_;  // never changed after creation; replaced by setTimeZone
};
