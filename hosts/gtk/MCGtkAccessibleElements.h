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

 private:
  struct Proxy {
    GtkWidget* widget = nullptr;
    MCAccessibilityElement element;
  };
  static int idleUpdate(void* data);
  void apply(Proxy& proxy, const MCAccessibilityElement& element, bool fresh);

  GtkWidget* hostWidget_;
  std::weak_ptr<MCWindow> window_;
  std::vector<Proxy> proxies_;
  unsigned idleSource_ = 0;
};
