#include "PlugInTestSupport.h"

#include "../support/LogCapture.h"

#include <vesperon/metadata/MCImagePropertyKeys.h>
#include <vesperon/pixels/MCImageFiles.h>
#include <vesperon/pixels/MCImageTypes.h>

#include <fstream>
#include <iterator>

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
  EXPECT_TRUE(log.contains("64 x 48 pixels is beyond the limit of 1000")) << log.text();
  // From bytes in memory.
  std::ifstream file(fixture("linear.dng"), std::ios::binary);
  auto bytes = std::make_shared<const MCData>(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
  auto inMemory = codecFor("com.adobe.raw-image")->imageSourceWithData(bytes, *MCImageSourceOptions::create("com.adobe.raw-image"));
  ASSERT_TRUE(inMemory);
  EXPECT_TRUE(inMemory->newImage());
}
