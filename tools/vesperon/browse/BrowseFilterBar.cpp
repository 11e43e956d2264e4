#include "BrowseFilterBar.h"

#include <gtk/gtk.h>

#include <cmath>

BrowseFilterBar::BrowseFilterBar(BrowseFilter& filter, std::function<void()> changed, GtkWidget* content,
                                 std::function<void(const std::string&)> report)
    : filter_(filter), changed_(std::move(changed)), content_(content), report_(std::move(report)) {
  revealer_ = gtk_revealer_new();
  gtk_revealer_set_transition_type(GTK_REVEALER(revealer_), GTK_REVEALER_TRANSITION_TYPE_SLIDE_DOWN);
  std::vector<MCPredicateEditorRowTemplateRef> rows;
  std::vector<bool> enabled;
  for (const BrowseFilter::Row& row : filter_.rows()) {
    rows.push_back(row.row);
    enabled.push_back(row.enabled);
  }
  // The editor shows the filter's own templates; which rows are on is copied back at each change.
  editor_ = MCGtkPredicateEditor::create(filter_.compoundRow(), rows, enabled, [this](const MCPredicateRef&) {
    for (std::size_t i = 0; i < filter_.rows().size(); ++i) filter_.rows()[i].enabled = editor_->isRowEnabled(i);
    if (changed_) changed_();
  });
  GtkWidget* lines = editor_->widget();
  gtk_widget_set_margin_start(lines, 10);
  gtk_widget_set_margin_end(lines, 10);
  gtk_widget_set_margin_top(lines, 6);
  gtk_widget_set_margin_bottom(lines, 6);
  gtk_revealer_set_child(GTK_REVEALER(revealer_), lines);
  if (report_) g_signal_connect(revealer_, "notify::child-revealed", G_CALLBACK(&BrowseFilterBar::revealed), this);
}

void BrowseFilterBar::revealed(GtkRevealer* revealer, GParamSpec*, BrowseFilterBar* bar) {
  double x = 0;
  double y = 0;
  if (gtk_revealer_get_child_revealed(revealer) &&
      MCGtkPredicateEditorRow::centreInSurface(bar->editor_->compoundRow()->widgetOfView(0), x, y))
    bar->report_("filter-bar compound " + std::to_string(std::lround(x)) + " " + std::to_string(std::lround(y)));
}

bool BrowseFilterBar::isShown() const { return gtk_revealer_get_reveal_child(GTK_REVEALER(revealer_)); }

void BrowseFilterBar::toggle() {
  const bool show = !isShown();
  gtk_revealer_set_reveal_child(GTK_REVEALER(revealer_), show);
  if (show) editor_->grabFocus();
  if (!show && content_) gtk_widget_grab_focus(content_);
}

void BrowseFilterBar::clearRows() {
  // As unticking each row's check button would, with one call of `changed` for them all.
  for (std::size_t i = 0; i < filter_.rows().size(); ++i) {
    editor_->setRowEnabled(i, false);
    filter_.rows()[i].enabled = false;
  }
  if (changed_) changed_();
}
