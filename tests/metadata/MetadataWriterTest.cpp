#include <vesperon/metadata/MCCGImageMetadataReader.h>
#include <vesperon/metadata/MCCGImageMetadataWriter.h>
#include <vesperon/metadata/MCImagePropertyKeys.h>

#include "MetadataTestSupport.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <cstdlib>

namespace fs = std::filesystem;

namespace {

std::string text(const MCData& data) { return std::string(data.begin(), data.end()); }

// exiftool's reading of an XMP file, as JSON: {"XMP-dc:Subject": [...], ...}; null if it cannot run.
nlohmann::json exiftoolRead(const fs::path& file) {
  const std::string command = "exiftool -j -G1 -n -struct '" + file.string() + "' 2>/dev/null";
  FILE* pipe = popen(command.c_str(), "r");
  if (!pipe) return nullptr;
  std::string out;
  char buffer[4096];
  while (std::size_t n = fread(buffer, 1, sizeof buffer, pipe)) out.append(buffer, n);
  if (pclose(pipe) != 0 || out.empty()) return nullptr;
  auto json = nlohmann::json::parse(out, nullptr, false);
  return json.is_array() && !json.empty() ? json[0] : nlohmann::json();
}

const MCDictionary kIPTC{
    {kCGImagePropertyIPTCKeywords, MCArray{"sea", "sky"}},
    {kCGImagePropertyIPTCByline, MCArray{"Ann", "Bo"}},
    {kCGImagePropertyIPTCCity, "Oslo"},
    {kCGImagePropertyIPTCObjectName, "Dawn"},
    {kCGImagePropertyIPTCCaptionAbstract, "Boats at dawn"},
    {kCGImagePropertyIPTCCopyrightNotice, "(c) Ann"},
    {kCGImagePropertyIPTCStarRating, 4},
    {kCGImagePropertyIPTCProvinceState, "Oslo fylke"},
    {kCGImagePropertyIPTCCountryPrimaryLocationCode, "NOR"},
    {kCGImagePropertyIPTCDateCreated, "20210601"},
    {kCGImagePropertyIPTCCreatorContactInfo,
     MCDictionary{{kCGImagePropertyIPTCContactInfoCity, "Bergen"}, {kCGImagePropertyIPTCContactInfoEmails, "ann@example.org"}}},
    {kCGImagePropertyIPTCEditStatus, "no XMP property"},
};

}  // namespace

TEST(MetadataWriter, XmpTakesOnlyAuxiliaryAndIPTC) {
  const MCDictionary properties{
      {kCGImagePropertyOrientation, 6},
      {kCGImagePropertyPixelWidth, 4000},
      {kCGImagePropertyTIFFDictionary, MCDictionary{{kCGImagePropertyTIFFMake, "TiffMake"}}},
      {kCGImagePropertyExifDictionary, MCDictionary{{kCGImagePropertyExifFNumber, 2.8}}},
      {kCGImagePropertyGPSDictionary, MCDictionary{{kCGImagePropertyGPSLatitude, 12.5}}},
      {kCGImagePropertyExifAuxDictionary,
       MCDictionary{{kCGImagePropertyExifAuxLensModel, "Zoomy 24-70"}, {kCGImagePropertyExifAuxFlashCompensation, -1.5}}},
      {kCGImagePropertyIPTCDictionary, kIPTC},
  };
  auto packet = MCCGImageMetadataWriter().xmpDataFromCGImageProperties(properties);
  ASSERT_TRUE(packet);
  const std::string xml = text(*packet);
  for (const char* absent : {"TiffMake", "FNumber", "GPSLatitude", "Orientation", "4000", "no XMP property"}) {
    EXPECT_EQ(xml.find(absent), std::string::npos) << absent;
  }

  // Our own reader gets the values back under the same keys, in the forms it reads them in.
  const MCDictionary read = MCCGImageMetadataReader::extractMetadataFromXMPData(*packet);
  const MCDictionary& iptc = *MCDictionaryGetDictionary(read, kCGImagePropertyIPTCDictionary);
  EXPECT_EQ(*MCDictionaryGet(iptc, kCGImagePropertyIPTCStarRating), MCValue("4"));
  EXPECT_EQ(*MCDictionaryGet(iptc, kCGImagePropertyIPTCDateCreated), MCValue("2021-06-01"));
  EXPECT_EQ(MCDictionaryGet(iptc, kCGImagePropertyIPTCEditStatus), nullptr);
  const MCDictionary& aux = *MCDictionaryGetDictionary(read, kCGImagePropertyExifAuxDictionary);
  EXPECT_EQ(*MCDictionaryGet(aux, kCGImagePropertyExifAuxFlashCompensation), MCValue(-1.5));
  EXPECT_TRUE(MCDictionaryGetDictionary(read, kCGImagePropertyExifDictionary)->empty());
  // dc:creator and dc:rights serve TIFF Artist and Copyright too; the TIFF sub-dictionary itself was not written.
  EXPECT_EQ(*MCDictionaryGetDictionary(read, kCGImagePropertyTIFFDictionary),
            (MCDictionary{{kCGImagePropertyTIFFArtist, MCArray{"Ann", "Bo"}}, {kCGImagePropertyTIFFCopyright, "(c) Ann"}}));

  // An empty dictionary still makes a packet, with nothing in it.
  auto empty = MCCGImageMetadataWriter().xmpDataFromCGImageProperties({});
  ASSERT_TRUE(empty);
  for (const auto& [key, sub] : MCCGImageMetadataReader::extractMetadataFromXMPData(*empty)) {
    EXPECT_TRUE(sub.dictionary()->empty()) << key;
  }
}

TEST(MetadataWriter, ExiftoolReadsTheSameValues) {
  const fs::path dir = fs::path(VESPERON_TEST_BINARY_DIR) / "writer";
  fs::create_directories(dir);
  const fs::path file = dir / "written.xmp";
  const MCDictionary properties{
      {kCGImagePropertyExifAuxDictionary,
       MCDictionary{{kCGImagePropertyExifAuxLensModel, "Zoomy 24-70"}, {kCGImagePropertyExifAuxSerialNumber, "SN42"}}},
      {kCGImagePropertyIPTCDictionary, kIPTC}};
  auto packet = MCCGImageMetadataWriter().xmpDataFromCGImageProperties(properties);
  ASSERT_TRUE(packet);
  std::ofstream(file, std::ios::binary) << text(*packet);

  const nlohmann::json tags = exiftoolRead(file);
  if (tags.is_null()) GTEST_SKIP() << "exiftool is not available";
  EXPECT_EQ(tags.value("XMP-dc:Subject", nlohmann::json()), nlohmann::json({"sea", "sky"}));
  EXPECT_EQ(tags.value("XMP-dc:Creator", nlohmann::json()), nlohmann::json({"Ann", "Bo"}));
  EXPECT_EQ(tags.value("XMP-dc:Title", nlohmann::json()), "Dawn");
  EXPECT_EQ(tags.value("XMP-dc:Description", nlohmann::json()), "Boats at dawn");
  EXPECT_EQ(tags.value("XMP-dc:Rights", nlohmann::json()), "(c) Ann");
  EXPECT_EQ(tags.value("XMP-photoshop:City", nlohmann::json()), "Oslo");
  EXPECT_EQ(tags.value("XMP-photoshop:State", nlohmann::json()), "Oslo fylke");
  EXPECT_EQ(tags.value("XMP-photoshop:DateCreated", nlohmann::json()), "2021:06:01");
  EXPECT_EQ(tags.value("XMP-iptcCore:CountryCode", nlohmann::json()), "NOR");
  EXPECT_EQ(tags.value("XMP-xmp:Rating", nlohmann::json()), 4);
  EXPECT_EQ(tags.value("XMP-aux:Lens", nlohmann::json()), "Zoomy 24-70");
  EXPECT_EQ(tags.value("XMP-aux:SerialNumber", nlohmann::json()), "SN42");
  const nlohmann::json contact = tags.value("XMP-iptcCore:CreatorContactInfo", nlohmann::json());
  EXPECT_EQ(contact.value("CiAdrCity", nlohmann::json()), "Bergen") << contact.dump();
  EXPECT_EQ(contact.value("CiEmailWork", nlohmann::json()), "ann@example.org") << contact.dump();
}

// The IIM times live in the XMP dates of their days, both ways, as exiftool writes and reads them;
// the fields without a standard XMP home are read from no sidecar and written to none.
TEST(MetadataWriter, IIMTimesShareTheirDaysDatesWithExiftool) {
  const fs::path dir = fs::path(VESPERON_TEST_BINARY_DIR) / "iptc-times";
  fs::create_directories(dir);
  const fs::path sidecar = dir / "by-exiftool.xmp";
  fs::remove(sidecar);
  const std::string command = "exiftool -q -o '" + sidecar.string() +
                              "' '-XMP-photoshop:DateCreated=2021:06:01 12:34:56+02:00'"
                              " '-XMP-xmp:CreateDate=2021:06:02 08:09:10Z' -XMP-photoshop:Urgency=3"
                              " '-XMP-iptcCore:Location=Old Town' -XMP-photoshop:TransmissionReference=TR-1"
                              " -XMP-photoshop:Instructions=Embargo -XMP-iptcCore:IntellectualGenre=Feature 2>/dev/null";
  if (std::system(command.c_str()) != 0 || !fs::exists(sidecar)) GTEST_SKIP() << "exiftool is not available";
  std::ifstream in(sidecar, std::ios::binary);
  const std::string written((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
  const MCDictionary read = MCCGImageMetadataReader::extractMetadataFromXMPData(MCData(written.begin(), written.end()));
  const MCDictionary& iptc = *MCDictionaryGetDictionary(read, kCGImagePropertyIPTCDictionary);
  auto at = [&](const char* key) {
    const MCValue* value = MCDictionaryGet(iptc, key);
    return value ? *value : MCValue();
  };
  EXPECT_EQ(at(kCGImagePropertyIPTCDateCreated), MCValue("2021-06-01T12:34:56+02:00"));
  EXPECT_EQ(at(kCGImagePropertyIPTCTimeCreated), MCValue("123456+0200"));
  EXPECT_EQ(at(kCGImagePropertyIPTCDigitalCreationTime), MCValue("080910+0000"));
  EXPECT_EQ(at(kCGImagePropertyIPTCUrgency), MCValue("3"));
  EXPECT_EQ(at(kCGImagePropertyIPTCSubLocation), MCValue("Old Town"));
  EXPECT_EQ(at(kCGImagePropertyIPTCOriginalTransmissionReference), MCValue("TR-1"));
  EXPECT_EQ(at(kCGImagePropertyIPTCSpecialInstructions), MCValue("Embargo"));
  EXPECT_EQ(at(kCGImagePropertyIPTCObjectAttributeReference), MCValue("Feature"));
  for (const char* homeless : {kCGImagePropertyIPTCEditStatus, kCGImagePropertyIPTCReleaseDate,
                               kCGImagePropertyIPTCContact, kCGImagePropertyIPTCImageType})
    EXPECT_FALSE(iptc.count(homeless)) << homeless;

  // Written back: the time joins its day; a time without a day, and homeless fields, write nothing.
  const MCDictionary properties{
      {kCGImagePropertyIPTCDictionary,
       MCDictionary{{kCGImagePropertyIPTCDateCreated, "20210601"},
                    {kCGImagePropertyIPTCTimeCreated, "123456+0200"},
                    {kCGImagePropertyIPTCDigitalCreationTime, "101112"},
                    {kCGImagePropertyIPTCEditStatus, "final"},
                    {kCGImagePropertyIPTCReleaseDate, "20210701"}}}};
  auto packet = MCCGImageMetadataWriter().xmpDataFromCGImageProperties(properties);
  ASSERT_TRUE(packet);
  const fs::path ours = dir / "ours.xmp";
  std::ofstream(ours, std::ios::binary) << text(*packet);
  const nlohmann::json tags = exiftoolRead(ours);
  ASSERT_FALSE(tags.is_null());
  EXPECT_EQ(tags.value("XMP-photoshop:DateCreated", nlohmann::json()), "2021:06:01 12:34:56+02:00") << tags.dump();
  EXPECT_FALSE(tags.contains("XMP-xmp:CreateDate")) << "no digital creation day to put the time in";
  EXPECT_EQ(text(*packet).find("final"), std::string::npos);
  EXPECT_EQ(text(*packet).find("20210701"), std::string::npos);
  EXPECT_EQ(text(*packet).find("2021-07-01"), std::string::npos);
}
