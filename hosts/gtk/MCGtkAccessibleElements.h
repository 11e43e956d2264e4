#pragma once
// MCGtkAccessibleElements: what a window's views describe to assistive technologies
// (MCAccessibilityElement: buttons, sliders, links, texts), as child widgets of the host's widget
// that draw nothing and take no input, but carry a role, a name, a state and a place, so that a
// screen reader finds them over AT-SPI as it finds GTK's own buttons. GTK 4.8 exposes only
// widgets, hence one small widget per element.
//
// The host asks for an update whenever its window is redrawn; the update runs once the main loop
// is idle, so a burst of redraws costs one walk over the views. Widgets are reused while an
// element keeps its place in the list and its role, and only what changed is told to GTK.
//
// Only while assistive technologies listen: AT-SPI's org.a11y.Status.IsEnabled on the session
// bus, which a screen reader sets as it starts (the desktop's accessibility setting sets it too),
// as Qt asks it. Until then, and with GTK's accessibility turned off (GTK_A11Y=none), no widget is
// made and a redraw costs nothing more.

#include <vesperon/toolkit/MCAccessibilityElement.h>

#include <memory>
#include <vector>

typedef struct _GtkWidget GtkWidget;
class MCWindow;

class MCGtkAccessibleElements {
 public:
  /// Elements of `window`'s views, as children of `hostWidget` (which shows the window).
  MCGtkAccessibleElements(GtkWidget* hostWidget, std::weak_ptr<MCWindow> window);
  ~MCGtkAccessibleElements();
  MCGtkAccessibleElements(const MCGtkAccessibleElements&) = delete;
  MCGtkAccessibleElements& operator=(const MCGtkAccessibleElements&) = delete;

  /// Asks for an update once the main loop is idle; several asks make one update.
  void setNeedsUpdate();
  /// Walks the window's views now and brings the child widgets up to date.
  void update();
  /// Gives each child widget its element's place; the host's widget calls it as it is allocated.
  void allocate();
  /// The elements the child widgets stand for now, frames in the host widget's units (y down).
  std::vector<MCAccessibilityElement> elements() const;
  /// Whether assistive technologies listen, as last heard from the session bus.
  bool isListenedTo() const { return listenedTo_; }

 private:
  struct Proxy {
    GtkWidget* widget = nullptr;
    MCAccessibilityElement element;
  };
  static int idleUpdate(void* data);
  static void statusReady(void* source, void* result, void* data);
  static void statusChanged(void* proxy, void* changed, void* invalidated, void* data);
  void readStatus();
  void apply(Proxy& proxy, const MCAccessibilityElement& element, bool fresh);

  GtkWidget* hostWidget_;
  std::weak_ptr<MCWindow> window_;
  std::vector<Proxy> proxies_;
  unsigned idleSource_ = 0;
  bool listenedTo_ = false;
  void* cancellable_ = nullptr;  // GCancellable of the status query
  void* status_ = nullptr;       // GDBusProxy of org.a11y.Status
};
