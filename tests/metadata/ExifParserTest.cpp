// The libexif road into the library: MCExifReader and MCExifParser, against blocks made by hand
// and against JPEG files whose Exif exiftool wrote.

#include "ExifTestSupport.h"

#include <vesperon/metadata/MCCGImageMetadataWriter.h>
#include <vesperon/metadata/MCExifParser.h>
#include <vesperon/metadata/MCExifReader.h>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <functional>
#include <set>

using namespace exif_test;

namespace {

// A hand-made Exif block: "Exif\0\0", a TIFF header and chained IFDs of inline or offset values.
class BlockBuilder {
 public:
  explicit BlockBuilder(bool bigEndian) : big_(bigEndian) {}
  struct Entry {
    uint16_t tag, type;
    uint32_t count;
    MCData value;  // already in the block's order
  };
  MCData u16(uint16_t v) const { return big_ ? MCData{uint8_t(v >> 8), uint8_t(v)} : MCData{uint8_t(v), uint8_t(v >> 8)}; }
  MCData u32(uint32_t v) const {
    MCData a = u16(uint16_t(big_ ? v >> 16 : v)), b = u16(uint16_t(big_ ? v : v >> 16));
    a.insert(a.end(), b.begin(), b.end());
    return a;
  }
  /// IFDs in order; each links to the next. `loopBack` makes the last link to the first.
  MCData build(const std::vector<std::vector<Entry>>& ifds, bool loopBack = false) const {
    MCData tiff = big_ ? MCData{'M', 'M'} : MCData{'I', 'I'};
    append(tiff, u16(42));
    append(tiff, u32(8));
    for (std::size_t i = 0; i < ifds.size(); ++i) {
      const auto& entries = ifds[i];
      std::size_t start = tiff.size();
      std::size_t dataAt = start + 2 + 12 * entries.size() + 4;
      MCData extra;
      append(tiff, u16(uint16_t(entries.size())));
      for (const Entry& e : entries) {
        append(tiff, u16(e.tag));
        append(tiff, u16(e.type));
        append(tiff, u32(e.count));
        if (e.value.size() <= 4) {
          MCData v = e.value;
          v.resize(4, 0);
          append(tiff, v);
        } else {
          append(tiff, u32(uint32_t(dataAt + extra.size())));
          append(extra, e.value);
        }
      }
      uint32_t next = i + 1 < ifds.size() ? uint32_t(dataAt + extra.size()) : (loopBack ? 8 : 0);
      append(tiff, u32(next));
      append(tiff, extra);
    }
    MCData block{'E', 'x', 'i', 'f', 0, 0};
    append(block, tiff);
    return block;
  }

 private:
  static void append(MCData& a, const MCData& b) { a.insert(a.end(), b.begin(), b.end()); }
  bool big_;
};

MCData ascii(const std::string& s) {
  MCData d(s.begin(), s.end());
  d.push_back(0);
  return d;
}

std::shared_ptr<MCExif> parse(const MCData& block) {
  auto reader = MCExifReader::create(block);
  return reader ? reader->parseExif() : nullptr;
}

template <typename T>
MCValue asValue(const std::optional<T>& v) {
  return v ? MCValue(*v) : MCValue();
}

// Tags in exiftool's file that the property dictionary does not present, so that no writer sees
// them: the image structure and the time zone offset, which the record keeps, and the
// YCbCrPositioning that exiftool adds of its own accord, which it does not.
const std::set<std::string> kNotInTheDictionary = {"SubfileType", "ImageWidth",      "ImageHeight",   "BitsPerSample",
                                                   "Compression", "SamplesPerPixel", "TimeZoneOffset", "YCbCrPositioning"};

// exiftool's reading of the Exif of a file: tag name to value, numbers as numbers.
nlohmann::json exiftoolTags(const fs::path& file) {
  auto [ok, text] = run("exiftool -n -j -EXIF:all '" + file.string() + "'");
  nlohmann::json read = nlohmann::json::parse(text, nullptr, false);
  if (!ok || !read.is_array() || read.size() != 1) return nlohmann::json::object();
  read[0].erase("SourceFile");
  return read[0];
}

std::optional<double> number(const nlohmann::json& value) {
  if (value.is_number()) return value.get<double>();
  if (!value.is_string()) return std::nullopt;
  const std::string text = value.get<std::string>();
  char* end = nullptr;
  double parsed = std::strtod(text.c_str(), &end);
  return !text.empty() && *end == '\0' ? std::optional<double>(parsed) : std::nullopt;
}

}  // namespace

TEST(MCExifParser, CheckedEntryRoutesAndRefuses) {
  const uint8_t latitude[24] = {0, 0, 0, 51, 0, 0, 0, 1, 0, 0, 0, 30, 0, 0, 0, 1, 0, 0, 0, 0, 0, 0, 0, 1};
  const uint8_t six[2] = {0, 6};
  MCExifParser parser;
  parser.parse(0x60002, 5, 0x4D4D, 3, latitude);
  EXPECT_FALSE(parser.exif()->gpsLatitude()) << "0x6xxxx is no IFD";
  parser.parse(0x150002, 5, 0x4D4D, 3, latitude);
  EXPECT_FALSE(parser.exif()->gpsLatitude()) << "bits above 19";
  parser.parse(0x50002, 13, 0x4D4D, 3, latitude);
  parser.parse(0x50002, 5, 0, 3, latitude);
  parser.parse(0x50002, 5, 0x4D4D, 0, latitude);
  parser.parse(0x50002, 5, 0x4D4D, 3, nullptr);
  EXPECT_FALSE(parser.exif()->gpsLatitude());
  parser.parse(0x50002, 5, 0x4D4D, 3, latitude);
  EXPECT_EQ(asValue(parser.exif()->gpsLatitude()), MCValue(51.5));
  parser.parse(0x0112, 3, 0x4D4D, 1, six);
  EXPECT_EQ(asValue(parser.exif()->tiffOrientation()), MCValue(6));
  parser.parse(0x0002, 5, 0x4D4D, 3, latitude);  // tag 2 of IFD 0 is nothing
  EXPECT_EQ(parser.exif()->exifDictionary().size(), 0u);

  MCExifParser direct;
  direct.parse(uint8_t(0), uint16_t(0x0112), uint16_t(3), uint16_t(0x4D4D), uint32_t(0), six);
  EXPECT_FALSE(direct.exif()->tiffOrientation()) << "count 0";
  direct.parse(uint8_t(4), uint16_t(0x0112), uint16_t(3), uint16_t(0x4D4D), uint32_t(1), six);
  EXPECT_FALSE(direct.exif()->tiffOrientation()) << "interoperability IFD";
  direct.parse(uint8_t(1), uint16_t(0x0112), uint16_t(3), uint16_t(0x4D4D), uint32_t(1), six);
  EXPECT_EQ(asValue(direct.exif()->tiffOrientation()), MCValue(6)) << "IFD 1 maps like IFD 0 when called";
}

TEST(MCExifParser, LaterTagWinsEvenWhenItReadsAsNone) {
  LogCapture log;
  ASSERT_TRUE(log.available()) << "no log file";
  const uint8_t one[2] = {0, 1};
  MCExifParser parser;
  parser.parse(0x00FE, 3, 0x4D4D, 1, one);
  EXPECT_EQ(asValue(parser.exif()->tiffSubfileType()), MCValue(1));
  parser.parse(0x00FF, 2, 0x4D4D, 2, "x");
  EXPECT_FALSE(parser.exif()->tiffSubfileType());
  parser.parse(0x0112, 2, 0x4D4D, 2, "6");
  EXPECT_FALSE(parser.exif()->tiffOrientation());
  parser.parse(0x9000, 7, 0x4D4D, 4, "ab12");
  EXPECT_FALSE(parser.exif()->exifVersion());
  parser.parse(0x9286, 7, 0x4D4D, 10, "\0\0\0\0\0\0\0\0hi");
  EXPECT_EQ(parser.exif()->exifUserComment(), "hi");
  parser.parse(0x9286, 7, 0x4D4D, 10, "JIS\0\0\0\0\0hi");
  EXPECT_FALSE(parser.exif()->exifUserComment());
  EXPECT_TRUE(log.contains("Mapping tag 0x112 (type: 2) to number is not allowed."));
  EXPECT_TRUE(log.contains("Failed to parse Exif Version from string: ab12"));
}

TEST(MCExifReader, HandMadeBlocksInBothOrders) {
  for (bool big : {true, false}) {
    SCOPED_TRACE(big ? "big-endian" : "little-endian");
    BlockBuilder b(big);
    MCData orientation = b.u16(8);
    MCData xres = b.u32(300);
    MCData one = b.u32(1);
    xres.insert(xres.end(), one.begin(), one.end());
    // IFD 0, then IFD 1 with a thumbnail width that must not be read.
    MCData block = b.build({{{0x010F, 2, 6, ascii("Maker")}, {0x0112, 3, 1, orientation}, {0x011A, 5, 1, xres}},
                            {{0x0100, 4, 1, b.u32(160)}}});
    auto exif = parse(block);
    ASSERT_TRUE(exif);
    EXPECT_EQ(exif->tiffMake(), "Maker");
    EXPECT_EQ(asValue(exif->tiffOrientation()), MCValue(8));
    EXPECT_EQ(asValue(exif->tiffXResolution()), MCValue(300.0));
    EXPECT_FALSE(exif->tiffImageWidth()) << "IFD 1 is not walked";
    // A fresh record on each call.
    auto again = MCExifReader::create(block);
    EXPECT_NE(again->parseExif(), again->parseExif());
  }
}

TEST(MCExifReader, OnlyAThumbnailIFDGivesAnEmptyRecord) {
  BlockBuilder b(true);
  auto exif = parse(b.build({{}, {{0x0100, 4, 1, b.u32(160)}, {0x0101, 4, 1, b.u32(120)}}}));
  ASSERT_TRUE(exif);
  EXPECT_FALSE(exif->tiffImageWidth());
  EXPECT_FALSE(exif->tiffMake());
}

TEST(MCExifReader, BadBlocksNeverCrashOrHang) {
  BlockBuilder b(false);
  MCData good = b.build({{{0x010F, 2, 6, ascii("Maker")}, {0x0112, 3, 1, b.u16(1)}}});
  // Every truncation of a good block.
  for (std::size_t n = 0; n <= good.size(); ++n) {
    MCData cut(good.begin(), good.begin() + long(n));
    auto reader = MCExifReader::create(cut);
    if (reader) reader->parseExif();
  }
  // A chain of IFDs that loops back on itself.
  auto looped = parse(b.build({{{0x0112, 3, 1, b.u16(3)}}, {{0x0100, 4, 1, b.u32(1)}}}, true));
  ASSERT_TRUE(looped);
  EXPECT_EQ(asValue(looped->tiffOrientation()), MCValue(3));
  // A count far beyond the data: libexif drops the entry, the walk goes on.
  auto oversized = parse(b.build({{{0x010F, 2, 0x7FFFFFFF, ascii("Maker")}, {0x0112, 3, 1, b.u16(5)}}}));
  ASSERT_TRUE(oversized);
  EXPECT_FALSE(oversized->tiffMake());
  EXPECT_EQ(asValue(oversized->tiffOrientation()), MCValue(5));
  // Wrong types and a zero denominator leave their properties absent.
  MCData zero = b.u32(7);
  MCData z2 = b.u32(0);
  zero.insert(zero.end(), z2.begin(), z2.end());
  auto wrong = parse(b.build({{{0x0112, 2, 2, ascii("6")}, {0x011A, 5, 1, zero}, {0x010F, 3, 1, b.u16(2)}}}));
  ASSERT_TRUE(wrong);
  EXPECT_FALSE(wrong->tiffOrientation());
  EXPECT_FALSE(wrong->tiffXResolution());
  EXPECT_FALSE(wrong->tiffMake());
  EXPECT_FALSE(MCExifReader::create(nullptr, 10));
}

// exiftool writes every tag of the two tables that it knows into a small JPEG, in each byte
// order; MCExifReader must read back the same values, and the metadata writer must write them so
// that exiftool reads what it wrote.
TEST(MCExifReader, ReadsWhatExiftoolWrote) {
  if (!run("exiftool -ver").first) GTEST_SKIP() << "exiftool is not installed";
  fs::path base = plainJPEG("peer-base");
  ASSERT_TRUE(fs::exists(base) && fs::file_size(base) > 0) << "cjpeg failed";

  struct Row {
    const char* argument;
    std::function<MCValue(const MCExif&)> get;
    MCValue expected;
  };
#define P(name) [](const MCExif& e) { return asValue(e.name()); }
  const double apex28 = 2 * std::log2(2.8), apex14 = 2 * std::log2(1.4), shutter = -std::log2(0.004);
  const std::vector<Row> rows = {
      {"-IFD0:SubfileType=1", P(tiffSubfileType), 1},
      {"-IFD0:ImageWidth=640", P(tiffImageWidth), 640},
      {"-IFD0:ImageHeight=480", P(tiffImageHeight), 480},
      {"-IFD0:BitsPerSample=8", P(tiffBitsPerSample), 8},
      {"-IFD0:Compression=6", P(tiffCompression), 6},
      {"-ImageDescription=A desc", P(tiffImageDescription), "A desc"},
      {"-Make=Canon", P(tiffMake), "Canon"},
      {"-Model=EOS R", P(tiffModel), "EOS R"},
      {"-Orientation=6", P(tiffOrientation), 6},
      {"-IFD0:SamplesPerPixel=3", P(tiffSamplesPerPixel), 3},
      {"-XResolution=300", P(tiffXResolution), 300.0},
      {"-YResolution=240", P(tiffYResolution), 240.0},
      {"-ResolutionUnit=2", P(tiffResolutionUnit), 2},
      {"-Software=Vesp 1.0", P(tiffSoftware), "Vesp 1.0"},
      {"-ModifyDate=2024:05:01 10:00:00", P(tiffDateTime), "2024:05:01 10:00:00"},
      {"-Artist=Ann Example", P(tiffArtist), "Ann Example"},
      {"-WhitePoint=0.3125 0.328125", P(tiffWhitePoint), MCArray{0.3125, 0.328125}},
      {"-PrimaryChromaticities=0.625 0.375 0.25 0.5 0.125 0.0625", P(tiffPrimaryChromaticities),
       MCArray{0.625, 0.375, 0.25, 0.5, 0.125, 0.0625}},
      {"-Copyright=(c) Ann", P(tiffCopyright), "(c) Ann"},
      {"-ExposureTime=0.004", P(exifExposureTime), 0.004},
      {"-FNumber=2.8", P(exifFNumber), 2.8},
      {"-ExposureProgram=3", P(exifExposureProgram), 3},
      {"-SpectralSensitivity=Spec", P(exifSpectralSensitivity), "Spec"},
      {"-ISO=400", P(exifISOSpeedRatings), MCArray{400}},
      {"-TimeZoneOffset=1 2", P(exifTimeZoneOffset), MCArray{1, 2}},
      {"-SensitivityType=2", P(exifSensitivityType), 2},
      {"-StandardOutputSensitivity=401", P(exifStandardOutputSensitivity), 401},
      {"-RecommendedExposureIndex=402", P(exifRecommendedExposureIndex), 402},
      {"-ISOSpeed=403", P(exifISOSpeed), 403},
      {"-ISOSpeedLatitudeyyy=3", P(exifISOSpeedLatitudeYYY), 3},
      {"-ISOSpeedLatitudezzz=4", P(exifISOSpeedLatitudeZZZ), 4},
      {"-ExifVersion=0231", P(exifVersion), MCArray{2, 3, 1}},
      {"-DateTimeOriginal=2024:05:01 10:00:01", P(dateTimeOriginal), "2024:05:01 10:00:01"},
      {"-CreateDate=2024:05:01 10:00:02", P(dateTimeDigitized), "2024:05:01 10:00:02"},
      {"-OffsetTime=+02:00", P(exifOffsetTime), "+02:00"},
      {"-OffsetTimeOriginal=+03:00", P(exifOffsetTimeOriginal), "+03:00"},
      {"-OffsetTimeDigitized=-04:00", P(exifOffsetTimeDigitized), "-04:00"},
      {"-ComponentsConfiguration=1 2 3 0", P(exifComponentsConfiguration), MCArray{1, 2, 3, 0}},
      {"-CompressedBitsPerPixel=4", P(exifCompressedBitsPerPixel), 4.0},
      {"-ShutterSpeedValue=0.004", P(exifShutterSpeedValue), shutter},
      {"-ApertureValue=2.8", P(exifApertureValue), apex28},
      {"-BrightnessValue=-1.5", P(exifBrightnessValue), -1.5},
      {"-ExposureCompensation=-0.7", P(exifExposureBiasValue), -0.7},
      {"-MaxApertureValue=1.4", P(exifMaxApertureValue), apex14},
      {"-SubjectDistance=3.5", P(exifSubjectDistance), 3.5},
      {"-MeteringMode=5", P(exifMeteringMode), 5},
      {"-LightSource=1", P(exifLightSource), 1},
      {"-EXIF:Flash=16", P(exifFlash), 16},
      {"-FocalLength=50", P(exifFocalLength), 50.0},
      {"-SubjectArea=10 20 30 40", P(exifSubjectArea), MCArray{10, 20, 30, 40}},
      {"-UserComment=Hello there", P(exifUserComment), "Hello there"},
      {"-SubSecTime=12", P(exifSubsecTime), "12"},
      {"-SubSecTimeOriginal=34", P(exifSubsecTimeOriginal), "34"},
      {"-SubSecTimeDigitized=56", P(exifSubsecTimeDigitized), "56"},
      {"-FlashpixVersion=0100", P(exifFlashPixVersion), MCArray{1, 0}},
      {"-ColorSpace=1", P(exifColorSpace), 1},
      {"-ExifImageWidth=6000", P(exifPixelXDimension), 6000},
      {"-ExifImageHeight=4000", P(exifPixelYDimension), 4000},
      {"-RelatedSoundFile=SND00001.WAV", P(exifRelatedSoundFile), "SND00001.WAV"},
      {"-FlashEnergy=1.5", P(exifFlashEnergy), 1.5},
      {"-FocalPlaneXResolution=1000", P(exifFocalPlaneXResolution), 1000.0},
      {"-FocalPlaneYResolution=1001", P(exifFocalPlaneYResolution), 1001.0},
      {"-FocalPlaneResolutionUnit=3", P(exifFocalPlaneResolutionUnit), 3},
      {"-SubjectLocation=100 200", P(exifSubjectLocation), MCArray{100, 200}},
      {"-ExposureIndex=1.25", P(exifExposureIndex), 1.25},
      {"-SensingMethod=2", P(exifSensingMethod), 2},
      {"-FileSource=3", P(exifFileSource), 3},
      {"-SceneType=1", P(exifSceneType), 1},
      {"-CustomRendered=1", P(exifCustomRendered), 1},
      {"-ExposureMode=1", P(exifExposureMode), 1},
      {"-WhiteBalance=1", P(exifWhiteBalance), 1},
      {"-DigitalZoomRatio=1.5", P(exifDigitalZoomRatio), 1.5},
      {"-FocalLengthIn35mmFormat=75", P(exifFocalLenIn35mmFilm), 75},
      {"-SceneCaptureType=2", P(exifSceneCaptureType), 2},
      {"-GainControl=1", P(exifGainControl), 1},
      {"-Contrast=2", P(exifContrast), 2},
      {"-Saturation=1", P(exifSaturation), 1},
      {"-Sharpness=2", P(exifSharpness), 2},
      {"-SubjectDistanceRange=3", P(exifSubjectDistanceRange), 3},
      {"-ImageUniqueID=ABC123", P(exifImageUniqueId), "ABC123"},
      {"-OwnerName=Ann", P(exifCameraOwnerName), "Ann"},
      {"-SerialNumber=SN1", P(exifBodySerialNumber), "SN1"},
      {"-LensInfo=24 70 2.8 4", P(exifLensSpecification), MCArray{24.0, 70.0, 2.8, 4.0}},
      {"-LensMake=LM", P(exifLensMake), "LM"},
      {"-LensModel=LM 50", P(exifLensModel), "LM 50"},
      {"-LensSerialNumber=LS1", P(exifLensSerialNumber), "LS1"},
      {"-Gamma=2.2", P(exifGamma), 2.2},
      {"-GPSVersionID=2 3 0 0", P(gpsVersion), MCArray{2, 3, 0, 0}},
      {"-GPSLatitudeRef=S", P(gpsLatitudeRef), "S"},
      {"-GPSLatitude=33.5", P(gpsLatitude), 33.5},
      {"-GPSLongitudeRef=W", P(gpsLongitudeRef), "W"},
      {"-GPSLongitude=70.25", P(gpsLongitude), 70.25},
      {"-GPSAltitudeRef=1", P(gpsAltitudeRef), 1},
      {"-GPSAltitude=12.5", P(gpsAltitude), 12.5},
      {"-GPSTimeStamp=10:20:30", P(gpsTimeStamp), "10:20:30"},
      {"-GPSSatellites=5", P(gpsSatellites), "5"},
      {"-GPSStatus=A", P(gpsStatus), "A"},
      {"-GPSMeasureMode=3", P(gpsMeasureMode), "3"},
      {"-GPSDOP=1.5", P(gpsDOP), 1.5},
      {"-GPSSpeedRef=K", P(gpsSpeedRef), "K"},
      {"-GPSSpeed=10.5", P(gpsSpeed), 10.5},
      {"-GPSTrackRef=T", P(gpsTrackRef), "T"},
      {"-GPSTrack=90.5", P(gpsTrack), 90.5},
      {"-GPSImgDirectionRef=M", P(gpsImgDirectionRef), "M"},
      {"-GPSImgDirection=180.25", P(gpsImgDirection), 180.25},
      {"-GPSMapDatum=WGS-84", P(gpsMapDatum), "WGS-84"},
      {"-GPSDestLatitudeRef=N", P(gpsDestLatitudeRef), "N"},
      {"-GPSDestLatitude=10.5", P(gpsDestLatitude), 10.5},
      {"-GPSDestLongitudeRef=E", P(gpsDestLongitudeRef), "E"},
      {"-GPSDestLongitude=20.75", P(gpsDestLongitude), 20.75},
      {"-GPSDestBearingRef=T", P(gpsDestBearingRef), "T"},
      {"-GPSDestBearing=45.5", P(gpsDestBearing), 45.5},
      {"-GPSDestDistanceRef=K", P(gpsDestDistanceRef), "K"},
      {"-GPSDestDistance=2.5", P(gpsDestDistance), 2.5},
      {"-GPSProcessingMethod=GPS", P(gpsProcessingMethod), "GPS"},
      {"-GPSAreaInformation=Area 51", P(gpsAreaInformation), "Area 51"},
      {"-GPSDateStamp=2024:05:01", P(gpsDateStamp), "2024:05:01"},
      {"-GPSDifferential=1", P(gpsDifferental), 1},
      {"-GPSHPositioningError=3.5", P(gpsHPositioningError), 3.5},
  };
#undef P
  // libexif's load (which follows the standard) drops these tags from a JPEG's IFD 0 although
  // exiftool writes them: XPosition, YPosition, HostComputer, TileWidth, TileLength and the DNG
  // profile tags. They are read when a codec passes them to the parser itself.

  for (const char* order : {"MM", "II"}) {
    SCOPED_TRACE(order);
    fs::path file = scratchDirectory() / (std::string("peer-") + order + ".jpg");
    fs::copy_file(base, file, fs::copy_options::overwrite_existing);
    std::string command = "exiftool -n -q -overwrite_original -ExifByteOrder=" + std::string(order);
    for (const Row& row : rows) command += std::string(" '") + row.argument + "'";
    ASSERT_TRUE(run(command + " '" + file.string() + "'").first) << command;

    MCData bytes = readBytes(file);
    auto reader = MCExifReader::create(bytes);
    ASSERT_TRUE(reader);
    auto exif = reader->parseExif();
    ASSERT_TRUE(exif);
    for (const Row& row : rows) {
      MCValue got = row.get(*exif);
      if (row.expected.isDouble()) {
        ASSERT_TRUE(got.isNumber()) << row.argument;
        EXPECT_NEAR(*got.doubleValue(), *row.expected.doubleValue(), 1e-4) << row.argument;
      } else if (const MCArray* expected = row.expected.array(); expected && got.array() && got.array()->size() == expected->size()) {
        for (std::size_t i = 0; i < expected->size(); ++i)
          EXPECT_NEAR(*(*got.array())[i].doubleValue(), *(*expected)[i].doubleValue(), 1e-4) << row.argument;
      } else {
        EXPECT_EQ(got, row.expected) << row.argument;
      }
    }

    // And out again: the record's dictionary, written by the metadata writer into a fresh JPEG,
    // reads in exiftool as the values exiftool wrote, tag by tag. Sub-dictionaries the Exif block
    // does not take, and keys the writer's maps lack, stay out of it.
    MCDictionary properties = exif->dictionary();
    properties[kCGImagePropertyExifAuxDictionary] = MCDictionary{{kCGImagePropertyExifAuxSerialNumber, "AUX-SN"}};
    properties[kCGImagePropertyIPTCDictionary] = MCDictionary{{kCGImagePropertyIPTCCity, "Oslo"}};
    (*properties[kCGImagePropertyTIFFDictionary].dictionary())["NotATIFFKey"] = "stray";
    auto block = MCCGImageMetadataWriter().exifDataFromCGImageProperties(properties);
    ASSERT_TRUE(block);
    const nlohmann::json wrote = exiftoolTags(file), back = exiftoolTags(jpegWithExif(std::string("back-") + order, *block));
    ASSERT_FALSE(wrote.empty());
    for (const auto& [name, value] : wrote.items()) {
      if (kNotInTheDictionary.count(name)) continue;
      ASSERT_TRUE(back.contains(name)) << name;
      const nlohmann::json got = back[name];
      // exiftool prints some numbers as text; the writer's rationals have at most six decimals.
      if (auto expected = number(value), actual = number(got); expected && actual) {
        EXPECT_NEAR(*actual, *expected, 1e-5 * std::max(1.0, std::fabs(*expected))) << name;
      } else {
        EXPECT_EQ(got, value) << name;
      }
    }
    for (const auto& [name, value] : back.items()) EXPECT_TRUE(wrote.contains(name)) << name << " came from nowhere";
  }
}
