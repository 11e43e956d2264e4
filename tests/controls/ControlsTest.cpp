// The histogram view, the toolbar item's press loop, and colour labels.
#include <vesperon/controls/MCColorLabelControl.h>
#include <vesperon/controls/MCColorLabelMapper.h>
#include <vesperon/controls/MCHistogramView.h>
#include <vesperon/controls/MCToolbarItemControl.h>
#include <vesperon/toolkit/MCMenu.h>
#include <vesperon/platform/MCGraphicsContext.h>
#include <vesperon/toolkit/MCOffscreenHost.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <fstream>

namespace {

MCRasterImageRef rgbaImage(std::size_t w, std::size_t h, const std::function<std::array<uint8_t, 3>(std::size_t)>& at) {
  std::vector<uint8_t> pixels(w * h * 4);
  for (std::size_t i = 0; i < w * h; ++i) {
    const auto c = at(i);
    pixels[i * 4] = c[0];
    pixels[i * 4 + 1] = c[1];
    pixels[i * 4 + 2] = c[2];
    pixels[i * 4 + 3] = 255;
  }
  return MCRasterImage::createRGBA8(w, h, std::move(pixels));
}

}  // namespace

TEST(HistogramView, PeaksCurvesAndTheirCounts) {
  MCHistogramView view(MCMakeRect(0, 0, 200, 100));
  EXPECT_FALSE(view.histograms().has_value());
  EXPECT_TRUE(view.histogramPaths().empty());

  // 10 pixels: red 128 ×6, green 64 ×4 and 255 ×6 (bin 255 is left out of the peak), blue 0.
  auto image = rgbaImage(10, 1, [](std::size_t i) {
    return std::array<uint8_t, 3>{uint8_t(i < 6 ? 128 : 10), uint8_t(i < 4 ? 64 : 255), 0};
  });
  view.setImage(image);
  ASSERT_TRUE(view.histograms().has_value());
  ASSERT_EQ(view.histograms()->size(), 3u);
  // Bins hold shares of the pixels; the peak leaves out bin 255 (green's 6 there) and bin 0.
  EXPECT_FLOAT_EQ((*view.histograms())[0][128], 0.6f);
  EXPECT_FLOAT_EQ(view.peak(), 0.6f);
  const auto paths = view.histogramPaths();
  ASSERT_EQ(paths.size(), 3u);
  // Each curve: from (0, 0), two points per bin 1 to 254, to (1, 0).
  ASSERT_EQ(paths[0].size(), 2u * 254 + 2);
  EXPECT_EQ(paths[0].front(), MCMakePoint(0, 0));
  EXPECT_EQ(paths[0].back(), MCMakePoint(1, 0));
  EXPECT_DOUBLE_EQ(paths[0][1 + 2 * 127].y, 1.0);          // bin 128 at the top
  EXPECT_NEAR(paths[1][1 + 2 * 63].y, 4.0 / 6.0, 1e-6);   // green's 64
  EXPECT_DOUBLE_EQ(paths[0][1 + 2 * 127].x, 127.0 / 254);  // the step's left edge
  // The same image keeps the curves; a new one drops them.
  view.setImage(image);
  EXPECT_EQ(view.histogramPaths().size(), 3u);

  // All black: the whole mass in bin 0, no curve. A grey image: one curve.
  view.setImage(rgbaImage(4, 4, [](std::size_t) { return std::array<uint8_t, 3>{0, 0, 0}; }));
  EXPECT_EQ(view.peak(), 0);
  EXPECT_TRUE(view.histogramPaths().empty());
  std::vector<uint8_t> gray = {10, 20, 20, 200};
  view.setImage(MCRasterImage::create(2, 2, 8, 8, 2, MCColorSpace::genericGrayGamma2_2(), MCImageAlphaNone, gray));
  EXPECT_EQ(view.histogramPaths().size(), 1u);

  // Drawn in a window, narrower than 64 too, without a crash.
  auto window = MCWindow::create({50, 40});
  MCOffscreenHost host(window);
  auto shown = std::make_shared<MCHistogramView>(MCMakeRect(0, 0, 50, 40));
  shown->setImage(image);
  window->contentView()->addSubview(shown);
  ASSERT_NE(host.render(), nullptr);
}

TEST(ToolbarItemControl, MetricsAndThePressLoop) {
  auto window = MCWindow::create({300, 100});
  MCOffscreenHost host(window);
  auto control = MCToolbarItemControl::create();
  EXPECT_EQ(control->intrinsicContentSize(), MCMakeSize(64, 48));  // no title: the minimum
  control->setTitle(std::string(60, 'W'));
  EXPECT_GT(control->intrinsicContentSize().width, 64);
  EXPECT_DOUBLE_EQ(control->intrinsicContentSize().width, control->labelSize().width + 8);
  control->setTitle(std::string("Fit"));
  EXPECT_EQ(control->frame().size, MCMakeSize(64, 48));
  control->setFrameOrigin({20, 20});
  int actions = 0;
  control->action = [&](MCToolbarItemControl&) { ++actions; };
  window->contentView()->addSubview(control);
  EXPECT_EQ(control->trackingAreas().size(), 1u);
  EXPECT_EQ(control->numberOfToolTips(), 1u);
  control->updateTrackingAreas();
  EXPECT_EQ(control->trackingAreas().size(), 1u);
  EXPECT_EQ(control->numberOfToolTips(), 1u);

  // Press inside, drag out (no pressed highlight), back in, release inside: one action.
  std::vector<bool> pressed;
  host.mouseDown({40, 40});
  host.mouseDragged({200, 40});
  host.mouseDragged({45, 45});
  host.mouseUp({45, 45});
  host.run();
  EXPECT_EQ(actions, 1);
  EXPECT_FALSE(control->isPressed());
  EXPECT_FALSE(control->isTracking());
  // Release outside: no action.
  host.mouseDown({40, 40});
  host.mouseDragged({200, 40});
  host.mouseUp({200, 40});
  host.run();
  EXPECT_EQ(actions, 1);
  // Highlights: hover, selection; disabled shows none and ignores presses.
  host.mouseMoved({40, 40});
  host.run();
  EXPECT_EQ(control->highlightColor(), control->mouseOverColor);
  control->setIsSelected(true);
  host.mouseMoved({250, 80});
  host.run();
  EXPECT_EQ(control->highlightColor(), control->selectedColor);
  control->setEnabled(false);
  EXPECT_FALSE(control->highlightColor().has_value());
  EXPECT_EQ(control->contentColor(), MCToolbarItemControl::disabledControlTextColor());
  host.click({40, 40});
  host.run();
  EXPECT_EQ(actions, 1);
  ASSERT_NE(host.render(), nullptr);
}

TEST(ColorLabels, MapperControlAndTheFileLabel) {
  for (long n = 0; n <= 7; ++n)
    EXPECT_EQ(MCColorLabelMapper::urlResourceLabelFromColorLabel(MCColorLabelMapper::colorLabelFromURLResource(n)), n);
  EXPECT_EQ(MCColorLabelMapper::colorLabelFromURLResource(9), 0);
  EXPECT_EQ(MCColorLabelMapper::colorLabelFromURLResource(1), 7);
  EXPECT_EQ(MCColorLabelMapper::urlResourceLabelFromColorLabel(2), 7);

  auto window = MCWindow::create({300, 100});
  MCOffscreenHost host(window);
  auto control = std::make_shared<MCColorLabelControl>();
  window->contentView()->addSubview(control);
  ASSERT_EQ(control->labelItemControls().size(), 8u);
  EXPECT_EQ(control->labelText(), "Color label");
  // Hover: the window's y is up; the control is flipped at the window's top-left... at origin 0.
  const auto& blue = control->labelItemControls()[4];
  const MCRect frame = blue->frame();
  const MCPoint over = control->convertPointToView({MCMidX(frame), MCMidY(frame)}, nullptr);
  host.mouseMoved(over);
  host.run();
  EXPECT_EQ(control->activeColorLabelTag(), 5);
  EXPECT_TRUE(blue->isHighlighted());
  EXPECT_EQ(control->labelText(), "Set color label to Blue");
  const auto& clear = control->labelItemControls().back();
  host.mouseMoved(control->convertPointToView({MCMidX(clear->frame()), MCMidY(clear->frame())}, nullptr));
  host.run();
  EXPECT_EQ(control->labelText(), "Clear all color labels");
  host.mouseMoved({290, 95});
  host.run();
  EXPECT_FALSE(control->activeColorLabelTag().has_value());
  EXPECT_EQ(control->labelText(), "Color label");
  // Choosing: tag and command, then the action.
  long chosen = -1;
  control->action = [&](MCColorLabelControl& c) { chosen = c.tag() * 10 + c.command(); };
  host.click(over);
  host.run();
  EXPECT_EQ(chosen, 50);
  control->chooseItem(*clear);
  EXPECT_EQ(chosen, 1);
  control->setUsedColorLabels({2, 5});
  EXPECT_TRUE(blue->isSelected());
  EXPECT_FALSE(control->labelItemControls()[0]->isSelected());
  control->setEnabled(false);
  EXPECT_EQ(control->labelText(), "Color label");

  // The label of a file lives in its XMP sidecar, beside what else the sidecar holds.
  const auto folder = std::filesystem::temp_directory_path() / ("vesperon-labels-" + std::to_string(getpid()));
  std::filesystem::create_directories(folder);
  const auto photo = folder / "photo.jpg";
  EXPECT_EQ(MCColorLabelMapper::labelOfFile(photo), 0);
  ASSERT_TRUE(MCColorLabelMapper::setLabelOfFile(photo, 4));
  EXPECT_EQ(MCColorLabelMapper::labelOfFile(photo), 4);
  ASSERT_TRUE(MCColorLabelMapper::setLabelOfFile(photo, 1));
  EXPECT_EQ(MCColorLabelMapper::labelOfFile(photo), 1);
  ASSERT_TRUE(MCColorLabelMapper::setLabelOfFile(photo, 0));
  EXPECT_EQ(MCColorLabelMapper::labelOfFile(photo), 0);
  std::ofstream(folder / "broken.xmp") << "<x:xmpmeta garbage";
  EXPECT_FALSE(MCColorLabelMapper::setLabelOfFile(folder / "broken.jpg", 3));
  EXPECT_EQ(MCColorLabelMapper::labelOfFile(folder / "broken.jpg"), 0);
  std::filesystem::remove_all(folder);
}

TEST(ColorLabels, PickedFromAMenuTheColourEndsTheMenusTracking) {
  auto window = MCWindow::create({300, 200});
  MCOffscreenHost host(window);
  auto control = std::make_shared<MCColorLabelControl>();
  long picked = -1;
  int chosenThroughTheMenu = 0;
  control->action = [&](MCColorLabelControl& c) { picked = c.tag(); };
  MCMenu menu;
  menu.addItem(MCMenuItem("Open", "open:"));
  MCMenuItem labels;
  labels.view = control;
  menu.addItem(labels);

  ASSERT_TRUE(window->popUpContextMenu(menu, {20, 20}, window->contentView().get(),
                                       [&](const MCMenuItem&) { ++chosenThroughTheMenu; }));
  const MCMenu* shown = host.contextMenu();
  ASSERT_NE(shown, nullptr);
  EXPECT_TRUE(shown->isTracking());
  EXPECT_FALSE(menu.isTracking());  // the program's menu is the model; the host tracks its own copy
  // The control and its dots know the menu they are in; the control shows in a window of its own.
  EXPECT_EQ(control->enclosingMenu(), shown);
  EXPECT_EQ(control->labelItemControls()[0]->enclosingMenu(), shown);
  MCOffscreenHost* itemHost = host.contextMenuViewHost(*control);
  ASSERT_NE(itemHost, nullptr);
  ASSERT_NE(control->window(), nullptr);
  EXPECT_NE(control->window(), window.get());
  EXPECT_EQ(control->window()->contentSize(), control->frame().size);

  // The pointer over a dot names it, as outside a menu; a click picks it and the menu closes.
  const auto& green = control->labelItemControls()[3];
  const MCPoint over = control->convertPointToView({MCMidX(green->frame()), MCMidY(green->frame())}, nullptr);
  itemHost->mouseMoved(over);
  itemHost->run();
  EXPECT_EQ(control->labelText(), "Set color label to Green");
  EXPECT_NE(host.contextMenu(), nullptr);
  itemHost->click(over);
  itemHost->run();
  EXPECT_EQ(picked, 4);
  EXPECT_EQ(host.contextMenu(), nullptr);
  EXPECT_EQ(host.contextMenuViewHost(*control), nullptr);
  EXPECT_EQ(control->enclosingMenu(), nullptr);
  EXPECT_FALSE(host.chooseContextMenuItem("Open"));  // nothing more comes out of the closed menu
  EXPECT_EQ(chosenThroughTheMenu, 0);

  // Shown again, the menu closes through its other items as before, and the control, out of any
  // menu, picks without closing anything.
  ASSERT_TRUE(window->popUpContextMenu(menu, {20, 20}, window->contentView().get(),
                                       [&](const MCMenuItem&) { ++chosenThroughTheMenu; }));
  EXPECT_EQ(control->enclosingMenu(), host.contextMenu());
  EXPECT_TRUE(host.chooseContextMenuItem("Open"));
  EXPECT_EQ(chosenThroughTheMenu, 1);
  EXPECT_EQ(control->enclosingMenu(), nullptr);
  control->chooseItem(*control->labelItemControls()[1]);
  EXPECT_EQ(picked, 2);

  // Another menu takes the view out of the old menu's window; a menu without it leaves it out.
  MCMenu plain;
  plain.addItem(MCMenuItem("Open", "open:"));
  ASSERT_TRUE(window->popUpContextMenu(plain, {20, 20}, window->contentView().get()));
  EXPECT_EQ(control->window(), nullptr);
  EXPECT_EQ(control->superview(), nullptr);
  EXPECT_EQ(control->enclosingMenu(), nullptr);
}

// On a dark toolbar the caption under the dots must be readable: its default ink, made for light
// backgrounds, gives almost no contrast there, and the light text colour a dark host sets gives
// at least 4.5:1. The clear item's crossed circle takes the same ink.
TEST(ColorLabels, TextColourReadsOnADarkBackground) {
  struct Dark : MCView {
    using MCView::MCView;
    void drawRect(const MCRect& dirty) override {
      MCColor::colorWithHex(0x303030).setFill(*MCGraphicsContext::currentContext());
      MCGraphicsContext::currentContext()->fillRect(dirty);
    }
  };
  // WCAG's relative luminance of an sRGB grey level.
  auto luminance = [](double v) {
    v /= 255;
    return v <= 0.03928 ? v / 12.92 : std::pow((v + 0.055) / 1.055, 2.4);
  };
  auto contrast = [&](const MCColorLabelControl& control, const MCRasterImageRef& image) {
    // The brightest pixel of the caption rows (below the dots), against the background.
    double brightest = 0;
    for (std::size_t y = 26; y < std::size_t(control.frame().size.height); ++y)
      for (std::size_t x = 0; x < image->width(); ++x) {
        const uint8_t* p = image->row(y) + x * 4;
        brightest = std::max(brightest, luminance((p[0] + p[1] + p[2]) / 3.0));
      }
    return (brightest + 0.05) / (luminance(0x30) + 0.05);
  };
  for (bool light : {false, true}) {
    auto control = std::make_shared<MCColorLabelControl>();
    const MCSize size = control->intrinsicContentSize();
    auto window = MCWindow::create(size);
    MCOffscreenHost host(window);
    auto background = std::make_shared<Dark>(MCMakeRect(0, 0, size.width, size.height));
    window->setContentView(background);
    control->setFrame(MCMakeRect(0, 0, size.width, size.height));
    background->addSubview(control);
    if (light) control->setTextColor(MCColor::colorWithHex(0xE0E0E0));
    const double ratio = contrast(*control, host.render());
    if (light) {
      EXPECT_GE(ratio, 4.5);
      for (const auto& item : control->labelItemControls()) {
        if (item->isClearItem()) {
          EXPECT_EQ(item->inkColor(), MCColor::colorWithHex(0xE0E0E0));
        }
      }
    } else {
      EXPECT_LT(ratio, 2.0);
    }
  }
}
