#include "PlugInTestSupport.h"

#include "../support/ClaimedSizeFiles.h"
#include "../support/LogCapture.h"

#include <vesperon/codecs/MCImageReader.h>

#include <vesperon/metadata/MCImagePropertyKeys.h>

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <unistd.h>

namespace fs = std::filesystem;

namespace {

std::shared_ptr<MCImageDestination> destinationAt(const fs::path& path, bool embedColorProfile = false) {
  MCImageDestinationOptions options("public.jpeg");
  options.embedColorProfile = embedColorProfile;
  return MCImageCodecManager::sharedInstance().destinationExtensionsForUTI("public.jpeg")->front()->imageDestinationAtURL(
      path, options);
}

// exiftool's numeric reading of a file, as JSON; null when it cannot run.
nlohmann::json exiftoolRead(const fs::path& file) {
  FILE* pipe = popen(("exiftool -n -j '" + file.string() + "' 2>/dev/null").c_str(), "r");
  if (!pipe) return nullptr;
  std::string out;
  char buffer[4096];
  while (std::size_t n = fread(buffer, 1, sizeof buffer, pipe)) out.append(buffer, n);
  if (pclose(pipe) != 0) return nullptr;
  auto json = nlohmann::json::parse(out, nullptr, false);
  return json.is_array() && !json.empty() ? json[0] : nlohmann::json();
}

}  // namespace

TEST(JPEGCodec, DecodesFullImageAndDCTScales) {
  const std::pair<uint64_t, std::pair<int, int>> cases[] = {
      {0, {64, 48}}, {1, {64, 48}}, {2, {32, 24}}, {4, {16, 12}}, {8, {8, 6}}, {3, {64, 48}}};
  for (const auto& [factor, size] : cases) {
    SCOPED_TRACE(factor);
    auto source = openSource("public.jpeg", fixture("quadrants.jpg"), factor);
    ASSERT_TRUE(source);
    auto image = source->newImage();
    ASSERT_TRUE(image);
    EXPECT_EQ(image->width(), std::size_t(size.first));
    EXPECT_EQ(image->height(), std::size_t(size.second));
    EXPECT_EQ(pixelAt(image, 0, 0)[3], 255);
    expectQuadrants(image, 24);
  }
}

TEST(JPEGCodec, DecodesGrayAndCMYKAsRGBA) {
  auto gray = openSource("public.jpeg", fixture("gray.jpg"))->newImage();
  ASSERT_TRUE(gray);
  EXPECT_TRUE(colourNear(gray, 0.25, 0.5, {60, 60, 60}, 3));
  EXPECT_TRUE(colourNear(gray, 0.75, 0.5, {200, 200, 200}, 3));

  auto cmykSource = openSource("public.jpeg", fixture("cmyk.jpg"));
  ASSERT_TRUE(cmykSource);
  expectQuadrants(cmykSource->newImage(), 30);
  auto metadata = cmykSource->metadataWithOptions(std::nullopt);
  ASSERT_TRUE(metadata);
  EXPECT_EQ(*MCDictionaryGet(*metadata, kCGImagePropertyColorModel), MCValue("CMYK"));
}

TEST(JPEGCodec, ThumbnailsOfEveryOrientationShowTheSamePicture) {
  for (int n = 1; n <= 8; ++n) {
    SCOPED_TRACE(n);
    auto source = openSource("public.jpeg", fixture(n == 1 ? "quadrants.jpg" : "orient-" + std::to_string(n) + ".jpg"));
    ASSERT_TRUE(source);
    auto thumbnail = source->newThumbnailWithOptions(thumbnailOptions(true, false, true, 0, 0));
    ASSERT_TRUE(thumbnail);
    EXPECT_EQ(thumbnail->width(), 64u);
    EXPECT_EQ(thumbnail->height(), 48u);
    expectQuadrants(thumbnail);

    // Without the transform the stored pixels come back as they are.
    auto stored = source->newThumbnailWithOptions(thumbnailOptions(true, false, false, 0, 32));
    ASSERT_TRUE(stored);
    EXPECT_EQ(stored->width(), n >= 5 ? 24u : 32u);
  }

  // An orientation in the options wins over the file's: turned clockwise, blue comes to the top left.
  auto source = openSource("public.jpeg", fixture("quadrants.jpg"));
  auto options = thumbnailOptions(true, false, true, 0, 32);
  options.orientation = 6;
  auto turned = source->newThumbnailWithOptions(options);
  ASSERT_TRUE(turned);
  EXPECT_EQ(turned->width(), 24u);
  EXPECT_EQ(turned->height(), 32u);
  EXPECT_TRUE(colourNear(turned, 0.25, 0.25, kBlue));
  EXPECT_TRUE(colourNear(turned, 0.75, 0.25, kRed));
  EXPECT_TRUE(colourNear(turned, 0.75, 0.75, kGreen));
}

TEST(JPEGCodec, EmbeddedThumbnailFollowsThePlatformRules) {
  // exif-thumb.jpg: a red 320×240 image holding a blue 160×120 thumbnail, orientation 6.
  auto source = openSource("public.jpeg", fixture("exif-thumb.jpg"));
  ASSERT_TRUE(source);

  auto embedded = source->newThumbnailWithOptions(thumbnailOptions(false, false, false, 0, 0));
  ASSERT_TRUE(embedded);
  EXPECT_EQ(embedded->width(), 160u);
  EXPECT_EQ(embedded->height(), 120u);
  EXPECT_TRUE(colourNear(embedded, 0.5, 0.5, kBlue));

  auto turned = source->newThumbnailWithOptions(thumbnailOptions(false, true, true, 100, 0));
  ASSERT_TRUE(turned);
  EXPECT_EQ(turned->width(), 120u);
  EXPECT_EQ(turned->height(), 160u);
  EXPECT_TRUE(colourNear(turned, 0.5, 0.5, kBlue));

  // Smaller than the minimum: as if absent.
  EXPECT_FALSE(source->newThumbnailWithOptions(thumbnailOptions(false, false, false, 200, 0)));
  auto fromImage = source->newThumbnailWithOptions(thumbnailOptions(false, true, false, 200, 0));
  ASSERT_TRUE(fromImage);
  EXPECT_EQ(fromImage->width(), 320u);
  EXPECT_TRUE(colourNear(fromImage, 0.5, 0.5, kRed));

  auto always = source->newThumbnailWithOptions(thumbnailOptions(true, false, false, 0, 100));
  ASSERT_TRUE(always);
  EXPECT_EQ(always->width(), 100u);
  EXPECT_EQ(always->height(), 75u);
  EXPECT_TRUE(colourNear(always, 0.5, 0.5, kRed));

  // A file without a thumbnail gives none unless asked to make one.
  auto plain = openSource("public.jpeg", fixture("quadrants.jpg"));
  EXPECT_FALSE(plain->newThumbnailWithOptions(thumbnailOptions(false, false, true, 0, 32)));
  auto made = plain->newThumbnailWithOptions(thumbnailOptions(false, true, true, 0, 32));
  ASSERT_TRUE(made);
  EXPECT_EQ(made->width(), 32u);
  EXPECT_EQ(made->height(), 24u);
  expectQuadrants(made);
}

TEST(JPEGCodec, MetadataHasSizeOrientationAndExifDictionaries) {
  auto metadata = openSource("public.jpeg", fixture("exif-thumb.jpg"))->metadataWithOptions(std::nullopt);
  ASSERT_TRUE(metadata);
  EXPECT_EQ(*MCDictionaryGet(*metadata, kCGImagePropertyPixelWidth), MCValue(320));
  EXPECT_EQ(*MCDictionaryGet(*metadata, kCGImagePropertyPixelHeight), MCValue(240));
  EXPECT_EQ(*MCDictionaryGet(*metadata, kCGImagePropertyOrientation), MCValue(6));
  EXPECT_EQ(*MCDictionaryGet(*metadata, kCGImagePropertyDepth), MCValue(8));
  EXPECT_EQ(*MCDictionaryGet(*metadata, kCGImagePropertyColorModel), MCValue("RGB"));
  const MCDictionary* tiff = MCDictionaryGetDictionary(*metadata, kCGImagePropertyTIFFDictionary);
  ASSERT_TRUE(tiff);
  EXPECT_EQ(*MCDictionaryGet(*tiff, kCGImagePropertyTIFFMake), MCValue("Vesperon"));
  const MCDictionary* exif = MCDictionaryGetDictionary(*metadata, kCGImagePropertyExifDictionary);
  ASSERT_TRUE(exif);
  EXPECT_EQ(*MCDictionaryGet(*exif, kCGImagePropertyExifDateTimeOriginal), MCValue("2021:07:14 10:20:30"));
  const MCDictionary* gps = MCDictionaryGetDictionary(*metadata, kCGImagePropertyGPSDictionary);
  ASSERT_TRUE(gps);
  EXPECT_NEAR(*MCDictionaryGet(*gps, kCGImagePropertyGPSLatitude)->doubleValue(), 48.8584, 1e-4);
  EXPECT_EQ(*MCDictionaryGet(*gps, kCGImagePropertyGPSLatitudeRef), MCValue("N"));

  auto plain = openSource("public.jpeg", fixture("gray.jpg"))->metadataWithOptions(std::nullopt);
  ASSERT_TRUE(plain);
  EXPECT_EQ(*MCDictionaryGet(*plain, kCGImagePropertyColorModel), MCValue("Gray"));
  EXPECT_FALSE(MCDictionaryGet(*plain, kCGImagePropertyOrientation));
  EXPECT_FALSE(MCDictionaryGet(*plain, kCGImagePropertyTIFFDictionary));
}

TEST(JPEGCodec, BadFilesGiveNothing) {
  EXPECT_FALSE(openSource("public.jpeg", fixture("empty.jpg")));
  EXPECT_FALSE(openSource("public.jpeg", fixture("png-named.jpg")));
  EXPECT_FALSE(openSource("public.jpeg", fixture("no-such-file.jpg")));
  EXPECT_FALSE(openSource("public.jpeg", fixture(".")));

  // Markers that make no sense after a valid start: libjpeg's fatal error must come back as none.
  fs::path dir = scratchDirectory("jpeg-bad");
  const unsigned char garbage[] = {0xFF, 0xD8, 0xFF, 0xC0, 0x00, 0x03, 0x07, 0xFF, 0xDA, 0x00, 0x02, 0x01, 0x02};
  std::ofstream(dir / "garbage.jpg", std::ios::binary).write(reinterpret_cast<const char*>(garbage), sizeof garbage);
  if (auto source = openSource("public.jpeg", dir / "garbage.jpg")) { EXPECT_FALSE(source->newImage()); }
  fs::remove_all(dir);
}

TEST(JPEGCodec, DestinationWritesAReadableFileAtomically) {
  fs::path dir = scratchDirectory("jpeg-write");
  auto image = openSource("public.png", fixture("quadrants.png"))->newImage();  // with alpha, which is dropped
  auto destination = destinationAt(dir / "out.jpg");
  ASSERT_TRUE(destination);
  EXPECT_FALSE(destination->finalize());  // nothing added yet
  ASSERT_TRUE(destination->addImage(image, nullptr));
  EXPECT_FALSE(destination->addImage(image, nullptr));  // one image per JPEG
  ASSERT_TRUE(destination->finalize());
  std::size_t files = 0;
  for ([[maybe_unused]] const auto& entry : fs::directory_iterator(dir)) ++files;
  EXPECT_EQ(files, 1u);  // no temporary left behind

  auto back = openSource("public.jpeg", dir / "out.jpg")->newImage();
  ASSERT_TRUE(back);
  EXPECT_EQ(back->width(), 64u);
  EXPECT_TRUE(colourNear(back, 0.25, 0.25, kRed, 16));
  EXPECT_TRUE(colourNear(back, 0.75, 0.25, kGreen, 16));
  EXPECT_TRUE(colourNear(back, 0.25, 0.75, kBlue, 16));

  // A folder that is not there: the write fails and leaves nothing.
  auto lost = destinationAt(dir / "missing" / "out.jpg");
  ASSERT_TRUE(lost->addImage(image, nullptr));
  EXPECT_FALSE(lost->finalize());
  EXPECT_FALSE(fs::exists(dir / "missing"));
  fs::remove_all(dir);
}

TEST(JPEGCodec, DestinationWritesExifAndTheColourProfile) {
  // Stored (128, 0, 0) under the swapped-primaries profile is sRGB green at 188.
  const std::vector<uint8_t> icc = swappedPrimariesProfile();
  std::vector<uint8_t> pixels(16 * 8 * 4, 0);
  for (std::size_t i = 0; i < pixels.size(); i += 4) pixels[i] = 128;
  auto image = MCRasterImage::create(16, 8, 8, 32, 64, MCColorSpace::createWithICCData(icc), MCImageAlphaNoneSkipLast,
                                     std::move(pixels));

  const MCDictionary properties{
      {kCGImagePropertyOrientation, MCValue(6)},
      {kCGImagePropertyTIFFDictionary, MCDictionary{{kCGImagePropertyTIFFMake, MCValue("Vesperon")}}},
      {kCGImagePropertyExifDictionary, MCDictionary{{kCGImagePropertyExifFNumber, MCValue(2.8)},
                                                    {kCGImagePropertyExifPixelXDimension, MCValue(4000)}}},
      {kCGImagePropertyGPSDictionary, MCDictionary{{kCGImagePropertyGPSLatitude, MCValue(48.8584)},
                                                   {kCGImagePropertyGPSLatitudeRef, MCValue("N")}}}};
  fs::path dir = scratchDirectory("jpeg-exif");
  auto destination = destinationAt(dir / "wide.jpg", true);
  ASSERT_TRUE(destination->addImage(image, &properties));
  ASSERT_TRUE(destination->finalize());

  auto source = openSource("public.jpeg", dir / "wide.jpg");
  ASSERT_TRUE(source);
  EXPECT_TRUE(colourNear(source->newImage(), 0.5, 0.5, {0, 188, 0}, 6));
  // The written orientation turns the thumbnail, which is converted too.
  auto turned = source->newThumbnailWithOptions(thumbnailOptions(true, false, true, 0, 8));
  ASSERT_TRUE(turned);
  EXPECT_EQ(turned->width(), 4u);
  EXPECT_TRUE(colourNear(turned, 0.5, 0.5, {0, 188, 0}, 6));

  const nlohmann::json tags = exiftoolRead(dir / "wide.jpg");
  ASSERT_TRUE(tags.is_object()) << "exiftool could not read the file";
  EXPECT_EQ(tags.value("Orientation", 0), 6);
  EXPECT_EQ(tags.value("Make", ""), "Vesperon");
  EXPECT_DOUBLE_EQ(tags.value("FNumber", 0.0), 2.8);
  EXPECT_EQ(tags.value("ExifImageWidth", 0), 16);  // the image written, not the one described
  EXPECT_NEAR(tags.value("GPSLatitude", 0.0), 48.8584, 1e-4);
  fs::remove_all(dir);
}

// A cut file shows what arrived, the rest grey, as other readers show a half-downloaded photo; a
// file cut before the first row of blocks (or in its header) gives nothing.
TEST(JPEGCodec, TruncatedFileGivesThePartialImageUnlessNoRowArrived) {
  fs::path dir = scratchDirectory("jpeg-truncated");
  const std::vector<uint8_t> whole = claimed_size::readBytes(fixture("quadrants.jpg"));
  const std::size_t data = claimed_size::firstScanDataOffset(whole);
  ASSERT_GT(data, 0u);
  const auto cut = [&](const char* name, std::size_t size) {
    claimed_size::writeBytes(dir / name, std::vector<uint8_t>(whole.begin(), whole.begin() + std::ptrdiff_t(size)));
    return openSource("public.jpeg", dir / name);
  };

  // Seven tenths of the entropy data: the top rows are there, the last row of blocks is not.
  auto partial = cut("partial.jpg", data + (whole.size() - data) * 7 / 10);
  ASSERT_TRUE(partial);
  auto image = partial->newImage();
  ASSERT_TRUE(image);
  EXPECT_EQ(image->width(), 64u);
  EXPECT_EQ(image->height(), 48u);
  EXPECT_TRUE(colourNear(image, 0.25, 0.1, kRed));
  EXPECT_TRUE(colourNear(image, 0.75, 0.1, kGreen));
  EXPECT_TRUE(colourNear(image, 0.9, 0.95, {128, 128, 128}, 20)) << "the missing rows are grey, not white";
  auto thumbnail = cut("partial-thumb.jpg", data + (whole.size() - data) * 7 / 10)
                       ->newThumbnailWithOptions(thumbnailOptions(true, false, true, 0, 32));
  ASSERT_TRUE(thumbnail);
  EXPECT_EQ(thumbnail->width(), 32u);
  EXPECT_TRUE(colourNear(thumbnail, 0.25, 0.1, kRed));

  // A few bytes of data: not one row of blocks arrived.
  auto early = cut("early.jpg", data + 3);
  ASSERT_TRUE(early) << "the header is whole";
  EXPECT_FALSE(early->newImage());
  EXPECT_FALSE(cut("early-thumb.jpg", data + 3)->newThumbnailWithOptions(thumbnailOptions(true, false, true, 0, 32)));
  // Cut inside the header: no source at all.
  EXPECT_FALSE(cut("header.jpg", data - 4));

  // The checked-in gradient, cut after three fifths of its bytes, comes out whole-sized.
  auto gradient = openSource("public.jpeg", fixture("truncated.jpg"))->newImage();
  ASSERT_TRUE(gradient);
  EXPECT_EQ(gradient->width(), 256u);
  EXPECT_EQ(gradient->height(), 192u);
  fs::remove_all(dir);
}

// The decode budget of the reading options, measured on what is decoded after DCT scaling, refused
// with one log line before anything is allocated; the default is 128 million pixels.
TEST(JPEGCodec, DecodeBudgetCountsTheScaledSizeAndRefusesWithALogLine) {
  LogCapture log;
  ASSERT_TRUE(log.available());
  EXPECT_EQ(MCImageSourceOptions::create("public.jpeg")->decodePixelLimit(), 128000000u);
  const fs::path quadrants = fixture("quadrants.jpg");

  MCImageReadingOptions small;
  small.maxDecodePixelCount = 100;  // 64 × 48 = 3072 is beyond it, 8 × 6 at 1/8 is not
  EXPECT_FALSE(MCImageReader::newImageWithURL(quadrants, "public.jpeg", small, nullptr));
  EXPECT_TRUE(log.contains("Refused to decode the image of " + quadrants.string() +
                           ": 64 x 48 pixels is beyond the limit of 100"))
      << log.text();
  small.scaleFactor = 0.125;
  auto scaled = MCImageReader::newImageWithURL(quadrants, "public.jpeg", small, nullptr);
  ASSERT_TRUE(scaled);
  EXPECT_EQ(scaled->width(), 8u);

  auto thumbnailOptionsWithin = [](uint64_t max, uint64_t budget) {
    auto o = thumbnailOptions(true, false, true, 0, max);
    o.maxDecodePixelCount = budget;
    return o;
  };
  EXPECT_TRUE(MCImageReader::newThumbnailWithURL(quadrants, "public.jpeg", thumbnailOptionsWithin(8, 100), nullptr));
  EXPECT_FALSE(MCImageReader::newThumbnailWithURL(quadrants, "public.jpeg", thumbnailOptionsWithin(64, 100), nullptr));
  EXPECT_TRUE(MCImageReader::newThumbnailWithURL(quadrants, "public.jpeg", thumbnailOptionsWithin(64, 3072), nullptr))
      << "the limit itself is within the budget";

  // A frame header claiming 65500 × 65500 over the scan data of a 64 × 48 image: the full decode
  // is refused by the default budget; the thumbnail decodes at 1/8 (8188 × 8188, within it), and
  // its data ends before the first row of blocks, so it gives nothing.
  fs::path dir = scratchDirectory("jpeg-budget");
  ASSERT_TRUE(claimed_size::writeJPEGClaiming(quadrants, dir / "huge.jpg", 65500, 65500));
  EXPECT_FALSE(MCImageReader::newImageWithURL(dir / "huge.jpg", "public.jpeg", MCImageReadingOptions(), nullptr));
  EXPECT_TRUE(log.contains("Refused to decode the image of " + (dir / "huge.jpg").string() +
                           ": 65500 x 65500 pixels is beyond the limit of 128000000"))
      << log.text();
  EXPECT_FALSE(MCImageReader::newThumbnailWithURL(dir / "huge.jpg", "public.jpeg", thumbnailOptions(false, true, true, 0, 256),
                                                  nullptr));
  fs::remove_all(dir);
}

// A progressive JPEG keeps the coefficients of the whole frame from its first scan to its last,
// 128 bytes per 8 × 8 block of each component whatever the output scale, and the budget counts
// them beside the output: the 64 × 48 picture in three full-size components has 3 × 8 × 6 blocks,
// 18432 bytes, 4608 pixels' worth. The same picture in one scan needs the output alone. A frame
// that claims 65500 × 65500 would need 25.7 GB of them for a thumbnail decoded at 1/8: refused,
// saying so, before libjpeg allocates any.
TEST(JPEGCodec, ProgressiveCoefficientBuffersCountInTheDecodeBudget) {
  LogCapture log;
  ASSERT_TRUE(log.available());
  const fs::path dir = scratchDirectory("jpeg-progressive");
  const fs::path progressive = dir / "progressive.jpg";
  ASSERT_EQ(std::system(("jpegtran -progressive -outfile '" + progressive.string() + "' '" +
                         fixture("quadrants.jpg").string() + "'").c_str()),
            0)
      << "jpegtran comes with libjpeg-turbo-progs (scripts/setup.sh)";
  const std::vector<uint8_t> bytes = claimed_size::readBytes(progressive);
  const uint8_t progressiveFrame[] = {0xFF, 0xC2};
  ASSERT_NE(std::search(bytes.begin(), bytes.end(), std::begin(progressiveFrame), std::end(progressiveFrame)), bytes.end());

  MCImageReadingOptions options;
  options.maxDecodePixelCount = 3072 + 4608;
  auto image = MCImageReader::newImageWithURL(progressive, "public.jpeg", options, nullptr);
  ASSERT_TRUE(image);
  expectQuadrants(image, 2);
  options.maxDecodePixelCount = 3072 + 4608 - 1;
  EXPECT_FALSE(MCImageReader::newImageWithURL(progressive, "public.jpeg", options, nullptr));
  EXPECT_TRUE(log.contains("Refused to decode the image of " + progressive.string() +
                           ": 64 x 48 pixels and 4608 more to work in is beyond the limit of 7679"))
      << log.text();
  options.maxDecodePixelCount = 3072;
  EXPECT_TRUE(MCImageReader::newImageWithURL(fixture("quadrants.jpg"), "public.jpeg", options, nullptr))
      << "one scan: the output alone";
  // At 1/8 the output is 8 × 6, the coefficients stay those of the full frame.
  options.scaleFactor = 0.125;
  options.maxDecodePixelCount = 48 + 4608;
  EXPECT_TRUE(MCImageReader::newImageWithURL(progressive, "public.jpeg", options, nullptr));
  options.maxDecodePixelCount = 48 + 4608 - 1;
  EXPECT_FALSE(MCImageReader::newImageWithURL(progressive, "public.jpeg", options, nullptr));

  const fs::path huge = dir / "huge-progressive.jpg";
  ASSERT_TRUE(claimed_size::writeJPEGClaiming(progressive, huge, 65500, 65500));
  EXPECT_FALSE(MCImageReader::newThumbnailWithURL(huge, "public.jpeg", thumbnailOptions(false, true, true, 0, 256), nullptr));
  EXPECT_TRUE(log.contains("Refused to decode the image of " + huge.string() +
                           ": 8188 x 8188 pixels and 6436161024 more to work in is beyond the limit of 128000000"))
      << log.text();
  EXPECT_FALSE(MCImageReader::newImageWithURL(huge, "public.jpeg", MCImageReadingOptions(), nullptr));
  fs::remove_all(dir);
}

// A region decodes the same pixels as the whole image (its chroma is upsampled from the same neighbours),
// in baseline and progressive files, cut to the image, and counts in the budget by its own size.
TEST(JPEGCodec, RegionsMatchTheWholeImage) {
  const fs::path dir = scratchDirectory("jpeg-region");
  constexpr std::size_t kWidth = 517, kHeight = 389;  // not whole blocks, 4:2:0 sampled
  std::vector<uint8_t> pixels(kWidth * kHeight * 4);
  uint32_t noise = 12345;
  for (std::size_t i = 0; i < kWidth * kHeight; ++i) {
    noise = noise * 1103515245 + 12345;
    const std::size_t x = i % kWidth, y = i / kWidth;
    pixels[i * 4 + 0] = uint8_t(x * 255 / kWidth);
    pixels[i * 4 + 1] = uint8_t(y * 255 / kHeight);
    pixels[i * 4 + 2] = uint8_t(noise >> 24);
    pixels[i * 4 + 3] = 255;
  }
  const fs::path baseline = dir / "baseline.jpg", progressive = dir / "progressive.jpg";
  auto destination = destinationAt(baseline);
  ASSERT_TRUE(destination->addImage(MCRasterImage::createRGBA8(kWidth, kHeight, pixels), nullptr));
  ASSERT_TRUE(destination->finalize());
  ASSERT_EQ(std::system(("jpegtran -progressive -outfile '" + progressive.string() + "' '" + baseline.string() + "'").c_str()), 0);

  for (const fs::path& file : {baseline, progressive}) {
    SCOPED_TRACE(file.filename().string());
    auto whole = openSource("public.jpeg", file)->newImage();
    ASSERT_TRUE(whole);
    struct Case { std::size_t x, y, w, h, expectW, expectH; };
    for (const Case c : {Case{0, 0, 40, 30, 40, 30}, Case{203, 151, 97, 61, 97, 61}, Case{13, 377, 600, 100, 504, 12},
                         Case{516, 388, 5, 5, 1, 1}}) {
      SCOPED_TRACE(testing::Message() << c.x << "," << c.y);
      auto region = openSource("public.jpeg", file)->newImageInRegion(c.x, c.y, c.w, c.h);
      ASSERT_TRUE(region);
      ASSERT_EQ(region->width(), c.expectW);
      ASSERT_EQ(region->height(), c.expectH);
      int worst = 0;
      for (std::size_t y = 0; y < c.expectH; ++y)
        for (std::size_t x = 0; x < c.expectW; ++x)
          for (int k = 0; k < 3; ++k)
            worst = std::max(worst, std::abs(int(region->row(y)[x * 4 + k]) - int(whole->row(c.y + y)[(c.x + x) * 4 + k])));
      EXPECT_EQ(worst, 0);
    }
    EXPECT_FALSE(openSource("public.jpeg", file)->newImageInRegion(517, 0, 10, 10));
    EXPECT_FALSE(openSource("public.jpeg", file)->newImageInRegion(0, 0, 0, 10));
  }

  // The reader's front turns nothing: the region is in the file's stored orientation.
  MCImageReadingOptions options;
  auto region = MCImageReader::newImageInRegionWithURL(baseline, std::nullopt, 100, 50, 20, 10, options, nullptr);
  ASSERT_TRUE(region);
  EXPECT_EQ(region->width(), 20u);
  // A budget that takes the region but not the whole image.
  options.maxDecodePixelCount = 100 * 100;
  EXPECT_TRUE(MCImageReader::newImageInRegionWithURL(baseline, std::nullopt, 0, 0, 30, 30, options, nullptr));
  EXPECT_FALSE(MCImageReader::newImageInRegionWithURL(baseline, std::nullopt, 0, 0, 300, 300, options, nullptr));
  fs::remove_all(dir);
}
