#include "PlugInTestSupport.h"

#include "../support/ClaimedSizeFiles.h"
#include "../support/LogCapture.h"

#include <vesperon/codecs/MCImageSourceProperties.h>
#include <vesperon/metadata/MCImagePropertyKeys.h>

#include <cstdlib>
#include <fstream>
#include <iterator>

namespace {

MCDictionary metadataOf(const std::string& type, const std::string& name) {
  auto source = openSource(type, fixture(name));
  if (!source) return {};
  return source->metadataWithOptions(std::nullopt).value_or(MCDictionary{});
}

int64_t integer(const MCDictionary& properties, const char* key) {
  const MCValue* value = MCDictionaryGet(properties, key);
  return value ? value->integerValue().value_or(-1) : -1;
}

std::shared_ptr<const MCData> bytesOf(const std::string& name) {
  std::ifstream file(fixture(name), std::ios::binary);
  return std::make_shared<const MCData>(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
}

}  // namespace

TEST(WebPCodec, StillAlphaAnimatedAndScaledThumbnails) {
  auto still = openSource("org.webmproject.webp", fixture("quadrants.webp"));
  ASSERT_TRUE(still);
  expectQuadrants(still->newImage(), 2);
  // A thumbnail is decoded at its size by libwebp's scaler.
  auto small = still->newThumbnailWithOptions(thumbnailOptions(false, true, false, 0, 32));
  ASSERT_TRUE(small);
  EXPECT_EQ(small->width(), 32u);
  EXPECT_EQ(small->height(), 24u);
  expectQuadrants(small, 20);
  EXPECT_EQ(still->newThumbnailWithOptions(thumbnailOptions(false, false, false, 0, 32)), nullptr) << "none of its own";

  // Straight alpha in the file, premultiplied in the image: white at half alpha is 128.
  auto alpha = openSource("org.webmproject.webp", fixture("alpha.webp"))->newImage();
  ASSERT_TRUE(alpha);
  const auto halfWhite = pixelAt(alpha, 48, 36);
  EXPECT_NEAR(halfWhite[3], 128, 2);
  EXPECT_NEAR(halfWhite[0], 128, 2);
  EXPECT_EQ(pixelAt(alpha, 16, 12), (std::array<int, 4>{255, 0, 0, 255}));

  // An animation: its first frame, and its frame count.
  auto animated = openSource("org.webmproject.webp", fixture("animated.webp"));
  ASSERT_TRUE(animated);
  expectQuadrants(animated->newImage(), 2);
  EXPECT_EQ(integer(*animated->metadataWithOptions(std::nullopt), kMCImagePropertyImageCount), 2);
}

// An animation's first frame sits on its canvas at the frame's offset over transparency, as the
// animation decoder composes it, but without that decoder's own canvases: the budget counts the
// canvas and the frame beside it, and nothing else. The frame is 64 × 48 at (32, 16) of a canvas
// claimed as 640 × 480: 307200 + 3072 pixels.
TEST(WebPCodec, AnAnimationsFirstFrameCostsItsCanvasAndTheFrame) {
  LogCapture log;
  ASSERT_TRUE(log.available());
  const auto dir = scratchDirectory("webp-canvas");
  const auto quadrants = fixture("quadrants.webp").string();
  const auto made = dir / "offset.webp";
  ASSERT_EQ(std::system(("webpmux -frame '" + quadrants + "' +100+32+16 -frame '" + quadrants + "' +100+0+0 -o '" +
                         made.string() + "' >/dev/null 2>&1").c_str()),
            0)
      << "webpmux comes with the webp package (scripts/setup.sh)";
  const auto claimed = dir / "claimed.webp";
  ASSERT_TRUE(claimed_size::writeWebPClaimingCanvas(made, claimed, 640, 480));

  auto open = [&](uint64_t limit) {
    auto options = MCImageSourceOptions::create("org.webmproject.webp");
    options->maxDecodePixelCount = limit;
    return codecFor("org.webmproject.webp")->imageSourceWithURL(claimed, *options);
  };
  auto image = open(640 * 480 + 64 * 48)->newImage();
  ASSERT_TRUE(image);
  ASSERT_EQ(image->width(), 640u);
  ASSERT_EQ(image->height(), 480u);
  EXPECT_EQ(pixelAt(image, 31, 16), (std::array<int, 4>{0, 0, 0, 0})) << "left of the frame";
  EXPECT_EQ(pixelAt(image, 32, 15), (std::array<int, 4>{0, 0, 0, 0})) << "above the frame";
  EXPECT_EQ(pixelAt(image, 300, 300), (std::array<int, 4>{0, 0, 0, 0}));
  EXPECT_EQ(pixelAt(image, 32, 16), (std::array<int, 4>{255, 0, 0, 255})) << "the frame's first pixel";
  EXPECT_EQ(pixelAt(image, 32 + 63, 16 + 47), (std::array<int, 4>{255, 255, 255, 255})) << "its last";
  EXPECT_EQ(pixelAt(image, 32 + 64, 16 + 47), (std::array<int, 4>{0, 0, 0, 0}));
  EXPECT_EQ(pixelAt(image, 32 + 63, 16 + 48), (std::array<int, 4>{0, 0, 0, 0}));
  auto thumbnail = open(640 * 480 + 64 * 48)->newThumbnailWithOptions(thumbnailOptions(false, true, false, 0, 64));
  ASSERT_TRUE(thumbnail);
  EXPECT_EQ(thumbnail->width(), 64u);
  EXPECT_EQ(thumbnail->height(), 48u);

  EXPECT_FALSE(open(640 * 480 + 64 * 48 - 1)->newImage());
  EXPECT_TRUE(log.contains("Refused to decode the image of " + claimed.string() +
                           ": 640 x 480 pixels and 3072 more to work in is beyond the limit of 310271"))
      << log.text();
  std::filesystem::remove_all(dir);
}

TEST(WebPCodec, TheExifChunkGivesTagsAndTurnsThumbnails) {
  const MCDictionary properties = metadataOf("org.webmproject.webp", "exif.webp");
  EXPECT_EQ(integer(properties, kCGImagePropertyOrientation), 6);
  const MCDictionary* tiff = MCDictionaryGetDictionary(properties, kCGImagePropertyTIFFDictionary);
  ASSERT_TRUE(tiff);
  EXPECT_EQ(*MCDictionaryGet(*tiff, kCGImagePropertyTIFFMake), MCValue(std::string("Acme")));
  auto source = openSource("org.webmproject.webp", fixture("exif.webp"));
  auto turned = source->newThumbnailWithOptions(thumbnailOptions(true, false, true, 0, 64));
  ASSERT_TRUE(turned);
  EXPECT_EQ(turned->width(), 48u) << "a 256 × 192 image turned a quarter, fitted in 64";
  EXPECT_EQ(turned->height(), 64u);
}

TEST(HEIFCodec, HEICAndAVIFDecodeWithTheirOwnThumbnailAndExif) {
  auto heic = openSource("public.heic", fixture("quadrants.heic"));
  ASSERT_TRUE(heic);
  expectQuadrants(heic->newImage(), 24);
  // The file's own thumbnail item (32 × 24) when it is large enough, else the image.
  auto own = heic->newThumbnailWithOptions(thumbnailOptions(false, false, false, 0, 0));
  ASSERT_TRUE(own);
  EXPECT_EQ(own->width(), 32u);
  auto made = heic->newThumbnailWithOptions(thumbnailOptions(false, true, false, 48, 48));
  ASSERT_TRUE(made);
  EXPECT_EQ(made->width(), 48u);
  expectQuadrants(made, 30);

  const MCDictionary exif = metadataOf("public.heic", "exif.heic");
  const MCDictionary* tiff = MCDictionaryGetDictionary(exif, kCGImagePropertyTIFFDictionary);
  ASSERT_TRUE(tiff) << "the Exif item, after its offset header";
  EXPECT_EQ(*MCDictionaryGet(*tiff, kCGImagePropertyTIFFMake), MCValue(std::string("Acme")));
  EXPECT_EQ(integer(exif, kCGImagePropertyOrientation), 1);
  EXPECT_EQ(integer(exif, kCGImagePropertyPixelWidth), 64);

  auto avif = openSource("public.avif", fixture("quadrants.avif"));
  ASSERT_TRUE(avif);
  expectQuadrants(avif->newImage(), 30);
}

TEST(WebPAndHEIF, BadFilesBudgetsAndBytesInMemory) {
  LogCapture log;
  ASSERT_TRUE(log.available());
  for (const auto& [type, name] : {std::pair{"org.webmproject.webp", "truncated.webp"}, {"public.heic", "truncated.heic"},
                                   {"public.heic", "quadrants.webp"}, {"org.webmproject.webp", "quadrants.heic"},
                                   {"public.avif", "missing.avif"}}) {
    auto source = openSource(type, fixture(name));
    EXPECT_TRUE(!source || !source->newImage()) << name;
  }
  for (const auto& [type, name] : {std::pair{"org.webmproject.webp", "quadrants.webp"}, {"public.heic", "quadrants.heic"}}) {
    auto options = MCImageSourceOptions::create(type);
    options->maxDecodePixelCount = 1000;
    auto tight = codecFor(type)->imageSourceWithURL(fixture(name), *options);
    ASSERT_TRUE(tight) << name;
    EXPECT_EQ(tight->newImage(), nullptr) << name;
    auto inMemory = codecFor(type)->imageSourceWithData(bytesOf(name), *MCImageSourceOptions::create(type));
    ASSERT_TRUE(inMemory) << name;
    expectQuadrants(inMemory->newImage(), 24);
  }
  EXPECT_TRUE(log.contains("64 x 48 pixels is beyond the limit of 1000")) << log.text();  // WebP
  // libheif's RGBA copy (3072) and its 4:2:0 planes (1152) count beside the 3072 pixels made.
  EXPECT_TRUE(log.contains("64 x 48 pixels and 4224 more to work in is beyond the limit of 1000")) << log.text();
  for (const uint64_t limit : {3072 + 4224 - 1, 3072 + 4224}) {
    auto options = MCImageSourceOptions::create("public.heic");
    options->maxDecodePixelCount = uint64_t(limit);
    EXPECT_EQ(bool(codecFor("public.heic")->imageSourceWithURL(fixture("quadrants.heic"), *options)->newImage()),
              limit == 3072 + 4224);
  }
}
