#pragma once
// MCGtkWindowHost: puts an MCWindow on screen in a GTK 4 widget.
//
// The widget draws the window as GSK render nodes: each frame the views draw into a recording
// context (MCGraphicsContext::createRecording) at the display's scale, whose images become texture
// nodes kept per image across frames (MCGtkTextureCache), solid rectangles colour nodes, plain text
// text nodes, and the rest Cairo nodes in their place (MCGtkSnapshotSink); so GTK's GL renderer
// draws the thumbnails on the GPU. A fill that an opaque fill after it covers is left out, and so
// is GTK's background of a toplevel of presentInNewWindow while the window's opaque one covers it. The widget follows its allocation with the window's content
// size, and turns GTK's input into
// MCEvents through the one mapping table of MCWindowHost.h. Presses, releases and motion come
// from a legacy event controller (GTK's click gesture cancels itself when the pointer moves and
// then loses the release, which a tracking loop must see); click counts are made here from the
// desktop's double-click time and distance. Wheel and touchpad scrolling come from the scroll
// controller, pinches from the zoom gesture, keys from the key controller.
//
// Nested event loops (MCWindow::nextEventMatchingMask) iterate the GLib main context until an
// event of their mask is queued. While the host lives, the general pasteboard is the desktop
// clipboard, and drags started by views are real drags offering text/uri-list and text/plain.

#include <vesperon/toolkit/MCKineticScroll.h>
#include <vesperon/toolkit/MCWindow.h>
#include <vesperon/toolkit/MCWindowHost.h>

#include <memory>
#include <string>
#include <vector>

#include <functional>

// GTK's types stay opaque here, so that programs using the host need no GTK header.
class MCGtkAccessibleElements;
typedef struct _GtkWidget GtkWidget;
typedef struct _GtkWindow GtkWindow;
typedef struct _GtkApplication GtkApplication;
typedef struct _GdkSnapshot GdkSnapshot;
typedef struct _GdkDevice GdkDevice;
typedef struct _GdkDrag GdkDrag;
typedef struct _GdkEvent GdkEvent;
class MCGtkTextureCache;

/// Runs a GTK application (non-unique, so several can run at once); `activate` makes its windows.
/// Answers the exit status. Command-line arguments are the program's own business, not GTK's.
/// Whether GTK's widgets are drawn in their dark variant (the desktop's setting, or as set below).
/// Once GTK is initialised.
bool MCGtkPrefersDarkTheme();
/// Draws GTK's widgets in their dark variant, or not.
void MCGtkSetPrefersDarkTheme(bool dark);

int MCGtkRunApplication(const std::string& applicationID, const char* programName,
                        std::function<void(GtkApplication* application)> activate);

class MCGtkWindowHost : public MCWindowHost, public std::enable_shared_from_this<MCGtkWindowHost> {
 public:
  /// A host with its widget, not yet in any GTK window. The widget holds the host; the host
  /// holds the window.
  static std::shared_ptr<MCGtkWindowHost> create(std::shared_ptr<MCWindow> window);
  /// A host of a new window that shows `view` over its whole area, inside a scroll view when
  /// `scrolls` (as a browser view wants), with the view as first responder. Put widget() into a
  /// GtkWindow or container of your own: the widget keeps the host, its window and the view alive,
  /// and closing the widget's toplevel closes the window. Null when `view` is null.
  static std::shared_ptr<MCGtkWindowHost> createForView(std::shared_ptr<MCView> view, bool scrolls = true);
  ~MCGtkWindowHost() override;

  /// The window shown.
  const std::shared_ptr<MCWindow>& window() const { return window_; }
  /// The GTK widget that shows the window; put it in a GtkWindow or container of your own.
  GtkWidget* widget() const { return widget_; }

  /// Makes a GTK application window of the MCWindow's title and content size with the widget as
  /// its child, and shows it. Closing it closes the MCWindow.
  GtkWindow* presentInNewWindow(GtkApplication* application, bool decorated = true);
  /// The window presentInNewWindow made; none otherwise.
  GtkWindow* toplevel() const { return toplevel_; }

  /// A button at the start of the window's title bar, with a symbolic icon and a tool tip. Call
  /// before presentInNewWindow, which puts the buttons in a header bar.
  void addTitleBarButton(const std::string& iconName, const std::string& toolTip, std::function<void()> action);
  /// Marks the title bar's button of this icon (GTK's "suggested-action" look) or takes the mark
  /// away: a state it stands for is on, such as a filter that narrows what shows. Any time.
  void setTitleBarButtonMarked(const std::string& iconName, bool marked);

  /// A widget of the program's own above the window's content (a search or filter bar), which
  /// takes its natural height and leaves the rest to the content. Call before presentInNewWindow.
  void setTopAccessoryWidget(GtkWidget* widget) { topAccessory_ = widget; }

  /// Where the widget's top left lies in its toplevel's surface, in GTK's units (y down).
  void widgetOriginInSurface(double& x, double& y) const;
  /// Whether the widget is on screen with a size.
  bool isShown() const;
  /// How many image textures the host keeps for the frames to come; for tests and benchmarks.
  std::size_t numberOfCachedTextures() const;
  /// How many render nodes of each kind a frame made.
  struct FrameNodeCounts {
    /// Runs of drawing GTK got as Cairo nodes.
    std::size_t cairo = 0;
    /// Solid rectangles.
    std::size_t color = 0;
    /// Images.
    std::size_t texture = 0;
    /// Text layouts.
    std::size_t text = 0;
  };
  /// How many render nodes of each kind the last frame made; for tests and benchmarks.
  const FrameNodeCounts& lastFrameNodeCounts() const { return lastFrameCounts_; }

  // MCWindowHost
  void invalidateRect(const MCRect& rect) override;
  MCPoint mouseLocation() const override { return pointer_; }
  bool waitForEvents(Deadline deadline) override;
  double backingScaleFactor() const override;
  /// Shows the cursor over the widget.
  void setCursor(MCCursor cursor) override;
  bool beginDraggingSession(const std::shared_ptr<MCDraggingSession>& session) override;
  std::shared_ptr<MCPasteboardBackend> pasteboardBackend() override;
  void closeWindow() override;
  void windowTitleDidChange() override;
  /// Gives the widget the view's label as its accessible name and its value as its description,
  /// which AT-SPI announces.
  void accessibilityDidChange(MCView& view) override;
  bool setFullScreen(bool fullScreen) override;
  /// Whether the toplevel was asked to fill the screen.
  bool isFullScreen() const override { return fullScreen_; }
  /// A GtkPopoverMenu at the point; items become actions of the widget's "context" group. An
  /// item's view shows in the popover as a widget of its own: a host like this one, of a small
  /// window that holds the view. The popover's copy of the menu tracks while it is open.
  bool popUpContextMenu(const MCMenu& menu, MCPoint location, std::function<void(const MCMenuItem&)> chosen) override;

  // Called by the widget.
  /// @name For the host's widget
  //@{
  /// Called by the host's own widget (drawing, size, input, its end); not for programs.
  void snapshot(GdkSnapshot* snapshot);
  void allocated(int width, int height);
  bool legacyEvent(GdkEvent* event);
  void scrolled(double dx, double dy, bool precise, unsigned state);
  /// A touchpad scroll ended at this velocity (points a millisecond, GTK's direction): the
  /// content glides on, slowing down, until it stops or the next touch or click.
  void decelerate(double velocityX, double velocityY);
  /// Ends a glide.
  void stopGliding();
  void zoomBegan();
  void zoomChanged(double scale);
  bool keyPressed(unsigned keyval, unsigned state, bool pressed);
  void widgetDestroyed();
  bool queryToolTip(int x, int y, void* tooltip);
  //@}

 private:
  explicit MCGtkWindowHost(std::shared_ptr<MCWindow> window);
  MCPoint toWindow(double widgetX, double widgetY) const;
  void deliver(const MCEvent& event);
  /// The popover closed: its menu no longer tracks, and its views are in no menu.
  void contextMenuClosed();
  /// Drops the popover, and takes the item views out of their windows.
  void removeContextMenu();
  void endDragInFlight();
  /// Leaves GTK's background out of the toplevel while the window's opaque one covers it.
  void updateToplevelBackground();

  std::shared_ptr<MCWindow> window_;
  GtkWidget* widget_ = nullptr;
  std::unique_ptr<MCGtkAccessibleElements> accessibleElements_;
  GtkWindow* toplevel_ = nullptr;
  MCPoint pointer_{};
  double lastWidgetX_ = 0, lastWidgetY_ = 0;
  GdkDevice* pointerDevice_ = nullptr;
  // The drag this host began and GDK has not ended yet; a window that closes cancels it.
  std::weak_ptr<MCDraggingSession> dragSession_;
  GdkDrag* dragInFlight_ = nullptr;
  // Click counting.
  unsigned lastButton_ = 0;
  uint32_t lastPressTime_ = 0;
  double lastPressX_ = -1e9, lastPressY_ = -1e9;
  int clickCount_ = 0;
  double lastZoomScale_ = 1;
  MCKineticScroll glide_;
  unsigned glideTick_ = 0;     // the frame clock's tick callback while gliding
  int64_t glideFrameTime_ = 0;  // microseconds, of the frame the glide moved at last
  std::shared_ptr<MCPasteboardBackend> clipboard_;
  bool closing_ = false;
  bool fullScreen_ = false;
  GtkWidget* contextMenu_ = nullptr;
  struct TitleBarButton {
    std::string iconName, toolTip;
    std::function<void()> action;
    bool marked = false;
    GtkWidget* widget = nullptr;  // once the header bar is made
  };
  std::vector<TitleBarButton> titleBarButtons_;
  std::vector<MCMenuItem> contextItems_;
  std::function<void(const MCMenuItem&)> contextChosen_;
  MCMenu contextMenuModel_;
  std::vector<std::shared_ptr<MCView>> contextViews_;
  std::vector<std::shared_ptr<MCGtkWindowHost>> contextViewHosts_;
  GtkWidget* topAccessory_ = nullptr;
  std::unique_ptr<MCGtkTextureCache> textures_;
  FrameNodeCounts lastFrameCounts_;
};
