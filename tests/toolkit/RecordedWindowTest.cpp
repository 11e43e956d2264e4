// A window drawn into a recording context, as the GTK host draws it, gives the offscreen host's
// picture; a view that throws while drawing is logged and the rest of the frame is drawn.
#include <vesperon/platform/MCGraphicsContext.h>
#include <vesperon/toolkit/MCAttributedString.h>
#include <vesperon/toolkit/MCImageDrawing.h>
#include <vesperon/toolkit/MCOffscreenHost.h>
#include <vesperon/toolkit/MCWindow.h>

#include "../support/LogCapture.h"
#include "../support/ReplayingSink.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace {

/// A thumbnail-like image, a caption under it and a badge-like rounded shape over it.
class Tile : public MCView {
 public:
  Tile(MCRect frame, MCRasterImageRef image) : MCView(frame), image_(std::move(image)) {}
  void drawRect(const MCRect&) override {
    MCGraphicsContext& c = *MCGraphicsContext::currentContext();
    c.setRGBFillColor(0.9, 0.9, 0.95, 1);
    c.fillRect(bounds());
    c.saveGState();
    c.clipToRoundedRect(MCMakeRect(5, 20, 50, 35), 6);
    MCDrawImageInRect(c, image_, MCMakeRect(5, 20, 50, 35));
    c.restoreGState();
    c.setRGBFillColor(0.8, 0.1, 0.1, 1);
    c.fillEllipseInRect(MCMakeRect(42, 42, 10, 10));
    MCAttributedString caption("IMG_0042", MCTextAttributes{});
    caption.drawInRect(MCMakeRect(5, 2, 50, 16), c);
  }

 private:
  MCRasterImageRef image_;
};

/// Draws a little, then throws with a state still saved.
class Thrower : public MCView {
 public:
  using MCView::MCView;
  void drawRect(const MCRect&) override {
    MCGraphicsContext& c = *MCGraphicsContext::currentContext();
    c.saveGState();
    c.translateCTM(500, 500);
    throw std::runtime_error("no pixels today");
  }
};

MCRasterImageRef gradient() {
  std::vector<uint8_t> pixels;
  for (int y = 0; y < 30; ++y)
    for (int x = 0; x < 40; ++x) pixels.insert(pixels.end(), {uint8_t(6 * x), uint8_t(8 * y), 120, 255});
  return MCRasterImage::createRGBA8(40, 30, pixels);
}

std::shared_ptr<MCWindow> makeWindow(const MCRasterImageRef& image) {
  auto window = MCWindow::create({180, 70});
  window->setBackgroundColor(MCColor::whiteColor());
  window->contentView()->addSubview(std::make_shared<Tile>(MCMakeRect(0, 0, 60, 60), image));
  window->contentView()->addSubview(std::make_shared<Thrower>(MCMakeRect(60, 0, 60, 60)));
  // After the thrower, so that it draws only if the frame goes on.
  window->contentView()->addSubview(std::make_shared<Tile>(MCMakeRect(120, 0, 60, 60), image));
  return window;
}

}  // namespace

TEST(RecordedWindow, GivesTheOffscreenPictureAndSurvivesAThrowingView) {
  const MCRasterImageRef image = gradient();
  auto window = makeWindow(image);
  MCOffscreenHost host(window, 2.0);
  LogCapture log;
  ASSERT_TRUE(log.available());
  const MCRasterImageRef offscreen = host.render();
  ASSERT_TRUE(offscreen);
  EXPECT_TRUE(log.contains("no pixels today")) << log.text();
  // The tile after the thrower drew, in its place: its grey background at its bottom right.
  const uint8_t* p = offscreen->row(offscreen->height() - 2) + (offscreen->width() - 2) * 4;
  EXPECT_NEAR(p[2], 230, 2) << "the second tile is drawn, not shifted by the thrower's transform";

  ReplayingSink sink(int(offscreen->width()), int(offscreen->height()));
  auto recording = MCGraphicsContext::createRecording(offscreen->width(), offscreen->height(), &sink);
  ASSERT_TRUE(recording);
  window->displayInContext(*recording, 2.0);
  recording->finishRecording();
  EXPECT_FALSE(window->needsDisplay());
  EXPECT_EQ(sink.ops, "rrictrict") << "background, then per tile: fill, image, badge, caption";

  int pixelsOff = 0;
  const int largest = sink.compare(offscreen->pixels().data(), offscreen->bytesPerRow(), 32, pixelsOff);
  EXPECT_LE(pixelsOff, int(offscreen->width() * offscreen->height() / 100))
      << "at most 1% of pixels off by more than 32 (edges of clips); largest difference " << largest;

  // The backing image was let go: the next render draws the window whole again.
  const MCRasterImageRef again = host.render();
  ASSERT_TRUE(again);
  EXPECT_EQ(again->pixels(), offscreen->pixels());
}
