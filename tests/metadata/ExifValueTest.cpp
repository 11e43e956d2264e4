// The small values of the Exif road: rationals, comments, fractions, the value reader and the
// text forms of MCExifUtils.

#include "ExifTestSupport.h"

#include <vesperon/metadata/MCExifComment.h>
#include <vesperon/metadata/MCExifRational.h>
#include <vesperon/metadata/MCExifUtils.h>
#include <vesperon/metadata/MCExifReader.h>
#include <vesperon/metadata/MCExifValueReader.h>
#include <vesperon/metadata/MCImagePropertyKeys.h>
#include <vesperon/metadata/MCFraction.h>

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>

using exif_test::LogCapture;

namespace {

MCData bytes(std::initializer_list<int> values) {
  MCData out;
  for (int v : values) out.push_back(static_cast<uint8_t>(v));
  return out;
}

MCData text(const std::string& s) { return MCData(s.begin(), s.end()); }

MCExifValueReader readerOf(uint16_t tag, uint16_t type, uint16_t order, int32_t count, const MCData& data) {
  MCExifValueReader r;
  r.setTag(tag);
  r.setType(type);
  r.setOrder(order);
  r.setCount(count);
  r.setPtr(data.data());
  return r;
}

std::pair<int32_t, int32_t> fields(const MCExifRational& r) { return {r.value().s.numerator, r.value().s.denominator}; }

}  // namespace

TEST(MCExifRational, CreationScanningAndBytes) {
  EXPECT_FALSE(MCExifRational::createWithString("1/0"));
  EXPECT_FALSE(MCExifRational::createWithString("3"));
  EXPECT_FALSE(MCExifRational::createWithString("x/2"));
  auto r = MCExifRational::createWithString("-3/2");
  ASSERT_TRUE(r);
  EXPECT_DOUBLE_EQ(r->numberValue(), -1.5);
  // Unsigned, the same bits read as 4294967293 / 2.
  EXPECT_DOUBLE_EQ(r->unsignedNumberValue(), 4294967293.0 / 2);
  EXPECT_EQ(r->dataWithByteOrder(0x4D4D), bytes({0xFF, 0xFF, 0xFF, 0xFD, 0, 0, 0, 2}));
  EXPECT_EQ(r->dataWithByteOrder(0x4949), bytes({0xFD, 0xFF, 0xFF, 0xFF, 2, 0, 0, 0}));
  exif_rational zero{};
  EXPECT_FALSE(MCExifRational::create(zero));
  // As one 64-bit word the numerator is the low half.
  exif_rational word;
  word.word = (uint64_t(7) << 32) | 5;
  EXPECT_EQ(fields(*MCExifRational::create(word)), std::make_pair(5, 7));
}

TEST(MCExifComment, ASCIIUnicodeAndTheClosingNULs) {
  MCData hi = MCExifComment("Hi").dataWithByteOrder(0x4949);
  EXPECT_EQ(hi, bytes({'A', 'S', 'C', 'I', 'I', 0, 0, 0, 'H', 'i', 0, 0, 0, 0, 0, 0, 0, 0}));
  // Non-ASCII text goes UTF-16 big-endian whatever the order says.
  MCData gruesse = MCExifComment("Grüße").dataWithByteOrder(0x4949);
  EXPECT_EQ(gruesse, bytes({'U', 'N', 'I', 'C', 'O', 'D', 'E', 0, 0, 'G', 0, 'r', 0, 0xFC, 0, 0xDF, 0, 'e',
                            0, 0, 0, 0, 0, 0, 0, 0}));
  EXPECT_EQ(MCExifComment("").dataWithByteOrder(0x4D4D), MCData(8, 0));
  EXPECT_EQ(MCExifComment("\xff\xfe").dataWithByteOrder(0x4D4D), MCData(8, 0)) << "not convertible";
  // A character beyond the basic plane becomes a surrogate pair and reads back whole.
  MCData emoji = MCExifComment("\xF0\x9F\x93\xB7").dataWithByteOrder(0x4D4D);
  EXPECT_EQ(MCData(emoji.begin() + 8, emoji.begin() + 12), bytes({0xD8, 0x3D, 0xDC, 0xF7}));
  EXPECT_EQ(MCExifUtils::stringWithUserCommentData(emoji), "\xF0\x9F\x93\xB7");
  EXPECT_EQ(MCExifUtils::stringWithUserCommentData(gruesse), "Grüße");
}

TEST(MCFraction, ReducesComparesAndHashes) {
  auto f = MCFraction::fractionWithNumerator(6, 4);
  ASSERT_TRUE(f);
  EXPECT_EQ(f->numerator(), 3);
  EXPECT_EQ(f->denominator(), 2);
  auto zero = MCFraction::fractionWithNumerator(0, 5);
  EXPECT_EQ(zero->numerator(), 0);
  EXPECT_EQ(zero->denominator(), 1);
  EXPECT_FALSE(MCFraction::fractionWithNumerator(1, 0));
  EXPECT_FLOAT_EQ(f->floatValue(), 1.5f);
  EXPECT_DOUBLE_EQ(MCFraction::fractionWithNumerator(1, 3)->doubleValue(), 1.0 / 3);

  auto third = MCFraction::fractionWithNumerator(1, 3);
  EXPECT_EQ(third->compare(*f), MCOrderedAscending);
  EXPECT_EQ(f->compare(*third), MCOrderedDescending);
  EXPECT_EQ(f->compare(*MCFraction::fractionWithNumerator(9, 6)), MCOrderedSame);
  EXPECT_EQ(MCFraction::compareFraction(nullptr, f), MCOrderedAscending);
  EXPECT_EQ(MCFraction::compareFraction(f, nullptr), MCOrderedDescending);
  EXPECT_EQ(MCFraction::compareFraction(nullptr, nullptr), MCOrderedSame);
  EXPECT_EQ(MCFraction::compareFraction(f, f), MCOrderedSame);

  EXPECT_TRUE(f->isEqual(*MCFraction::fractionWithNumerator(3, 2)));
  EXPECT_FALSE(f->isEqual(*third));
  EXPECT_EQ(f->hash(), (uint64_t(3) << 32 | 2));
}

TEST(MCExifValueReader, TypedNumbersInBothOrders) {
  MCData shorts = bytes({0x01, 0x02, 0xFF, 0xFE});
  EXPECT_EQ(readerOf(0x0112, 3, 0x4D4D, 2, shorts).numberAtIndex(0), MCValue(0x0102));
  EXPECT_EQ(readerOf(0x0112, 3, 0x4949, 2, shorts).numberAtIndex(0), MCValue(0x0201));
  EXPECT_EQ(readerOf(0x0112, 8, 0x4D4D, 2, shorts).numberAtIndex(1), MCValue(-2));
  EXPECT_EQ(readerOf(0x0112, 3, 0x4D4D, 2, shorts).numberAtIndex(1), MCValue(0xFFFE));
  EXPECT_FALSE(readerOf(0x0112, 3, 0x4D4D, 2, shorts).numberAtIndex(2)) << "index beyond the count";
  EXPECT_FALSE(readerOf(0x0112, 3, 0x4D4D, 2, shorts).numberAtIndex(-1));

  MCData longs = bytes({0x80, 0, 0, 1});
  EXPECT_EQ(readerOf(1, 4, 0x4D4D, 1, longs).numberValue(), MCValue(int64_t(0x80000001)));
  EXPECT_EQ(readerOf(1, 9, 0x4D4D, 1, longs).numberValue(), MCValue(int32_t(0x80000001)));
  EXPECT_EQ(readerOf(1, 1, 0x4D4D, 1, longs).numberValue(), MCValue(0x80));
  EXPECT_EQ(readerOf(1, 6, 0x4D4D, 1, longs).numberValue(), MCValue(-128));
  EXPECT_EQ(readerOf(1, 7, 0x4D4D, 1, longs).numberValue(), MCValue(-128)) << "UNDEFINED reads signed";

  MCData rationals = bytes({0, 0, 0, 3, 0, 0, 0, 2, 0xFF, 0xFF, 0xFF, 0xFD, 0, 0, 0, 2, 0, 0, 0, 1, 0, 0, 0, 0});
  EXPECT_EQ(readerOf(1, 5, 0x4D4D, 3, rationals).numberValue(), MCValue(1.5));
  EXPECT_EQ(readerOf(1, 10, 0x4D4D, 3, rationals).numberAtIndex(1), MCValue(-1.5));
  EXPECT_FALSE(readerOf(1, 10, 0x4D4D, 3, rationals).numberAtIndex(2)) << "zero denominator";
  auto array = readerOf(1, 5, 0x4D4D, 3, rationals).arrayValue();
  ASSERT_TRUE(array);
  EXPECT_EQ(array->size(), 2u) << "the zero-denominator component is left out";

  float f = 2.5f;
  double d = -0.125;
  MCData floats(4), doubles(8);
  std::memcpy(floats.data(), &f, 4);
  std::memcpy(doubles.data(), &d, 8);
  EXPECT_EQ(readerOf(1, 11, 0x4949, 1, floats).numberValue(), MCValue(2.5));
  EXPECT_EQ(readerOf(1, 12, 0x4949, 1, doubles).numberValue(), MCValue(-0.125));
  MCData swapped(doubles.rbegin(), doubles.rend());
  EXPECT_EQ(readerOf(1, 12, 0x4D4D, 1, swapped).numberValue(), MCValue(-0.125));
}

TEST(MCExifValueReader, RefusedTypesLogTheirMessage) {
  LogCapture log;
  ASSERT_TRUE(log.available()) << "no log file";
  MCData ascii = text("abc");
  EXPECT_FALSE(readerOf(0x0112, 2, 0x4D4D, 4, ascii).numberValue());
  EXPECT_FALSE(readerOf(0x010F, 3, 0x4D4D, 2, ascii).stringValue());
  EXPECT_FALSE(readerOf(2, 3, 0x4D4D, 2, ascii).GPSLatitudeValue());
  EXPECT_FALSE(readerOf(7, 2, 0x4D4D, 4, ascii).GPSTimeStampValue());
  EXPECT_TRUE(log.contains("Mapping tag 0x112 (type: 2) to number is not allowed."));
  EXPECT_TRUE(log.contains("Mapping tag 0x10F (type: 3) to string is not allowed."));
  EXPECT_TRUE(log.contains("Mapping tag 0x2 (type: 3) to GPS latitude is not allowed."));
  EXPECT_TRUE(log.contains("Mapping tag 0x7 (type: 2) to GPS time stamp is not allowed."));
}

TEST(MCExifValueReader, Strings) {
  MCData nulFirst = bytes({0, 'a', 'b'});
  EXPECT_FALSE(readerOf(0x010F, 2, 0x4D4D, 3, nulFirst).stringValue()) << "empty, not \"\"";
  MCData unterminated = text("Canon EOS");
  EXPECT_EQ(readerOf(0x010F, 2, 0x4D4D, 5, unterminated).stringValue(), "Canon") << "at most count bytes";
  EXPECT_EQ(readerOf(0x010F, 7, 0x4D4D, 9, unterminated).stringValue(), "Canon EOS");
  MCData utf8 = text("Grüße");
  utf8.push_back(0);
  EXPECT_EQ(readerOf(0x010F, 1, 0x4D4D, int32_t(utf8.size()), utf8).stringValue(), "Grüße");
  EXPECT_EQ(readerOf(0x010F, 2, 0x4D4D, int32_t(utf8.size()), utf8).stringValue(), "Grüße");
  MCData latin1 = bytes({'G', 'r', 0xFC, 0});
  EXPECT_FALSE(readerOf(0x010F, 1, 0x4D4D, 4, latin1).stringValue()) << "UTF-8 types refuse ill-formed bytes";
  EXPECT_EQ(readerOf(0x010F, 2, 0x4D4D, 4, latin1).stringValue(), "Grü") << "ASCII tags fall back to Latin-1";

  MCData comment = bytes({'A', 'S', 'C', 'I', 'I', 0, 0, 0, 'h', 'i'});
  EXPECT_EQ(readerOf(0x9286, 7, 0x4D4D, 10, comment).userCommentValue(), "hi");
  EXPECT_FALSE(readerOf(0x9286, 7, 0x4D4D, 7, comment).userCommentValue()) << "count shorter than the code";
  MCData version = text("0230");
  EXPECT_EQ(readerOf(0x9000, 7, 0x4D4D, 4, version).exifVersionValue(), (MCArray{2, 3, 0}));
  EXPECT_EQ(readerOf(0xA000, 7, 0x4D4D, 4, text("0100")).flashPixVersionValue(), (MCArray{1, 0}));
  // Only `count` bytes are scanned: "02" alone cannot give three fields.
  EXPECT_FALSE(readerOf(0x9000, 7, 0x4D4D, 2, version).exifVersionValue());
}

TEST(MCExifValueReader, GPSCoordinatesAndTimeStamps) {
  auto rationals = [](std::initializer_list<std::pair<uint32_t, uint32_t>> values) {
    MCData out;
    for (auto [n, d] : values)
      for (uint32_t v : {n, d})
        for (int i = 3; i >= 0; --i) out.push_back(static_cast<uint8_t>(v >> (8 * i)));
    return out;
  };
  MCData dms = rationals({{51, 1}, {30, 1}, {36, 1}});
  EXPECT_DOUBLE_EQ(readerOf(2, 5, 0x4D4D, 3, dms).GPSLatitudeValue()->doubleValue().value(), 51.51);
  MCData brokenMinutes = rationals({{51, 1}, {30, 0}, {36, 1}});
  EXPECT_DOUBLE_EQ(readerOf(2, 5, 0x4D4D, 3, brokenMinutes).GPSLongitudeValue()->doubleValue().value(), 51.01)
      << "a zero denominator adds nothing";
  EXPECT_DOUBLE_EQ(readerOf(2, 5, 0x4D4D, 1, dms).GPSLatitudeValue()->doubleValue().value(), 51.0);

  EXPECT_EQ(readerOf(7, 5, 0x4D4D, 3, rationals({{9, 1}, {5, 1}, {7, 1}})).GPSTimeStampValue(), "09:05:07");
  EXPECT_EQ(readerOf(7, 5, 0x4D4D, 3, rationals({{12, 1}, {30, 1}, {596, 10}})).GPSTimeStampValue(), "12:30:60")
      << "rounded, not carried";
  LogCapture log;
  ASSERT_TRUE(log.available()) << "no log file";
  EXPECT_FALSE(readerOf(7, 5, 0x4D4D, 3, rationals({{12, 1}, {30, 0}, {5, 1}})).GPSTimeStampValue());
  EXPECT_FALSE(readerOf(7, 5, 0x4D4D, 2, rationals({{12, 1}, {30, 1}})).GPSTimeStampValue()) << "too few";
  EXPECT_TRUE(log.contains("Mapping tag 0x7 (type: 5) to GPS time stamp failed. Invalid value."));
}

TEST(MCExifUtils, RationalsFromDoubles) {
  auto r = [](double v) { return fields(*MCExifUtils::exifRationalFromDoubleValue(v)); };
  EXPECT_EQ(r(0), std::make_pair(0, 1));
  EXPECT_EQ(r(0.1), std::make_pair(1, 10));
  EXPECT_EQ(r(1.0 / 3), std::make_pair(333333, 1000000));
  EXPECT_EQ(r(2148.5), std::make_pair(4297, 2));
  EXPECT_EQ(r(2147), std::make_pair(2147, 1));
  EXPECT_EQ(r(2147.0001), std::make_pair(21470001, 10000)) << "past 2147 the second row";
  EXPECT_EQ(r(-0.5), std::make_pair(-1, 2));
  EXPECT_EQ(r(-0.0000005), std::make_pair(-1, 1000000)) << "half away from zero";
  EXPECT_EQ(r(2147483647), std::make_pair(2147483647, 1));
  EXPECT_FALSE(MCExifUtils::exifRationalFromDoubleValue(3e9));
  EXPECT_FALSE(MCExifUtils::exifRationalFromDoubleValue(-3e9));
  EXPECT_FALSE(MCExifUtils::exifRationalFromDoubleValue(NAN));
}

TEST(MCExifUtils, VersionsBytesAndTimeStamps) {
  EXPECT_EQ(MCExifUtils::dataWithExifVersionComponents({2, 3, 1}), text("0231"));
  EXPECT_EQ(MCExifUtils::dataWithExifVersionComponents({10, 0, 0}), text("1000"));
  EXPECT_FALSE(MCExifUtils::dataWithExifVersionComponents({100, 0, 0}));
  EXPECT_FALSE(MCExifUtils::dataWithExifVersionComponents({2, 10, 0}));
  EXPECT_FALSE(MCExifUtils::dataWithExifVersionComponents({2, 3}));
  EXPECT_FALSE(MCExifUtils::dataWithExifVersionComponents({2, "3", 0}));
  EXPECT_EQ(MCExifUtils::dataWithFlashPixVersionComponents({1, 0}), text("0100"));
  EXPECT_FALSE(MCExifUtils::dataWithFlashPixVersionComponents({1, 100}));
  EXPECT_EQ(MCExifUtils::arrayFromExifVersionData(text("0230")), (MCArray{2, 3, 0}));
  EXPECT_EQ(MCExifUtils::arrayFromFlashPixVersionData(text("0100")), (MCArray{1, 0}));
  EXPECT_EQ(MCExifUtils::dataWithUnsignedByteArray({1, 2, 300}), bytes({1, 2, 44}));
  EXPECT_FALSE(MCExifUtils::dataWithUnsignedByteArray({1, "x"}));
  EXPECT_EQ(MCExifUtils::dataWithUnsignedByte(MCValue(3)), bytes({3}));
  EXPECT_FALSE(MCExifUtils::dataWithUnsignedByte(MCValue("3")));

  auto coordinate = MCExifUtils::exifValueFromGPSCoordinateNumber(MCValue(51.5));
  ASSERT_TRUE(coordinate);
  ASSERT_EQ(coordinate->size(), 3u);
  EXPECT_EQ(fields(*(*coordinate)[0].rational()), std::make_pair(51, 1));
  EXPECT_EQ(fields(*(*coordinate)[1].rational()), std::make_pair(30, 1));
  EXPECT_EQ(fields(*(*coordinate)[2].rational()), std::make_pair(0, 1));
  auto precise = MCExifUtils::exifValueFromGPSCoordinateNumber(MCValue(12.3456789));
  double back = (*precise)[0].doubleValue().value() + (*precise)[1].doubleValue().value() / 60 +
                (*precise)[2].doubleValue().value() / 3600;
  EXPECT_NEAR(back, 12.3456789, 1e-9);
  EXPECT_FALSE(MCExifUtils::exifValueFromGPSCoordinateNumber(MCValue(5e9)));

  auto stamp = MCExifUtils::exifValueFromGPSTimeStampString("12:30:15");
  ASSERT_TRUE(stamp);
  EXPECT_EQ(fields(*(*stamp)[2].rational()), std::make_pair(15, 1));
  LogCapture log;
  ASSERT_TRUE(log.available()) << "no log file";
  EXPECT_FALSE(MCExifUtils::exifValueFromGPSTimeStampString("24:00:00"));
  EXPECT_FALSE(MCExifUtils::exifValueFromGPSTimeStampString("12:30"));
  EXPECT_FALSE(MCExifUtils::arrayFromFlashPixVersionData(text("x1")));
  EXPECT_TRUE(log.contains("Failed to validate GPS Time Stamp parsed from string: 24:00:00"));
  EXPECT_TRUE(log.contains("Failed to parse GPS Time Stamp from string: 12:30"));
  EXPECT_TRUE(log.contains("Failed to parse FlashPix Version from string: x1"));
}

TEST(MCExifUtils, UserCommentForms) {
  EXPECT_FALSE(MCExifUtils::stringWithUserCommentData(MCData(7, 0)));
  EXPECT_EQ(MCExifUtils::stringWithUserCommentData(MCData(8, 0)), "");
  EXPECT_EQ(MCExifUtils::stringWithUserCommentData(bytes({'A', 'S', 'C', 'I', 'I', 0, 0, 0, 'h', 'i', 0, 0, 0, 0, 0, 0, 0, 0})), "hi");
  EXPECT_EQ(MCExifUtils::stringWithUserCommentData(bytes({0, 0, 0, 0, 0, 0, 0, 0, 'o', 'k'})), "ok");
  EXPECT_EQ(MCExifUtils::stringWithUserCommentData(bytes({'A', 'S', 0, 0, 0, 0, 0, 0, 'o', 'k'})), "ok");
  EXPECT_FALSE(MCExifUtils::stringWithUserCommentData(bytes({'J', 'I', 'S', 0, 0, 0, 0, 0, 'o', 'k'})));
  EXPECT_FALSE(MCExifUtils::stringWithUserCommentData(bytes({'A', 'S', 'C', 'I', 'I', 'X', 0, 0, 'o', 'k'})));
  // UNICODE is big-endian whatever the block's order; an odd last byte is not read.
  EXPECT_EQ(MCExifUtils::stringWithUserCommentData(bytes({'U', 'N', 'I', 'C', 'O', 'D', 'E', 0, 0, 'o', 0, 'k', 0})), "ok");
  EXPECT_EQ(MCExifUtils::stringWithUserCommentData(bytes({'U', 'N', 'I', 'C', 'O', 'D', 'E', 0, 0, 'o', 0, 0, 0, 'k'})), "o");
}

// An array tag of a type no number can be read from has no value at all, so the dictionary shows
// no empty array: a WhitePoint written as ASCII is absent from {TIFF}, and the rest is there.
TEST(MCExifValueReader, ArraysOfARefusedTypeAreAbsentNotEmpty) {
  EXPECT_FALSE(readerOf(0x013E, 2, 0x4D4D, 4, text("abc")).arrayValue());
  EXPECT_FALSE(readerOf(0x013E, 5, 0x4D4D, 0, MCData{}).arrayValue()) << "no components";
  const MCData zeroDenominators = bytes({0, 0, 0, 1, 0, 0, 0, 0, 0, 0, 0, 2, 0, 0, 0, 0});
  EXPECT_FALSE(readerOf(0x013E, 5, 0x4D4D, 2, zeroDenominators).arrayValue()) << "no component reads";

  // An Exif block, little-endian, IFD0: Make "Acme" (in the entry), WhitePoint as 4 ASCII bytes.
  const MCData tiff = bytes({'E', 'x', 'i', 'f', 0, 0, 'I', 'I', 42, 0, 8, 0, 0, 0, 2, 0,
                             0x0F, 0x01, 2, 0, 4, 0, 0, 0, 'A', 'c', 'm', 'e',
                             0x3E, 0x01, 2, 0, 4, 0, 0, 0, 'a', 'b', 'c', 0,
                             0, 0, 0, 0});
  auto reader = MCExifReader::create(tiff);
  ASSERT_TRUE(reader);
  auto exif = reader->parseExif();
  ASSERT_TRUE(exif);
  const MCDictionary dictionary = exif->dictionary();
  const MCDictionary* tiffGroup = MCDictionaryGetDictionary(dictionary, kCGImagePropertyTIFFDictionary);
  ASSERT_TRUE(tiffGroup);
  EXPECT_EQ(*MCDictionaryGet(*tiffGroup, kCGImagePropertyTIFFMake), MCValue("Acme"));
  EXPECT_EQ(MCDictionaryGet(*tiffGroup, kCGImagePropertyTIFFWhitePoint), nullptr);
}
