#include "PlugInTestSupport.h"

#include "../support/ClaimedSizeFiles.h"
#include "../support/LogCapture.h"

#include <vesperon/codecs/MCImageReader.h>

#include <vesperon/metadata/MCImagePropertyKeys.h>

#include <sys/resource.h>

#include <fstream>
#include <iterator>

TEST(PNGCodec, DecodesEveryColourTypeToPremultipliedRGBA) {
  auto rgba = openSource("public.png", fixture("quadrants.png"))->newImage();
  ASSERT_TRUE(rgba);
  EXPECT_EQ(rgba->width(), 64u);
  EXPECT_EQ(rgba->height(), 48u);
  EXPECT_TRUE(colourNear(rgba, 0.25, 0.25, kRed, 0));
  EXPECT_TRUE(colourNear(rgba, 0.75, 0.25, kGreen, 0));
  // The bottom right is white at half opacity: premultiplied to about 128.
  EXPECT_TRUE(colourNear(rgba, 0.75, 0.75, {128, 128, 128}, 1));
  EXPECT_NEAR(pixelAt(rgba, 48, 36)[3], 128, 1);

  auto gray = openSource("public.png", fixture("gray16.png"))->newImage();
  ASSERT_TRUE(gray);
  EXPECT_TRUE(colourNear(gray, 0.25, 0.5, {60, 60, 60}, 1));
  EXPECT_TRUE(colourNear(gray, 0.75, 0.5, {200, 200, 200}, 1));

  expectQuadrants(openSource("public.png", fixture("palette.png"))->newImage(), 0);

  auto half = openSource("public.png", fixture("palette.png"), 2)->newImage();
  ASSERT_TRUE(half);
  EXPECT_EQ(half->width(), 32u);
  EXPECT_EQ(half->height(), 24u);
}

TEST(PNGCodec, ThumbnailsComeOnlyFromTheImage) {
  auto source = openSource("public.png", fixture("exif.png"));
  ASSERT_TRUE(source);
  EXPECT_FALSE(source->newThumbnailWithOptions(thumbnailOptions(false, false, true, 0, 32)));

  // exif.png holds the quadrants with orientation 6: turned, blue comes to the top left.
  auto turned = source->newThumbnailWithOptions(thumbnailOptions(false, true, true, 0, 32));
  ASSERT_TRUE(turned);
  EXPECT_EQ(turned->width(), 24u);
  EXPECT_EQ(turned->height(), 32u);
  EXPECT_TRUE(colourNear(turned, 0.25, 0.25, kBlue));
  auto plain = source->newThumbnailWithOptions(thumbnailOptions(false, true, false, 0, 0));
  EXPECT_EQ(plain->width(), 64u);
}

TEST(PNGCodec, MetadataWithAndWithoutExif) {
  auto exif = openSource("public.png", fixture("exif.png"))->metadataWithOptions(std::nullopt);
  ASSERT_TRUE(exif);
  EXPECT_EQ(*MCDictionaryGet(*exif, kCGImagePropertyPixelWidth), MCValue(64));
  EXPECT_EQ(*MCDictionaryGet(*exif, kCGImagePropertyOrientation), MCValue(6));
  const MCDictionary* tiff = MCDictionaryGetDictionary(*exif, kCGImagePropertyTIFFDictionary);
  ASSERT_TRUE(tiff);
  EXPECT_EQ(*MCDictionaryGet(*tiff, kCGImagePropertyTIFFMake), MCValue("Vesperon"));

  auto gray = openSource("public.png", fixture("gray16.png"))->metadataWithOptions(std::nullopt);
  EXPECT_EQ(*MCDictionaryGet(*gray, kCGImagePropertyDepth), MCValue(16));
  EXPECT_EQ(*MCDictionaryGet(*gray, kCGImagePropertyColorModel), MCValue("Gray"));
  EXPECT_EQ(*MCDictionaryGet(*gray, kCGImagePropertyHasAlpha), MCValue(false));
  auto rgba = openSource("public.png", fixture("quadrants.png"))->metadataWithOptions(std::nullopt);
  EXPECT_EQ(*MCDictionaryGet(*rgba, kCGImagePropertyHasAlpha), MCValue(true));
  EXPECT_FALSE(MCDictionaryGet(*rgba, kCGImagePropertyTIFFDictionary));
}

TEST(PNGCodec, BadFilesGiveNothing) {
  EXPECT_FALSE(openSource("public.png", fixture("empty.jpg")));
  EXPECT_FALSE(openSource("public.png", fixture("quadrants.jpg")));
  auto truncated = openSource("public.png", fixture("truncated.png"));
  if (truncated) {
    EXPECT_FALSE(truncated->newImage());
    EXPECT_FALSE(truncated->newThumbnailWithOptions(thumbnailOptions(false, true, true, 0, 16)));
  }
}

TEST(PNGCodec, AppliesTheEmbeddedColourProfile) {
  // ImageMagick writes stored (128, 0, 0); exiftool adds the profile as an iCCP chunk.
  const std::filesystem::path dir = scratchDirectory("png-icc"), png = dir / "swapped.png", icc = dir / "swapped.icc";
  const std::vector<uint8_t> profile = swappedPrimariesProfile();
  std::ofstream(icc, std::ios::binary).write(reinterpret_cast<const char*>(profile.data()), std::streamsize(profile.size()));
  const std::string make = "convert -size 16x8 'xc:rgb(128,0,0)' -depth 8 'PNG24:" + png.string() +
                           "' && exiftool -q -overwrite_original '-ICC_Profile<=" + icc.string() + "' '" + png.string() + "'";
  ASSERT_EQ(std::system(make.c_str()), 0) << make;
  auto source = openSource("public.png", png);
  ASSERT_TRUE(source);
  EXPECT_TRUE(colourNear(source->newImage(), 0.5, 0.5, {0, 188, 0}, 6));
  std::filesystem::remove_all(dir);
}

// A header that claims 100000 × 100000 pixels in a 58 KB file: the decode is refused with one log
// line before its 40 GB are asked for; the header's facts are still read. The budget is the
// application's to raise, and a small one refuses a small image too.
TEST(PNGCodec, DecodeBudgetRefusesHugeImagesBeforeAllocating) {
  LogCapture log;
  ASSERT_TRUE(log.available());
  std::filesystem::path dir = scratchDirectory("png-budget");
  claimed_size::writePNG(dir / "huge.png", 100000, 100000);
  EXPECT_LT(std::filesystem::file_size(dir / "huge.png"), 60000u);
  auto huge = openSource("public.png", dir / "huge.png");
  ASSERT_TRUE(huge);
  EXPECT_FALSE(huge->newImage());
  EXPECT_FALSE(huge->newThumbnailWithOptions(thumbnailOptions(false, true, true, 0, 256)));
  EXPECT_TRUE(log.contains("Refused to decode the image of " + (dir / "huge.png").string() +
                           ": 100000 x 100000 pixels is beyond the limit of 128000000"))
      << log.text();
  auto metadata = huge->metadataWithOptions(std::nullopt);
  ASSERT_TRUE(metadata);
  EXPECT_EQ(*MCDictionaryGet(*metadata, kCGImagePropertyPixelWidth), MCValue(100000));

  const auto quadrants = fixture("quadrants.png");  // 64 × 48
  MCImageReadingOptions options;
  options.maxDecodePixelCount = 3071;
  EXPECT_FALSE(MCImageReader::newImageWithURL(quadrants, "public.png", options, nullptr));
  options.maxDecodePixelCount = 3072;
  EXPECT_TRUE(MCImageReader::newImageWithURL(quadrants, "public.png", options, nullptr));
  std::filesystem::remove_all(dir);
}

// libpng sizes a chunk's buffer by the length the file claims; a 300-byte file claiming a 1.7 GB
// text chunk made every read allocate and clear 1.7 GB. A claimed length far past the end of the
// file must cost nothing, whatever the chunk.
TEST(PNGCodec, AChunkClaimingGigabytesCostsNoMemory) {
  std::ifstream in(fixture("quadrants.png"), std::ios::binary);
  const std::string valid((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
  ASSERT_GT(valid.size(), 33u);
  const auto peakKilobytes = [] {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
  };
  for (const char* type : {"tEXt", "zTXt", "iTXt", "eXIf", "iCCP", "sPLT", "zzZz"}) {
    // After the signature and IHDR: length 0x67000000, the type, eight bytes that end the file.
    const std::string chunk = std::string("\x67\x00\x00\x00", 4) + type + "12345678";
    const std::filesystem::path file = scratchDirectory("png-huge-chunk") / (std::string(type) + ".png");
    std::ofstream(file, std::ios::binary) << valid.substr(0, 33) << chunk << valid.substr(33);
    const long before = peakKilobytes();
    auto source = openSource("public.png", file);
    if (source) {
      EXPECT_FALSE(source->newImage()) << type << ": the rest of the file is inside the claimed chunk";
      (void)source->metadataWithOptions(MCMetadataReadingOptions());
    }
    EXPECT_LT(peakKilobytes() - before, 64 * 1024) << type << ": the peak memory grew by the claimed length";
  }
}
