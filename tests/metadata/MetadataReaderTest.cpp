#include <vesperon/metadata/MCCGImageMetadataReader.h>
#include <vesperon/metadata/MCDateExtensions.h>
#include <vesperon/metadata/MCImagePropertyKeys.h>

#include "MetadataTestSupport.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

namespace fs = std::filesystem;
using Reader = MCCGImageMetadataReader;

namespace {

MCData bytes(const std::string& text) { return MCData(text.begin(), text.end()); }

std::string packet(const std::string& body) {
  return R"(<x:xmpmeta xmlns:x="adobe:ns:meta/"><rdf:RDF xmlns:rdf="http://www.w3.org/1999/02/22-rdf-syntax-ns#">)"
         R"(<rdf:Description rdf:about="" xmlns:exif="http://ns.adobe.com/exif/1.0/")"
         R"( xmlns:dc="http://purl.org/dc/elements/1.1/" xmlns:aux="http://ns.adobe.com/exif/1.0/aux/")"
         R"( xmlns:tiff="http://ns.adobe.com/tiff/1.0/" xmlns:xmp="http://ns.adobe.com/xap/1.0/")"
         R"( xmlns:photoshop="http://ns.adobe.com/photoshop/1.0/" xmlns:exifEX="http://cipa.jp/exif/1.0/">)" +
         body + R"(</rdf:Description></rdf:RDF></x:xmpmeta>)";
}

MCDictionary sub(const MCDictionary& nested, const char* key) {
  const MCDictionary* found = MCDictionaryGetDictionary(nested, key);
  return found ? *found : MCDictionary{{"<missing>", true}};
}

MCValue get(const MCDictionary& dictionary, const std::string& key) {
  const MCValue* value = MCDictionaryGet(dictionary, key);
  return value ? *value : MCValue();
}

MCDictionary gpsOf(const std::string& body) { return sub(Reader::extractMetadataFromXMPData(bytes(packet(body))), kCGImagePropertyGPSDictionary); }
MCDictionary exifOf(const std::string& body) { return sub(Reader::extractMetadataFromXMPData(bytes(packet(body))), kCGImagePropertyExifDictionary); }

fs::path scratch(const std::string& name) {
  fs::path dir = fs::path(VESPERON_TEST_BINARY_DIR) / "reader" / name;
  fs::remove_all(dir);
  fs::create_directories(dir);
  return dir;
}

}  // namespace

TEST(MetadataReader, SchemeAndEmptyResults) {
  const auto scheme = Reader::metadataScheme();
  ASSERT_EQ(scheme.size(), 5u);
  EXPECT_EQ(scheme.at(kCGImagePropertyGPSDictionary).size(), 6u);
  EXPECT_EQ(scheme.at(kCGImagePropertyIPTCDictionary).size(), 51u);
  EXPECT_EQ(scheme.at(kCGImagePropertyTIFFDictionary).size(), 10u);
  EXPECT_EQ(scheme.at(kCGImagePropertyExifAuxDictionary).size(), 8u);
  EXPECT_EQ(scheme.at(kCGImagePropertyExifDictionary).size(), 62u);

  EXPECT_TRUE(Reader::extractMetadataFromXMPData({}).empty());
  EXPECT_TRUE(Reader::extractMetadataFromXMPData(bytes("not xml at all")).empty());
  const MCDictionary none = Reader::extractMetadataFromXMPData(bytes(packet("<exif:Unknown>1</exif:Unknown>")));
  ASSERT_EQ(none.size(), 5u);
  for (const auto& [key, value] : none) {
    ASSERT_TRUE(value.isDictionary()) << key;
    EXPECT_TRUE(value.dictionary()->empty()) << key;
  }
}

TEST(MetadataReader, ElementTypesAndSpecialConversions) {
  const MCDictionary exif = exifOf(
      "<exif:FNumber>28/10</exif:FNumber><exif:ExposureTime>1/250</exif:ExposureTime>"
      "<exif:ApertureValue>2.8</exif:ApertureValue><exif:SubjectDistance>5/0</exif:SubjectDistance>"
      "<exif:FocalLength>35/10</exif:FocalLength><exif:ExposureProgram>junk</exif:ExposureProgram>"
      "<exif:MeteringMode>5</exif:MeteringMode><exif:ExifVersion>0230</exif:ExifVersion>"
      "<exif:FlashpixVersion>0100</exif:FlashpixVersion><exifEX:Gamma>2.2</exifEX:Gamma>"
      "<exif:SpectralSensitivity>  as is </exif:SpectralSensitivity>"
      "<exif:FocalLengthIn35mmFilm>50</exif:FocalLengthIn35mmFilm>"
      "<exif:SubjectArea><rdf:Seq><rdf:li>10</rdf:li><rdf:li>x</rdf:li><rdf:li>30</rdf:li></rdf:Seq></exif:SubjectArea>"
      "<exif:UserComment><rdf:Alt><rdf:li xml:lang='x-default'>Hi</rdf:li></rdf:Alt></exif:UserComment>");
  EXPECT_EQ(get(exif, kCGImagePropertyExifFNumber), MCValue(2.8));
  EXPECT_EQ(get(exif, kCGImagePropertyExifApertureValue), MCValue(2.8));
  EXPECT_EQ(get(exif, kCGImagePropertyExifSubjectDistance), MCValue(5.0)) << "a zero denominator falls to %lf";
  EXPECT_TRUE(get(exif, kCGImagePropertyExifFocalLength).isInteger());
  EXPECT_EQ(get(exif, kCGImagePropertyExifFocalLength), MCValue(35)) << "an integer scan stops at the slash";
  EXPECT_FALSE(exif.count(kCGImagePropertyExifExposureProgram));
  EXPECT_EQ(get(exif, kCGImagePropertyExifVersion), MCValue(MCArray{2, 3, 0}));
  EXPECT_EQ(get(exif, kCGImagePropertyExifGamma), MCValue(2.2));
  EXPECT_EQ(get(exif, kCGImagePropertyExifSpectralSensitivity), MCValue("  as is "));
  EXPECT_EQ(get(exif, kCGImagePropertyExifFocalLenIn35mmFilm), MCValue(50));
  EXPECT_EQ(get(exif, kCGImagePropertyExifSubjectArea), MCValue(MCArray{10, 30}));
  EXPECT_EQ(get(exif, kCGImagePropertyExifUserComment), MCValue("Hi"));
  EXPECT_FALSE(exif.count(kCGImagePropertyExifFlashPixVersion)) << "no rule of the scheme names it";
  // Read directly, the version text becomes its numbers.
  auto metadata = MCImageMetadata::createFromXMPData(bytes(packet("<exif:FlashpixVersion>0100</exif:FlashpixVersion>")));
  ASSERT_NE(metadata, nullptr);
  EXPECT_EQ(MCCGImageMetadataPropertyReader::exifWithName(kCGImagePropertyExifFlashPixVersion, 1).readValueFromMetadata(*metadata),
            MCValue(MCArray{1, 0}));

  // A version text that does not scan is left out.
  EXPECT_FALSE(exifOf("<exif:ExifVersion>v2</exif:ExifVersion>").count(kCGImagePropertyExifVersion));

  // ISO speed ratings keep their numbers only.
  auto iso = [](const std::string& items) {
    return exifOf("<exif:ISOSpeedRatings><rdf:Seq>" + items + "</rdf:Seq></exif:ISOSpeedRatings>");
  };
  EXPECT_EQ(get(iso("<rdf:li>100</rdf:li><rdf:li>x</rdf:li>"), kCGImagePropertyExifISOSpeedRatings), MCValue(MCArray{100}));
  EXPECT_FALSE(iso("<rdf:li>x</rdf:li>").count(kCGImagePropertyExifISOSpeedRatings));
  EXPECT_EQ(get(exifOf("<exif:ISOSpeedRatings>400</exif:ISOSpeedRatings>"), kCGImagePropertyExifISOSpeedRatings),
            MCValue(MCArray{400}))
      << "a single number becomes an array of one";
}

TEST(MetadataReader, FlashStructure) {
  auto flash = [](const std::string& members) {
    const MCDictionary exif = exifOf("<exif:Flash rdf:parseType='Resource'>" + members + "</exif:Flash>");
    return exif.count(kCGImagePropertyExifFlash) ? get(exif, kCGImagePropertyExifFlash) : MCValue();
  };
  EXPECT_EQ(flash("<exif:Return>3</exif:Return><exif:Mode>1</exif:Mode>"), MCValue(14));
  EXPECT_EQ(flash("<exif:Fired>True</exif:Fired><exif:Return>2</exif:Return><exif:Mode>3</exif:Mode>"
                  "<exif:Function>False</exif:Function><exif:RedEyeMode>True</exif:RedEyeMode>"),
            MCValue(1 + 4 + 24 + 64));
  EXPECT_EQ(flash("<exif:Fired>False</exif:Fired><exif:Mode>2</exif:Mode><exif:Function>1</exif:Function>"), MCValue(16 + 32));
  EXPECT_EQ(flash("<exif:Return>1</exif:Return><exif:Mode>7</exif:Mode>"), MCValue(0)) << "values without a row add nothing";
  EXPECT_EQ(flash("<exif:Fired>yes</exif:Fired>"), MCValue(0)) << "members that do not scan are absent";
  EXPECT_EQ(get(exifOf("<exif:Flash>9</exif:Flash>"), kCGImagePropertyExifFlash), MCValue(9)) << "a plain number stays";

  EXPECT_EQ(MCCGImageMetadataPropertyReader::exifFlashValueFromXMPFlashStruct(MCValue(MCDictionary{})), 0);
  EXPECT_EQ(MCCGImageMetadataPropertyReader::exifFlashValueFromXMPFlashStruct(MCValue("Fired")), 0);
  EXPECT_EQ(MCCGImageMetadataPropertyReader::exifFlashValueFromXMPFlashStruct(
                MCValue(MCDictionary{{"Fired", 0.5}, {"RedEyeMode", true}})),
            65);
}

TEST(MetadataReader, DatesArriveInExifForm) {
  const MCDictionary exif = exifOf(
      "<exif:DateTimeOriginal>2020-01-02T03:04:05</exif:DateTimeOriginal>"
      "<exif:DateTimeDigitized>2020:01:02 03:04:05</exif:DateTimeDigitized>");
  EXPECT_EQ(get(exif, kCGImagePropertyExifDateTimeOriginal), MCValue("2020:01:02 03:04:05"));
  EXPECT_EQ(get(exif, kCGImagePropertyExifDateTimeDigitized), MCValue("2020:01:02 03:04:05"));
  EXPECT_FALSE(exifOf("<exif:DateTimeOriginal>soon</exif:DateTimeOriginal>").count(kCGImagePropertyExifDateTimeOriginal));
  // A zone makes the instant exact; the Exif text shows it in the local zone.
  EXPECT_EQ(get(exifOf("<exif:DateTimeOriginal>2021-06-01T12:00:00.250Z</exif:DateTimeOriginal>"),
                kCGImagePropertyExifDateTimeOriginal),
            MCValue(exifString(*dateFromXmpString("2021-06-01T12:00:00Z"))));
  const MCDictionary tiff = sub(Reader::extractMetadataFromXMPData(bytes(packet("<xmp:ModifyDate>2019-05-06T07:08:09</xmp:ModifyDate>"))),
                                kCGImagePropertyTIFFDictionary);
  EXPECT_EQ(get(tiff, kCGImagePropertyTIFFDateTime), MCValue("2019:05:06 07:08:09"));

  // A sidecar with a fraction of 35 and more digits once killed the reading process inside ICU.
  const std::string digits(40, '1');
  EXPECT_EQ(get(exifOf("<exif:DateTimeOriginal>2021-06-01T12:00:00." + digits + "Z</exif:DateTimeOriginal>"),
                kCGImagePropertyExifDateTimeOriginal),
            MCValue(exifString(*dateFromXmpString("2021-06-01T12:00:00Z"))));
  EXPECT_FALSE(exifOf("<exif:DateTimeOriginal>2021-06-01T12:00:00." + digits + "</exif:DateTimeOriginal>")
                   .count(kCGImagePropertyExifDateTimeOriginal));
}

TEST(MetadataReader, GPSCoordinatesAndAltitudes) {
  MCDictionary gps = gpsOf("<exif:GPSLatitude>51,30.5N</exif:GPSLatitude><exif:GPSLongitude>0,30W</exif:GPSLongitude>"
                           "<exif:GPSAltitude>1234/10</exif:GPSAltitude><exif:GPSAltitudeRef>1</exif:GPSAltitudeRef>");
  EXPECT_NEAR(*get(gps, kCGImagePropertyGPSLatitude).doubleValue(), 51.508333333, 1e-9);
  EXPECT_EQ(get(gps, kCGImagePropertyGPSLatitudeRef), MCValue("N"));
  EXPECT_NEAR(*get(gps, kCGImagePropertyGPSAltitude).doubleValue(), 123.4, 1e-12);
  EXPECT_TRUE(get(gps, kCGImagePropertyGPSAltitudeRef).isInteger());
  EXPECT_EQ(get(gps, kCGImagePropertyGPSAltitudeRef), MCValue(1));

  gps = gpsOf("<exif:GPSAltitude>250</exif:GPSAltitude>");
  EXPECT_EQ(gps, (MCDictionary{{kCGImagePropertyGPSAltitude, 250.0}, {kCGImagePropertyGPSAltitudeRef, 0}}));

  // A bad latitude takes its reference with it and leaves the longitude alone.
  gps = gpsOf("<exif:GPSLatitude>abc</exif:GPSLatitude><exif:GPSLongitude>122,25.5W</exif:GPSLongitude>");
  EXPECT_FALSE(gps.count(kCGImagePropertyGPSLatitude));
  EXPECT_FALSE(gps.count(kCGImagePropertyGPSLatitudeRef));
  EXPECT_NEAR(*get(gps, kCGImagePropertyGPSLongitude).doubleValue(), 122.425, 1e-12);

  // normalizeGPSDictionary on its own: numbers with references, stale references dropped.
  MCDictionary given{{kCGImagePropertyGPSLatitude, 12.5},     {kCGImagePropertyGPSLatitudeRef, "S"},
                     {kCGImagePropertyGPSLongitude, "-7.25"}, {kCGImagePropertyGPSAltitudeRef, "1"},
                     {kCGImagePropertyGPSSpeed, 3}};
  Reader::normalizeGPSDictionary(given);
  EXPECT_EQ(given, (MCDictionary{{kCGImagePropertyGPSLatitude, 12.5},
                                 {kCGImagePropertyGPSLatitudeRef, "S"},
                                 {kCGImagePropertyGPSLongitude, 7.25},
                                 {kCGImagePropertyGPSLongitudeRef, "W"},
                                 {kCGImagePropertyGPSSpeed, 3}}));
}

TEST(MetadataReader, MergeWithEachMaskBit) {
  const MCDictionary image{
      {kCGImagePropertyOrientation, 6},
      {kCGImagePropertyExifDictionary, MCDictionary{{kCGImagePropertyExifFNumber, 4.0}, {kCGImagePropertyExifISOSpeed, 100}}},
      {kCGImagePropertyGPSDictionary, MCDictionary{{kCGImagePropertyGPSLatitude, 1.0}}},
      {kCGImagePropertyIPTCDictionary, MCDictionary{{kCGImagePropertyIPTCCity, "Rome"}}},
      {kCGImagePropertyTIFFDictionary, MCDictionary{{kCGImagePropertyTIFFMake, "Image"}}},
  };
  const MCDictionary xmp{
      {kCGImagePropertyOrientation, 1},
      {kCGImagePropertyPixelWidth, 640},
      {kCGImagePropertyExifDictionary, MCDictionary{{kCGImagePropertyExifFNumber, 2.8}, {kCGImagePropertyExifGamma, 2.2}}},
      {kCGImagePropertyGPSDictionary, MCDictionary{{kCGImagePropertyGPSLatitude, 2.0}, {kCGImagePropertyGPSLongitude, 3.0}}},
      {kCGImagePropertyIPTCDictionary, MCDictionary{{kCGImagePropertyIPTCCity, "Oslo"}}},
      {kCGImagePropertyTIFFDictionary, MCDictionary{{kCGImagePropertyTIFFMake, "XMP"}, {kCGImagePropertyTIFFModel, "M"}}},
      {kCGImagePropertyExifAuxDictionary, MCDictionary{{kCGImagePropertyExifAuxLensModel, "Zoomy"}}},
  };

  const MCDictionary none = Reader::mergeImageMetadata(image, xmp, 0);
  EXPECT_EQ(get(none, kCGImagePropertyExifDictionary), get(image, kCGImagePropertyExifDictionary));
  EXPECT_EQ(get(none, kCGImagePropertyGPSDictionary), get(image, kCGImagePropertyGPSDictionary));
  EXPECT_EQ(get(none, kCGImagePropertyIPTCDictionary), get(image, kCGImagePropertyIPTCDictionary));
  EXPECT_EQ(get(none, kCGImagePropertyTIFFDictionary), get(image, kCGImagePropertyTIFFDictionary)) << "TIFF is never merged";
  EXPECT_EQ(get(none, kCGImagePropertyOrientation), MCValue(6)) << "the image's scalars win";
  EXPECT_EQ(get(none, kCGImagePropertyPixelWidth), MCValue(640)) << "keys on one side stay";
  EXPECT_EQ(get(none, kCGImagePropertyExifAuxDictionary), get(xmp, kCGImagePropertyExifAuxDictionary))
      << "a sub-dictionary only the XMP has is taken whole";

  const MCDictionary exifOnly = Reader::mergeImageMetadata(image, xmp, Reader::kMergeExif);
  EXPECT_EQ(get(exifOnly, kCGImagePropertyExifDictionary),
            MCValue(MCDictionary{{kCGImagePropertyExifFNumber, 2.8}, {kCGImagePropertyExifISOSpeed, 100}, {kCGImagePropertyExifGamma, 2.2}}));
  EXPECT_EQ(get(exifOnly, kCGImagePropertyGPSDictionary), get(image, kCGImagePropertyGPSDictionary));
  EXPECT_EQ(get(exifOnly, kCGImagePropertyIPTCDictionary), get(image, kCGImagePropertyIPTCDictionary));

  const MCDictionary gpsOnly = Reader::mergeImageMetadata(image, xmp, Reader::kMergeGPS);
  EXPECT_EQ(get(gpsOnly, kCGImagePropertyGPSDictionary), get(xmp, kCGImagePropertyGPSDictionary));
  EXPECT_EQ(get(gpsOnly, kCGImagePropertyExifDictionary), get(image, kCGImagePropertyExifDictionary));

  const MCDictionary iptcOnly = Reader::mergeImageMetadata(image, xmp, Reader::kMergeIPTC);
  EXPECT_EQ(get(iptcOnly, kCGImagePropertyIPTCDictionary), get(xmp, kCGImagePropertyIPTCDictionary));
  EXPECT_EQ(get(iptcOnly, kCGImagePropertyGPSDictionary), get(image, kCGImagePropertyGPSDictionary));

  const MCDictionary all = Reader::mergeImageMetadata(image, xmp, 7 | 8 | 16);
  EXPECT_EQ(get(all, kCGImagePropertyTIFFDictionary), get(image, kCGImagePropertyTIFFDictionary));
  EXPECT_EQ(get(all, kCGImagePropertyIPTCDictionary), get(xmp, kCGImagePropertyIPTCDictionary));

  // A bit takes effect only where both sides hold dictionaries.
  const MCDictionary odd{{kCGImagePropertyExifDictionary, "not a dictionary"}};
  EXPECT_EQ(get(Reader::mergeImageMetadata(odd, xmp, Reader::kMergeExif), kCGImagePropertyExifDictionary),
            MCValue("not a dictionary"));
}

TEST(MetadataReader, SidecarsWrittenByExiftool) {
  const fs::path dir = scratch("exiftool");
  const fs::path sidecar = dir / "photo.xmp";
  const std::string command =
      "exiftool -q -q -o '" + sidecar.string() +
      "' -XMP-exif:FNumber=2.8 '-XMP-exif:DateTimeOriginal=2020:01:02 03:04:05'"
      " '-XMP-exif:GPSLatitude=51.5 S' -XMP-exif:GPSAltitude=123.4"
      " -XMP-exif:GPSAltitudeRef#=1 -XMP-exif:ISO=100 -XMP-exif:ISO=200 -XMP-exif:FlashFired=True"
      " -XMP-exif:FlashReturn#=3 -XMP-exif:FlashMode#=1 -XMP-exif:ExifVersion=0231"
      " -XMP-dc:Subject=sea -XMP-dc:Subject=sky -XMP-dc:Creator=Ann -XMP-photoshop:City=Oslo -XMP-aux:Lens=Zoomy"
      " -XMP-aux:FlashCompensation=-1 -XMP-tiff:Make=Acme -XMP-xmp:Rating=4 -XMP-exifEX:LensModel=L1"
      " '-XMP-photoshop:DateCreated=2021:06:01 12:00:00' 2>/dev/null";
  if (std::system(command.c_str()) != 0 || !fs::exists(sidecar)) GTEST_SKIP() << "exiftool is not available";

  auto read = Reader::extractMetadataFromXMPSidecarForImageAtURL(dir / "photo.jpg");
  ASSERT_TRUE(read);
  const MCDictionary exif = sub(*read, kCGImagePropertyExifDictionary);
  EXPECT_EQ(get(exif, kCGImagePropertyExifFNumber), MCValue(2.8));
  EXPECT_EQ(get(exif, kCGImagePropertyExifDateTimeOriginal), MCValue("2020:01:02 03:04:05"));
  EXPECT_EQ(get(exif, kCGImagePropertyExifISOSpeedRatings), MCValue(MCArray{100, 200}));
  EXPECT_EQ(get(exif, kCGImagePropertyExifFlash), MCValue(15));
  EXPECT_EQ(get(exif, kCGImagePropertyExifVersion), MCValue(MCArray{2, 3, 1}));
  EXPECT_EQ(get(exif, kCGImagePropertyExifLensModel), MCValue("L1"));
  const MCDictionary gps = sub(*read, kCGImagePropertyGPSDictionary);
  EXPECT_EQ(get(gps, kCGImagePropertyGPSLatitude), MCValue(51.5));
  EXPECT_EQ(get(gps, kCGImagePropertyGPSLatitudeRef), MCValue("S"));
  EXPECT_NEAR(*get(gps, kCGImagePropertyGPSAltitude).doubleValue(), 123.4, 1e-12);
  EXPECT_EQ(get(gps, kCGImagePropertyGPSAltitudeRef), MCValue(1));
  const MCDictionary iptc = sub(*read, kCGImagePropertyIPTCDictionary);
  EXPECT_EQ(get(iptc, kCGImagePropertyIPTCKeywords), MCValue(MCArray{"sea", "sky"}));
  EXPECT_EQ(get(iptc, kCGImagePropertyIPTCCity), MCValue("Oslo"));
  EXPECT_EQ(get(iptc, kCGImagePropertyIPTCStarRating), MCValue("4"));
  EXPECT_EQ(get(iptc, kCGImagePropertyIPTCDateCreated), MCValue("2021-06-01T12:00:00"));
  const MCDictionary tiff = sub(*read, kCGImagePropertyTIFFDictionary);
  EXPECT_EQ(get(tiff, kCGImagePropertyTIFFMake), MCValue("Acme"));
  EXPECT_EQ(get(tiff, kCGImagePropertyTIFFArtist), MCValue(MCArray{"Ann"})) << "dc:creator serves both, as the array it is";
  const MCDictionary aux = sub(*read, kCGImagePropertyExifAuxDictionary);
  EXPECT_EQ(get(aux, kCGImagePropertyExifAuxLensModel), MCValue("Zoomy"));
  EXPECT_EQ(get(aux, kCGImagePropertyExifAuxFlashCompensation), MCValue(-1.0));
}

TEST(MetadataReader, SidecarFailures) {
  const fs::path dir = scratch("failures");
  EXPECT_EQ(Reader::extractMetadataFromXMPSidecarForImageAtURL(dir / "missing.jpg"), std::nullopt);
  std::ofstream(dir / "broken.xmp") << "<x:xmpmeta><rdf:RDF>";
  EXPECT_EQ(Reader::extractMetadataFromXMPSidecarForImageAtURL(dir / "broken.jpg"), std::nullopt);
  // Well-formed but not XMP: an empty dictionary, not none.
  std::ofstream(dir / "plain.xmp") << "<?xml version='1.0'?><notes>hello</notes>";
  EXPECT_EQ(Reader::extractMetadataFromXMPSidecarForImageAtURL(dir / "plain.jpg"), MCDictionary{});
  // The extension is replaced, whatever it was; a name without one gains it.
  std::ofstream(dir / "shot.xmp") << packet("<tiff:Model>M9</tiff:Model>");
  for (const char* name : {"shot.CR2", "shot.jpeg", "shot"}) {
    auto read = Reader::extractMetadataFromXMPSidecarForImageAtURL(dir / name);
    ASSERT_TRUE(read) << name;
    EXPECT_EQ(get(sub(*read, kCGImagePropertyTIFFDictionary), kCGImagePropertyTIFFModel), MCValue("M9")) << name;
  }
}

// Integer rules scan "%lld" and nothing else: "True" is no metering mode. The flash structure alone
// reads its members as booleans.
TEST(MetadataReader, IntegerRulesTakeNoBooleans) {
  const MCDictionary exif = exifOf("<exif:MeteringMode>True</exif:MeteringMode><exif:LightSource>False</exif:LightSource>"
                                   "<exif:ExposureProgram>2</exif:ExposureProgram>");
  EXPECT_FALSE(exif.count(kCGImagePropertyExifMeteringMode));
  EXPECT_FALSE(exif.count(kCGImagePropertyExifLightSource));
  EXPECT_EQ(get(exif, kCGImagePropertyExifExposureProgram), MCValue(2));
}

// A reference given as a number — the shape MCExif's own dictionaries have — is read as that
// number: AltitudeRef 1 keeps the altitude below sea level.
TEST(MetadataReader, NumericGPSReferencesKeepTheirSign) {
  MCDictionary below{{kCGImagePropertyGPSAltitude, 12.5}, {kCGImagePropertyGPSAltitudeRef, int64_t(1)}};
  MCCGImageMetadataReader::normalizeGPSDictionary(below);
  EXPECT_EQ(get(below, kCGImagePropertyGPSAltitude), MCValue(12.5));
  EXPECT_EQ(get(below, kCGImagePropertyGPSAltitudeRef), MCValue(1));
  MCDictionary above{{kCGImagePropertyGPSAltitude, 12.5}, {kCGImagePropertyGPSAltitudeRef, int64_t(0)}};
  MCCGImageMetadataReader::normalizeGPSDictionary(above);
  EXPECT_EQ(get(above, kCGImagePropertyGPSAltitudeRef), MCValue(0));
  MCDictionary text{{kCGImagePropertyGPSAltitude, 3.0}, {kCGImagePropertyGPSAltitudeRef, "1"}};
  MCCGImageMetadataReader::normalizeGPSDictionary(text);
  EXPECT_EQ(get(text, kCGImagePropertyGPSAltitudeRef), MCValue(1));
  // A normalised dictionary normalises to itself: nothing flips a sign on a second pass.
  MCDictionary twice = below;
  MCCGImageMetadataReader::normalizeGPSDictionary(twice);
  EXPECT_EQ(twice, below);
}
