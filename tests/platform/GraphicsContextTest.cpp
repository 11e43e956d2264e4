#include <vesperon/platform/MCGraphicsContext.h>

#include <gtest/gtest.h>

namespace {
std::vector<uint8_t> bytes(const uint8_t* p, std::size_t n) { return {p, p + n}; }
}  // namespace

TEST(GraphicsContext, RefusesContextsWithoutALayout) {
  auto srgb = MCColorSpace::sRGB();
  EXPECT_FALSE(MCGraphicsContext::create(0, 4, 8, 0, srgb, MCImageAlphaPremultipliedLast));
  EXPECT_FALSE(MCGraphicsContext::create(4, 0, 8, 0, srgb, MCImageAlphaPremultipliedLast));
  EXPECT_FALSE(MCGraphicsContext::create(4, 4, 8, 0, nullptr, MCImageAlphaPremultipliedLast));
  EXPECT_FALSE(MCGraphicsContext::create(4, 4, 4, 0, srgb, MCImageAlphaPremultipliedLast));
  EXPECT_FALSE(MCGraphicsContext::create(4, 4, 8, 15, srgb, MCImageAlphaPremultipliedLast)) << "row bytes below 16";
  EXPECT_FALSE(MCGraphicsContext::create(4, 4, 8, 0, srgb, MCImageAlphaOnly));
  EXPECT_FALSE(MCGraphicsContext::create(40000, 4, 8, 0, srgb, MCImageAlphaPremultipliedLast));
  EXPECT_FALSE(MCGraphicsContext::create(4, 4, 8, 0, std::make_shared<MCColorSpace>("CMYK", MCColorSpace::Model::CMYK), 0));

  auto context = MCGraphicsContext::create(3, 2, 16, 0, MCColorSpace::genericGrayGamma2_2(), MCImageAlphaNone);
  ASSERT_TRUE(context);
  EXPECT_EQ(context->bitsPerPixel(), 16u);
  EXPECT_EQ(context->bytesPerRow(), 6u);
  auto padded = MCGraphicsContext::create(3, 2, 8, 16, MCColorSpace::sRGB(), MCImageAlphaNoneSkipLast);
  ASSERT_TRUE(padded);
  EXPECT_EQ(padded->bytesPerRow(), 16u);
  EXPECT_EQ(bytes(padded->data(), 32), std::vector<uint8_t>({0, 0, 0, 255, 0, 0, 0, 255, 0, 0, 0, 255, 0, 0, 0, 0,
                                                             0, 0, 0, 255, 0, 0, 0, 255, 0, 0, 0, 255, 0, 0, 0, 0}))
      << "a fresh context is black; skipped bytes are full, padding stays zero";
}

// The origin is at the bottom left and images stand upright.
TEST(GraphicsContext, PlatformCoordinatesAndUprightImages) {
  auto context = MCGraphicsContext::create(2, 2, 8, 0, MCColorSpace::sRGB(), MCImageAlphaPremultipliedLast);
  ASSERT_TRUE(context);
  context->setRGBFillColor(1, 0, 0, 1);
  context->fillRect(MCMakeRect(0, 0, 1, 1));
  const uint8_t* data = context->data();
  EXPECT_EQ(bytes(data + 8, 4), std::vector<uint8_t>({255, 0, 0, 255})) << "bottom left is the second row's first pixel";
  EXPECT_EQ(bytes(data, 4), std::vector<uint8_t>({0, 0, 0, 0}));

  // A 1×2 image, red on top of blue, drawn over the whole 1×2 context keeps red on top.
  auto image = MCRasterImage::createRGBA8(1, 2, {255, 0, 0, 255, 0, 0, 255, 255});
  auto tall = MCGraphicsContext::create(1, 2, 8, 0, MCColorSpace::sRGB(), MCImageAlphaPremultipliedLast);
  tall->drawImage(MCMakeRect(0, 0, 1, 2), image);
  EXPECT_EQ(bytes(tall->data(), 8), std::vector<uint8_t>({255, 0, 0, 255, 0, 0, 255, 255}));
  // Same again through a translated, scaled transform into a 2×4 context.
  auto big = MCGraphicsContext::create(2, 4, 8, 0, MCColorSpace::sRGB(), MCImageAlphaPremultipliedLast);
  big->setInterpolationQuality(MCInterpolationQuality::None);
  big->translateCTM(1, 0);
  big->scaleCTM(1, 2);
  big->drawImage(MCMakeRect(0, 0, 1, 2), image);
  auto result = big->createImage();
  ASSERT_TRUE(result);
  EXPECT_EQ(result->width(), 2u);
  EXPECT_EQ(result->colorSpace(), MCColorSpace::sRGB());
  EXPECT_EQ(bytes(result->row(0), 8), std::vector<uint8_t>({0, 0, 0, 0, 255, 0, 0, 255}));
  EXPECT_EQ(bytes(result->row(3), 8), std::vector<uint8_t>({0, 0, 0, 0, 0, 0, 255, 255}));
}

TEST(GraphicsContext, BlendModesAlphaAndState) {
  auto context = MCGraphicsContext::create(1, 1, 8, 0, MCColorSpace::sRGB(), MCImageAlphaPremultipliedLast);
  context->setRGBFillColor(0, 0, 1, 1);
  context->fillRect(MCMakeRect(0, 0, 1, 1));
  context->saveGState();
  context->setAlpha(0.5);
  context->setRGBFillColor(1, 0, 0, 1);
  context->fillRect(MCMakeRect(0, 0, 1, 1));
  auto over = bytes(context->data(), 4);
  EXPECT_NEAR(over[0], 128, 1);
  EXPECT_NEAR(over[2], 127, 1);
  EXPECT_EQ(over[3], 255);
  // Copy replaces what is there, alpha included.
  context->setBlendMode(MCBlendMode::Copy);
  context->drawImage(MCMakeRect(0, 0, 1, 1), MCRasterImage::createRGBA8(1, 1, {0, 50, 0, 100}));
  auto copied = bytes(context->data(), 4);
  EXPECT_NEAR(copied[1], 25, 1);
  EXPECT_NEAR(copied[3], 50, 1);
  context->restoreGState();
  context->setRGBFillColor(0, 1, 0, 1);
  context->fillRect(MCMakeRect(0, 0, 1, 1));
  EXPECT_EQ(bytes(context->data(), 4), std::vector<uint8_t>({0, 255, 0, 255})) << "alpha and blend mode restored";
  context->clearRect(MCMakeRect(0, 0, 1, 1));
  EXPECT_EQ(bytes(context->data(), 4), std::vector<uint8_t>({0, 0, 0, 0}));
}

// Layouts Cairo has no format for: gray, skipped bytes, 16 bits.
TEST(GraphicsContext, ConvertsAtTheEdges) {
  auto image = MCRasterImage::createRGBA8(2, 1, {255, 255, 255, 255, 128, 128, 128, 255});
  auto gray = MCGraphicsContext::create(2, 1, 8, 0, MCColorSpace::linearGray(), MCImageAlphaNone);
  gray->drawImage(MCMakeRect(0, 0, 2, 1), image);
  auto g = bytes(gray->data(), 2);
  EXPECT_EQ(g[0], 255);
  EXPECT_NEAR(g[1], 55, 2) << "sRGB 128 is about 21.6% linear";

  auto wide = MCGraphicsContext::create(2, 1, 16, 0, MCColorSpace::sRGB(), MCImageAlphaPremultipliedLast);
  wide->drawImage(MCMakeRect(0, 0, 2, 1), image);
  EXPECT_EQ(bytes(wide->data(), 16), std::vector<uint8_t>({255, 255, 255, 255, 255, 255, 255, 255,
                                                           128, 128, 128, 128, 128, 128, 255, 255}));
  auto wideImage = wide->createImage();
  ASSERT_TRUE(wideImage);
  EXPECT_EQ(wideImage->bitsPerComponent(), 16u);
  EXPECT_EQ(wideImage->bitsPerPixel(), 64u);
  // A 16-bit image drawn back into an 8-bit context gives the same 8-bit pixels.
  auto back = MCGraphicsContext::create(2, 1, 8, 0, MCColorSpace::sRGB(), MCImageAlphaNoneSkipLast);
  back->drawImage(MCMakeRect(0, 0, 2, 1), wideImage);
  EXPECT_EQ(bytes(back->data(), 8), std::vector<uint8_t>({255, 255, 255, 255, 128, 128, 128, 255}));

  // A gray image into an RGB context spreads over the three channels; its alpha travels along.
  auto grayImage = MCRasterImage::create(1, 1, 8, 16, 2, MCColorSpace::genericGrayGamma2_2(), MCImageAlphaLast, {200, 255});
  auto rgb = MCGraphicsContext::create(1, 1, 8, 0, MCColorSpace::sRGB(), MCImageAlphaPremultipliedLast);
  rgb->drawImage(MCMakeRect(0, 0, 1, 1), grayImage);
  auto c = bytes(rgb->data(), 4);
  EXPECT_EQ(c[0], c[1]);
  EXPECT_EQ(c[1], c[2]);
  EXPECT_NEAR(c[0], 200, 4) << "gray 2.2 and sRGB agree closely at the top";
  EXPECT_EQ(c[3], 255);
}
