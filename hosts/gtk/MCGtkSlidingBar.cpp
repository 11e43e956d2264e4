#include <hosts/gtk/MCGtkSlidingBar.h>

#include <gtk/gtk.h>

std::unique_ptr<MCGtkSlidingBar> MCGtkSlidingBar::create(GtkWidget* child, int horizontalMargin, int verticalMargin) {
  if (!child) return nullptr;
  std::unique_ptr<MCGtkSlidingBar> bar(new MCGtkSlidingBar());
  bar->revealer_ = gtk_revealer_new();
  g_object_ref_sink(bar->revealer_);
  gtk_revealer_set_transition_type(GTK_REVEALER(bar->revealer_), GTK_REVEALER_TRANSITION_TYPE_SLIDE_DOWN);
  gtk_widget_set_margin_start(child, horizontalMargin);
  gtk_widget_set_margin_end(child, horizontalMargin);
  gtk_widget_set_margin_top(child, verticalMargin);
  gtk_widget_set_margin_bottom(child, verticalMargin);
  gtk_revealer_set_child(GTK_REVEALER(bar->revealer_), child);
  g_signal_connect(bar->revealer_, "notify::child-revealed", G_CALLBACK(&MCGtkSlidingBar::childRevealedChanged),
                   bar.get());
  return bar;
}

MCGtkSlidingBar::~MCGtkSlidingBar() {
  // The revealer may outlive the bar inside its parent; it must not call back into freed memory.
  g_signal_handlers_disconnect_by_data(revealer_, this);
  g_object_unref(revealer_);
}

bool MCGtkSlidingBar::isShown() const { return gtk_revealer_get_reveal_child(GTK_REVEALER(revealer_)); }

void MCGtkSlidingBar::setShown(bool shown) {
  gtk_revealer_set_reveal_child(GTK_REVEALER(revealer_), shown);
  if (!shown && focusAfterHiding_) gtk_widget_grab_focus(focusAfterHiding_);
}

void MCGtkSlidingBar::childRevealedChanged(GtkWidget* revealer, void*, MCGtkSlidingBar* bar) {
  if (gtk_revealer_get_child_revealed(GTK_REVEALER(revealer)) && bar->shownHandler_) bar->shownHandler_();
}
