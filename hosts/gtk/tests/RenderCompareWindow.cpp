// A window of the tests' own drawn twice: on screen by the GTK host (as render nodes) and by the
// offscreen host (with Cairo) into the PNG named on the command line, for the on-screen test that
// compares the two. The window holds a group header and tiles with thumbnails, badges and
// captions. Once shown it prints "ready X Y TEXTURES" (the widget's place on the root window and
// the textures the host keeps); when the file named second appears, it lets half of the
// thumbnails go, draws again and prints "dropped TEXTURES", then quits.
#include <hosts/gtk/MCGtkWindowHost.h>
#include <vesperon/platform/MCGraphicsContext.h>
#include <vesperon/toolkit/MCAttributedString.h>
#include <vesperon/toolkit/MCImageDrawing.h>
#include <vesperon/toolkit/MCOffscreenHost.h>

#include <gtk/gtk.h>

#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>

namespace {

constexpr int kWidth = 480, kHeight = 300, kTiles = 8;

class Header : public MCView {
 public:
  using MCView::MCView;
  void drawRect(const MCRect&) override {
    MCGraphicsContext& c = *MCGraphicsContext::currentContext();
    c.setRGBFillColor(0.2, 0.3, 0.45, 1);
    c.fillRect(bounds());
    MCTextAttributes attributes;
    attributes.font = MCFont::boldSystemFontOfSize(15);
    attributes.foregroundColor = MCColor::whiteColor();
    MCAttributedString("Holidays 2024 — 8 photos", attributes).drawInRect(MCMakeRect(10, 6, 400, 22), c);
  }
};

class Tile : public MCView {
 public:
  Tile(MCRect frame, MCRasterImageRef image, int index) : MCView(frame), image(std::move(image)), index_(index) {}
  MCRasterImageRef image;
  void drawRect(const MCRect&) override {
    MCGraphicsContext& c = *MCGraphicsContext::currentContext();
    c.setRGBFillColor(0.93, 0.93, 0.95, 1);
    c.fillRect(bounds());
    const MCRect thumb = MCMakeRect(10, 30, 90, 68);
    if (image) {
      c.saveGState();
      c.clipToRoundedRect(thumb, 7);
      MCDrawImageInRect(c, image, thumb);
      c.restoreGState();
    } else {
      c.setRGBFillColor(0.7, 0.7, 0.7, 1);
      c.fillRect(thumb);
    }
    // A flag badge and a rating pill, as the browser's badges draw them.
    c.setRGBFillColor(0.9, 0.15, 0.15, 1);
    c.fillEllipseInRect(MCMakeRect(82, 80, 14, 14));
    c.setRGBStrokeColor(1, 1, 1, 1);
    c.setLineWidth(2);
    c.strokeEllipseInRect(MCMakeRect(82, 80, 14, 14));
    c.setRGBFillColor(0, 0, 0, 0.6);
    c.fillRect(MCMakeRect(14, 34, 30, 12));
    MCTextAttributes caption;
    caption.foregroundColor = MCColor::blackColor();
    MCAttributedString title("IMG_00" + std::to_string(40 + index_) + ".jpg", caption);
    title.setAlignment(MCTextAlignment::Center);
    title.drawInRect(MCMakeRect(0, 6, 110, 18), c);
  }

 private:
  int index_;
};

MCRasterImageRef thumbnail(int index) {
  // Stripes and a gradient, so that an image drawn upside down or shifted shows.
  std::vector<uint8_t> pixels;
  for (int y = 0; y < 68; ++y)
    for (int x = 0; x < 90; ++x) {
      const bool stripe = (y / 8) % 2 == 0;
      pixels.insert(pixels.end(), {uint8_t(stripe ? 40 + 20 * index : 3 * y), uint8_t(2 * x + 20), uint8_t(stripe ? 200 : 255 - 3 * y), 255});
    }
  return MCRasterImage::createRGBA8(90, 68, pixels);
}

std::shared_ptr<MCWindow> makeWindow(const std::vector<MCRasterImageRef>& images, std::vector<std::shared_ptr<Tile>>* tiles) {
  auto window = MCWindow::create({kWidth, kHeight});
  window->setBackgroundColor(MCColor::whiteColor());
  window->contentView()->addSubview(std::make_shared<Header>(MCMakeRect(0, kHeight - 34, kWidth, 34)));
  for (int i = 0; i < kTiles; ++i) {
    auto tile = std::make_shared<Tile>(MCMakeRect(5 + (i % 4) * 118, kHeight - 40 - (i / 4 + 1) * 120, 110, 110), images[i], i);
    window->contentView()->addSubview(tile);
    if (tiles) tiles->push_back(tile);
  }
  return window;
}

void print(const std::string& line) {
  std::printf("%s\n", line.c_str());
  std::fflush(stdout);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 3) {
    std::fprintf(stderr, "usage: render-compare-for-tests OFFSCREEN.png GO-ON-FILE\n");
    return 2;
  }
  const std::string png = argv[1], goOn = argv[2];
  return MCGtkRunApplication("org.vesperon.RenderCompare", argv[0], [&](GtkApplication* application) {
    g_application_hold(G_APPLICATION(application));
    {
      std::vector<MCRasterImageRef> images;
      for (int i = 0; i < kTiles; ++i) images.push_back(thumbnail(i));
      {
        MCOffscreenHost offscreen(makeWindow(images, nullptr));
        if (!offscreen.writePNG(png)) print("offscreen rendering failed");
      }

      std::vector<std::shared_ptr<Tile>> tiles;
      auto host = MCGtkWindowHost::create(makeWindow(images, &tiles));
      images.clear();  // the tiles hold the thumbnails from here on
      GtkWindow* toplevel = host->presentInNewWindow(application, false);
      while (!host->isShown()) g_main_context_iteration(nullptr, TRUE);
      for (int i = 0; i < 20; ++i) g_main_context_iteration(nullptr, FALSE);
      double x = 0, y = 0;
      host->widgetOriginInSurface(x, y);
      print("ready " + std::to_string(int(x)) + " " + std::to_string(int(y)) + " " +
            std::to_string(host->numberOfCachedTextures()));
      while (!std::filesystem::exists(goOn)) g_main_context_iteration(nullptr, FALSE), g_usleep(20000);
      for (int i = 0; i < kTiles; i += 2) {
        tiles[std::size_t(i)]->image = nullptr;
        tiles[std::size_t(i)]->setNeedsDisplay(true);
      }
      host->window()->invalidateRect(MCMakeRect(0, 0, kWidth, kHeight));
      for (int i = 0; i < 50; ++i) g_main_context_iteration(nullptr, FALSE), g_usleep(10000);
      print("dropped " + std::to_string(host->numberOfCachedTextures()));
      gtk_window_destroy(toplevel);
    }
    g_application_release(G_APPLICATION(application));
  });
}
