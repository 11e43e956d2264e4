#pragma once
// MCOffscreenHost: a host that shows a window nowhere — it draws into the window's backing image
// and plays a script of events — for tests and for `--render FILE.png` snapshots.
//
// A script is a list of steps: events, and waits during which the GLib main context runs (timers
// fire, periodic events arrive). `run` feeds the steps to the window one by one and lets it
// dispatch each; a view that runs a nested loop (`nextEventMatchingMask`) takes the following
// steps itself, so a scripted press, drags and release reach a tracking loop as a real one would.
// When the script is used up, nested loops end (the window is told no more events can come).
//
// The pointer is where the last scripted mouse event put it. Drags are recorded and end when the
// test says so (`endDraggingSession`). The pasteboard stays the library's in-memory one.

#include <vesperon/toolkit/MCWindow.h>
#include <vesperon/toolkit/MCWindowHost.h>

#include <deque>
#include <filesystem>
#include <memory>
#include <vector>

class MCOffscreenHost : public MCWindowHost {
 public:
  /// Hosts `window` at `scale` pixels per point.
  explicit MCOffscreenHost(std::shared_ptr<MCWindow> window, double scale = 1.0);
  ~MCOffscreenHost() override;
  MCOffscreenHost(const MCOffscreenHost&) = delete;
  MCOffscreenHost& operator=(const MCOffscreenHost&) = delete;

  /// The window drawn.
  const std::shared_ptr<MCWindow>& window() const { return window_; }

  // The script. Locations are in the window's base coordinates (y up).
  /// Adds an event to the script.
  void addEvent(const MCEvent& event);
  /// Lets `seconds` pass with the main context running.
  void addWait(double seconds);
  /// @name Scripted input
  //@{
  /// Add mouse, wheel and pinch events to the script, at a point of the window.
  void mouseDown(MCPoint location, uint64_t modifierFlags = 0, int clickCount = 1);
  void mouseDragged(MCPoint location, uint64_t modifierFlags = 0);
  void mouseUp(MCPoint location, uint64_t modifierFlags = 0, int clickCount = 1);
  void mouseMoved(MCPoint location, uint64_t modifierFlags = 0);
  void rightMouseDown(MCPoint location, uint64_t modifierFlags = 0);
  void rightMouseUp(MCPoint location, uint64_t modifierFlags = 0);
  /// A press and a release at one place.
  void click(MCPoint location, uint64_t modifierFlags = 0, int clickCount = 1);
  /// A key down and up; letters come in upper case with shift.
  void keyPress(char32_t key, uint64_t modifierFlags = 0);
  void scrollWheel(MCPoint location, double deltaX, double deltaY, bool precise = true);
  void magnify(MCPoint location, double magnification);
  //@}
  /// How many steps of the script have not played.
  std::size_t numberOfPendingSteps() const { return steps_.size(); }

  /// Plays the whole script.
  void run();

  // Pixels.
  /// Displays what is pending and answers a copy of the window's pixels.
  MCRasterImageRef render();
  /// Displays what is pending and writes the window as a PNG; false when it cannot.
  bool writePNG(const std::filesystem::path& path);
  /// The union of what was invalidated since the last call, in base coordinates.
  MCRect takeInvalidatedRect();

  // Drags.
  /// The drags the views started, oldest first.
  const std::vector<std::shared_ptr<MCDraggingSession>>& draggingSessions() const { return sessions_; }
  /// Ends the newest drag with `operation` at the pointer.
  void endDraggingSession(uint64_t operation);

  // Context menus: the last one shown stays open until an item of it is chosen, or its tracking
  // is cancelled (MCMenu::cancelTracking).
  /// The context menu open; none when none is.
  const MCMenu* contextMenu() const { return menuShown_ ? &menu_ : nullptr; }
  /// Where the open menu was shown, in the window.
  MCPoint contextMenuLocation() const { return menuLocation_; }
  /// Chooses the enabled item with this title (in the menu or its submenus); false when none.
  bool chooseContextMenuItem(const std::string& title);
  /// While the menu is open, the host of the window that shows an item's view (the view at the
  /// window's origin, the window its size), through which a test clicks the view; none for a view
  /// of no item of the open menu.
  MCOffscreenHost* contextMenuViewHost(const MCView& view) const;

  // MCWindowHost
  bool popUpContextMenu(const MCMenu& menu, MCPoint location, std::function<void(const MCMenuItem&)> chosen) override;
  void invalidateRect(const MCRect& rect) override;
  MCPoint mouseLocation() const override { return pointer_; }
  bool waitForEvents(Deadline deadline) override;
  double backingScaleFactor() const override { return scale_; }
  bool beginDraggingSession(const std::shared_ptr<MCDraggingSession>& session) override;
  void closeWindow() override {}
  /// Remembered only: the offscreen picture keeps its size.
  bool setFullScreen(bool fullScreen) override {
    fullScreen_ = fullScreen;
    return true;
  }
  /// Whether the window was asked to fill the screen.
  bool isFullScreen() const override { return fullScreen_; }

 private:
  bool fullScreen_ = false;
  struct Step {
    bool isEvent = false;
    MCEvent event;
    double wait = 0;
  };
  /// Posts one event step; updates the pointer.
  void post(const MCEvent& event);
  /// Runs the main context until `seconds` passed or the window's queue grew; answers the time left.
  double runMainContext(double seconds, Deadline deadline);

  std::shared_ptr<MCWindow> window_;
  double scale_;
  std::deque<Step> steps_;
  MCPoint pointer_{};
  MCPoint lastScriptedMouse_{};
  bool haveInvalidated_ = false;
  MCRect invalidated_{};
  /// Ends the open menu's tracking: nothing more can be chosen from it.
  void closeContextMenu();
  /// Takes the item views out of their windows and drops the windows and their hosts.
  void removeContextMenuViews();

  std::vector<std::shared_ptr<MCDraggingSession>> sessions_;
  bool menuShown_ = false;
  MCMenu menu_;
  struct MenuViewWindow {
    std::shared_ptr<MCView> view;
    std::shared_ptr<MCWindow> window;
    std::unique_ptr<MCOffscreenHost> host;
  };
  // Kept until the next menu or the host's end, not dropped as the menu closes: the close may
  // come from inside one of these windows' event dispatch.
  std::vector<MenuViewWindow> menuViews_;
  MCPoint menuLocation_{};
  std::function<void(const MCMenuItem&)> menuChosen_;
};
