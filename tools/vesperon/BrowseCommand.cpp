// vesperon browse: every image under a folder as a grid of thumbnails in a window, grouped by
// capture day. With --render it draws the first screen offscreen into a PNG instead, once the
// visible thumbnails have arrived.

#include "BrowseController.h"
#include "BrowseViewer.h"

#include <vesperon/browser/MCBrowserViewItemCardCell.h>
#include <vesperon/controls/MCNavigationController.h>
#include "VesperonCommand.h"

#include <hosts/gtk/MCGtkPreviewPresenter.h>
#include <hosts/gtk/MCGtkWindowHost.h>
#include <vesperon/platform/MCGraphicsContext.h>
#include <vesperon/platform/MCMainQueue.h>
#include <vesperon/toolkit/MCAttributedString.h>
#include <vesperon/toolkit/MCOffscreenHost.h>
#include <vesperon/toolkit/MCScrollView.h>
#include <vesperon/toolkit/MCTimer.h>

#include <cstdio>
#include <cstring>

namespace fs = std::filesystem;

namespace {

struct BrowseSettings {
  fs::path folder;
  fs::path render;
  MCSize size{1024, 720};
  bool report = false;
};

class StatusBar : public MCView {
 public:
  using MCView::MCView;
  static constexpr double kHeight = 26;
  std::string text;
  bool isOpaque() const override { return true; }
  void drawRect(const MCRect& dirty) override {
    MCGraphicsContext& context = *MCGraphicsContext::currentContext();
    MCColor::windowBackgroundColor().setFill(context);
    context.fillRect(dirty);
    MCColor::separatorColor().setFill(context);
    context.fillRect(MCMakeRect(0, bounds().size.height - 1, bounds().size.width, 1));
    MCAttributedString line(text, {MCFont::systemFontOfSize(12), MCColor::secondaryLabelColor(), {}, {}, {}});
    line.drawAtPoint({10, (bounds().size.height - line.size().height) / 2}, context);
  }
};

struct Browser {
  std::shared_ptr<MCWindow> window;
  std::shared_ptr<BrowseView> view;
  std::shared_ptr<BrowseController> controller;
  std::shared_ptr<MCNavigationController> navigation;
};

/// The grid page: the browser in its scroll view, and the status line.
class GridPage : public MCViewController {
 public:
  GridPage(MCViewRef content, std::weak_ptr<MCView> focus) : content_(std::move(content)), focus_(std::move(focus)) {}
  void loadView() override { setView(content_); }
  /// Back from a viewer: the keys go to the grid again.
  void viewControllerDidAppear(bool) override {
    if (auto focus = focus_.lock())
      if (focus->window()) focus->window()->makeFirstResponder(focus.get());
  }

 private:
  MCViewRef content_;
  std::weak_ptr<MCView> focus_;
};

Browser makeBrowser(const BrowseSettings& settings, BrowseCollection collection) {
  Browser b;
  const MCSize size = settings.size;
  b.window = MCWindow::create(size);
  b.window->setTitle("Vesperon — " + settings.folder.string());
  auto status = std::make_shared<StatusBar>(MCMakeRect(0, 0, size.width, StatusBar::kHeight));
  status->setAutoresizingMask(MCViewWidthSizable | MCViewMaxYMargin);
  auto scrollView = std::make_shared<MCScrollView>(
      MCMakeRect(0, StatusBar::kHeight, size.width, size.height - StatusBar::kHeight));
  scrollView->setAutoresizingMask(MCViewWidthSizable | MCViewHeightSizable);
  b.view = std::make_shared<BrowseView>(MCMakeRect(0, 0, size.width, size.height - StatusBar::kHeight));
  scrollView->setDocumentView(b.view);
  class Grid : public MCView {
   public:
    using MCView::MCView;
  };
  auto grid = std::make_shared<Grid>(MCMakeRect(0, 0, size.width, size.height));
  grid->addSubview(scrollView);
  grid->addSubview(status);
  b.navigation = MCNavigationController::create(std::make_shared<GridPage>(grid, b.view));
  b.window->setContentView(b.navigation->view());
  b.window->makeFirstResponder(b.view.get());
  const bool report = settings.report;
  std::weak_ptr<StatusBar> weakStatus = status;
  b.controller = std::make_shared<BrowseController>(
      std::move(collection),
      [report](const std::string& line) {
        if (!report) return;
        std::printf("%s\n", line.c_str());
        std::fflush(stdout);
      },
      [weakStatus](const std::string& line) {
        if (auto bar = weakStatus.lock()) {
          bar->text = line;
          bar->setNeedsDisplay(true);
        }
      });
  // A double-click or Return opens the photo in a viewer page; leaving it gives the keys back.
  std::weak_ptr<MCNavigationController> navigation = b.navigation;
  std::weak_ptr<BrowseController> controller = b.controller;
  std::weak_ptr<BrowseView> view = b.view;
  auto open = [navigation, controller, view, report](const MCIndexPath& path) {
    auto nav = navigation.lock();
    auto c = controller.lock();
    if (!nav || !c) return;
    auto page = std::make_shared<BrowseViewerPage>(
        c->collection().file(path.group, path.item), c->thumbnailAt(path),
        [report](const std::string& line) {
          if (!report) return;
          std::printf("%s\n", line.c_str());
          std::fflush(stdout);
        },
        [controller, path](long) {
          if (auto c2 = controller.lock()) c2->itemChanged(path);
        });
    nav->pushViewController(page, false);
  };
  b.controller->openItem = open;
  b.view->openItem = open;
  return b;
}

int renderOffscreen(const BrowseSettings& settings, BrowseCollection collection) {
  Browser b = makeBrowser(settings, std::move(collection));
  MCOffscreenHost host(b.window, 1.0);
  b.controller->attach(b.view);
  // The first screen, once what it shows has arrived (or failed).
  MCMainQueue::runUntil([&] { return b.controller->pendingCount() == 0; }, std::chrono::seconds(60));
  if (!host.writePNG(settings.render)) {
    std::fprintf(stderr, "vesperon browse: cannot write %s\n", settings.render.c_str());
    return 1;
  }
  std::printf("%s: %s\n", settings.render.c_str(), b.controller->statusLine().c_str());
  return 0;
}

int runBrowse(const BrowseSettings& settings) {
  std::error_code ec;
  if (!fs::is_directory(settings.folder, ec)) {
    std::fprintf(stderr, "vesperon browse: %s is not a folder\n", settings.folder.c_str());
    return 1;
  }
  BrowseCollection collection = BrowseCollection::scan(settings.folder);
  if (!settings.render.empty()) return renderOffscreen(settings, std::move(collection));

  Browser b = makeBrowser(settings, std::move(collection));
  std::shared_ptr<MCGtkWindowHost> host;
  std::shared_ptr<MCTimer> announcer;
  const int status = MCGtkRunApplication("org.vesperon.Browse", "vesperon", [&](GtkApplication* application) {
    host = MCGtkWindowHost::create(b.window);
    host->presentInNewWindow(application);
    MCPreviewPanel::sharedPreviewPanel()->setPresenter(std::make_shared<MCGtkPreviewPresenter>());
    b.controller->attach(b.view);
    // Tell a watching test where the grid's top left is, once the window shows.
    announcer = MCTimer::scheduledTimer(0.05, true, [&](MCTimer& timer) {
      if (!host->isShown()) return;
      timer.invalidate();
      if (!settings.report) return;
      double x = 0, y = 0;
      host->widgetOriginInSurface(x, y);
      std::printf("ready %ld %ld\n", std::lround(x), std::lround(y));
      // Where the first cells' images are, in the window's own coordinates (y down), to aim at.
      const MCSize content = b.window->contentSize();
      for (uint64_t i = 0; i < std::min<uint64_t>(3, b.view->numberOfItems()); ++i) {
        MCBrowserViewItemCardCell card;
        const MCRect square = card.imageRectForBounds(b.view->contentLayout()->cellFrameAtItemIndex(i));
        const MCPoint centre = b.view->convertPointToView({MCMidX(square), MCMidY(square)}, nullptr);
        std::printf("cell %llu %ld %ld\n", static_cast<unsigned long long>(i), std::lround(centre.x),
                    std::lround(content.height - centre.y));
      }
      std::fflush(stdout);
    });
  });
  announcer.reset();
  MCPreviewPanel::sharedPreviewPanel()->setPresenter(nullptr);
  host.reset();
  return status;
}

std::function<int()> defineBrowse(CLI::App& command) {
  auto settings = std::make_shared<BrowseSettings>();
  command.add_option("DIR", settings->folder, "the folder whose images, at any depth, are shown")->required();
  command.add_option("--render", settings->render,
                     "draw the first screen offscreen into this PNG, once its thumbnails arrived, instead of a window");
  command.add_option_function<std::string>(
      "--size",
      [settings](const std::string& text) {
        unsigned width = 0, height = 0;
        char x = 0, extra = 0;
        if (std::sscanf(text.c_str(), "%u%c%u%c", &width, &x, &height, &extra) != 3 || (x != 'x' && x != 'X') ||
            width < 64 || height < 64 || width > 8192 || height > 8192)
          throw CLI::ValidationError("--size", "'" + text + "' is not WIDTHxHEIGHT, each 64 to 8192");
        settings->size = MCMakeSize(width, height);
      },
      "the window's size in points, as WIDTHxHEIGHT (default 1024x720)");
  command.add_flag("--report", settings->report,
                   "print each thing that happens (selections, the viewer, copies, drags), a line each");
  return [settings] { return runBrowse(*settings); };
}

}  // namespace

VESPERON_COMMAND("browse", "show every image under DIR as thumbnails grouped by day, in a window", defineBrowse)
