// What views put into the window's pixels: orientation, scale, fading, text, and animations.
#include <vesperon/platform/MCGraphicsContext.h>
#include <vesperon/platform/MCMainQueue.h>
#include <vesperon/toolkit/MCAnimationContext.h>
#include <vesperon/toolkit/MCAttributedString.h>
#include <vesperon/toolkit/MCOffscreenHost.h>
#include <vesperon/toolkit/MCTimer.h>
#include <vesperon/toolkit/MCWindow.h>

#include <gtest/gtest.h>

namespace {

/// Fills one rectangle of its own coordinates, and optionally sets a text at a point.
class Painter : public MCView {
 public:
  Painter(MCRect frame, bool flipped) : MCView(frame), flipped_(flipped) {}
  bool isFlipped() const override { return flipped_; }
  MCRect box{};
  MCColor color = MCColor::redColor();
  std::optional<MCAttributedString> text;
  void drawRect(const MCRect&) override {
    MCGraphicsContext& context = *MCGraphicsContext::currentContext();
    color.setFill(context);
    if (!MCIsEmptyRect(box)) context.fillRect(box);
    if (text) text->drawAtPoint({0, 0}, context);
  }

 private:
  bool flipped_;
};

/// The pixel at (x, y) from the image's top left, as 0xAARRGGBB.
uint32_t pixel(const MCRasterImageRef& image, std::size_t x, std::size_t y) {
  const uint8_t* p = image->row(y) + x * 4;  // premultiplied first, little endian: B G R A
  return uint32_t(p[3]) << 24 | uint32_t(p[2]) << 16 | uint32_t(p[1]) << 8 | p[0];
}

/// How many pixels of rows [y0, y1) are darker than the white background.
int inkInRows(const MCRasterImageRef& image, std::size_t y0, std::size_t y1) {
  int count = 0;
  for (std::size_t y = y0; y < y1; ++y)
    for (std::size_t x = 0; x < image->width(); ++x)
      if ((pixel(image, x, y) & 0xFF) < 128) ++count;
  return count;
}

}  // namespace

TEST(Drawing, FlippedAndUnflippedViewsAtTwiceTheScale) {
  auto window = MCWindow::create({40, 40});
  window->setBackgroundColor(MCColor::whiteColor());
  MCOffscreenHost host(window, 2.0);
  auto flipped = std::make_shared<Painter>(MCMakeRect(0, 0, 20, 40), true);
  auto unflipped = std::make_shared<Painter>(MCMakeRect(20, 0, 20, 40), false);
  flipped->box = unflipped->box = MCMakeRect(0, 0, 10, 10);
  unflipped->color = MCColor::blueColor();
  window->contentView()->addSubview(flipped);
  window->contentView()->addSubview(unflipped);
  const MCRasterImageRef image = host.render();
  ASSERT_NE(image, nullptr);
  ASSERT_EQ(image->width(), 80u);
  ASSERT_EQ(image->height(), 80u);
  // The flipped view's box is at its top left; the unflipped one's at its bottom left.
  EXPECT_EQ(pixel(image, 1, 1), 0xFFFF0000u);
  EXPECT_EQ(pixel(image, 19, 19), 0xFFFF0000u);
  EXPECT_EQ(pixel(image, 21, 21), 0xFFFFFFFFu);
  EXPECT_EQ(pixel(image, 41, 78), 0xFF0000FFu);
  EXPECT_EQ(pixel(image, 41, 1), 0xFFFFFFFFu);

  // Half transparent: the red box over white becomes pink, for the view and its subviews.
  flipped->setAlphaValue(0.5);
  const MCRasterImageRef faded = host.render();
  const uint32_t pink = pixel(faded, 1, 1);
  EXPECT_EQ(pink >> 16 & 0xFF, 0xFFu);
  EXPECT_NEAR(double(pink >> 8 & 0xFF), 128, 2);
}

TEST(Drawing, TextIsMeasuredAndStandsUprightEitherWay) {
  MCAttributedString short_("Hi", {MCFont::systemFontOfSize(20), MCColor::blackColor(), {}, {}, {}});
  MCAttributedString long_("Hi there, photographs", {MCFont::systemFontOfSize(20), MCColor::blackColor(), {}, {}, {}});
  const MCSize a = short_.size(), b = long_.size();
  EXPECT_GT(a.width, 5);
  EXPECT_GT(b.width, 3 * a.width);
  EXPECT_NEAR(a.height, b.height, 0.01);
  EXPECT_GT(a.height, 18);
  // Wrapping into a narrow box makes more lines.
  const MCRect wrapped = long_.boundingRectWithSize({b.width / 2, 0});
  EXPECT_GT(wrapped.size.height, 1.5 * b.height);
  EXPECT_LE(wrapped.size.width, std::ceil(b.width / 2));
  // An attachment takes the room its bounds give it.
  auto attachment = std::make_shared<MCTextAttachment>();
  attachment->bounds = MCMakeRect(0, 0, 30, 12);
  MCAttributedString withImage = short_;
  withImage.append(MCAttributedString::attachmentString(attachment));
  EXPECT_NEAR(withImage.size().width, a.width + 30, 0.5);

  // Drawn at the origin, the text is near the top of a flipped view and near the bottom of an
  // unflipped one.
  for (bool flipped : {true, false}) {
    auto window = MCWindow::create({200, 100});
    window->setBackgroundColor(MCColor::whiteColor());
    MCOffscreenHost host(window);
    auto view = std::make_shared<Painter>(MCMakeRect(0, 0, 200, 100), flipped);
    view->text = short_;
    window->contentView()->addSubview(view);
    const MCRasterImageRef image = host.render();
    const int top = inkInRows(image, 0, 30), bottom = inkInRows(image, 70, 100);
    if (flipped) {
      EXPECT_GT(top, 20);
      EXPECT_EQ(bottom, 0);
    } else {
      EXPECT_EQ(top, 0);
      EXPECT_GT(bottom, 20);
    }
  }
}

TEST(Drawing, AnimationsEndExactlyAndCompleteOnce) {
  auto view = std::make_shared<MCView>(MCMakeRect(0, 0, 10, 10));
  int completions = 0;
  std::vector<double> alphas;
  MCAnimationContext::runAnimationGroup(
      [&](MCAnimationContext& context) {
        EXPECT_EQ(MCAnimationContext::currentContext(), &context);
        context.setDuration(0.08);
        context.animateFrame(view, MCMakeRect(100, 50, 30, 20));
        context.animate([&](double t) { alphas.push_back(t); });
      },
      [&] { ++completions; });
  EXPECT_EQ(MCAnimationContext::currentContext(), nullptr);
  ASSERT_TRUE(MCMainQueue::runUntil([&] { return completions > 0; }, std::chrono::seconds(2)));
  MCMainQueue::drain(std::chrono::milliseconds(50));
  EXPECT_EQ(completions, 1);
  EXPECT_EQ(view->frame(), MCMakeRect(100, 50, 30, 20));
  ASSERT_GE(alphas.size(), 3u);
  EXPECT_EQ(alphas.front(), 0.0);
  EXPECT_EQ(alphas.back(), 1.0);
  EXPECT_TRUE(std::is_sorted(alphas.begin(), alphas.end()));

  // No duration: done at once, the completion still comes later.
  bool done = false;
  MCAnimationContext::runAnimationGroup(
      [&](MCAnimationContext& context) {
        context.setDuration(0);
        context.animateAlphaValue(view, 0.25);
      },
      [&] { done = true; });
  EXPECT_EQ(view->alphaValue(), 0.25);
  EXPECT_FALSE(done);
  EXPECT_TRUE(MCMainQueue::runUntil([&] { return done; }, std::chrono::seconds(1)));

  // A timer that is dropped never fires.
  int fired = 0;
  auto timer = MCTimer::scheduledTimer(0.01, true, [&](MCTimer&) { ++fired; });
  timer.reset();
  MCMainQueue::drain(std::chrono::milliseconds(40));
  EXPECT_EQ(fired, 0);
}
