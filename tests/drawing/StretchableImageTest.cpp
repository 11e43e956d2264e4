// Nine-part images, the image operations under them, and rounded rectangles.
#include <vesperon/drawing/MCLibraryImages.h>
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

TEST(StretchableImage, EachPieceIsAPropertyAndSettingOneShowsAtTheNextDrawing) {
  auto image = MCStretchableImage::create(ninePatch(), {10, 10, 10, 10});
  ASSERT_NE(image, nullptr);
  // Each getter answers its own place in the source: corners red, edges green, centre blue.
  const std::pair<const MCImageRef*, uint32_t> places[] = {
      {&image->topLeftCorner(), 0xFFFF0000u},   {&image->topEdgeFill(), 0xFF00FF00u},
      {&image->topRightCorner(), 0xFFFF0000u},  {&image->leftEdgeFill(), 0xFF00FF00u},
      {&image->centerFill(), 0xFF0000FFu},      {&image->rightEdgeFill(), 0xFF00FF00u},
      {&image->bottomLeftCorner(), 0xFFFF0000u}, {&image->bottomEdgeFill(), 0xFF00FF00u},
      {&image->bottomRightCorner(), 0xFFFF0000u},
  };
  for (std::size_t i = 0; i < 9; ++i) {
    ASSERT_NE(*places[i].first, nullptr) << i;
    EXPECT_EQ(places[i].first->get(), image->pieces()[i].get()) << i;
    EXPECT_EQ(pixelAt(**places[i].first, 5, 5), places[i].second) << i;
  }

  auto draw = [&] {
    return MCImageWithSize({60, 40}, 1.0, [&](MCGraphicsContext&) {
      image->drawInRect(MCMakeRect(0, 0, 60, 40), MCBlendMode::Normal, 1.0, true);
    });
  };
  EXPECT_EQ(pixelAt(*draw(), 30, 20), 0xFF0000FFu);
  auto white = MCImageWithSize({10, 10}, 1.0, [](MCGraphicsContext& context) {
    MCColor::whiteColor().setFill(context);
    context.fillRect(MCMakeRect(0, 0, 10, 10));
  });
  image->setCenterFill(white);
  image->setBottomRightCorner(white);
  EXPECT_EQ(image->centerFill(), white);
  EXPECT_EQ(image->pieces()[8], white);
  const MCImageRef after = draw();  // same size as before, composed anew
  EXPECT_EQ(image->numberOfCompositions(), 2);
  EXPECT_EQ(pixelAt(*after, 30, 20), 0xFFFFFFFFu);
  EXPECT_EQ(pixelAt(*after, 55, 35), 0xFFFFFFFFu);
  EXPECT_EQ(pixelAt(*after, 5, 35), 0xFFFF0000u);  // bottom left still red
  // A piece set to none leaves its place clear.
  image->setTopLeftCorner(nullptr);
  EXPECT_EQ(pixelAt(*draw(), 5, 5) >> 24, 0u);
  EXPECT_EQ(image->copy()->centerFill(), white);
}

TEST(StretchableImage, TheLibrarysOwnResourcesByName) {
  const auto path = MCLibraryImagePath("badge-plate");
  ASSERT_TRUE(path.has_value()) << "looked in " << MCLibraryImagesDirectory();
  EXPECT_EQ(path->parent_path().filename(), "images");
  EXPECT_EQ(path->parent_path().parent_path().filename(), "vesperon");

  auto plate = MCStretchableImage::sdkImageNamed("badge-plate", {6, 6, 6, 6});
  ASSERT_NE(plate, nullptr);
  EXPECT_EQ(plate->size(), MCMakeSize(24, 24));
  EXPECT_EQ(MCImagePointSize(*plate->topLeftCorner()), MCMakeSize(6, 6));
  EXPECT_EQ(MCImagePointSize(*plate->centerFill()), MCMakeSize(12, 12));
  // The plate is rounded: its very corner is clear, its centre is a translucent dark grey.
  EXPECT_EQ(pixelAt(*plate->topLeftCorner(), 0, 0) >> 24, 0u);
  const uint32_t centre = pixelAt(*plate->centerFill(), 6, 6);
  EXPECT_NEAR(double(centre >> 24), 0.7 * 255, 2);
  EXPECT_LT((centre >> 16) & 0xFF, 0x40u);

  // Drawn larger, the corners keep their rounding and the middle stretches.
  MCImageRef drawn = MCImageWithSize({80, 30}, 1.0, [&](MCGraphicsContext&) {
    plate->drawInRect(MCMakeRect(0, 0, 80, 30), MCBlendMode::Normal, 1.0, true);
  });
  EXPECT_EQ(pixelAt(*drawn, 0, 0) >> 24, 0u);
  EXPECT_EQ(pixelAt(*drawn, 79, 29) >> 24, 0u);
  EXPECT_NEAR(double(pixelAt(*drawn, 40, 15) >> 24), 0.7 * 255, 2);

  // No such resource, or a name that would leave the folder: none.
  EXPECT_EQ(MCStretchableImage::sdkImageNamed("no-such-resource", {}), nullptr);
  for (const char* name : {"", ".", "..", "../images/badge-plate", "/etc/passwd", "images/badge-plate"})
    EXPECT_FALSE(MCLibraryImagePath(name).has_value()) << name;
}
