#include <vesperon/pixels/MCImageCreation.h>

#include <gtest/gtest.h>

namespace {

MCRasterImageRef solid(std::size_t w, std::size_t h, std::array<uint8_t, 4> rgba) {
  std::vector<uint8_t> pixels(w * h * 4);
  for (std::size_t i = 0; i < pixels.size(); ++i) pixels[i] = rgba[i % 4];
  return MCRasterImage::createRGBA8(w, h, std::move(pixels));
}

// Each pixel's red is its column, green its row.
MCRasterImageRef coordinates(std::size_t w, std::size_t h) {
  std::vector<uint8_t> pixels;
  for (std::size_t y = 0; y < h; ++y)
    for (std::size_t x = 0; x < w; ++x) pixels.insert(pixels.end(), {uint8_t(x), uint8_t(y), 0, 255});
  return MCRasterImage::createRGBA8(w, h, std::move(pixels));
}

}  // namespace

TEST(ImageCreation, MaxPixelSizeScales) {
  auto large = solid(400, 300, {10, 20, 30, 255});
  auto shrunk = MCCreateImageWithMaxPixelSize_C4_8(large, 100);
  ASSERT_TRUE(shrunk);
  EXPECT_EQ(shrunk->width(), 100u);
  EXPECT_EQ(shrunk->height(), 75u);
  EXPECT_EQ(std::vector<uint8_t>(shrunk->row(40) + 200, shrunk->row(40) + 204), (std::vector<uint8_t>{10, 20, 30, 255}))
      << "a constant image stays constant";
  EXPECT_EQ(MCCreateImageWithMaxPixelSize_C4_8(large, 0), large);
  EXPECT_EQ(MCCreateImageWithMaxPixelSize_C4_8(large, 400), large);
  EXPECT_FALSE(MCCreateImageWithMaxPixelSize_C4_8(nullptr, 100));
  // A smaller image is enlarged: the scale is not held to 1.
  auto small = solid(50, 40, {10, 20, 30, 255});
  auto enlarged = MCCreateImageWithMaxPixelSize_C4_8(small, 100);
  ASSERT_TRUE(enlarged);
  EXPECT_EQ(enlarged->width(), 100u);
  EXPECT_EQ(enlarged->height(), 80u);
  // Sides are rounded up: 3 × 1 at most 2 is 2 × 1 (ceil of 0.67).
  auto strip = MCCreateImageWithMaxPixelSize_C4_8(solid(3, 1, {1, 2, 3, 255}), 2);
  ASSERT_TRUE(strip);
  EXPECT_EQ(strip->width(), 2u);
  EXPECT_EQ(strip->height(), 1u);
}

TEST(ImageCreation, ScalingResamplesAndKeepsTheLayout) {
  auto pair = MCRasterImage::createRGBA8(2, 1, {0, 0, 0, 255, 200, 100, 50, 255});
  auto one = MCCreateImageWithSize_C4_8(pair, 1, 1);
  ASSERT_TRUE(one);
  EXPECT_EQ(std::vector<uint8_t>(one->row(0), one->row(0) + 4), (std::vector<uint8_t>{100, 50, 25, 255}));
  EXPECT_EQ(one->bitmapInfo(), pair->bitmapInfo());
  EXPECT_EQ(MCCreateImageWithSize_C4_8(pair, 2.9, 1.2), pair) << "sizes truncate";
  EXPECT_FALSE(MCCreateImageWithSize_C4_8(pair, 0.5, 0.7));
  EXPECT_FALSE(MCCreateImageWithSize_C4_8(nullptr, 4, 4));

  // A gray image is first made RGBA.
  auto gray = MCRasterImage::create(2, 2, 8, 8, 2, MCColorSpace::genericGrayGamma2_2(), MCImageAlphaNone, {9, 9, 9, 9});
  auto grayScaled = MCCreateImageWithSize_C4_8(gray, 4, 4);
  ASSERT_TRUE(grayScaled);
  EXPECT_EQ(grayScaled->bitsPerPixel(), 32u);
  EXPECT_EQ(grayScaled->row(3)[0], grayScaled->row(3)[2]);
}

TEST(ImageCreation, RedrawingKeepsIdentityWhenNothingChanges) {
  auto image = solid(3, 2, {255, 0, 0, 255});
  EXPECT_EQ(MCCreateImageFromImage(image, 3, 2, 8, MCColorSpace::sRGB(), MCImageAlphaPremultipliedLast), image);
  EXPECT_EQ(MCCreateImageFromImageWithSRGBColorSpace(image), image);
  EXPECT_EQ(MCCopyImageWithRGBColorspace_4C_8(image), image);
  // An equal colour space that is another object redraws.
  auto sameProfile = MCColorSpace::createWithICCData(MCColorSpace::sRGB()->iccData());
  auto redrawn = MCCreateImageFromImage(image, 3, 2, 8, sameProfile, MCImageAlphaPremultipliedLast);
  ASSERT_TRUE(redrawn);
  EXPECT_NE(redrawn, image);
  EXPECT_EQ(redrawn->colorSpace(), sameProfile);
  EXPECT_EQ(redrawn->pixels(), image->pixels());
  EXPECT_FALSE(MCCreateImageFromImage(image, 3, 2, 8, MCColorSpace::sRGB(), MCImageAlphaOnly));
  EXPECT_FALSE(MCCreateImageFromImage(nullptr, 3, 2, 8, MCColorSpace::sRGB(), MCImageAlphaPremultipliedLast));

  // A gray image becomes RGB premultiplied RGBA with equal channels.
  auto gray = MCRasterImage::create(1, 1, 8, 8, 1, MCColorSpace::genericGrayGamma2_2(), MCImageAlphaNone, {255});
  auto rgba = MCCopyImageWithRGBColorspace_4C_8(gray);
  ASSERT_TRUE(rgba);
  EXPECT_EQ(rgba->alphaInfo(), MCImageAlphaPremultipliedLast);
  EXPECT_EQ(rgba->colorSpace(), MCColorSpace::sRGB());
  EXPECT_EQ(std::vector<uint8_t>(rgba->row(0), rgba->row(0) + 4), (std::vector<uint8_t>{255, 255, 255, 255}));
}

TEST(ImageCreation, RedrawnSizesAndLayouts) {
  auto image = solid(4, 4, {0, 128, 255, 255});
  auto small = MCImageCreateWithSize(image, 2.7, 1.2);
  ASSERT_TRUE(small);
  EXPECT_EQ(small->width(), 2u);
  EXPECT_EQ(small->height(), 1u);
  EXPECT_EQ(small->alphaInfo(), MCImageAlphaNoneSkipLast);
  EXPECT_EQ(small->colorSpace(), MCColorSpace::sRGB());
  EXPECT_EQ(std::vector<uint8_t>(small->row(0), small->row(0) + 4), (std::vector<uint8_t>{0, 128, 255, 255}));
  EXPECT_FALSE(MCImageCreateWithSize(image, 0.5, 4));
  EXPECT_FALSE(MCImageCreateWithSize(image, 4, -2));
  EXPECT_FALSE(MCImageCreateWithSize(nullptr, 4, 4));

  auto gray = MCRasterImage::create(2, 2, 8, 8, 2, MCColorSpace::linearGray(), MCImageAlphaNone, {7, 7, 7, 7});
  auto graySmall = MCImageCreateWithSize(gray, 1, 1);
  ASSERT_TRUE(graySmall);
  EXPECT_EQ(graySmall->alphaInfo(), MCImageAlphaNone);
  EXPECT_EQ(graySmall->colorSpace(), MCColorSpace::linearGray());
  EXPECT_EQ(graySmall->row(0)[0], 7);
}

TEST(ImageCreation, AspectRatioCutsTheCentre) {
  auto image = coordinates(40, 30);
  auto square = MCImageCreateWithAspectRatio(image, 1);
  ASSERT_TRUE(square);
  EXPECT_EQ(square->width(), 30u);
  EXPECT_EQ(square->height(), 30u);
  EXPECT_EQ(square->row(0)[0], 5) << "x origin (40 − 30) / 2";
  auto wide = MCImageCreateWithAspectRatio(image, 4);  // too tall: 40 × 10 from y 10
  ASSERT_TRUE(wide);
  EXPECT_EQ(wide->width(), 40u);
  EXPECT_EQ(wide->height(), 10u);
  EXPECT_EQ(wide->row(0)[1], 10);
  auto odd = MCImageCreateWithAspectRatio(image, 0.5);  // 15 × 30 from x 12.5: integral 12…28
  ASSERT_TRUE(odd);
  EXPECT_EQ(odd->width(), 16u);
  EXPECT_EQ(odd->row(0)[0], 12);
  EXPECT_FALSE(MCImageCreateWithAspectRatio(image, 0));
  EXPECT_FALSE(MCImageCreateWithAspectRatio(image, -1));
  EXPECT_FALSE(MCImageCreateWithAspectRatio(image, std::nan("")));
  EXPECT_FALSE(MCImageCreateWithAspectRatio(nullptr, 1));
}
