// MCExif as a nested image property dictionary.

#include <vesperon/metadata/MCExif.h>

#include <gtest/gtest.h>

TEST(MCExif, EmptyRecordAndGPSOnly) {
  MCExif exif;
  EXPECT_TRUE(exif.dictionary().empty());
  exif.setGpsLatitude(MCValue(51.5));
  exif.setGpsLatitudeRef(std::string("N"));
  exif.setGpsDifferental(MCValue(1));
  MCDictionary d = exif.dictionary();
  ASSERT_EQ(d.size(), 1u);
  const MCDictionary* gps = MCDictionaryGetDictionary(d, kCGImagePropertyGPSDictionary);
  ASSERT_TRUE(gps);
  EXPECT_EQ(*MCDictionaryGet(*gps, "Latitude"), MCValue(51.5));
  EXPECT_EQ(*MCDictionaryGet(*gps, "LatitudeRef"), MCValue("N"));
  EXPECT_EQ(*MCDictionaryGet(*gps, "Differential"), MCValue(1)) << "the key's value keeps its \"i\"";
  exif.setGpsLatitude(std::nullopt);
  EXPECT_FALSE(MCDictionaryGet(exif.gpsDictionary(), "Latitude"));
}

TEST(MCExif, DotsPerInch) {
  auto dpi = [](std::optional<MCValue> x, std::optional<MCValue> y, std::optional<MCValue> unit) {
    MCExif exif;
    exif.setTiffXResolution(x);
    exif.setTiffYResolution(y);
    exif.setTiffResolutionUnit(unit);
    MCDictionary d = exif.dictionary();
    const MCValue* w = MCDictionaryGet(d, kCGImagePropertyDPIWidth);
    const MCValue* h = MCDictionaryGet(d, kCGImagePropertyDPIHeight);
    EXPECT_EQ(!w, !h);
    if (!w || !h) return std::pair<int64_t, int64_t>{-1, -1};
    EXPECT_TRUE(w->isInteger());
    return std::pair<int64_t, int64_t>{*w->integerValue(), *h->integerValue()};
  };
  using P = std::pair<int64_t, int64_t>;
  EXPECT_EQ(dpi(MCValue(72), MCValue(72), std::nullopt), P(72, 72));
  EXPECT_EQ(dpi(MCValue(72.5), MCValue(71.49), MCValue(2)), P(73, 71));
  EXPECT_EQ(dpi(MCValue(118.11), MCValue(118.11), MCValue(3)), P(300, 300));
  EXPECT_EQ(dpi(MCValue(0.3), MCValue(72), MCValue(2)), P(-1, -1)) << "0.3 rounds to 0: no DPI at all";
  EXPECT_EQ(dpi(MCValue(72), std::nullopt, MCValue(2)), P(-1, -1));
  EXPECT_EQ(dpi(MCValue(72), MCValue(72), MCValue(1)), P(-1, -1)) << "no absolute unit";
  EXPECT_EQ(dpi(MCValue(300), MCValue(300), MCValue(0)), P(300, 300));
  // Found by the fuzzer (fuzz/corpus/exif_reader/huge-resolution.bin): a resolution beyond any
  // integer once wrapped on its way to a DPI.
  EXPECT_EQ(dpi(MCValue(2.4e64), MCValue(2.4e64), MCValue(2)), P(-1, -1));
  // And one (fuzz/corpus/exif_reader/huge-unit.bin) whose unit was beyond any integer.
  EXPECT_EQ(dpi(MCValue(72), MCValue(72), MCValue(2.4e64)), P(-1, -1));
  EXPECT_EQ(MCValue(2.4e64).integerValue(), INT64_MAX);
  EXPECT_EQ(MCValue(-2.4e64).integerValue(), INT64_MIN);
}

TEST(MCExif, TopLevelFieldsAndWhatIsNotPresented) {
  MCExif exif;
  exif.setTiffBitsPerSample(MCValue(8));
  exif.setTiffOrientation(MCValue(6));
  exif.setTiffImageWidth(MCValue(100));
  exif.setExifPixelXDimension(MCValue(6000));
  exif.setExifPixelYDimension(MCValue(4000));
  exif.setExifProfileName(std::string("sRGB"));
  exif.setTiffTransferFunction(MCArray{1, 2, 3});
  exif.setTiffDocumentName(std::string("doc"));
  exif.setExifCameraFirmware(std::string("1.0"));
  exif.setXmp(std::string("<x/>"));
  exif.setMakerNote(MCData{1, 2});
  exif.setExifSubjectDistanceRange(MCValue(2));
  MCDictionary d = exif.dictionary();
  EXPECT_EQ(*MCDictionaryGet(d, kCGImagePropertyDepth), MCValue(8));
  EXPECT_EQ(*MCDictionaryGet(d, kCGImagePropertyOrientation), MCValue(6));
  EXPECT_EQ(*MCDictionaryGet(d, kCGImagePropertyPixelWidth), MCValue(6000)) << "from Exif, not TIFF";
  EXPECT_EQ(*MCDictionaryGet(d, kCGImagePropertyPixelHeight), MCValue(4000));
  EXPECT_EQ(*MCDictionaryGet(d, kCGImagePropertyProfileName), MCValue("sRGB"));
  MCDictionary tiff = exif.tiffDictionary();
  EXPECT_EQ(tiff.size(), 2u) << "Orientation and DocumentName; width, bits and transfer function are not presented";
  EXPECT_EQ(*MCDictionaryGet(tiff, "DocumentName"), MCValue("doc"));
  MCDictionary exifDictionary = exif.exifDictionary();
  EXPECT_EQ(exifDictionary.size(), 3u);
  EXPECT_EQ(*MCDictionaryGet(exifDictionary, "SubjectDistRange"), MCValue(2));
  EXPECT_EQ(*MCDictionaryGet(exifDictionary, "PixelXDimension"), MCValue(6000));
  EXPECT_FALSE(MCDictionaryGet(d, kCGImagePropertyGPSDictionary));
}
