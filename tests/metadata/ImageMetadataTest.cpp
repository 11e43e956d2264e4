#include <vesperon/metadata/MCImageMetadata.h>
#include <vesperon/metadata/MCImagePropertyKeys.h>
#include <vesperon/metadata/MCXMPPropertyMap.h>

#include <gtest/gtest.h>

#include <set>
#include <tuple>
#include <vector>

namespace {

MCData bytes(const std::string& text) { return MCData(text.begin(), text.end()); }

std::string packet(const std::string& body) {
  return R"(<?xpacket begin="" id="W5M0MpCehiHzreSzNTczkc9d"?><x:xmpmeta xmlns:x="adobe:ns:meta/">)"
         R"(<rdf:RDF xmlns:rdf="http://www.w3.org/1999/02/22-rdf-syntax-ns#">)"
         R"(<rdf:Description rdf:about="" xmlns:exif="http://ns.adobe.com/exif/1.0/")"
         R"( xmlns:dc="http://purl.org/dc/elements/1.1/" xmlns:aux="http://ns.adobe.com/exif/1.0/aux/")"
         R"( xmlns:Iptc4xmpCore="http://iptc.org/std/Iptc4xmpCore/1.0/xmlns/" xmlns:xmp="http://ns.adobe.com/xap/1.0/")"
         R"( xmlns:photoshop="http://ns.adobe.com/photoshop/1.0/" xmlns:exifEX="http://cipa.jp/exif/1.0/">)" +
         body + R"(</rdf:Description></rdf:RDF></x:xmpmeta><?xpacket end="w"?>)";
}

std::string text(const MCImageMetadataTag::Ptr& tag) {
  return tag && tag->stringValue() ? *tag->stringValue() : std::string("<none>");
}

}  // namespace

TEST(MCImageMetadata, ReadsEachTagTypeByKeyAndByPath) {
  auto metadata = MCImageMetadata::createFromXMPData(bytes(packet(
      R"(<exif:FNumber>28/10</exif:FNumber><exif:FlashpixVersion>0100</exif:FlashpixVersion>)"
      R"(<exif:Flash rdf:parseType="Resource"><exif:Fired>True</exif:Fired><exif:Return>3</exif:Return></exif:Flash>)"
      R"(<exif:ISOSpeedRatings><rdf:Seq><rdf:li>100</rdf:li><rdf:li>200</rdf:li></rdf:Seq></exif:ISOSpeedRatings>)"
      R"(<dc:subject><rdf:Bag><rdf:li>sea</rdf:li><rdf:li>sky</rdf:li></rdf:Bag></dc:subject>)"
      R"(<dc:title><rdf:Alt><rdf:li xml:lang="x-default">Dawn</rdf:li></rdf:Alt></dc:title>)"
      R"(<Iptc4xmpCore:CreatorContactInfo Iptc4xmpCore:CiAdrCity="Oslo" Iptc4xmpCore:CiEmailWork="a@b.no"/>)")));
  ASSERT_NE(metadata, nullptr);

  // Each tag type, with the text of the tag itself, its first item or its first member by name.
  const std::string exif = kCGImagePropertyExifDictionary, iptc = kCGImagePropertyIPTCDictionary;
  const std::vector<std::tuple<std::string, const char*, MCImageMetadataType, std::string, std::size_t>> rows = {
      {exif, kCGImagePropertyExifFNumber, kMCImageMetadataTypeString, "28/10", 0},
      {exif, kCGImagePropertyExifFlash, kMCImageMetadataTypeStructure, "True", 2},
      {exif, kCGImagePropertyExifISOSpeedRatings, kMCImageMetadataTypeArrayOrdered, "100", 2},
      {iptc, kCGImagePropertyIPTCKeywords, kMCImageMetadataTypeArrayUnordered, "sea", 2},
      {iptc, kCGImagePropertyIPTCObjectName, kMCImageMetadataTypeAlternateText, "Dawn", 1},
      {iptc, kCGImagePropertyIPTCCreatorContactInfo, kMCImageMetadataTypeStructure, "Oslo", 2},
  };
  for (const auto& [dictionary, key, type, first, count] : rows) {
    SCOPED_TRACE(key);
    auto tag = metadata->copyTagMatchingImageProperty(dictionary, key);
    ASSERT_NE(tag, nullptr);
    EXPECT_EQ(tag->type(), type);
    if (const auto* items = tag->arrayValue()) {
      ASSERT_EQ(items->size(), count);
      EXPECT_EQ(text(items->front()), first);
    } else if (const auto* members = tag->structureValue()) {
      ASSERT_EQ(members->size(), count);
      EXPECT_EQ(text(members->begin()->second), first);
    } else {
      EXPECT_EQ(text(tag), first);
    }
  }
  auto fNumber = metadata->copyTagMatchingImageProperty(exif, kCGImagePropertyExifFNumber);
  EXPECT_EQ(fNumber->prefix(), "exif");
  EXPECT_EQ(fNumber->name(), "FNumber");
  auto title = metadata->copyTagMatchingImageProperty(iptc, kCGImagePropertyIPTCObjectName);
  EXPECT_EQ(title->arrayValue()->front()->language(), "x-default");

  // By path, with nested steps; absent properties, unknown prefixes and unmapped keys give none.
  EXPECT_EQ(text(metadata->copyTagWithPath("exif:FlashpixVersion")), "0100");
  EXPECT_EQ(text(metadata->copyTagWithPath("exif:Flash/exif:Return")), "3");
  EXPECT_EQ(text(metadata->copyTagWithPath("exif:ISOSpeedRatings[2]")), "200");
  EXPECT_EQ(metadata->copyTagWithPath("exif:Nothing"), nullptr);
  EXPECT_EQ(metadata->copyTagWithPath("nosuchprefix:FNumber"), nullptr);
  EXPECT_EQ(metadata->copyTagWithPath("FNumber"), nullptr);
  EXPECT_EQ(metadata->copyTagMatchingImageProperty(kCGImagePropertyExifDictionary, kCGImagePropertyExifGamma), nullptr);
  EXPECT_EQ(metadata->copyTagMatchingImageProperty(kCGImagePropertyGPSDictionary, kCGImagePropertyGPSLatitudeRef),
            nullptr);
}

TEST(MCImageMetadata, RefusesWhatIsNotAnXmpPacket) {
  EXPECT_EQ(MCImageMetadata::createFromXMPData({}), nullptr);
  EXPECT_EQ(MCImageMetadata::createFromXMPData(bytes("<a><b></a>")), nullptr);
  EXPECT_EQ(MCImageMetadata::createFromXMPData(bytes("<root><child/></root>")), nullptr) << "XML, but not RDF";
  EXPECT_EQ(MCImageMetadata::createFromXMPData(bytes(packet("<exif:FNumber>2</exif:FNumber"))), nullptr);
  EXPECT_EQ(MCImageMetadata::createFromXMPData(bytes("<!DOCTYPE x [<!ENTITY a \"aaaa\">]>" + packet(""))), nullptr);

  // Nesting far past any real packet is refused before the parser recurses into it.
  std::string deep;
  for (int i = 0; i < 100000; ++i) deep += "<exif:A rdf:parseType=\"Resource\">";
  EXPECT_EQ(MCImageMetadata::createFromXMPData(bytes(packet(deep))), nullptr);
  // Moderate nesting parses, and is read without trouble.
  std::string nested, closing;
  for (int i = 0; i < 40; ++i) {
    nested += "<exif:Flash rdf:parseType=\"Resource\">";
    closing += "</exif:Flash>";
  }
  auto metadata = MCImageMetadata::createFromXMPData(bytes(packet(nested + "<exif:Mode>1</exif:Mode>" + closing)));
  ASSERT_NE(metadata, nullptr);
  auto tag = metadata->copyTagMatchingImageProperty(kCGImagePropertyExifDictionary, kCGImagePropertyExifFlash);
  ASSERT_NE(tag, nullptr);
  int depth = 0;
  while (tag && tag->structureValue() && !tag->structureValue()->empty()) {
    tag = tag->structureValue()->begin()->second;
    ++depth;
  }
  EXPECT_EQ(depth, 40);
  EXPECT_EQ(text(tag), "1");
}

TEST(MCImageMetadata, SetsValuesInTheirXmpFormsAndReadsThemBack) {
  auto metadata = MCImageMetadata::createMutable();
  ASSERT_NE(metadata, nullptr);
  const std::string exifDict = kCGImagePropertyExifDictionary, iptcDict = kCGImagePropertyIPTCDictionary;
  EXPECT_TRUE(metadata->setValueMatchingImageProperty(exifDict, kCGImagePropertyExifFlash, MCValue(14)));
  EXPECT_TRUE(metadata->setValueMatchingImageProperty(exifDict, kCGImagePropertyExifISOSpeedRatings, MCValue(MCArray{400, 800})));
  EXPECT_TRUE(metadata->setValueMatchingImageProperty(exifDict, kCGImagePropertyExifVersion, MCValue(MCArray{2, 3, 1})));
  EXPECT_TRUE(metadata->setValueMatchingImageProperty(exifDict, kCGImagePropertyExifDateTimeOriginal, "2020:01:02 03:04:05"));
  EXPECT_TRUE(metadata->setValueMatchingImageProperty(exifDict, kCGImagePropertyExifFNumber, MCValue(2.8)));
  EXPECT_TRUE(metadata->setValueMatchingImageProperty(
      iptcDict, kCGImagePropertyIPTCCreatorContactInfo,
      MCValue(MCDictionary{{kCGImagePropertyIPTCContactInfoCity, "Oslo"}, {kCGImagePropertyIPTCContactInfoPhones, "123"}})));
  EXPECT_TRUE(metadata->setValueMatchingImageProperty(iptcDict, kCGImagePropertyIPTCKeywords, "single"));
  EXPECT_TRUE(metadata->setValueMatchingImageProperty(kCGImagePropertyGPSDictionary, kCGImagePropertyGPSLatitude, -51.5));
  // Setting again replaces.
  EXPECT_TRUE(metadata->setValueMatchingImageProperty(iptcDict, kCGImagePropertyIPTCStarRating, 3));
  EXPECT_TRUE(metadata->setValueMatchingImageProperty(iptcDict, kCGImagePropertyIPTCStarRating, 5));
  // No property, or no form for the value.
  EXPECT_FALSE(metadata->setValueMatchingImageProperty(iptcDict, kCGImagePropertyIPTCEditStatus, "x"));
  EXPECT_FALSE(metadata->setValueMatchingImageProperty(exifDict, kCGImagePropertyExifFNumber, MCValue(MCDictionary{})));
  EXPECT_FALSE(metadata->setValueMatchingImageProperty(exifDict, kCGImagePropertyExifISOSpeedRatings, MCValue(MCArray{})));

  auto data = metadata->createXMPData();
  ASSERT_TRUE(data);
  auto read = MCImageMetadata::createFromXMPData(*data);
  ASSERT_NE(read, nullptr) << std::string(data->begin(), data->end());

  auto flash = read->copyTagMatchingImageProperty(exifDict, kCGImagePropertyExifFlash);
  ASSERT_NE(flash, nullptr);
  ASSERT_EQ(flash->type(), kMCImageMetadataTypeStructure);
  const auto& fields = *flash->structureValue();
  EXPECT_EQ(text(fields.at("Fired")), "False");
  EXPECT_EQ(text(fields.at("Return")), "3");
  EXPECT_EQ(text(fields.at("Mode")), "1");
  EXPECT_EQ(fields.size(), 5u);

  auto iso = read->copyTagMatchingImageProperty(exifDict, kCGImagePropertyExifISOSpeedRatings);
  ASSERT_NE(iso, nullptr);
  EXPECT_EQ(iso->type(), kMCImageMetadataTypeArrayOrdered);
  ASSERT_EQ(iso->arrayValue()->size(), 2u);
  EXPECT_EQ(text(iso->arrayValue()->at(1)), "800");

  EXPECT_EQ(text(read->copyTagWithPath("exif:ExifVersion")), "0231");
  EXPECT_EQ(text(read->copyTagWithPath("exif:DateTimeOriginal")), "2020-01-02T03:04:05");
  EXPECT_EQ(text(read->copyTagWithPath("exif:FNumber")), "2.8");
  EXPECT_EQ(text(read->copyTagWithPath("xmp:Rating")), "5");
  EXPECT_EQ(text(read->copyTagWithPath("exif:GPSLatitude")), "51,30.000000S");
  EXPECT_EQ(text(read->copyTagWithPath("Iptc4xmpCore:CreatorContactInfo/Iptc4xmpCore:CiTelWork")), "123");
  EXPECT_EQ(text(read->copyTagWithPath("dc:subject[1]")), "single") << "one text makes an array of one";

}

TEST(MCXMPPropertyMap, OneEntryPerKeyAndKnownNamespaces) {
  std::set<std::pair<std::string, std::string>> keys;
  std::set<std::string> uris;
  for (const auto& [prefix, uri] : MCXMPPropertyMap::namespaces()) uris.insert(uri);
  for (const MCXMPProperty& entry : MCXMPPropertyMap::all()) {
    EXPECT_TRUE(keys.emplace(entry.dictionaryName, entry.propertyKey).second)
        << entry.dictionaryName << " " << entry.propertyKey << " twice";
    EXPECT_TRUE(uris.count(entry.namespaceURI)) << entry.path();
    EXPECT_EQ(MCXMPPropertyMap::find(entry.dictionaryName, entry.propertyKey), &entry);
  }
  EXPECT_EQ(MCXMPPropertyMap::findPath("exif:FocalLengthIn35mmFilm")->propertyKey,
            std::string(kCGImagePropertyExifFocalLenIn35mmFilm));
  EXPECT_EQ(MCXMPPropertyMap::findPath("dc:creator")->dictionaryName, std::string(kCGImagePropertyTIFFDictionary));
  EXPECT_EQ(MCXMPPropertyMap::findPath("dc:creatorx"), nullptr);
}
