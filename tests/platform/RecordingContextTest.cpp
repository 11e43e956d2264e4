// A recording context splits drawing into a sink's ops and runs of Cairo drawing between them;
// replayed in order they must give the picture a bitmap context draws.
#include <vesperon/platform/MCGraphicsContext.h>

#include "../support/ReplayingSink.h"

#include <gtest/gtest.h>

namespace {

MCRasterImageRef testImage() {
  std::vector<uint8_t> pixels;
  for (int y = 0; y < 6; ++y)
    for (int x = 0; x < 8; ++x) {
      const bool corner = x == 0 && y == 0;  // marks the top left, to see the image upright
      pixels.insert(pixels.end(), {uint8_t(corner ? 0 : 30 * x), uint8_t(corner ? 0 : 40 * y), uint8_t(corner ? 0 : 200), 255});
    }
  return MCRasterImage::createRGBA8(8, 6, pixels);
}

/// A scene in points (64 × 48) at twice the scale, with drawing of every kind, in an order in
/// which getting the layers' order wrong shows.
void drawScene(MCGraphicsContext& c, const MCRasterImageRef& image) {
  c.scaleCTM(2, 2);
  c.setRGBFillColor(1, 1, 1, 1);
  c.fillRect(MCMakeRect(0, 0, 64, 48));
  c.setRGBStrokeColor(0, 0, 1, 1);
  c.setLineWidth(3);
  c.beginPath();
  c.moveToPoint(2, 2);
  c.addLineToPoint(60, 40);
  c.strokePath();
  c.saveGState();
  c.clipToRoundedRect(MCMakeRect(4, 4, 24, 20), 5);
  c.drawImage(MCMakeRect(4, 4, 24, 20), image);
  c.restoreGState();
  c.setRGBFillColor(0, 0.6, 0, 1);
  c.fillRect(MCMakeRect(30, 10, 10, 30));  // over the line
  c.setRGBFillColor(0.9, 0.2, 0, 0.7);
  c.fillEllipseInRect(MCMakeRect(36, 4, 20, 16));  // over the green bar
  c.saveGState();
  c.clipToRect(MCMakeRect(40.5, 24.25, 15, 10));
  c.setAlpha(0.5);
  // Mirrored, as an image drawn upright in a flipped view is.
  c.translateCTM(0, 22 + 38);
  c.scaleCTM(1, -1);
  c.drawImage(MCMakeRect(38, 22, 20, 16), image);
  c.restoreGState();
  // Inside a transparency group an image can only be drawn by Cairo.
  cairo_t* cr = c.cairoContext();
  cairo_push_group(cr);
  c.drawImage(MCMakeRect(2, 30, 12, 12), image);
  cairo_pop_group_to_source(cr);
  cairo_paint_with_alpha(cr, 0.6);
}

}  // namespace

TEST(RecordingContext, ReplayedOpsGiveTheBitmapContextsPicture) {
  const MCRasterImageRef image = testImage();
  ASSERT_TRUE(image);
  auto bitmap = MCGraphicsContext::create(128, 96, 8, 0, MCColorSpace::sRGB(),
                                          MCImageAlphaPremultipliedFirst | MCBitmapByteOrder32Little);
  ASSERT_TRUE(bitmap);
  drawScene(*bitmap, image);

  ReplayingSink sink(128, 96);
  auto recording = MCGraphicsContext::createRecording(128, 96, &sink);
  ASSERT_TRUE(recording);
  EXPECT_TRUE(recording->isRecording());
  drawScene(*recording, image);
  recording->finishRecording();

  EXPECT_EQ(sink.ops, "rcircic") << "fill, stroke, clipped image, fill, ellipse, image, group, each in its place";
  int pixelsOff = 0;
  const int largest = sink.compare(bitmap->data(), bitmap->bytesPerRow(), 24, pixelsOff);
  EXPECT_LE(pixelsOff, 40) << "only edge pixels (antialiasing of clips drawn in device space) may differ; largest "
                           << largest;
  EXPECT_FALSE(recording->data()) << "a recording context has no pixels";
  EXPECT_FALSE(recording->createImage());
}

TEST(RecordingContext, ClipsTheSinkCannotTakeLeaveTheDrawingToCairo) {
  const MCRasterImageRef image = testImage();
  ReplayingSink sink(40, 40);
  auto c = MCGraphicsContext::createRecording(40, 40, &sink);
  ASSERT_TRUE(c);
  // A triangle clip: not a rectangle, so the image inside it and the fill are Cairo drawing.
  c->saveGState();
  c->beginPath();
  c->moveToPoint(0, 0);
  c->addLineToPoint(40, 0);
  c->addLineToPoint(0, 40);
  c->closePath();
  c->clip();
  c->drawImage(MCMakeRect(0, 0, 40, 40), image);
  c->setRGBFillColor(1, 0, 0, 1);
  c->fillRect(MCMakeRect(0, 0, 10, 10));
  c->restoreGState();
  // A rotated image has no rectangle in device space.
  c->saveGState();
  c->rotateCTM(0.3);
  c->drawImage(MCMakeRect(10, 10, 8, 6), image);
  c->restoreGState();
  // Another blend mode than Normal is Cairo's.
  c->saveGState();
  c->setBlendMode(MCBlendMode::Multiply);
  c->fillRect(MCMakeRect(20, 20, 5, 5));
  c->restoreGState();
  // Back to a plain state: ops again, and a rectangle clipped away entirely draws nothing at all.
  c->fillRect(MCMakeRect(30, 30, 5, 5));
  c->saveGState();
  c->clipToRect(MCMakeRect(0, 0, 2, 2));
  c->drawImage(MCMakeRect(20, 20, 8, 6), image);
  c->restoreGState();
  c->finishRecording();
  EXPECT_EQ(sink.ops, "cr");
}

TEST(RecordingContext, RefusesWithoutASinkOrASize) {
  ReplayingSink sink(4, 4);
  EXPECT_FALSE(MCGraphicsContext::createRecording(4, 4, nullptr));
  EXPECT_FALSE(MCGraphicsContext::createRecording(0, 4, &sink));
  EXPECT_FALSE(MCGraphicsContext::createRecording(4, 40000, &sink));
  auto c = MCGraphicsContext::createRecording(4, 4, &sink);
  ASSERT_TRUE(c);
  c->finishRecording();
  EXPECT_EQ(sink.ops, "") << "nothing drawn, no run handed over";
}
