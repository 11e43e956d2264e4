#include "PlugInTestSupport.h"

#include "../support/LogCapture.h"

#include <vesperon/metadata/MCImagePropertyKeys.h>
#include <vesperon/pixels/MCImageFiles.h>
#include <vesperon/pixels/MCImageTypes.h>

#include <array>
#include <fstream>
#include <iterator>
#include <map>

// The raw plug-in on a linear DNG made with open tools (see the fixtures' script): the camera's
// turn in the metadata, a demosaic honouring the settings, thumbnails made at half size.
TEST(RawCodec, ALinearDNGDemosaicsAndTurnsByItsFlip) {
  EXPECT_TRUE(MCIsRAWImageType("com.adobe.raw-image"));
  EXPECT_EQ(codecFor("com.adobe.raw-image")->extensionIdentifier(), "org.vesperon.codec.raw");
  auto source = openSource("com.adobe.raw-image", fixture("linear.dng"));
  ASSERT_TRUE(source);
  auto properties = source->metadataWithOptions(std::nullopt);
  ASSERT_TRUE(properties);
  EXPECT_EQ(*MCDictionaryGet(*properties, kCGImagePropertyOrientation), MCValue(6));
  const MCDictionary* tiff = MCDictionaryGetDictionary(*properties, kCGImagePropertyTIFFDictionary);
  ASSERT_TRUE(tiff);
  EXPECT_EQ(*MCDictionaryGet(*tiff, kCGImagePropertyTIFFMake), MCValue(std::string("Vesperon")));

  // As the sensor gives it; the quadrants' colours (the identity matrix keeps them apart).
  auto image = source->newImage();
  ASSERT_TRUE(image);
  EXPECT_EQ(image->width(), 64u);
  const auto red = pixelAt(image, 16, 12), green = pixelAt(image, 48, 12), blue = pixelAt(image, 16, 36);
  EXPECT_GT(red[0], red[1] + 100);
  EXPECT_GT(green[1], green[0] + 100);
  EXPECT_GT(blue[2], blue[0] + 100);
  EXPECT_GT(pixelAt(image, 48, 36)[1], 200) << "white";

  // A thumbnail, turned upright by the flip: 48 × 64.
  auto upright = source->newThumbnailWithOptions(thumbnailOptions(false, true, true, 0, 64));
  ASSERT_TRUE(upright);
  EXPECT_EQ(upright->width(), 48u);
  EXPECT_EQ(upright->height(), 64u);
  EXPECT_GT(pixelAt(upright, 40, 10)[0], 200) << "red at the top right once turned";

  // The settings reach LibRaw (a linear gamma here); and the file is reached by its name alone.
  auto options = MCImageSourceOptions::create("com.adobe.raw-image");
  options->rawOptions().outputGamma = 1;
  auto linear = codecFor("com.adobe.raw-image")->imageSourceWithURL(fixture("linear.dng"), *options)->newImage();
  ASSERT_TRUE(linear);
  EXPECT_EQ(linear->width(), 64u);
  auto byName = MCCreateImageWithURL(fixture("linear.dng"));
  ASSERT_TRUE(byName);
  EXPECT_EQ(byName->width(), 64u);
}

TEST(RawCodec, FilesLibRawCannotOpenGiveNothingWithALogLine) {
  LogCapture log;
  ASSERT_TRUE(log.available());
  EXPECT_EQ(openSource("com.nikon.raw-image", fixture("not-raw.nef")), nullptr);
  EXPECT_TRUE(log.contains("Couldn't read the raw file " + fixture("not-raw.nef").string() + ": ")) << log.text();
  EXPECT_EQ(openSource("com.nikon.raw-image", fixture("missing.nef")), nullptr);
  // No embedded preview and no leave to make one: none.
  auto source = openSource("com.adobe.raw-image", fixture("linear.dng"));
  ASSERT_TRUE(source);
  EXPECT_EQ(source->newThumbnailWithOptions(thumbnailOptions(false, false, false, 0, 64)), nullptr);
  // The decode budget.
  auto options = MCImageSourceOptions::create("com.adobe.raw-image");
  options->maxDecodePixelCount = 1000;
  EXPECT_EQ(codecFor("com.adobe.raw-image")->imageSourceWithURL(fixture("linear.dng"), *options)->newImage(), nullptr);
  // LibRaw's copies count: the sensor data (1536), its 16-bit working image (6144) and its RGB
  // output (2304) beside the 3072 pixels made.
  EXPECT_TRUE(log.contains("64 x 48 pixels and 9984 more to work in is beyond the limit of 1000")) << log.text();
  options->maxDecodePixelCount = 3072 + 9984 - 1;
  EXPECT_EQ(codecFor("com.adobe.raw-image")->imageSourceWithURL(fixture("linear.dng"), *options)->newImage(), nullptr);
  options->maxDecodePixelCount = 3072 + 9984;
  EXPECT_TRUE(codecFor("com.adobe.raw-image")->imageSourceWithURL(fixture("linear.dng"), *options)->newImage());
  // From bytes in memory.
  std::ifstream file(fixture("linear.dng"), std::ios::binary);
  auto bytes = std::make_shared<const MCData>(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
  auto inMemory = codecFor("com.adobe.raw-image")->imageSourceWithData(bytes, *MCImageSourceOptions::create("com.adobe.raw-image"));
  ASSERT_TRUE(inMemory);
  EXPECT_TRUE(inMemory->newImage());
}

// The DNG files with a whole JPEG preview, made at build time (fixtures/preview-dng/): sensor data
// 128 × 96 in the quadrants' colours, a 64 × 48 preview in others, orientation 6.
namespace {

std::filesystem::path previewFixture(const std::string& name) { return std::filesystem::path(RAW_PREVIEW_FIXTURES_DIR) / name; }

constexpr std::array<int, 3> kYellow{255, 255, 0}, kCyan{0, 255, 255}, kMagenta{255, 0, 255}, kBlack{0, 0, 0};
// A demosaic through the identity matrix leaves some of each primary in the others (red comes out
// near 255, 0, 65); still far from every colour of the preview.
constexpr int kDemosaicTolerance = 80;

// The four quarters' colours as shown: top left, top right, bottom left, bottom right.
::testing::AssertionResult quarters(const MCRasterImageRef& image, std::array<std::array<int, 3>, 4> expected,
                                    int tolerance = 24) {
  if (!image) return ::testing::AssertionFailure() << "no image";
  const double at[4][2] = {{0.25, 0.25}, {0.75, 0.25}, {0.25, 0.75}, {0.75, 0.75}};
  for (int i = 0; i < 4; ++i)
    if (auto near = colourNear(image, at[i][0], at[i][1], expected[i], tolerance); !near) return near << " (quarter " << i << ")";
  return ::testing::AssertionSuccess();
}

}  // namespace

TEST(RawCodec, TheEmbeddedPreviewServesWhenItCoversTheSizeAskedFor) {
  auto source = openSource("com.adobe.raw-image", previewFixture("preview.dng"));
  ASSERT_TRUE(source);
  auto properties = source->metadataWithOptions(std::nullopt);
  ASSERT_TRUE(properties);
  EXPECT_EQ(*MCDictionaryGet(*properties, kCGImagePropertyPixelWidth), MCValue(128)) << "the sensor's size, not the preview's";
  EXPECT_EQ(*MCDictionaryGet(*properties, kCGImagePropertyOrientation), MCValue(6));

  // Exactly the preview's size, and below it: the preview's colours, not the sensor's.
  auto whole = source->newThumbnailWithOptions(thumbnailOptions(false, true, false, 0, 64));
  ASSERT_TRUE(whole);
  EXPECT_EQ(whole->width(), 64u);
  EXPECT_EQ(whole->height(), 48u);
  EXPECT_TRUE(quarters(whole, {kYellow, kCyan, kMagenta, kBlack}));
  auto small = source->newThumbnailWithOptions(thumbnailOptions(false, true, false, 32, 32));
  ASSERT_TRUE(small);
  EXPECT_EQ(small->width(), 32u);
  EXPECT_EQ(small->height(), 24u);
  EXPECT_TRUE(quarters(small, {kYellow, kCyan, kMagenta, kBlack}));

  // Without leave to demosaic, a preview smaller than the maximum is still what there is, unless it
  // is below the minimum.
  auto onlyPreview = source->newThumbnailWithOptions(thumbnailOptions(false, false, false, 0, 100));
  ASSERT_TRUE(onlyPreview);
  EXPECT_EQ(onlyPreview->width(), 64u);
  EXPECT_TRUE(quarters(onlyPreview, {kYellow, kCyan, kMagenta, kBlack}));
  EXPECT_EQ(source->newThumbnailWithOptions(thumbnailOptions(false, false, false, 100, 100)), nullptr);

  // The same from bytes in memory.
  std::ifstream file(previewFixture("preview.dng"), std::ios::binary);
  auto bytes = std::make_shared<const MCData>(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
  auto inMemory = codecFor("com.adobe.raw-image")->imageSourceWithData(bytes, *MCImageSourceOptions::create("com.adobe.raw-image"));
  ASSERT_TRUE(inMemory);
  EXPECT_TRUE(quarters(inMemory->newThumbnailWithOptions(thumbnailOptions(false, true, false, 0, 48)),
                       {kYellow, kCyan, kMagenta, kBlack}));
}

TEST(RawCodec, ASizeBeyondThePreviewOrAskingForTheImageDemosaics) {
  auto source = openSource("com.adobe.raw-image", previewFixture("preview.dng"));
  ASSERT_TRUE(source);
  auto larger = source->newThumbnailWithOptions(thumbnailOptions(false, true, false, 0, 96));
  ASSERT_TRUE(larger);
  EXPECT_EQ(larger->width(), 96u);
  EXPECT_EQ(larger->height(), 72u);
  EXPECT_TRUE(quarters(larger, {kRed, kGreen, kBlue, kWhite}, kDemosaicTolerance));
  // Turned by the flip: the sensor's top left (red) at the top right.
  auto upright = source->newThumbnailWithOptions(thumbnailOptions(false, true, true, 0, 96));
  ASSERT_TRUE(upright);
  EXPECT_EQ(upright->width(), 72u);
  EXPECT_EQ(upright->height(), 96u);
  EXPECT_TRUE(quarters(upright, {kBlue, kRed, kWhite, kGreen}, kDemosaicTolerance));
  // From the image always, even at a size the preview covers.
  auto fromImage = source->newThumbnailWithOptions(thumbnailOptions(true, false, false, 0, 32));
  ASSERT_TRUE(fromImage);
  EXPECT_EQ(fromImage->width(), 32u);
  EXPECT_TRUE(quarters(fromImage, {kRed, kGreen, kBlue, kWhite}, kDemosaicTolerance));
}

// Every Exif orientation, the mirrored ones included, read from the raw and applied to the preview.
TEST(RawCodec, ThePreviewIsTurnedByTheRawsOrientation) {
  using Q = std::array<std::array<int, 3>, 4>;
  const std::map<int, Q> shown = {
      {2, {kCyan, kYellow, kBlack, kMagenta}}, {3, {kBlack, kMagenta, kCyan, kYellow}},
      {4, {kMagenta, kBlack, kYellow, kCyan}}, {5, {kYellow, kMagenta, kCyan, kBlack}},
      {6, {kMagenta, kYellow, kBlack, kCyan}}, {7, {kBlack, kCyan, kMagenta, kYellow}},
      {8, {kCyan, kBlack, kYellow, kMagenta}}};
  for (const auto& [orientation, expected] : shown) {
    SCOPED_TRACE("orientation " + std::to_string(orientation));
    auto source = openSource("com.adobe.raw-image",
                             previewFixture(orientation == 6 ? "preview.dng" : "preview-orient-" + std::to_string(orientation) + ".dng"));
    ASSERT_TRUE(source);
    auto properties = source->metadataWithOptions(std::nullopt);
    ASSERT_TRUE(properties);
    EXPECT_EQ(*MCDictionaryGet(*properties, kCGImagePropertyOrientation), MCValue(orientation));
    auto thumbnail = source->newThumbnailWithOptions(thumbnailOptions(false, true, true, 0, 64));
    ASSERT_TRUE(thumbnail);
    const bool sideways = orientation >= 5;
    EXPECT_EQ(thumbnail->width(), sideways ? 48u : 64u);
    EXPECT_EQ(thumbnail->height(), sideways ? 64u : 48u);
    EXPECT_TRUE(quarters(thumbnail, expected));
  }
  // A caller's orientation wins over the file's.
  auto options = thumbnailOptions(false, true, true, 0, 64);
  options.orientation = 1;
  EXPECT_TRUE(quarters(openSource("com.adobe.raw-image", previewFixture("preview.dng"))->newThumbnailWithOptions(options),
                       {kYellow, kCyan, kMagenta, kBlack}));
}

TEST(RawCodec, APreviewThatCannotBeDecodedFallsBackToTheDemosaic) {
  LogCapture log;
  ASSERT_TRUE(log.available());
  const auto path = previewFixture("broken-preview.dng");
  auto source = openSource("com.adobe.raw-image", path);
  ASSERT_TRUE(source);
  auto thumbnail = source->newThumbnailWithOptions(thumbnailOptions(false, true, false, 0, 64));
  ASSERT_TRUE(thumbnail);
  EXPECT_EQ(thumbnail->width(), 64u);
  EXPECT_EQ(thumbnail->height(), 48u);
  EXPECT_TRUE(quarters(thumbnail, {kRed, kGreen, kBlue, kWhite}, kDemosaicTolerance)) << "the sensor's colours";
  EXPECT_TRUE(log.contains("Couldn't decode the embedded preview of " + path.string() + "; demosaicing instead")) << log.text();
  // Without leave to demosaic: none, and no crash.
  EXPECT_EQ(source->newThumbnailWithOptions(thumbnailOptions(false, false, false, 0, 64)), nullptr);

  // The file itself cut short at several places, in memory and on disk: a thumbnail within the
  // size asked, or none.
  std::ifstream file(previewFixture("preview.dng"), std::ios::binary);
  const MCData whole{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  const auto dir = scratchDirectory("raw-cut");
  for (const std::size_t size : {whole.size() / 3, whole.size() / 2, whole.size() - 400, whole.size() - 3}) {
    SCOPED_TRACE("cut at " + std::to_string(size));
    auto bytes = std::make_shared<const MCData>(whole.begin(), whole.begin() + std::ptrdiff_t(size));
    const auto path = dir / ("cut-" + std::to_string(size) + ".dng");
    std::ofstream(path, std::ios::binary).write(reinterpret_cast<const char*>(bytes->data()), std::streamsize(size));
    auto options = MCImageSourceOptions::create("com.adobe.raw-image");
    for (auto cut : {codecFor("com.adobe.raw-image")->imageSourceWithData(bytes, *options),
                     codecFor("com.adobe.raw-image")->imageSourceWithURL(path, *options)}) {
      if (!cut) continue;
      if (auto image = cut->newThumbnailWithOptions(thumbnailOptions(false, true, true, 0, 64))) {
        EXPECT_LE(std::max(image->width(), image->height()), 64u);
      }
    }
  }
  std::filesystem::remove_all(dir);
}
