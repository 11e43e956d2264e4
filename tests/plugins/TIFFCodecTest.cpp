#include "PlugInTestSupport.h"

#include "../support/LogCapture.h"

#include <vesperon/codecs/MCImageSourceProperties.h>
#include <vesperon/metadata/MCImagePropertyKeys.h>

#include <cstring>
#include <fstream>
#include <iterator>

namespace {

MCDictionary metadataOf(const std::string& name) {
  auto source = openSource("public.tiff", fixture(name));
  if (!source) return {};
  return source->metadataWithOptions(std::nullopt).value_or(MCDictionary{});
}

}  // namespace

TEST(TIFFCodec, EveryLayoutDecodesToTheQuadrants) {
  for (const char* name : {"quadrants.tif", "quadrants-16-tiled.tif", "camera.tif"}) {
    SCOPED_TRACE(name);
    auto source = openSource("public.tiff", fixture(name));
    ASSERT_TRUE(source);
    auto image = source->newImage();
    expectQuadrants(image);
    EXPECT_EQ(image->width(), 64u);
  }
  // CMYK through libtiff's own ink formula; the colours stay recognisable.
  expectQuadrants(openSource("public.tiff", fixture("cmyk.tif"))->newImage(), 40);
  auto gray = openSource("public.tiff", fixture("gray.tif"))->newImage();
  ASSERT_TRUE(gray);
  EXPECT_TRUE(colourNear(gray, 0.25, 0.5, {60, 60, 60}, 2));
  EXPECT_TRUE(colourNear(gray, 0.75, 0.5, {200, 200, 200}, 2));
  EXPECT_EQ(*MCDictionaryGet(metadataOf("gray.tif"), kCGImagePropertyColorModel), MCValue(std::string("Gray")));
  EXPECT_EQ(*MCDictionaryGet(metadataOf("quadrants-16-tiled.tif"), kCGImagePropertyDepth), MCValue(16));
}

TEST(TIFFCodec, OrientationPagesAndTheFilesOwnReducedImage) {
  // Stored turned, shown upright when the thumbnail is turned by the tag.
  auto turned = openSource("public.tiff", fixture("orient-6.tif"));
  ASSERT_TRUE(turned);
  EXPECT_EQ(*MCDictionaryGet(*turned->metadataWithOptions(std::nullopt), kCGImagePropertyOrientation), MCValue(6));
  EXPECT_EQ(turned->newImage()->width(), 48u) << "the image is as stored";
  auto upright = turned->newThumbnailWithOptions(thumbnailOptions(true, false, true, 0, 0));
  expectQuadrants(upright);

  EXPECT_EQ(*MCDictionaryGet(metadataOf("pages.tif"), kMCImagePropertyImageCount), MCValue(3));
  expectQuadrants(openSource("public.tiff", fixture("pages.tif"))->newImage());
  EXPECT_EQ(*MCDictionaryGet(metadataOf("reduced.tif"), kMCImagePropertyImageCount), MCValue(1))
      << "a reduced image is no page";

  // The reduced page is the embedded thumbnail: blue, where the page itself is a gray gradient.
  auto reduced = openSource("public.tiff", fixture("reduced.tif"));
  auto embedded = reduced->newThumbnailWithOptions(thumbnailOptions(false, true, false, 0, 0));
  ASSERT_TRUE(embedded);
  EXPECT_EQ(embedded->width(), 32u);
  EXPECT_TRUE(colourNear(embedded, 0.5, 0.5, kBlue));
  // Too small for what is asked, or refused by "always": made from the page.
  auto fromPage = reduced->newThumbnailWithOptions(thumbnailOptions(false, true, false, 64, 64));
  ASSERT_TRUE(fromPage);
  EXPECT_EQ(fromPage->width(), 64u);
  EXPECT_FALSE(colourNear(fromPage, 0.5, 0.5, kBlue));
  EXPECT_EQ(reduced->newThumbnailWithOptions(thumbnailOptions(false, false, false, 64, 64)), nullptr);
  EXPECT_FALSE(colourNear(reduced->newThumbnailWithOptions(thumbnailOptions(true, false, false, 0, 32)), 0.5, 0.5, kBlue));
}

TEST(TIFFCodec, TagsComeThroughTheExifRoad) {
  const MCDictionary properties = metadataOf("camera.tif");
  const MCDictionary* tiff = MCDictionaryGetDictionary(properties, kCGImagePropertyTIFFDictionary);
  const MCDictionary* exif = MCDictionaryGetDictionary(properties, kCGImagePropertyExifDictionary);
  const MCDictionary* gps = MCDictionaryGetDictionary(properties, kCGImagePropertyGPSDictionary);
  ASSERT_TRUE(tiff && exif && gps);
  EXPECT_EQ(*MCDictionaryGet(*tiff, kCGImagePropertyTIFFMake), MCValue("Acme"));
  EXPECT_EQ(*MCDictionaryGet(*exif, kCGImagePropertyExifDateTimeOriginal), MCValue("2024:05:01 10:00:00"));
  EXPECT_NEAR(MCDictionaryGet(*gps, kCGImagePropertyGPSLatitude)->doubleValue().value_or(0), 48.8584, 1e-4);
  EXPECT_EQ(*MCDictionaryGet(properties, kCGImagePropertyPixelWidth), MCValue(64));
}

TEST(TIFFCodec, BadFilesGiveNothingAndHugeClaimsAreRefusedBeforeDecoding) {
  LogCapture log;
  ASSERT_TRUE(log.available());
  auto huge = openSource("public.tiff", fixture("huge-claim.tif"));
  ASSERT_TRUE(huge) << "the header reads";
  EXPECT_EQ(huge->newImage(), nullptr);
  EXPECT_TRUE(log.contains("100000 x 100000 pixels is beyond the limit")) << log.text();
  // Cut before its directory: not a TIFF that can be read at all.
  auto truncated = openSource("public.tiff", fixture("truncated.tif"));
  EXPECT_TRUE(!truncated || !truncated->newImage());
  EXPECT_EQ(openSource("public.tiff", fixture("quadrants.webp")), nullptr) << "not a TIFF";
  EXPECT_EQ(openSource("public.tiff", fixture("missing.tif")), nullptr);
  // From bytes in memory, the same image.
  std::ifstream file(fixture("camera.tif"), std::ios::binary);
  auto bytes = std::make_shared<const MCData>(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
  auto inMemory = codecFor("public.tiff")->imageSourceWithData(bytes, *MCImageSourceOptions::create("public.tiff"));
  ASSERT_TRUE(inMemory);
  expectQuadrants(inMemory->newImage());
}

// A region reads the strips or tiles under it and gives exactly the whole page's pixels there.
TEST(TIFFCodec, RegionsOfStripsAndTilesMatchTheWholePage) {
  const auto dir = scratchDirectory("tiff-region");
  const auto striped = dir / "striped.tif", tiled = dir / "tiled.tif";
  ASSERT_EQ(std::system(("/usr/bin/convert -seed 4 -size 203x157 xc:gray50 +noise Random -define tiff:rows-per-strip=16 '" +
                         striped.string() + "' && /usr/bin/convert '" + striped.string() +
                         "' -define tiff:tile-geometry=32x32 '" + tiled.string() + "'")
                            .c_str()),
            0);
  for (const auto& file : {striped, tiled, fixture("quadrants-16-tiled.tif")}) {
    SCOPED_TRACE(file.filename().string());
    auto whole = openSource("public.tiff", file)->newImage();
    ASSERT_TRUE(whole);
    const std::size_t W = whole->width(), H = whole->height();
    struct Case { std::size_t x, y, w, h; };
    for (const Case c : {Case{0, 0, 10, 7}, Case{W / 3, H / 2, W / 3, H / 4}, Case{W - 5, H - 3, 50, 50}}) {
      auto region = openSource("public.tiff", file)->newImageInRegion(c.x, c.y, c.w, c.h);
      ASSERT_TRUE(region);
      const std::size_t w = std::min(c.w, W - c.x), h = std::min(c.h, H - c.y);
      ASSERT_EQ(region->width(), w);
      ASSERT_EQ(region->height(), h);
      for (std::size_t y = 0; y < h; ++y)
        ASSERT_EQ(std::memcmp(region->row(y), whole->row(c.y + y) + c.x * 4, w * 4), 0) << "row " << y;
    }
    EXPECT_FALSE(openSource("public.tiff", file)->newImageInRegion(W, 0, 4, 4));
  }
  std::filesystem::remove_all(dir);
}

namespace {

// Bytes this process has read through read(2) and pread(2) so far.
uint64_t bytesReadByProcess() {
  std::ifstream io("/proc/self/io");
  std::string key;
  uint64_t value = 0;
  while (io >> key >> value)
    if (key == "rchar:") return value;
  return 0;
}

}  // namespace

// A large file is read where it is needed: its tags from the directories alone (which libtiff
// writes after the pixels), a region from the strips under it; and a file cut short while a source
// has it open gives nothing rather than a crash.
TEST(TIFFCodec, LargeFilesAreReadOnlyWhereNeeded) {
  const auto dir = scratchDirectory("tiff-large");
  const auto file = dir / "scan.tif";
  // 4000 × 3000 RGB, uncompressed: 36 MB of pixels, then the directories.
  ASSERT_EQ(std::system(("/usr/bin/convert -size 4000x3000 xc:gray50 -depth 8 -type TrueColor -set comment scanned -define "
                         "tiff:rows-per-strip=64 -compress none '" + file.string() + "'").c_str()),
            0);
  ASSERT_GT(std::filesystem::file_size(file), 36'000'000u);

  uint64_t before = bytesReadByProcess();
  auto source = openSource("public.tiff", file);
  ASSERT_TRUE(source);
  const auto properties = source->metadataWithOptions(std::nullopt);
  ASSERT_TRUE(properties);
  EXPECT_EQ(*MCDictionaryGet(*properties, kCGImagePropertyPixelWidth), MCValue(4000));
  const MCDictionary* tiff = MCDictionaryGetDictionary(*properties, kCGImagePropertyTIFFDictionary);
  ASSERT_TRUE(tiff);
  EXPECT_EQ(*MCDictionaryGet(*tiff, kCGImagePropertyTIFFImageDescription), MCValue("scanned"));
  EXPECT_LT(bytesReadByProcess() - before, 1'000'000u) << "the tags cost more than the directories";

  before = bytesReadByProcess();
  auto region = source->newImageInRegion(1000, 1500, 200, 100);
  ASSERT_TRUE(region);
  EXPECT_TRUE(colourNear(region, 0.5, 0.5, {128, 128, 128}, 2));
  // Two or three strips of 64 rows, 768 kB each.
  EXPECT_LT(bytesReadByProcess() - before, 4'000'000u) << "the region read more than the strips under it";

  // Cut to a third while open (its directories, at the end, are gone): nothing reads, and the
  // process lives on, where a mapped file would have been killed by SIGBUS.
  std::filesystem::resize_file(file, std::filesystem::file_size(file) / 3);
  EXPECT_EQ(source->newImage(), nullptr);
  EXPECT_EQ(source->newImageInRegion(0, 0, 16, 16), nullptr);
  std::filesystem::remove_all(dir);
}

// Directories that point back at themselves, a value that claims four billion items and a
// profile too large to keep: the tags that can be read are, and nothing loops.
TEST(TIFFCodec, HostileDirectoriesAreReadAsFarAsTheyGo) {
  std::vector<uint8_t> file = {'I', 'I', 42, 0, 8, 0, 0, 0};
  auto u16 = [&](uint16_t v) { file.push_back(uint8_t(v)), file.push_back(uint8_t(v >> 8)); };
  auto u32 = [&](uint32_t v) { for (int i = 0; i < 4; ++i) file.push_back(uint8_t(v >> (8 * i))); };
  auto entry = [&](uint16_t tag, uint16_t type, uint32_t count, uint32_t value) { u16(tag), u16(type), u32(count), u32(value); };
  const uint32_t values = 8 + 2 + 7 * 12 + 4;
  u16(7);
  entry(256, 3, 1, 2);                   // ImageWidth 2
  entry(257, 3, 1, 2);                   // ImageLength 2
  entry(271, 2, 5, values);              // Make "Acme"
  entry(273, 4, 1, values + 8);          // StripOffsets
  entry(305, 2, 0xFFFFFFFFu, values);    // Software claiming four billion characters
  entry(34675, 7, 70000, values);        // an ICC profile larger than the file
  entry(0x8769, 4, 1, 8);                // the Exif directory is the first one again
  u32(8);                                // and so is the next
  file.insert(file.end(), {'A', 'c', 'm', 'e', 0, 0, 0, 0});
  file.insert(file.end(), 12, 0x80);     // 2 × 2 gray pixels, and some
  auto data = std::make_shared<const MCData>(file.begin(), file.end());
  auto source = codecFor("public.tiff")->imageSourceWithData(data, *MCImageSourceOptions::create("public.tiff"));
  if (!source) GTEST_SKIP() << "libtiff refuses the file";
  const auto properties = source->metadataWithOptions(std::nullopt);
  ASSERT_TRUE(properties);
  const MCDictionary* tiff = MCDictionaryGetDictionary(*properties, kCGImagePropertyTIFFDictionary);
  ASSERT_TRUE(tiff);
  EXPECT_EQ(*MCDictionaryGet(*tiff, kCGImagePropertyTIFFMake), MCValue("Acme"));
  EXPECT_EQ(MCDictionaryGet(*tiff, kCGImagePropertyTIFFSoftware), nullptr);
}
