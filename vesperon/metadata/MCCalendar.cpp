#include <vesperon/metadata/MCCalendar.h>

#include <vesperon/metadata/MCICUSupport.h>

#include <unicode/gregocal.h>

struct MCCalendar::Prototype {
  std::unique_ptr<icu::Calendar> calendar;
};

std::shared_ptr<const MCCalendar::Prototype> MCCalendar::makePrototype(const std::string& locale,
                                                                     const MCTimeZone& zone) {
  UErrorCode status = U_ZERO_ERROR;
  auto calendar = std::make_unique<icu::GregorianCalendar>(mc_detail::ICUAccess::timeZone(zone),
                                                           icu::Locale(locale.c_str()), status);
  if (U_FAILURE(status)) {
    status = U_ZERO_ERROR;
    calendar = std::make_unique<icu::GregorianCalendar>(mc_detail::ICUAccess::timeZone(zone), icu::Locale::getRoot(), status);
  }
  return std::make_shared<const MCCalendar::Prototype>(MCCalendar::Prototype{std::move(calendar)});
}

namespace {

// Microseconds below the millisecond, which ICU does not carry.
int64_t subMillisecond(MCDate date) {
  int64_t micros = date.time_since_epoch().count() % 1000;
  return micros < 0 ? micros + 1000 : micros;
}

}  // namespace

MCCalendar::MCCalendar(const std::string& localeIdentifier)
    : localeIdentifier_(localeIdentifier),
      timeZone_(MCTimeZone::defaultTimeZone()),
      prototype_(makePrototype(localeIdentifier_, timeZone_)) {}

void MCCalendar::setTimeZone(MCTimeZone zone) {
  timeZone_ = std::move(zone);
  prototype_ = makePrototype(localeIdentifier_, timeZone_);
}

std::unique_ptr<icu::Calendar> mc_detail::ICUAccess::calendar(const MCCalendar& calendar) {
  return std::unique_ptr<icu::Calendar>(calendar.prototype_->calendar->clone());
}

std::optional<MCDate> MCCalendar::dateWithEra(int era, int year, int month, int day, int hour, int minute, int second,
                                              int nanosecond) const {
  auto calendar = mc_detail::ICUAccess::calendar(*this);
  calendar->clear();
  calendar->set(UCAL_ERA, era);
  calendar->set(year, month - 1, day, hour, minute, second);
  const int milliseconds = nanosecond / 1000000;
  calendar->set(UCAL_MILLISECOND, milliseconds);
  UErrorCode status = U_ZERO_ERROR;
  const UDate at = calendar->getTime(status);
  if (U_FAILURE(status)) return std::nullopt;
  auto date = mc_detail::dateFromUDate(at);
  if (!date) return std::nullopt;
  return *date + std::chrono::microseconds((nanosecond - milliseconds * 1000000) / 1000);
}

std::optional<MCDate> MCCalendar::convertDate(const std::optional<MCDate>& date,
                                              const std::optional<MCTimeZone>& fromTimeZone,
                                              const std::optional<MCTimeZone>& toTimeZone) const {
  if (!date || !fromTimeZone || !toTimeZone) return std::nullopt;
  if (*fromTimeZone == *toTimeZone) return date;

  auto calendar = mc_detail::ICUAccess::calendar(*this);
  calendar->setTimeZone(mc_detail::ICUAccess::timeZone(*fromTimeZone));
  UErrorCode status = U_ZERO_ERROR;
  // Whole milliseconds to ICU; the microseconds below them are added back at the end.
  calendar->setTime(mc_detail::udateFromDate(*date - std::chrono::microseconds(subMillisecond(*date))), status);
  static constexpr UCalendarDateFields kFields[] = {UCAL_ERA,         UCAL_YEAR,   UCAL_MONTH,  UCAL_DATE,
                                                    UCAL_HOUR_OF_DAY, UCAL_MINUTE, UCAL_SECOND, UCAL_MILLISECOND};
  int32_t values[std::size(kFields)];
  for (std::size_t i = 0; i < std::size(kFields); ++i) values[i] = calendar->get(kFields[i], status);
  if (U_FAILURE(status)) return std::nullopt;

  calendar->setTimeZone(mc_detail::ICUAccess::timeZone(*toTimeZone));
  calendar->clear();
  for (std::size_t i = 0; i < std::size(kFields); ++i) calendar->set(kFields[i], values[i]);
  const UDate at = calendar->getTime(status);
  if (U_FAILURE(status)) return std::nullopt;
  auto converted = mc_detail::dateFromUDate(at);
  if (!converted) return std::nullopt;
  return *converted + std::chrono::microseconds(subMillisecond(*date));
}

std::optional<MCDate> MCCalendar::convertDateFromTimeZone(const std::optional<MCDate>& date,
                                                          const std::optional<MCTimeZone>& fromTimeZone) const {
  return convertDate(date, fromTimeZone, timeZone_);
}

std::optional<MCDate> MCCalendar::convertDateToTimeZone(const std::optional<MCDate>& date,
                                                        const std::optional<MCTimeZone>& toTimeZone) const {
  return convertDate(date, timeZone_, toTimeZone);
}
