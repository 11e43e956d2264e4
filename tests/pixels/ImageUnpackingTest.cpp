#include <vesperon/pixels/MCImageUnpacking.h>

#include <gtest/gtest.h>

namespace {
std::vector<uint8_t> bytesOf(const std::shared_ptr<MCFastData>& data) {
  return data ? std::vector<uint8_t>(data->bytes(), data->bytes() + data->length()) : std::vector<uint8_t>{};
}
}  // namespace

TEST(ImageUnpacking, GrayAndRGBAAtTheImagesSize) {
  auto rgba = MCRasterImage::createRGBA8(2, 1, {255, 255, 255, 255, 0, 0, 0, 255});
  auto gray = MCCopyGrayscaleDataFromImage(rgba);
  ASSERT_TRUE(gray);
  EXPECT_EQ(bytesOf(gray), (std::vector<uint8_t>{255, 0}));
  EXPECT_EQ(bytesOf(MCCopyRGBADataFromImage(rgba)), rgba->pixels()) << "RGB in its own space: the same bytes";

  // A gray image keeps its own space (no conversion) and spreads over RGBA in sRGB.
  auto linear = MCRasterImage::create(3, 1, 8, 8, 3, MCColorSpace::linearGray(), MCImageAlphaNone, {0, 55, 255});
  EXPECT_EQ(bytesOf(MCCopyGrayscaleDataFromImage(linear)), (std::vector<uint8_t>{0, 55, 255}));
  auto spread = bytesOf(MCCopyRGBADataFromImage(linear));
  ASSERT_EQ(spread.size(), 12u);
  EXPECT_EQ(spread[4], spread[5]);
  EXPECT_EQ(spread[5], spread[6]);
  EXPECT_NEAR(spread[4], 128, 2) << "linear 55 is about sRGB 128";
  EXPECT_EQ(spread[7], 255);

  EXPECT_FALSE(MCCopyGrayscaleDataFromImage(nullptr));
  EXPECT_FALSE(MCCopyRGBADataFromImage(nullptr));
}

TEST(ImageUnpacking, LinearDataAtAGivenSize) {
  std::vector<uint8_t> pixels(4 * 2 * 4);
  for (std::size_t i = 0; i < pixels.size(); ++i) pixels[i] = i % 4 == 3 ? 255 : 128;
  auto image = MCRasterImage::createRGBA8(4, 2, pixels);
  auto gray = MCCopyLinearDataFromAnyImage_1C_8(image, 2.9, 1);
  ASSERT_TRUE(gray);
  ASSERT_EQ(gray->length(), 2u) << "2 × 1 after truncation";
  EXPECT_NEAR(gray->bytes()[0], 55, 2);
  auto rgba = MCCopyLinearDataFromAnyImage_RGBA8(image, 2, 2);
  ASSERT_TRUE(rgba);
  ASSERT_EQ(rgba->length(), 16u);
  EXPECT_NEAR(rgba->bytes()[0], 55, 2);
  EXPECT_EQ(rgba->bytes()[3], 255) << "the skipped byte";
  EXPECT_FALSE(MCCopyLinearDataFromAnyImage_1C_8(image, 0.5, 1));
  EXPECT_FALSE(MCCopyLinearDataFromAnyImage_RGBA8(image, 2, 0));
  EXPECT_FALSE(MCCopyLinearDataFromAnyImage_RGBA8(nullptr, 2, 2));
}
