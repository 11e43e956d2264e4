#include <vesperon/pixels/MCImageRenderer.h>

#include <gtest/gtest.h>

TEST(ImageRenderer, DrawsIntoOneLastingContext) {
  auto renderer = MCImageRenderer::create(MCMakeSize(4, 2), 1);
  ASSERT_TRUE(renderer);
  EXPECT_EQ(renderer->format()->bitmapInfo(), uint32_t(MCImageAlphaNoneSkipFirst));
  EXPECT_EQ(renderer->format()->colorSpace(), MCColorSpace::sRGB());
  EXPECT_EQ(renderer->contextBounds(), MCMakeRect(0, 0, 4, 2));

  // A refused drawing leaves its marks for the next one.
  auto none = renderer->drawWithBlock([](MCGraphicsContext& context, const MCRect&) {
    context.setRGBFillColor(1, 0, 0, 1);
    context.fillRect(MCMakeRect(0, 0, 2, 2));
    return false;
  });
  EXPECT_FALSE(none);
  auto image = renderer->drawWithBlock([](MCGraphicsContext& context, const MCRect& bounds) {
    context.setRGBFillColor(0, 0, 1, 1);
    context.fillRect(MCMakeRect(bounds.size.width / 2, 0, bounds.size.width / 2, bounds.size.height));
    return true;
  });
  ASSERT_TRUE(image);
  EXPECT_EQ(image->width(), 4u);
  EXPECT_EQ(image->height(), 2u);
  EXPECT_EQ(image->bitmapInfo(), uint32_t(MCImageAlphaNoneSkipFirst));
  const uint8_t* row = image->row(1);
  EXPECT_EQ(std::vector<uint8_t>(row, row + 16),
            (std::vector<uint8_t>{255, 255, 0, 0, 255, 255, 0, 0, 255, 0, 0, 255, 255, 0, 0, 255}));
}

TEST(ImageRenderer, ScaleAndFailures) {
  auto renderer = MCImageRenderer::create(MCMakeSize(4, 4), 2);
  ASSERT_TRUE(renderer);
  EXPECT_EQ(renderer->contextBounds(), MCMakeRect(0, 0, 8, 8));
  auto image = renderer->drawWithBlock([](MCGraphicsContext& context, const MCRect&) {
    context.setGrayFillColor(1, 1);
    context.fillRect(MCMakeRect(0, 0, 1, 1));  // two pixels by two at scale 2
    return true;
  });
  ASSERT_TRUE(image);
  EXPECT_EQ(image->width(), 4u);
  EXPECT_EQ(image->row(3)[5], 255);
  EXPECT_EQ(image->row(2)[5], 255);
  EXPECT_EQ(image->row(1)[5], 0);

  EXPECT_FALSE(MCImageRenderer::create(MCMakeSize(0, 4), 1));
  EXPECT_FALSE(MCImageRenderer::create(MCMakeSize(4, 0.5), 1));
  auto alphaOnly = std::make_shared<MCImageRendererFormat>(MCImageAlphaOnly, MCColorSpace::sRGB());
  EXPECT_FALSE(MCImageRenderer::create(MCMakeSize(4, 4), 1, alphaOnly));
  auto noSpace = std::make_shared<MCImageRendererFormat>(MCImageAlphaPremultipliedLast, nullptr);
  EXPECT_FALSE(MCImageRenderer::create(MCMakeSize(4, 4), 1, noSpace));
}
