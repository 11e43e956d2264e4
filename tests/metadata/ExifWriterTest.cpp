// The libexif road out of the library: the encoder, the entries and their type tables, the block,
// and the writer — checked byte by byte and through libexif's own load. exiftool reads what the
// writer wrote in the reader's peer test, which writes back what exiftool wrote.

#include "ExifTestSupport.h"

#include "../support/LogCapture.h"

#include <vesperon/metadata/MCCGImageMetadataWriter.h>
#include <vesperon/metadata/MCExifData.h>
#include <vesperon/metadata/MCImagePropertyKeys.h>
#include <vesperon/metadata/MCExifEncoder.h>
#include <vesperon/metadata/MCExifEntry.h>
#include <vesperon/metadata/MCExifReader.h>
#include <vesperon/metadata/MCExifWriter.h>

#include <libexif/exif-data.h>

#include <gtest/gtest.h>


using namespace exif_test;

namespace {

MCData bytes(std::initializer_list<int> values) {
  MCData out;
  for (int v : values) out.push_back(static_cast<uint8_t>(v));
  return out;
}

MCValue rational(int32_t n, int32_t d) { return MCValue(*MCExifRational::create(n, d)); }

// One loaded entry of a saved block, as libexif sees it.
struct Loaded {
  int ifd = -1;
  int format = 0;
  unsigned long components = 0;
  MCData data;
};

std::optional<Loaded> find(const MCData& block, uint16_t tag, int wantedIfd = -1) {
  ExifData* d = exif_data_new_from_data(block.data(), static_cast<unsigned int>(block.size()));
  std::optional<Loaded> out;
  for (int i = 0; i < EXIF_IFD_COUNT && !out; ++i) {
    if (wantedIfd >= 0 && i != wantedIfd) continue;
    ExifEntry* e = exif_content_get_entry(d->ifd[i], static_cast<ExifTag>(tag));
    if (e) out = Loaded{i, e->format, e->components, MCData(e->data, e->data + e->size)};
  }
  exif_data_unref(d);
  return out;
}

}  // namespace

TEST(MCExifEncoder, ShapesOfTheWire) {
  EXPECT_EQ(MCExifEncoder::encodeNumber(MCValue(6), 3, 0x4D4D), bytes({0, 6, 0, 0}));
  EXPECT_EQ(MCExifEncoder::encodeNumber(MCValue(6), 3, 0x4949), bytes({6, 0, 0, 0}));
  EXPECT_EQ(MCExifEncoder::encodeNumber(MCValue(0x01020304), 4, 0x4D4D), bytes({1, 2, 3, 4}));
  EXPECT_EQ(MCExifEncoder::encodeNumber(MCValue(200), 1, 0x4D4D), bytes({200, 0, 0, 0}));
  EXPECT_EQ(MCExifEncoder::encodeNumber(MCValue(-2), 8, 0x4D4D), bytes({0xFF, 0xFE, 0, 0}));
  EXPECT_EQ(MCExifEncoder::encodeNumber(MCValue(1.5), 5, 0x4D4D), bytes({0, 0, 0, 3, 0, 0, 0, 2}));
  EXPECT_EQ(MCExifEncoder::encodeNumber(MCValue(-0.5), 10, 0x4D4D), bytes({0xFF, 0xFF, 0xFF, 0xFF, 0, 0, 0, 2}));
  EXPECT_FALSE(MCExifEncoder::encodeNumber(MCValue(3e9), 5, 0x4D4D));
  EXPECT_EQ(MCExifEncoder::encodeNumber(MCValue(1.0), 11, 0x4D4D), bytes({0x3F, 0x80, 0, 0}));
  EXPECT_EQ(MCExifEncoder::encodeNumber(MCValue(2.0), 12, 0x4D4D), bytes({0x40, 0, 0, 0, 0, 0, 0, 0}));
  EXPECT_FALSE(MCExifEncoder::encodeNumber(MCValue(1), 13, 0x4D4D));
  // An order that is neither mark leaves the wider shapes zero, but not the bytes.
  EXPECT_EQ(MCExifEncoder::encodeNumber(MCValue(6), 3, 0), bytes({0, 0, 0, 0}));
  EXPECT_EQ(MCExifEncoder::encodeNumber(MCValue(6), 1, 0), bytes({6, 0, 0, 0}));

  EXPECT_EQ(MCExifEncoder::encodeString("abc", 2, 0x4D4D), bytes({'a', 'b', 'c', 0}));
  EXPECT_FALSE(MCExifEncoder::encodeString("é", 2, 0x4D4D));
  EXPECT_EQ(MCExifEncoder::encodeString("é", 1, 0x4D4D), bytes({0xC3, 0xA9, 0}));
  EXPECT_EQ(MCExifEncoder::encodeData(bytes({1, 2}), 7, 0x4D4D), bytes({1, 2}));
  EXPECT_EQ(MCExifEncoder::encodeRational(*MCExifRational::create(1, 3), 10, 0x4949), bytes({1, 0, 0, 0, 3, 0, 0, 0}));
  EXPECT_FALSE(MCExifEncoder::encodeValue(MCValue(MCDictionary{}), 2, 0x4D4D));

  auto pair = MCExifEncoder::encodeArray({1.5, 2}, 5, 0x4D4D);
  EXPECT_EQ(pair, bytes({0, 0, 0, 3, 0, 0, 0, 2, 0, 0, 0, 2, 0, 0, 0, 1}));
  EXPECT_EQ(MCExifEncoder::encodeArray({1, 258}, 3, 0x4D4D), bytes({0, 1, 1, 2}));
  EXPECT_EQ(MCExifEncoder::encodeArray({1, 258}, 3, 0x4949), bytes({1, 0, 2, 1}));
  EXPECT_EQ(MCExifEncoder::encodeArray({rational(1, 2), 0.25}, 5, 0x4D4D), bytes({0, 0, 0, 1, 0, 0, 0, 2, 0, 0, 0, 1, 0, 0, 0, 4}));
  // One element beyond any rational: 8 bytes fewer than the count says.
  MCArray wide{1.0, 5e9, 2.0};
  EXPECT_EQ(MCExifEncoder::encodeArray(wide, 5, 0x4D4D)->size(), 16u);
  EXPECT_EQ(MCExifEncoder::numberOfComponentsInValue(MCValue(wide), MCExifEncoder::encodeArray(wide, 5, 0x4D4D)), 3u);
  EXPECT_FALSE(MCExifEncoder::encodeArray({1}, 0, 0x4D4D));
}

TEST(MCExifEncoder, RefusalsAreLogged) {
  LogCapture log;
  ASSERT_TRUE(log.available()) << "no log file";
  EXPECT_FALSE(MCExifEncoder::encodeArray({1, 2}, 2, 0x4D4D));
  auto longs = MCExifEncoder::encodeArray({rational(1, 2), rational(3, 4), 7}, 4, 0x4D4D);
  EXPECT_EQ(longs, bytes({0, 0, 0, 7})) << "the reported rationals are left out";
  EXPECT_FALSE(MCExifEncoder::encodeNumber(MCValue(5), 2, 0x4D4D));
  EXPECT_FALSE(MCExifEncoder::encodeData(bytes({1}), 2, 0x4D4D));
  EXPECT_FALSE(MCExifEncoder::encodeString("x", 7, 0x4D4D));
  EXPECT_FALSE(MCExifEncoder::encodeRational(*MCExifRational::create(1, 2), 3, 0x4D4D));
  std::string text = log.text();
  EXPECT_TRUE(log.contains("Cannot encode [1,2] to EXIF data type: 2"));
  std::size_t first = text.find("Unexpected element type in array: MCExifRational");
  ASSERT_NE(first, std::string::npos);
  EXPECT_NE(text.find("Unexpected element type in array: MCExifRational", first + 1), std::string::npos) << "each element";
  EXPECT_TRUE(log.contains("Failed to encode number to EXIF data type: 2"));
  EXPECT_TRUE(log.contains("Cannot encode [1] to EXIF data type: 2"));
  EXPECT_TRUE(log.contains("Failed to encode string to EXIF data type: 7"));
  EXPECT_TRUE(log.contains("Failed to encode MCExifRational to EXIF data type: 3"));
}

TEST(MCExifEntry, TypeTablesAndComponents) {
  EXPECT_EQ(MCExifEntry::typeForExifTag(0x8832), 3) << "SHORT, not the standard's LONG";
  EXPECT_EQ(MCExifEntry::typeForExifTag(0x9206), 10) << "SRATIONAL, not RATIONAL";
  EXPECT_EQ(MCExifEntry::typeForExifTag(0x882A), 8);
  EXPECT_EQ(MCExifEntry::typeForExifTag(0x1234), 2) << "unknown tags are ASCII";
  EXPECT_EQ(MCExifGPSEntry::typeForExifGPSTag(0), 1);
  EXPECT_EQ(MCExifGPSEntry::typeForExifGPSTag(27), 7);
  EXPECT_EQ(MCExifGPSEntry::typeForExifGPSTag(30), 3);
  EXPECT_EQ(MCExifGPSEntry::typeForExifGPSTag(31), 5);
  EXPECT_EQ(MCExifGPSEntry::typeForExifGPSTag(32), 1);

  MCExifEntry make(0x010F, MCValue("abc"));
  EXPECT_EQ(make.type(), 2);
  EXPECT_EQ(make.byteOrder(), 0x4D4D);
  EXPECT_EQ(make.encodedData(), bytes({'a', 'b', 'c', 0}));
  EXPECT_EQ(make.numberOfComponents(), 4u);
  MCExifEntry accented(0x010F, MCValue("é"));
  EXPECT_FALSE(accented.encodedData());
  EXPECT_EQ(accented.numberOfComponents(), 0u);
  MCExifEntry orientation(0x0112, MCValue(6));
  EXPECT_EQ(orientation.encodedData(), bytes({0, 6, 0, 0}));
  EXPECT_EQ(orientation.numberOfComponents(), 1u);
}

TEST(MCExifWriter, BlocksAsLibexifLoadsThem) {
  MCExifWriter writer;
  writer.writeEXIFValue(MCValue("Acme"), 0x010F);
  writer.writeEXIFValue(MCValue("Other"), 0x010F);  // the first value stays
  writer.writeEXIFValue(MCValue(6), 0x0112);
  writer.writeEXIFValue(MCValue("0231"), 0x9000);  // not an array: ignored
  writer.writeEXIFValue(MCArray{2, 3, 1}, 0x9000);
  writer.writeEXIFValue(MCArray{1, 2, 3, 0}, 0x9101);
  writer.writeEXIFValue(MCValue(MCData{1, 2}), 0x927C);  // maker notes are never written
  writer.writeEXIFValue(MCValue("Grüße"), 0x9286);
  writer.writeEXIFValue(MCValue(3), 0xA300);
  writer.writeEXIFValue(MCValue(200), 0x8827);  // ISO by the number path
  writer.writeEXIFValue(MCValue(), 0x0131);
  writer.writeEXIFValue(MCValue("host"), 0x013C);  // libexif's table has no place for it in JPEG data
  writer.writeEXIFValue(MCValue("é"), 0x0131);     // refused by the encoder: an entry without bytes
  writer.writeGPSValue(MCValue(51.5), 2);
  writer.writeGPSValue(MCValue("N"), 1);
  writer.writeGPSValue(MCValue("not a time"), 7);
  writer.writeGPSValue(MCValue("WGS-84"), 40);
  writer.writeGPSValue(MCValue("GPS"), 27);
  auto block = writer.exifData();
  ASSERT_TRUE(block);
  ASSERT_GE(block->size(), 14u);
  EXPECT_EQ(MCData(block->begin(), block->begin() + 8), bytes({'E', 'x', 'i', 'f', 0, 0, 'M', 'M'}));

  auto make = find(*block, 0x010F);
  ASSERT_TRUE(make);
  EXPECT_EQ(make->ifd, EXIF_IFD_0);
  EXPECT_EQ(make->format, EXIF_FORMAT_ASCII);
  EXPECT_EQ(make->components, 5u);
  EXPECT_EQ(make->data, bytes({'A', 'c', 'm', 'e', 0}));
  auto version = find(*block, 0x9000);
  ASSERT_TRUE(version);
  EXPECT_EQ(version->ifd, EXIF_IFD_EXIF);
  EXPECT_EQ(version->data, bytes({'0', '2', '3', '1'}));
  EXPECT_FALSE(find(*block, 0x927C));
  EXPECT_FALSE(find(*block, 0x013C));
  auto comment = find(*block, 0x9286);
  ASSERT_TRUE(comment);
  EXPECT_EQ(MCData(comment->data.begin(), comment->data.begin() + 8), bytes({'U', 'N', 'I', 'C', 'O', 'D', 'E', 0}));
  auto iso = find(*block, 0x8827);
  EXPECT_EQ(iso->format, EXIF_FORMAT_SHORT);
  EXPECT_EQ(iso->components, 1u);
  EXPECT_EQ(iso->data, bytes({0, 200}));
  auto latitude = find(*block, 2, EXIF_IFD_GPS);
  ASSERT_TRUE(latitude);
  EXPECT_EQ(latitude->components, 3u);
  EXPECT_EQ(latitude->data, bytes({0, 0, 0, 51, 0, 0, 0, 1, 0, 0, 0, 30, 0, 0, 0, 1, 0, 0, 0, 0, 0, 0, 0, 1}));
  EXPECT_FALSE(find(*block, 7, EXIF_IFD_GPS));

  // And back through the reading road.
  auto exif = MCExifReader::create(*block)->parseExif();
  ASSERT_TRUE(exif);
  EXPECT_EQ(exif->exifUserComment(), "Grüße");
  EXPECT_EQ(exif->gpsProcessingMethod(), "GPS");
  EXPECT_FALSE(exif->tiffSoftware());
}

TEST(MCExifData, EmptyBlockAndAnEntryWithoutBytes) {
  MCExifData empty;
  auto block = empty.exifData();
  ASSERT_TRUE(block);
  EXPECT_EQ(MCData(block->begin(), block->begin() + 6), bytes({'E', 'x', 'i', 'f', 0, 0}));
  MCExifData data;
  data.addEntry(MCExifEntry(0x010F, MCValue("é")));
  // libexif's own load skips an entry of no bytes, so look into the block being built.
  ExifEntry* make = exif_content_get_entry(data.data()->ifd[EXIF_IFD_0], EXIF_TAG_MAKE);
  ASSERT_TRUE(make) << "the entry is added with no bytes";
  EXPECT_EQ(make->components, 0u);
  EXPECT_EQ(make->size, 0u);
  EXPECT_TRUE(data.exifData());
}

// The tags with a conversion take only the kinds of value their row names: FileSource a number or
// an array of bytes, SceneType a number, SourceExposureTimesOfCompositeImage a string.
TEST(MCExifWriter, ConvertedTagsTakeOnlyTheirKindsOfValue) {
  MCExifWriter writer;
  writer.writeEXIFValue(MCArray{3}, 0xA300);          // FileSource as an array of bytes
  writer.writeEXIFValue(MCArray{1}, 0xA301);          // SceneType as an array: ignored
  writer.writeEXIFValue(MCArray{1, 2}, 0xA462);       // composite exposure times as an array: ignored
  writer.writeEXIFValue(MCValue("1/100 1/50"), 0xA462);
  auto block = writer.exifData();
  ASSERT_TRUE(block);
  auto fileSource = find(*block, 0xA300);
  ASSERT_TRUE(fileSource);
  EXPECT_EQ(fileSource->format, EXIF_FORMAT_UNDEFINED);
  EXPECT_EQ(fileSource->data, bytes({3}));
  EXPECT_FALSE(find(*block, 0xA301)) << "an array is no SceneType";

  MCExifWriter numbers;
  numbers.writeEXIFValue(MCValue(1), 0xA301);
  numbers.writeEXIFValue(MCValue(3), 0xA300);
  auto second = numbers.exifData();
  ASSERT_TRUE(second);
  EXPECT_EQ(find(*second, 0xA301)->data, bytes({1}));
  EXPECT_EQ(find(*second, 0xA300)->data, bytes({3}));
}

// From a property dictionary: nothing at all gives libexif's block of an empty ExifData, and a GPS
// time stamp that is not a time is left out with the parse message.
TEST(MCExifWriter, EmptyDictionariesAndTimesThatAreNot) {
  MCCGImageMetadataWriter writer;
  auto empty = writer.exifDataFromCGImageProperties({});
  ASSERT_TRUE(empty);
  ExifData* none = exif_data_new();
  exif_data_set_byte_order(none, EXIF_BYTE_ORDER_MOTOROLA);
  unsigned char* saved = nullptr;
  unsigned int size = 0;
  exif_data_save_data(none, &saved, &size);
  ASSERT_TRUE(saved);
  EXPECT_EQ(*empty, MCData(saved, saved + size));
  free(saved);
  exif_data_unref(none);

  LogCapture log;
  ASSERT_TRUE(log.available());
  auto block = writer.exifDataFromCGImageProperties(
      {{kCGImagePropertyGPSDictionary, MCDictionary{{kCGImagePropertyGPSTimeStamp, "not a time"},
                                                    {kCGImagePropertyGPSLatitude, 12.25}}}});
  ASSERT_TRUE(block);
  EXPECT_FALSE(find(*block, 7, EXIF_IFD_GPS));
  auto latitude = find(*block, 2, EXIF_IFD_GPS);
  ASSERT_TRUE(latitude);
  EXPECT_EQ(latitude->data, bytes({0, 0, 0, 12, 0, 0, 0, 1, 0, 0, 0, 15, 0, 0, 0, 1, 0, 0, 0, 0, 0, 0, 0, 1}));
  EXPECT_TRUE(log.contains("Failed to parse GPS Time Stamp from string: not a time")) << log.text();
}
