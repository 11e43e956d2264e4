#pragma once
// MCGtkSlidingBar: a bar that slides down to show a widget of the program's own (a search or
// filter bar above a window's content) and slides up to hide it, hidden at first. Hiding gives the
// keyboard back to a widget the owner names, so the keys go on where they went before the bar
// showed.
//
//   auto bar = MCGtkSlidingBar::create(editor->widget(), 10, 6);
//   bar->setFocusAfterHiding(host->widget());
//   host->setTopAccessoryWidget(bar->widget());
//   ... bar->setShown(!bar->isShown());

#include <functional>
#include <memory>

typedef struct _GtkWidget GtkWidget;

class MCGtkSlidingBar {
 public:
  /// A hidden bar around `child`, which keeps `horizontalMargin` units of room at its left and
  /// right and `verticalMargin` above and below it. Null when `child` is null.
  static std::unique_ptr<MCGtkSlidingBar> create(GtkWidget* child, int horizontalMargin = 0, int verticalMargin = 0);
  ~MCGtkSlidingBar();
  MCGtkSlidingBar(const MCGtkSlidingBar&) = delete;
  MCGtkSlidingBar& operator=(const MCGtkSlidingBar&) = delete;

  /// The widget to put above the content; it holds a reference of its own until the bar is gone.
  GtkWidget* widget() const { return revealer_; }
  /// Whether the bar is shown or on its way down.
  bool isShown() const;
  /// Slides the bar down or up; hiding it gives the keyboard focus to the widget named below.
  void setShown(bool shown);
  /// The widget that gets the keyboard focus when the bar hides; none leaves the focus to GTK.
  void setFocusAfterHiding(GtkWidget* widget) { focusAfterHiding_ = widget; }
  /// Called each time the bar has finished sliding down, its child at its place on screen.
  void setShownHandler(std::function<void()> handler) { shownHandler_ = std::move(handler); }

 private:
  MCGtkSlidingBar() = default;
  static void childRevealedChanged(GtkWidget* revealer, void* property, MCGtkSlidingBar* bar);

  GtkWidget* revealer_ = nullptr;
  GtkWidget* focusAfterHiding_ = nullptr;
  std::function<void()> shownHandler_;
};
