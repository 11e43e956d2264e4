// The image view's geometry and the layers it draws through.
#include <vesperon/controls/MCImageView.h>
#include <vesperon/toolkit/MCOffscreenHost.h>

#include <gtest/gtest.h>

namespace {
MCImageRef filled(MCSize size, const MCColor& color) {
  return MCImageWithSize(size, 1.0, [&](MCGraphicsContext& context) {
    color.setFill(context);
    context.fillRect(MCMakeRect(0, 0, size.width, size.height));
  });
}
}  // namespace

TEST(ImageView, FitsScalesDownOnlyAndMakesRoomForTheShadow) {
  MCImageView view(MCMakeRect(0, 0, 200, 100));
  EXPECT_EQ(view.imageScaling(), MCImageScaleProportionallyUpOrDown);
  EXPECT_EQ(view.imageRect(), MCMakeRect(0, 0, 200, 100));  // no image: the fit rectangle
  EXPECT_EQ(view.intrinsicContentSize(), MCMakeSize(0, 0));
  view.setImage(filled({50, 50}, MCColor::redColor()));
  EXPECT_EQ(view.imageRect(), MCMakeRect(50, 0, 100, 100));  // a small image grows to fit
  view.setImageScaling(MCImageScaleProportionallyDown);
  EXPECT_EQ(view.imageRect(), MCMakeRect(75, 25, 50, 50));   // or stays, centred
  view.setImage(filled({400, 100}, MCColor::redColor()));
  EXPECT_EQ(view.imageRect(), MCMakeRect(0, 25, 200, 50));   // a large one is fitted either way
  EXPECT_EQ(view.intrinsicContentSize(), MCMakeSize(400, 100));
  view.setShouldDrawShadow(true);
  EXPECT_EQ(view.imageFitRect(), MCMakeRect(3, 5, 194, 94));  // 5 above, 1 below
  view.setImageScaling(MCImageScaleAxesIndependently);
  EXPECT_EQ(view.imageRect(), MCMakeRect(3, 5, 194, 94));
}

TEST(ImageView, DrawsThroughItsLayers) {
  auto window = MCWindow::create({100, 100});
  window->setBackgroundColor(MCColor::whiteColor());
  MCOffscreenHost host(window);
  auto view = std::make_shared<MCImageView>(MCMakeRect(0, 0, 100, 100));
  view->setBackgroundColor(MCColor::blackColor());
  view->setImage(filled({20, 10}, MCColor::redColor()));
  window->contentView()->addSubview(view);
  const MCRasterImageRef shot = host.render();
  auto pixel = [&](std::size_t x, std::size_t y) {
    const uint8_t* p = shot->row(y) + x * 4;
    return uint32_t(p[2]) << 16 | uint32_t(p[1]) << 8 | p[0];
  };
  // The image fills the width, 50 high in the middle; the background shows above and below.
  EXPECT_EQ(view->imageLayer()->frame, MCMakeRect(0, 25, 100, 50));
  EXPECT_EQ(pixel(50, 50), 0xFF0000u);
  EXPECT_EQ(pixel(50, 5), 0x000000u);
  // Rounded corners cut the image's corner away.
  view->setCornerRadius(20);
  const MCRasterImageRef rounded = host.render();
  const uint8_t* corner = rounded->row(26) + 1 * 4;
  EXPECT_LT(corner[2], 128);  // black background, not red
}
