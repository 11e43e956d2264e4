// toolkit-demo: a window with a scroll view over a large drawn document and a marker that follows
// clicks, drags and the arrow keys; a right click opens a menu of colour labels that paint the
// marker; Escape quits.
//
//   toolkit-demo                       on screen, in a GTK 4 window
//   toolkit-demo --render out.png      offscreen: plays a short script of input, writes a PNG
//   --report                           prints each thing that happens, one line each
//   --undecorated                      a window without a title bar (for tests under Xvfb)
#include "DemoDocument.h"

#include <hosts/gtk/MCGtkWindowHost.h>
#include <vesperon/platform/MCGraphicsContext.h>
#include <vesperon/toolkit/MCAttributedString.h>
#include <vesperon/toolkit/MCOffscreenHost.h>
#include <vesperon/toolkit/MCScrollView.h>
#include <vesperon/toolkit/MCTimer.h>
#include <vesperon/toolkit/MCWindow.h>

#include <cmath>

#include <cstdio>
#include <cstring>
#include <string>

namespace {

struct Options {
  const char* render = nullptr;
  bool report = false;
  bool undecorated = false;
};

/// The line at the bottom that tells where the marker is.
class StatusBar : public MCView {
 public:
  using MCView::MCView;
  std::string text = "Click, drag, or use the arrow keys; right-click to colour the marker; Escape quits.";
  bool isOpaque() const override { return true; }
  void drawRect(const MCRect& dirty) override {
    MCGraphicsContext& context = *MCGraphicsContext::currentContext();
    MCColor::windowBackgroundColor().setFill(context);
    context.fillRect(dirty);
    MCAttributedString line(text, {MCFont::systemFontOfSize(12), MCColor::labelColor(), {}, {}, {}});
    line.drawAtPoint({8, (bounds().size.height - line.size().height) / 2}, context);
  }
};

std::shared_ptr<MCWindow> makeWindow(const Options& options, std::shared_ptr<DemoDocument>& documentOut) {
  auto window = MCWindow::create({640, 480});
  window->setTitle("Vesperon toolkit demo");
  constexpr double kStatus = 24;
  auto status = std::make_shared<StatusBar>(MCMakeRect(0, 0, 640, kStatus));
  status->setAutoresizingMask(MCViewWidthSizable | MCViewMaxYMargin);
  auto scrollView = std::make_shared<MCScrollView>(MCMakeRect(0, kStatus, 640, 480 - kStatus));
  scrollView->setAutoresizingMask(MCViewWidthSizable | MCViewHeightSizable);
  const bool report = options.report;
  std::weak_ptr<StatusBar> weakStatus = status;
  auto document = std::make_shared<DemoDocument>([report, weakStatus](const std::string& line) {
    if (report) {
      std::printf("%s\n", line.c_str());
      std::fflush(stdout);
    }
    if (auto bar = weakStatus.lock()) {
      bar->text = line;
      bar->setNeedsDisplay(true);
    }
  });
  scrollView->setDocumentView(document);
  window->contentView()->addSubview(scrollView);
  window->contentView()->addSubview(status);
  window->makeFirstResponder(document.get());
  documentOut = document;
  return window;
}

int renderOffscreen(const Options& options) {
  std::shared_ptr<DemoDocument> document;
  auto window = makeWindow(options, document);
  MCOffscreenHost host(window, 1.0);
  // Window coordinates have y up: the document's top is at window y 480.
  host.click({220, 480 - 120});
  host.mouseDown({300, 480 - 200});
  host.mouseDragged({340, 480 - 230});
  host.mouseUp({360, 480 - 250});
  host.keyPress(MCRightArrowFunctionKey);
  host.keyPress(MCDownArrowFunctionKey, MCEventModifierFlagShift);
  host.scrollWheel({320, 240}, 0, -60, true);
  host.run();
  if (!host.writePNG(options.render)) {
    std::fprintf(stderr, "toolkit-demo: cannot write %s\n", options.render);
    return 1;
  }
  return 0;
}

struct Screen {
  Options options;
  std::shared_ptr<MCWindow> window;
  std::shared_ptr<DemoDocument> document;
  std::shared_ptr<MCGtkWindowHost> host;
  std::shared_ptr<MCTimer> announcer;
};

void activate(Screen& screen, GtkApplication* application) {
  screen.window = makeWindow(screen.options, screen.document);
  screen.host = MCGtkWindowHost::create(screen.window);
  screen.host->presentInNewWindow(application, !screen.options.undecorated);
  // Say where the document's top left lies in the toplevel once the window is on screen, so that
  // a test can aim its pointer.
  screen.announcer = MCTimer::scheduledTimer(0.05, true, [&screen](MCTimer& timer) {
    if (!screen.host->isShown()) return;
    timer.invalidate();
    double x = 0, y = 0;
    screen.host->widgetOriginInSurface(x, y);
    if (screen.options.report) {
      const MCSize size = screen.window->contentSize();
      std::printf("ready %ld %ld %ld %ld\n", std::lround(x), std::lround(y), std::lround(size.width),
                  std::lround(size.height));
      std::fflush(stdout);
    }
  });
}

}  // namespace

int main(int argc, char** argv) {
  Options options;
  for (int i = 1; i < argc; ++i) {
    if (!std::strcmp(argv[i], "--render") && i + 1 < argc) options.render = argv[++i];
    else if (!std::strcmp(argv[i], "--report")) options.report = true;
    else if (!std::strcmp(argv[i], "--undecorated")) options.undecorated = true;
    else {
      std::fprintf(stderr, "usage: toolkit-demo [--render FILE.png] [--report] [--undecorated]\n");
      return 2;
    }
  }
  if (options.render) return renderOffscreen(options);

  Screen screen;
  screen.options = options;
  const int status = MCGtkRunApplication("org.vesperon.ToolkitDemo", argv[0],
                                         [&screen](GtkApplication* application) { activate(screen, application); });
  screen.announcer.reset();
  screen.host.reset();
  return status;
}
