#include <vesperon/metadata/GPSStringParser.h>

#include <gtest/gtest.h>

#include <clocale>

namespace {
const std::optional<std::string> kNone;
}

TEST(GPSStringParser, NumbersAndNumericTextsTakeTheSignFromTheReference) {
  GPSStringParser parser;
  EXPECT_EQ(parser.parseLatitude(12.5, "S"), -12.5);
  EXPECT_EQ(parser.parseLatitude(12.5, "N"), 12.5);
  EXPECT_EQ(parser.parseLatitude(int64_t(7), "S"), -7.0);
  EXPECT_EQ(parser.parseLatitude("12.5", "S"), -12.5);
  EXPECT_EQ(parser.parseLatitude("1234/100", "N"), 12.34);
  EXPECT_EQ(parser.parseLongitude("12.5", "W"), -12.5);
  EXPECT_EQ(parser.parseLongitude("12.5", "S"), 12.5) << "only W turns a longitude";

  // Kinds other than number and string, and none, give none.
  EXPECT_EQ(parser.parseLatitude(MCValue(), "N"), std::nullopt);
  EXPECT_EQ(parser.parseLatitude(MCValue(MCArray{MCValue(1)}), "N"), std::nullopt);
  EXPECT_EQ(parser.parseLongitude(MCValue(MCData{1, 2}), "E"), std::nullopt);
  EXPECT_EQ(parser.parseAltitude(MCValue(MCDictionary{}), "0"), std::nullopt);
}

TEST(GPSStringParser, XmpCoordinateGrammar) {
  GPSStringParser parser;
  EXPECT_NEAR(*parser.parseLatitude("51,30.5N", kNone), 51.508333333, 1e-9);
  EXPECT_EQ(parser.parseLatitude("51,30.0N", "S"), 51.5) << "the letter in the text wins over the reference";
  EXPECT_EQ(parser.parseLatitude("51,30.0S", kNone), -51.5);
  EXPECT_NEAR(*parser.parseLongitude("122,25.5W", kNone), -122.425, 1e-12);
  EXPECT_EQ(parser.parseLongitude("0,30W", "E"), -0.5);
  EXPECT_EQ(parser.parseXMPLongitude("10,0E"), 10.0);
  EXPECT_EQ(parser.parseXMPLongitude(kNone), std::nullopt);

  // Wrong letter, case or axis; missing or extra parts; blanks anywhere the strict reading sees them.
  for (const char* bad : {"51,30.0n", " 51,30.0N", "51, 30.0N", "51,30.0 N", "51N", ",30N", "51,N", ",N", "N", "",
                          "51,30,15N", "51,30.0E", "abc", "51,30.0", "51,3x.0N", "1,2\nN"}) {
    EXPECT_EQ(parser.parseLatitude(bad, kNone), std::nullopt) << '"' << bad << '"';
  }
  EXPECT_EQ(parser.parseLongitude("51,30.0N", kNone), std::nullopt);
  EXPECT_EQ(parser.parseXMPLongitude("10,0S"), std::nullopt);
  // A NUL inside the text is not the end of it.
  EXPECT_EQ(parser.parseLatitude(std::string("51,30\0x N", 9), kNone), std::nullopt);
}

TEST(GPSStringParser, Altitudes) {
  GPSStringParser parser;
  EXPECT_NEAR(*parser.parseAltitude("1234/10", "1"), -123.4, 1e-12);
  EXPECT_NEAR(*parser.parseAltitude("1234/10", "0"), 123.4, 1e-12);
  EXPECT_EQ(parser.parseAltitude(250.0, "below"), 250.0) << "only \"1\" means below sea level";
  EXPECT_EQ(parser.parseAltitude("-3.5", "1"), 3.5);
  EXPECT_EQ(parser.parseAltitude("1234/0", "0"), std::nullopt) << "zero denominator, then no decimal either";
  EXPECT_EQ(parser.parseAltitude(MCValue(), "1"), std::nullopt);
}

TEST(GPSStringParser, StrictDecimalReadsTheWholeTextInTheCLocale) {
  EXPECT_EQ(GPSStringParser::strictDecimal("2.75"), 2.75);
  EXPECT_EQ(GPSStringParser::strictDecimal("-1e2"), -100.0);
  EXPECT_EQ(GPSStringParser::strictDecimal("2,75"), std::nullopt) << "the comma is no decimal point";
  EXPECT_EQ(GPSStringParser::strictDecimal("2.75 "), std::nullopt);
  EXPECT_EQ(GPSStringParser::strictDecimal("\t2"), std::nullopt);
  EXPECT_EQ(GPSStringParser::strictDecimal(""), std::nullopt);
  EXPECT_EQ(GPSStringParser::strictDecimal("."), std::nullopt);
}

// The same texts under a comma-decimal locale: a reader that followed the process's locale would
// take "2,75" for 2.75 and stop at the point of "2.75".
TEST(GPSStringParser, StrictDecimalIgnoresACommaDecimalLocale) {
  const std::string saved = std::setlocale(LC_ALL, nullptr);
  if (!std::setlocale(LC_ALL, "de_DE.UTF-8")) GTEST_SKIP() << "the de_DE.UTF-8 locale is not installed (scripts/setup.sh makes it)";
  const auto point = GPSStringParser::strictDecimal("2.75");
  const auto comma = GPSStringParser::strictDecimal("2,75");
  GPSStringParser parser;
  const auto altitude = parser.parseAltitude("1234.5", "0");
  const auto latitude = parser.parseLatitude("48,30.5N", std::nullopt);
  std::setlocale(LC_ALL, saved.c_str());
  EXPECT_EQ(point, 2.75);
  EXPECT_EQ(comma, std::nullopt);
  EXPECT_EQ(altitude, 1234.5);
  ASSERT_TRUE(latitude);
  EXPECT_NEAR(*latitude, 48.508333333, 1e-9);
}
