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

#include <vesperon/pixels/MCCachableImage.h>

TEST(CachableImage, ScalesOncePerSize) {
  auto image = MCRasterImage::createRGBA8(2, 2, {255, 0, 0, 255, 255, 0, 0, 255, 0, 0, 255, 255, 0, 0, 255, 255});
  MCCachableImage cachable(image);
  EXPECT_EQ(cachable.cachedImage(), image);
  EXPECT_EQ(cachable.cachedSize(), MCMakeSize(2, 2));

  auto context = MCGraphicsContext::create(4, 4, 8, 0, MCColorSpace::sRGB(), MCImageAlphaPremultipliedLast);
  context->setInterpolationQuality(MCInterpolationQuality::None);
  cachable.drawInRect(*context, MCMakeRect(0, 0, 2, 2));
  EXPECT_EQ(cachable.cachedImage(), image) << "same size: no new copy";
  cachable.drawInRect(*context, MCMakeRect(0, 0, 4, 4));
  auto copy = cachable.cachedImage();
  ASSERT_TRUE(copy);
  EXPECT_NE(copy, image);
  EXPECT_EQ(copy->width(), 4u);
  cachable.drawInRect(*context, MCMakeRect(0, 0, 4, 4));
  EXPECT_EQ(cachable.cachedImage(), copy) << "drawn again at that size: the copy is reused";
  const uint8_t* data = context->data();
  EXPECT_EQ(data[0], 255) << "top row red";
  EXPECT_EQ(data[3 * 16 + 2], 255) << "bottom row blue";

  // A fractional size: the copy has whole pixels, and only the covered part is drawn.
  auto fresh = MCGraphicsContext::create(4, 4, 8, 0, MCColorSpace::sRGB(), MCImageAlphaPremultipliedLast);
  cachable.drawInRect(*fresh, MCMakeRect(0, 0, 2.5, 2.5));
  EXPECT_EQ(cachable.cachedImage()->width(), 3u);
  const uint8_t* d = fresh->data();
  EXPECT_EQ(d[3 * 16 + 2], 255) << "bottom left blue";
  EXPECT_EQ(d[0 * 16 + 3], 0) << "the top row lies outside the 2.5-high rectangle";
  EXPECT_EQ(d[3 * 16 + 3 * 4 + 3], 0) << "the fourth column too";
}
