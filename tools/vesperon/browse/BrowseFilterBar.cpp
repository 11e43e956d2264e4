#include "BrowseFilterBar.h"

#include <gtk/gtk.h>

#include <cmath>

namespace {

struct CheckBinding {
  std::size_t index;
  std::function<void(std::size_t, bool)> toggled;
};

}  // namespace

BrowseFilterBar::BrowseFilterBar(BrowseFilter& filter, std::function<void()> changed, GtkWidget* content,
                                 std::function<void(const std::string&)> report)
    : filter_(filter), changed_(std::move(changed)), content_(content), report_(std::move(report)) {
  revealer_ = gtk_revealer_new();
  gtk_revealer_set_transition_type(GTK_REVEALER(revealer_), GTK_REVEALER_TRANSITION_TYPE_SLIDE_DOWN);
  GtkWidget* lines = gtk_box_new(GTK_ORIENTATION_VERTICAL, 4);
  gtk_widget_set_margin_start(lines, 10);
  gtk_widget_set_margin_end(lines, 10);
  gtk_widget_set_margin_top(lines, 6);
  gtk_widget_set_margin_bottom(lines, 6);
  compound_ = MCGtkPredicateEditorRow::create(filter_.compoundRow(), [this] {
    if (changed_) changed_();
  });
  gtk_box_append(GTK_BOX(lines), compound_->widget());
  for (std::size_t i = 0; i < filter_.rows().size(); ++i) {
    GtkWidget* line = gtk_box_new(GTK_ORIENTATION_HORIZONTAL, 6);
    GtkWidget* check = gtk_check_button_new();
    gtk_widget_set_tooltip_text(check, "Filter by this row");
    auto* binding = new CheckBinding{i, [this](std::size_t index, bool on) {
                                       if (updating_) return;
                                       filter_.rows()[index].enabled = on;
                                       rowChanged(index, false);
                                     }};
    g_signal_connect_data(check, "toggled", G_CALLBACK(+[](GtkCheckButton* button, gpointer data) {
                            auto* b = static_cast<CheckBinding*>(data);
                            b->toggled(b->index, gtk_check_button_get_active(button));
                          }),
                          binding, +[](gpointer data, GClosure*) { delete static_cast<CheckBinding*>(data); },
                          GConnectFlags(0));
    auto row = MCGtkPredicateEditorRow::create(filter_.rows()[i].row, [this, i] { rowChanged(i, true); });
    gtk_box_append(GTK_BOX(line), check);
    gtk_box_append(GTK_BOX(line), row->widget());
    gtk_box_append(GTK_BOX(lines), line);
    rows_.push_back(row);
    checks_.push_back(check);
  }
  gtk_revealer_set_child(GTK_REVEALER(revealer_), lines);
  if (report_) g_signal_connect(revealer_, "notify::child-revealed", G_CALLBACK(&BrowseFilterBar::revealed), this);
}

void BrowseFilterBar::revealed(GtkRevealer* revealer, GParamSpec*, BrowseFilterBar* bar) {
  double x = 0;
  double y = 0;
  if (gtk_revealer_get_child_revealed(revealer) &&
      MCGtkPredicateEditorRow::centreInSurface(bar->compound_->widgetOfView(0), x, y))
    bar->report_("filter-bar compound " + std::to_string(std::lround(x)) + " " + std::to_string(std::lround(y)));
}

bool BrowseFilterBar::isShown() const { return gtk_revealer_get_reveal_child(GTK_REVEALER(revealer_)); }

void BrowseFilterBar::toggle() {
  const bool show = !isShown();
  gtk_revealer_set_reveal_child(GTK_REVEALER(revealer_), show);
  if (show && !rows_.empty()) rows_.front()->grabFocus();
  if (!show && content_) gtk_widget_grab_focus(content_);
}

void BrowseFilterBar::rowChanged(std::size_t index, bool turnOn) {
  auto& row = filter_.rows()[index];
  if (turnOn && !row.enabled) {
    row.enabled = true;
    updating_ = true;
    gtk_check_button_set_active(GTK_CHECK_BUTTON(checks_[index]), TRUE);
    updating_ = false;
  }
  // Asking for the predicate lets a text row hide its field for "is empty", and a date row
  // choose its parts; then the widgets follow.
  row.row->predicateWithSubpredicates({});
  rows_[index]->refresh();
  if (changed_) changed_();
}
