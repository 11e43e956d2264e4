#include <vesperon/metadata/MCDateExtensions.h>

#include <vesperon/metadata/MCCalendar.h>
#include <vesperon/metadata/MCICUSupport.h>

#include <unicode/gregocal.h>
#include <unicode/smpdtfmt.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <mutex>

namespace {

// ICU formatters keep a working calendar inside, so each shared one is used under its own lock.
class SharedFormatter {
 public:
  SharedFormatter(const char* pattern, const icu::Locale& locale, const icu::TimeZone& zone) {
    UErrorCode status = U_ZERO_ERROR;
    formatter_ = std::make_unique<icu::SimpleDateFormat>(icu::UnicodeString(pattern, -1, US_INV), locale, status);
    if (U_FAILURE(status)) {
      formatter_.reset();
      return;
    }
    // A Gregorian calendar whatever the locale's own, as the patterns mean Gregorian fields.
    status = U_ZERO_ERROR;
    formatter_->adoptCalendar(new icu::GregorianCalendar(zone, locale, status));
    formatter_->setLenient(false);
  }

  /// The date of the whole text; none when the text does not fit the pattern to its end.
  std::optional<MCDate> parse(const std::string& text) const {
    if (!formatter_) return std::nullopt;
    const icu::UnicodeString unicode = mc_detail::unicodeString(text);
    std::lock_guard lock(mutex_);
    icu::ParsePosition position(0);
    const UDate at = formatter_->parse(unicode, position);
    if (position.getErrorIndex() >= 0 || position.getIndex() != unicode.length()) return std::nullopt;
    return mc_detail::dateFromUDate(at);
  }

  std::string format(MCDate date) const {
    if (!formatter_) return {};
    icu::UnicodeString out;
    std::lock_guard lock(mutex_);
    formatter_->format(mc_detail::udateFromDate(date), out);
    return mc_detail::utf8String(out);
  }

 private:
  std::unique_ptr<icu::SimpleDateFormat> formatter_;
  mutable std::mutex mutex_;
};

const icu::Locale& posixLocale() {
  static const icu::Locale locale("en_US_POSIX");
  return locale;
}

const MCCalendar& isoCalendar() {
  static const MCCalendar calendar("en_US_POSIX");
  return calendar;
}

const MCCalendar& exifCalendar() {
  static const MCCalendar calendar("en_US_POSIX");
  return calendar;
}

// The local wall-clock form that XMP writes and most tools read.
const SharedFormatter& localXmpFormatter() {
  static const std::unique_ptr<icu::TimeZone> local(icu::TimeZone::createDefault());
  static const SharedFormatter formatter("yyyy-MM-dd'T'HH:mm:ss", posixLocale(), *local);
  return formatter;
}

// Internet date-time: full date, full time, a zone ("Z" or ±hh:mm); the zone in the text decides.
const SharedFormatter& internetFormatter() {
  static const SharedFormatter formatter("yyyy-MM-dd'T'HH:mm:ssXXX", posixLocale(), *icu::TimeZone::getGMT());
  return formatter;
}

const SharedFormatter& internetFractionalFormatter() {
  static const SharedFormatter formatter("yyyy-MM-dd'T'HH:mm:ss.SSSXXX", posixLocale(), *icu::TimeZone::getGMT());
  return formatter;
}

// ICU's number fields turn every digit they read into a power of ten in 32-bit arithmetic; a
// fraction of about 35 digits divides by zero and kills the process (SIGFPE), and ICU reads signs
// and the digits of every script there. So only a text that could be a date reaches it: ASCII, no
// run of more than nine digits except the fraction, whose digits past the ninth are dropped (a date
// holds no finer time, and the formatter keeps milliseconds), and no longer than the longest form.
constexpr std::size_t kMaxFieldDigits = 9;
constexpr std::size_t kMaxDateTextLength = 64;

std::optional<std::string> boundedDateText(const std::string& text) {
  std::string bounded;
  bounded.reserve(std::min(text.size(), kMaxDateTextLength + 1));
  for (std::size_t at = 0; at < text.size();) {
    const unsigned char c = static_cast<unsigned char>(text[at]);
    if (c >= 0x80) return std::nullopt;
    if (c < '0' || c > '9') {
      bounded += text[at++];
    } else {
      std::size_t end = at;
      while (end < text.size() && text[end] >= '0' && text[end] <= '9') ++end;
      const bool fraction = at > 0 && text[at - 1] == '.';
      if (end - at > kMaxFieldDigits && !fraction) return std::nullopt;
      bounded.append(text, at, std::min(end - at, kMaxFieldDigits));
      at = end;
    }
    if (bounded.size() > kMaxDateTextLength) return std::nullopt;
  }
  return bounded;
}

const SharedFormatter& exifFormatter() {
  static const std::unique_ptr<icu::TimeZone> local(icu::TimeZone::createDefault());
  static const SharedFormatter formatter("yyyy:MM:dd HH:mm:ss", icu::Locale::getDefault(), *local);
  return formatter;
}

}  // namespace

MCComparisonResult compareDate(const std::optional<MCDate>& date, const std::optional<MCDate>& toDate) {
  if (!date && !toDate) return MCOrderedSame;
  if (!date) return MCOrderedAscending;
  if (!toDate) return MCOrderedDescending;
  return MCCompareValues(*date, *toDate);
}

MCComparisonResult compareDate(const std::optional<MCDate>& date, const std::optional<MCDate>& toDate,
                               double deviation) {
  if (!date && !toDate) return MCOrderedSame;
  if (!date) return MCOrderedAscending;
  if (!toDate) return MCOrderedDescending;
  const double interval = MCDateTimeIntervalSince(*toDate, *date);
  if (interval > deviation) return MCOrderedAscending;
  if (interval < -deviation) return MCOrderedDescending;
  return MCOrderedSame;
}

bool isEqualDate(const std::optional<MCDate>& date, const std::optional<MCDate>& toDate) { return date == toDate; }

bool isDate(const std::optional<MCDate>& date, const std::optional<MCDate>& fromDate, double inTimeRange) {
  if (!date && !fromDate) return true;
  if (!date || !fromDate) return false;
  return std::fabs(MCDateTimeIntervalSince(*date, *fromDate)) <= inTimeRange;
}

std::optional<MCDate> dateFromISO8601String(const std::optional<std::string>& string) {
  if (!string) return std::nullopt;
  int year, month, day, hour, minute, second;
  if (std::sscanf(string->c_str(), "%d-%d-%dT%d:%d:%d", &year, &month, &day, &hour, &minute, &second) != 6) {
    return std::nullopt;
  }
  return isoCalendar().dateWithEra(1, year, month, day, hour, minute, second, 0);
}

std::optional<MCDate> dateFromExifString(const std::optional<std::string>& string) {
  if (!string) return std::nullopt;
  int year, month, day, hour, minute, second;
  if (std::sscanf(string->c_str(), "%d:%d:%d %d:%d:%d", &year, &month, &day, &hour, &minute, &second) != 6) {
    return std::nullopt;
  }
  if (year < 1 || month < 1 || month > 12 || day < 1 || day > 31 || hour < 0 || minute < 0 || second < 0) {
    return std::nullopt;
  }
  return exifCalendar().dateWithEra(1, year, month, day, hour, minute, second, 0);
}

std::optional<MCDate> dateFromXmpString(const std::optional<std::string>& string) {
  if (!string) return std::nullopt;
  const auto bounded = boundedDateText(*string);
  if (!bounded) return std::nullopt;
  const std::string& text = *bounded;
  if (auto date = localXmpFormatter().parse(text)) return date;
  if (auto date = internetFormatter().parse(text)) return date;
  return internetFractionalFormatter().parse(text);
}

std::string exifString(MCDate date) { return exifFormatter().format(date); }

std::string xmpString(MCDate date) { return localXmpFormatter().format(date); }
