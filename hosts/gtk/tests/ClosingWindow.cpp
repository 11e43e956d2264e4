// A window of the tests' own whose MCWindow closes (0.4 s after it starts) while something the host
// opened is still under way: `closing-window-for-tests menu` closes it while a right-click menu
// shows, `loop` while a press runs a nested tracking loop, `drag` while a drag the press started
// is in the air. It prints "ready X Y" (the pad's centre, surface coordinates) once shown, what
// started ("menu shown", "loop started", "drag started"), how it ended ("loop ended", "drag ended
// OPERATION"), "closed" when the window closed, and "exit" once the main loop is left.
#include <hosts/gtk/MCGtkWindowHost.h>
#include <vesperon/toolkit/MCDraggingSession.h>
#include <vesperon/toolkit/MCEvent.h>
#include <vesperon/toolkit/MCMenu.h>
#include <vesperon/toolkit/MCPasteboard.h>
#include <vesperon/toolkit/MCTimer.h>

#include <gtk/gtk.h>

#include <cstdio>
#include <cstring>
#include <filesystem>
#include <string>

namespace {

void print(const std::string& line) {
  std::printf("%s\n", line.c_str());
  std::fflush(stdout);
}

class Pad : public MCView, public MCDraggingSource {
 public:
  Pad(MCRect frame, std::string mode) : MCView(frame), mode_(std::move(mode)) {}
  bool acceptsFirstResponder() const override { return true; }

  void drawRect(const MCRect&) override {}

  void rightMouseDown(const MCEvent& event) override {
    if (mode_ != "menu") return;
    MCMenu menu("Pad");
    menu.addItem(MCMenuItem("First"));
    menu.addItem(MCMenuItem("Second"));
    closeSoon();
    print("menu shown");
    window()->popUpContextMenu(menu, convertPoint(event.locationInWindow(), nullptr), this,
                               [](const MCMenuItem& item) { print("chosen " + item.title); });
  }

  void mouseDown(const MCEvent& event) override {
    if (mode_ == "loop") {
      closeSoon();
      print("loop started");
      // The loop waits for the release, which never comes before the window closes.
      while (auto next = window()->nextEventMatchingMask(
                 MCEventMaskFromType(MCEventType::LeftMouseUp) | MCEventMaskFromType(MCEventType::LeftMouseDragged))) {
        if (next->type() == MCEventType::LeftMouseUp) break;
      }
      print("loop ended");
    } else if (mode_ == "drag") {
      MCDraggingItem item(MCPasteboardItem::itemWithFileURL(std::filesystem::current_path() / "pad.txt"));
      item.draggingFrame = MCMakeRect(event.locationInWindow().x - 16, event.locationInWindow().y - 16, 32, 32);
      closeSoon();
      if (beginDraggingSession({item}, event, this)) print("drag started");
    }
  }

  uint64_t sourceOperationMaskForDraggingContext(MCDraggingSession&, MCDraggingContext) override {
    return MCDragOperationCopy;
  }
  void endedAtPoint(MCDraggingSession&, MCPoint, uint64_t operation) override {
    print("drag ended " + std::to_string(operation));
  }

 private:
  void closeSoon() {
    std::weak_ptr<MCWindow> weak = std::static_pointer_cast<MCWindow>(window()->shared_from_this());
    timer_ = MCTimer::scheduledTimer(0.4, false, [weak](MCTimer&) {
      if (auto window = weak.lock()) window->close();
      print("closed");
    });
  }

  std::string mode_;
  std::shared_ptr<MCTimer> timer_;
};

}  // namespace

int main(int argc, char** argv) {
  const std::string mode = argc > 1 ? argv[1] : "";
  if (mode != "menu" && mode != "loop" && mode != "drag") {
    std::fprintf(stderr, "usage: closing-window-for-tests menu|loop|drag\n");
    return 2;
  }
  return MCGtkRunApplication("org.vesperon.ClosingWindowTest", argv[0], [mode](GtkApplication* application) {
    auto window = MCWindow::create({400, 300});
    window->setTitle("Closing window");
    auto pad = std::make_shared<Pad>(MCMakeRect(0, 0, 400, 300), mode);
    pad->setAutoresizingMask(MCViewWidthSizable | MCViewHeightSizable);
    window->contentView()->addSubview(pad);
    window->makeFirstResponder(pad.get());
    auto host = MCGtkWindowHost::create(window);
    host->presentInNewWindow(application);
    g_timeout_add(300, +[](gpointer data) {
                    double x = 0, y = 0;
                    static_cast<MCGtkWindowHost*>(data)->widgetOriginInSurface(x, y);
                    print("ready " + std::to_string(int(x) + 200) + " " + std::to_string(int(y) + 150));
                    return G_SOURCE_REMOVE;
                  }, host.get());
  }) == 0 ? (print("exit"), 0) : 1;
}
