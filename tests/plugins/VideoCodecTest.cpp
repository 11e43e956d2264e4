#include "PlugInTestSupport.h"

#include "../support/LogCapture.h"

#include <vesperon/codecs/MCMovieProperties.h>
#include <vesperon/metadata/MCImagePropertyKeys.h>
#include <vesperon/pixels/MCImageTypes.h>

#include <algorithm>
#include <fstream>
#include <iterator>

namespace {

const MCDictionary& group(const MCDictionary& properties, const char* key) {
  static const MCDictionary none;
  const MCDictionary* found = MCDictionaryGetDictionary(properties, key);
  return found ? *found : none;
}

double number(const MCDictionary& dictionary, const char* key) {
  const MCValue* value = MCDictionaryGet(dictionary, key);
  return value ? value->doubleValue().value_or(-1) : -1;
}

std::string text(const MCDictionary& dictionary, const char* key) {
  const MCValue* value = MCDictionaryGet(dictionary, key);
  return value && value->string() ? *value->string() : "";
}

}  // namespace

TEST(VideoCodec, ClipsAreMovieTypesWithARepresentativeFramePastTheBlackOpening) {
  for (const char* type : {"public.mpeg-4", "com.apple.quicktime-movie", "org.matroska.mkv"})
    EXPECT_TRUE(MCMovieTypes().count(type)) << type;
  auto source = openSource("public.mpeg-4", fixture("quadrants-clip.mp4"));
  ASSERT_TRUE(source);
  // A tenth into the clip is 0.3 s, still black; the frame shown is the first with picture.
  auto image = source->newImage();
  expectQuadrants(image, 24);
  EXPECT_EQ(image->width(), 64u);
  EXPECT_EQ(image->height(), 48u);
  auto properties = source->metadataWithOptions(std::nullopt);
  ASSERT_TRUE(properties);
  const double shown = number(group(*properties, kMCImagePropertyMovieDictionary), kMCImagePropertyMovieRepresentativeTime);
  EXPECT_GE(shown, 0.9);
  EXPECT_LE(shown, 1.05);

  // A thumbnail is the same frame, fitted in one pass; none unless asked to be made.
  EXPECT_EQ(source->newThumbnailWithOptions(thumbnailOptions(false, false, true, 0, 32)), nullptr);
  auto thumbnail = source->newThumbnailWithOptions(thumbnailOptions(false, true, true, 0, 32));
  ASSERT_TRUE(thumbnail);
  EXPECT_EQ(thumbnail->width(), 32u);
  EXPECT_EQ(thumbnail->height(), 24u);
  expectQuadrants(thumbnail, 32);
}

TEST(VideoCodec, TheDisplayMatrixTurnsThumbnailsAsFFmpegItselfShowsThem) {
  auto source = openSource("public.mpeg-4", fixture("rotated-clip.mp4"));
  ASSERT_TRUE(source);
  auto properties = source->metadataWithOptions(std::nullopt);
  ASSERT_TRUE(properties);
  EXPECT_EQ(number(*properties, kCGImagePropertyOrientation), 8);
  // Unturned as an image (the orientation is metadata), turned as a thumbnail when asked.
  expectQuadrants(source->newImage(), 24);
  auto turned = source->newThumbnailWithOptions(thumbnailOptions(true, false, true, 0, 0));
  ASSERT_TRUE(turned);
  auto expected = openSource("public.png", fixture("rotated-expected.png"))->newImage();
  ASSERT_TRUE(expected);
  ASSERT_EQ(turned->width(), expected->width());
  ASSERT_EQ(turned->height(), expected->height());
  for (double fx : {0.25, 0.75})
    for (double fy : {0.25, 0.75}) {
      const auto want = pixelAt(expected, std::size_t(fx * expected->width()), std::size_t(fy * expected->height()));
      EXPECT_TRUE(colourNear(turned, fx, fy, {want[0], want[1], want[2]}, 24));
    }
}

TEST(VideoCodec, DateLocationDurationAndCodecFromTheContainer) {
  auto mp4 = openSource("public.mpeg-4", fixture("quadrants-clip.mp4"))->metadataWithOptions(std::nullopt);
  ASSERT_TRUE(mp4);
  EXPECT_EQ(number(*mp4, kCGImagePropertyPixelWidth), 64);
  EXPECT_EQ(text(group(*mp4, kCGImagePropertyExifDictionary), kCGImagePropertyExifDateTimeOriginal), "2024:05:01 10:00:00");
  EXPECT_EQ(text(group(*mp4, kCGImagePropertyExifDictionary), kCGImagePropertyExifOffsetTimeOriginal), "+00:00");
  const MCDictionary& gps = group(*mp4, kCGImagePropertyGPSDictionary);
  EXPECT_NEAR(number(gps, kCGImagePropertyGPSLatitude), 48.8584, 1e-6);
  EXPECT_EQ(text(gps, kCGImagePropertyGPSLatitudeRef), "N");
  EXPECT_NEAR(number(gps, kCGImagePropertyGPSLongitude), 2.2945, 1e-6);
  EXPECT_EQ(text(gps, kCGImagePropertyGPSLongitudeRef), "E");
  EXPECT_NEAR(number(gps, kCGImagePropertyGPSAltitude), 35, 1e-6);
  EXPECT_EQ(number(gps, kCGImagePropertyGPSAltitudeRef), 0);
  const MCDictionary& movie = group(*mp4, kMCImagePropertyMovieDictionary);
  EXPECT_NEAR(number(movie, kMCImagePropertyMovieDuration), 3.0, 0.15);
  EXPECT_EQ(text(movie, kMCImagePropertyMovieCodec), "h264");
  EXPECT_NEAR(number(movie, kMCImagePropertyMovieFrameRate), 10, 0.01);

  auto hevc = openSource("com.apple.quicktime-movie", fixture("quadrants-hevc.mov"));
  ASSERT_TRUE(hevc);
  auto mov = hevc->metadataWithOptions(std::nullopt);
  ASSERT_TRUE(mov);
  EXPECT_EQ(text(group(*mov, kMCImagePropertyMovieDictionary), kMCImagePropertyMovieCodec), "hevc");
  EXPECT_EQ(text(group(*mov, kCGImagePropertyExifDictionary), kCGImagePropertyExifDateTimeOriginal), "2023:08:15 18:30:00");
  const MCDictionary& south = group(*mov, kCGImagePropertyGPSDictionary);
  EXPECT_NEAR(number(south, kCGImagePropertyGPSLatitude), 33.8568, 1e-6);
  EXPECT_EQ(text(south, kCGImagePropertyGPSLatitudeRef), "S");
  EXPECT_EQ(text(south, kCGImagePropertyGPSLongitudeRef), "E");
  EXPECT_EQ(MCDictionaryGet(south, kCGImagePropertyGPSAltitude), nullptr);
  expectQuadrants(hevc->newImage(), 24);
}

TEST(VideoCodec, BadClipsGiveNothingWithALogLineAndMemoryClipsNeedNoFile) {
  LogCapture log;
  ASSERT_TRUE(log.available());
  EXPECT_EQ(openSource("public.mpeg-4", fixture("audio-only.mp4")), nullptr);
  EXPECT_TRUE(log.contains("it has no video stream")) << log.text();
  EXPECT_EQ(openSource("public.mpeg-4", fixture("garbage.mp4")), nullptr);
  EXPECT_EQ(openSource("public.mpeg-4", fixture("missing.mp4")), nullptr);
  EXPECT_TRUE(log.contains("not a file FFmpeg can read")) << log.text();
  // Cut short after the black opening: the index is whole, so it opens, and the last frame that
  // could be decoded stands in for the one a tenth in.
  auto truncated = openSource("public.mpeg-4", fixture("truncated-clip.mp4"));
  ASSERT_TRUE(truncated);
  auto partial = truncated->newImage();
  ASSERT_TRUE(partial);
  EXPECT_EQ(partial->width(), 64u);

  // The decode budget counts the frame's pixels: 64 × 48 is over a budget of 3000.
  auto codec = codecFor("public.mpeg-4");
  auto options = MCImageSourceOptions::create("public.mpeg-4");
  options->maxDecodePixelCount = 3000;
  auto tight = codec->imageSourceWithURL(fixture("quadrants-clip.mp4"), *options);
  ASSERT_TRUE(tight);
  EXPECT_EQ(tight->newImage(), nullptr);
  EXPECT_TRUE(log.contains("Refused to decode the video")) << log.text();

  // The same clip from bytes in memory.
  std::ifstream file(fixture("quadrants-clip.mp4"), std::ios::binary);
  auto bytes = std::make_shared<const MCData>(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
  auto inMemory = codec->imageSourceWithData(bytes, *MCImageSourceOptions::create("public.mpeg-4"));
  ASSERT_TRUE(inMemory);
  expectQuadrants(inMemory->newImage(), 24);
  EXPECT_EQ(codec->imageSourceWithData(std::make_shared<const MCData>(MCData(100, 7)),
                                       *MCImageSourceOptions::create("public.mpeg-4")),
            nullptr);
}

// The clip's location text is rewritten in place (the same length, so the container stays whole):
// only numbers within ±90 and ±180 make a {GPS}; "nan", infinities and hexadecimal are no location.
TEST(VideoCodec, ALocationThatIsNotANumberInRangeIsNoLocation) {
  std::ifstream file(fixture("quadrants-hevc.mov"), std::ios::binary);
  const MCData original((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
  const std::string written = "-33.8568+151.2153/";
  const auto at = std::search(original.begin(), original.end(), written.begin(), written.end());
  ASSERT_NE(at, original.end());
  auto codec = codecFor("com.apple.quicktime-movie");
  ASSERT_TRUE(codec);
  const auto propertiesWithLocation = [&](std::string location) {
    location.resize(written.size(), ' ');
    MCData bytes = original;
    std::copy(location.begin(), location.end(), bytes.begin() + (at - original.begin()));
    auto source = codec->imageSourceWithData(std::make_shared<const MCData>(std::move(bytes)),
                                             *MCImageSourceOptions::create("com.apple.quicktime-movie"));
    auto properties = source ? source->metadataWithOptions(std::nullopt) : std::nullopt;
    return properties.value_or(MCDictionary{{"opened", MCValue(false)}});
  };

  const MCDictionary control = propertiesWithLocation("-33.8568+151.2153/");
  ASSERT_NE(MCDictionaryGet(control, kCGImagePropertyGPSDictionary), nullptr) << "the clip's own location";
  for (const char* location : {"+nan+nan/", "+NAN-nan/", "+inf-inf/", "-33.8568+nan/", "+nan+151.2153/",
                               "+infinity+0/", "+0x1p4+0x1p5/", "+91.0+151.2153/", "-33.8568+180.5/",
                               "+1e1+2/", "33.8+151.2/", "+/"}) {
    const MCDictionary properties = propertiesWithLocation(location);
    EXPECT_EQ(MCDictionaryGet(properties, "opened"), nullptr) << location;
    EXPECT_EQ(MCDictionaryGet(properties, kCGImagePropertyGPSDictionary), nullptr) << location;
  }
  // The edges of the ranges are places; an altitude that is not a number is left out alone.
  const MCDictionary edge = propertiesWithLocation("-90+180+nan/");
  const MCDictionary& gps = group(edge, kCGImagePropertyGPSDictionary);
  EXPECT_EQ(number(gps, kCGImagePropertyGPSLatitude), 90);
  EXPECT_EQ(text(gps, kCGImagePropertyGPSLatitudeRef), "S");
  EXPECT_EQ(number(gps, kCGImagePropertyGPSLongitude), 180);
  EXPECT_EQ(MCDictionaryGet(gps, kCGImagePropertyGPSAltitude), nullptr);
  EXPECT_EQ(number(group(propertiesWithLocation("+10.5-020.25-12.5/"), kCGImagePropertyGPSDictionary),
                   kCGImagePropertyGPSAltitude),
            12.5);
}
