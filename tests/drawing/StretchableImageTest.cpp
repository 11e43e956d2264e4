// Nine-part images, the image operations under them, and rounded rectangles.
#include <vesperon/drawing/MCStretchableImage.h>

#include <gtest/gtest.h>

namespace {

/// A 30 × 30 image: red corners of 10, green edges, a blue centre, fully opaque.
MCImageRef ninePatch() {
  return MCImageWithSize({30, 30}, 1.0, [](MCGraphicsContext& context) {
    MCColor::greenColor().setFill(context);
    context.fillRect(MCMakeRect(0, 0, 30, 30));
    MCColor::redColor().setFill(context);
    for (double x : {0.0, 20.0})
      for (double y : {0.0, 20.0}) context.fillRect(MCMakeRect(x, y, 10, 10));
    MCColor::blueColor().setFill(context);
    context.fillRect(MCMakeRect(10, 10, 10, 10));
  });
}

uint32_t pixelAt(const MCImage& image, std::size_t x, std::size_t y) {
  const uint8_t* p = image.CGImage()->row(y) + x * 4;
  return uint32_t(p[3]) << 24 | uint32_t(p[2]) << 16 | uint32_t(p[1]) << 8 | p[0];
}

}  // namespace

TEST(StretchableImage, CornersKeepTheirSizeAndTheComposedImageIsKeptPerSize) {
  auto image = MCStretchableImage::create(ninePatch(), {10, 10, 10, 10});
  ASSERT_NE(image, nullptr);
  EXPECT_EQ(MCImagePointSize(*image->topLeftCorner()), MCMakeSize(10, 10));
  EXPECT_EQ(MCImagePointSize(*image->centerFill()), MCMakeSize(10, 10));
  EXPECT_EQ(MCStretchableImage::create(nullptr, {}), nullptr);

  MCImageRef drawn = MCImageWithSize({100, 60}, 1.0, [&](MCGraphicsContext&) {
    image->drawInRect(MCMakeRect(0, 0, 100, 60), MCBlendMode::Normal, 1.0, true);
    image->drawInRect(MCMakeRect(0, 0, 100, 60), MCBlendMode::Normal, 1.0, true);
  });
  EXPECT_EQ(image->numberOfCompositions(), 1);
  // Corners stay 10 wide: red at (5, 5) and (95, 55); the top edge is green at (50, 5); the
  // centre, stretched, blue at (50, 30).
  EXPECT_EQ(pixelAt(*drawn, 5, 5), 0xFFFF0000u);
  EXPECT_EQ(pixelAt(*drawn, 94, 54), 0xFFFF0000u);
  EXPECT_EQ(pixelAt(*drawn, 50, 5), 0xFF00FF00u);
  EXPECT_EQ(pixelAt(*drawn, 50, 30), 0xFF0000FFu);
  EXPECT_EQ(pixelAt(*drawn, 5, 30), 0xFF00FF00u);
  MCImageWithSize({40, 40}, 1.0, [&](MCGraphicsContext&) { image->drawInRect(MCMakeRect(0, 0, 40, 40), MCBlendMode::Normal, 1.0); });
  EXPECT_EQ(image->numberOfCompositions(), 2);
  EXPECT_EQ(image->cachedImageSize(), MCMakeSize(40, 40));
  EXPECT_EQ(image->copy()->numberOfCompositions(), 0);
}

TEST(StretchableImage, TintingKeepsAlphaAndRoundedRectanglesRound) {
  MCImageRef disc = MCImageWithSize({20, 20}, 1.0, [](MCGraphicsContext& context) {
    MCColor::blackColor().colorWithAlphaComponent(0.5).setFill(context);
    context.fillEllipseInRect(MCMakeRect(0, 0, 20, 20));
  });
  MCImageRef tinted = MCImageTintedWithColor(*disc, MCColor::redColor());
  EXPECT_EQ(pixelAt(*tinted, 0, 0) >> 24, 0u);                 // outside the disc: still clear
  EXPECT_EQ(pixelAt(*tinted, 10, 10) >> 24, pixelAt(*disc, 10, 10) >> 24);  // alpha kept
  EXPECT_EQ((pixelAt(*tinted, 10, 10) >> 16) & 0xFF, pixelAt(*tinted, 10, 10) >> 24);  // all red

  auto fill = [](double radius) {
    return MCImageWithSize({20, 20}, 1.0, [radius](MCGraphicsContext& context) {
      context.beginPath();
      CGContextAddRoundedRectangle(context, MCMakeRect(0, 0, 20, 20), radius, radius);
      MCColor::blackColor().setFill(context);
      context.fillPath();
    });
  };
  EXPECT_EQ(pixelAt(*fill(0), 0, 0) >> 24, 255u);  // radius 0: a plain rectangle
  EXPECT_EQ(pixelAt(*fill(6), 0, 0) >> 24, 0u);
  EXPECT_EQ(pixelAt(*fill(6), 10, 10) >> 24, 255u);
  // A part cut from an image keeps its pixels.
  MCImageRef part = MCImageFromRect(*ninePatch(), MCMakeRect(10, 10, 10, 10));
  EXPECT_EQ(pixelAt(*part, 5, 5), 0xFF0000FFu);
}
