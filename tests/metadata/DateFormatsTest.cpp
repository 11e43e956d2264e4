#include <vesperon/metadata/MCCalendar.h>
#include <vesperon/metadata/MCDateExtensions.h>

#include <gtest/gtest.h>

#include <ctime>

using namespace std::chrono;

namespace {

// The instant of a wall-clock time in the process's local zone, by the C library as a peer.
MCDate local(int year, int month, int day, int hour, int minute, int second) {
  std::tm fields{};
  fields.tm_year = year - 1900;
  fields.tm_mon = month - 1;
  fields.tm_mday = day;
  fields.tm_hour = hour;
  fields.tm_min = minute;
  fields.tm_sec = second;
  fields.tm_isdst = -1;
  return MCDate(seconds(std::mktime(&fields)));
}

MCDate utc(int year, int month, int day, int hour, int minute, int second) {
  return sys_days(std::chrono::year(year) / month / day) + hours(hour) + minutes(minute) + seconds(second);
}

MCTimeZone zone(const char* name) {
  auto z = MCTimeZone::create(name);
  EXPECT_TRUE(z.has_value()) << name;
  return z.value_or(MCTimeZone::utc());
}

}  // namespace

TEST(DateFormats, ExifTexts) {
  EXPECT_EQ(dateFromExifString("2020:01:02 03:04:05"), local(2020, 1, 2, 3, 4, 5));
  // The checks pass February 31; the calendar rolls it over into March.
  EXPECT_EQ(dateFromExifString("2021:02:31 00:00:00"), local(2021, 3, 3, 0, 0, 0));
  for (const char* bad : {"0000:00:00 00:00:00", "2021:13:01 00:00:00", "2021:00:01 00:00:00", "2021:06:32 00:00:00",
                          "2021:06:01 12:00", "2021:06:01 -1:00:00", "2021-06-01 12:00:00", "", "soon"}) {
    EXPECT_EQ(dateFromExifString(bad), std::nullopt) << bad;
  }
  EXPECT_EQ(dateFromExifString(std::nullopt), std::nullopt);

  // Whole seconds round-trip through the text in the same zone.
  for (const char* text : {"2020:01:02 03:04:05", "2021:07:15 23:00:59", "1970:01:01 00:00:00", "0001:01:01 12:00:00"}) {
    auto date = dateFromExifString(text);
    ASSERT_TRUE(date) << text;
    EXPECT_EQ(exifString(*date), text);
  }
}

TEST(DateFormats, IsoScanReadsLocalTimeAndIgnoresTheRest) {
  EXPECT_EQ(dateFromISO8601String("2021-06-01T12:00:00Z"), local(2021, 6, 1, 12, 0, 0)) << "the Z has no effect";
  EXPECT_EQ(dateFromISO8601String("2021-13-01T00:00:00"), local(2022, 1, 1, 0, 0, 0)) << "fields are not checked";
  EXPECT_EQ(dateFromISO8601String("2021-06-01T12:00"), std::nullopt);
  EXPECT_EQ(dateFromISO8601String(std::nullopt), std::nullopt);
}

TEST(DateFormats, XmpTextsTryTheThreeFormsInOrder) {
  // 1: no zone, local wall-clock time.
  EXPECT_EQ(dateFromXmpString("2021-06-01T12:00:00"), local(2021, 6, 1, 12, 0, 0));
  // 2: with a zone the text is exact.
  EXPECT_EQ(dateFromXmpString("2021-06-01T12:00:00Z"), utc(2021, 6, 1, 12, 0, 0));
  EXPECT_EQ(dateFromXmpString("2021-06-01T12:00:00-07:30"), utc(2021, 6, 1, 19, 30, 0));
  // 3: fractions need the third form; the zone still counts.
  EXPECT_EQ(dateFromXmpString("2021-06-01T12:00:00.250+02:00"), utc(2021, 6, 1, 10, 0, 0) + milliseconds(250));

  for (const char* bad : {"2021-06-01", "2021-06-01T12:00", "2021-13-01T00:00:00", "2021-06-01T12:00:00 ",
                          "2021:06:01 12:00:00", "2021-06-01T12:00:00+02:00 junk", "", "\xff\xfe"}) {
    EXPECT_EQ(dateFromXmpString(bad), std::nullopt) << bad;
  }
  EXPECT_EQ(dateFromXmpString(std::nullopt), std::nullopt);

  // xmpString writes the first form, so it reads back to the same whole second.
  const MCDate date = local(2019, 11, 5, 8, 9, 10);
  EXPECT_EQ(xmpString(date), "2019-11-05T08:09:10");
  EXPECT_EQ(dateFromXmpString(xmpString(date)), date);
  EXPECT_EQ(xmpString(date + milliseconds(999)), "2019-11-05T08:09:10") << "fractions are cut, not rounded";
}

// ICU's fraction parsing divided by zero (SIGFPE) from 35 fraction digits on; the text a sidecar
// may hold is bounded before it gets there, and the digits that matter still count.
TEST(DateFormats, XmpTextsWithLongFractionsReadToTheMillisecond) {
  for (std::size_t digits : {9u, 10u, 34u, 35u, 36u, 200u, 5000u}) {
    const std::string fraction = "25" + std::string(digits - 2, '0');
    EXPECT_EQ(dateFromXmpString("2021-06-01T12:00:00." + fraction + "Z"), utc(2021, 6, 1, 12, 0, 0) + milliseconds(250))
        << digits << " digits";
    EXPECT_EQ(dateFromXmpString("2021-06-01T12:00:00." + fraction + "+02:00"),
              utc(2021, 6, 1, 10, 0, 0) + milliseconds(250)) << digits << " digits";
    EXPECT_EQ(dateFromXmpString("2021-06-01T12:00:00." + std::string(digits, '1')), std::nullopt)
        << "without a zone a fraction fits no form, " << digits << " digits";
  }
  EXPECT_EQ(dateFromXmpString("2021-06-01T12:00:00." + std::string(40, '9') + "Z"),
            utc(2021, 6, 1, 12, 0, 0) + milliseconds(999)) << "fractions are cut, not rounded into the next second";
  EXPECT_EQ(dateFromXmpString("2021-06-01T12:00:00." + std::string(40, '1') + "x"), std::nullopt);
  // A sign before the digits, digits of another script, or a long number in another field: none,
  // and no crash.
  for (const std::string& bad : {"1-6-01T2:00:00.-" + std::string(40, '1'), "2021-06-01T12:00:00.+" + std::string(40, '1') + "Z",
                                 "2021-06-01T12:00:00." + std::string(3 * 40, '\0') + "Z",
                                 "2021-06-01T12:00:" + std::string(40, '5') + "Z", std::string(40, '2') + "-06-01T12:00:00Z",
                                 "2021-06-01T12:00:00Z" + std::string(100, ' ')}) {
    EXPECT_EQ(dateFromXmpString(bad), std::nullopt) << bad;
  }
  std::string fullwidth = "2021-06-01T12:00:00.";
  for (int i = 0; i < 40; ++i) fullwidth += "\xef\xbc\x91";  // FULLWIDTH DIGIT ONE
  EXPECT_EQ(dateFromXmpString(fullwidth + "Z"), std::nullopt);
}

TEST(DateFormats, ComparisonsToleratingNone) {
  const MCDate a = utc(2020, 5, 5, 10, 0, 0);
  const MCDate b = a + seconds(5);
  EXPECT_EQ(compareDate(a, b), MCOrderedAscending);
  EXPECT_EQ(compareDate(b, a), MCOrderedDescending);
  EXPECT_EQ(compareDate(a, a), MCOrderedSame);
  EXPECT_EQ(compareDate(std::nullopt, a), MCOrderedAscending);
  EXPECT_EQ(compareDate(a, std::nullopt), MCOrderedDescending);
  EXPECT_EQ(compareDate(std::nullopt, std::nullopt), MCOrderedSame);

  EXPECT_EQ(compareDate(a, b, 5), MCOrderedSame) << "the bound is included";
  EXPECT_EQ(compareDate(a, b, 4), MCOrderedAscending);
  EXPECT_EQ(compareDate(b, a, 4), MCOrderedDescending);
  EXPECT_EQ(compareDate(std::nullopt, b, 1e9), MCOrderedAscending);
  EXPECT_EQ(compareDate(b, std::nullopt, 1e9), MCOrderedDescending);

  EXPECT_TRUE(isEqualDate(a, a));
  EXPECT_FALSE(isEqualDate(a, a + microseconds(1)));
  EXPECT_FALSE(isEqualDate(a, std::nullopt));
  EXPECT_TRUE(isEqualDate(std::nullopt, std::nullopt));

  EXPECT_TRUE(isDate(a, b, 5));
  EXPECT_FALSE(isDate(b, a, 4.999));
  EXPECT_FALSE(isDate(a, std::nullopt, 1e9));
  EXPECT_TRUE(isDate(std::nullopt, std::nullopt, 0));
}

TEST(DateFormats, CalendarAssemblesFieldsWithFractions) {
  MCCalendar calendar;
  calendar.setTimeZone(zone("Asia/Tokyo"));
  EXPECT_EQ(calendar.dateWithEra(1, 2021, 6, 1, 9, 0, 0, 250001000), utc(2021, 6, 1, 0, 0, 0) + microseconds(250001));
  EXPECT_EQ(calendar.dateWithEra(1, 2021, 6, 1, 24, 0, 0, 0), utc(2021, 6, 1, 15, 0, 0)) << "hour 24 rolls over";
  EXPECT_EQ(calendar.dateWithEra(1, 2'000'000'000, 1, 1, 0, 0, 0, 0), std::nullopt) << "beyond what a date holds";
}

TEST(DateFormats, WallClockConversionBetweenZones) {
  MCCalendar calendar;
  const MCTimeZone gmt = MCTimeZone::utc();
  const MCTimeZone plus2 = MCTimeZone::withSecondsFromGMT(2 * 3600);
  const MCDate noon = utc(2021, 6, 1, 12, 0, 0);

  EXPECT_EQ(calendar.convertDate(noon, gmt, plus2), noon - hours(2)) << "12:00 at UTC+2 is two hours earlier";
  EXPECT_EQ(calendar.convertDate(noon, gmt, gmt), noon);
  EXPECT_EQ(calendar.convertDate(noon, std::nullopt, gmt), std::nullopt);
  EXPECT_EQ(calendar.convertDate(noon, gmt, std::nullopt), std::nullopt);
  EXPECT_EQ(calendar.convertDate(std::nullopt, gmt, plus2), std::nullopt);
  // Fractions below ICU's millisecond survive.
  EXPECT_EQ(calendar.convertDate(noon - microseconds(1), gmt, plus2), noon - hours(2) - microseconds(1));

  // Berlin moves from +01:00 to +02:00 at 02:00 on 2021-03-28 and back at 03:00 on 2021-10-31.
  const MCTimeZone berlin = zone("Europe/Berlin");
  EXPECT_EQ(calendar.convertDate(utc(2021, 3, 28, 1, 30, 0), gmt, berlin), utc(2021, 3, 28, 0, 30, 0));
  EXPECT_EQ(calendar.convertDate(utc(2021, 3, 28, 3, 30, 0), gmt, berlin), utc(2021, 3, 28, 1, 30, 0));
  // 02:30 does not exist in Berlin that night; the wall-clock time lands after the gap, at 03:30.
  EXPECT_EQ(calendar.convertDate(utc(2021, 3, 28, 2, 30, 0), gmt, berlin), utc(2021, 3, 28, 1, 30, 0));
  // The other way the offset in force at the instant counts, before and after the change.
  EXPECT_EQ(calendar.convertDate(utc(2021, 3, 28, 0, 59, 0), berlin, gmt), utc(2021, 3, 28, 1, 59, 0));
  EXPECT_EQ(calendar.convertDate(utc(2021, 3, 28, 1, 0, 0), berlin, gmt), utc(2021, 3, 28, 3, 0, 0));
  EXPECT_EQ(calendar.convertDate(utc(2021, 10, 31, 2, 0, 0), berlin, gmt), utc(2021, 10, 31, 3, 0, 0));
  // Between two zones with rules, across New York's later change.
  const MCTimeZone newYork = zone("America/New_York");
  EXPECT_EQ(calendar.convertDate(utc(2021, 3, 20, 11, 0, 0), berlin, newYork), utc(2021, 3, 20, 16, 0, 0))
      << "12:00 CET becomes 12:00 EDT";

  // The calendar's own zone stands in for the missing one.
  calendar.setTimeZone(berlin);
  EXPECT_EQ(calendar.convertDateFromTimeZone(noon, gmt), noon - hours(2));
  EXPECT_EQ(calendar.convertDateToTimeZone(noon, gmt), noon + hours(2));
  EXPECT_EQ(calendar.convertDateToTimeZone(noon, std::nullopt), std::nullopt);
}

TEST(DateFormats, TimeZones) {
  EXPECT_EQ(MCTimeZone::create("No/Such_Zone"), std::nullopt);
  EXPECT_EQ(zone("Europe/Berlin"), zone("Europe/Berlin"));
  EXPECT_FALSE(zone("Europe/Berlin") == zone("Europe/Paris"));
  EXPECT_EQ(zone("Europe/Berlin").secondsFromGMT(utc(2021, 1, 1, 0, 0, 0)), 3600);
  EXPECT_EQ(zone("Europe/Berlin").secondsFromGMT(utc(2021, 7, 1, 0, 0, 0)), 7200);
  EXPECT_EQ(MCTimeZone::withSecondsFromGMT(-(5 * 3600 + 1800)).name(), "GMT-0530");
  EXPECT_EQ(MCTimeZone::withSecondsFromGMT(-(5 * 3600 + 1800)).secondsFromGMT(utc(2021, 7, 1, 0, 0, 0)), -19800);
}
