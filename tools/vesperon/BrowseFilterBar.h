#pragma once
// The filter bar of `vesperon browse` on screen: a line of GTK widgets per filter row — a check
// button that turns the row on, then the row's own widgets — in a revealer above the grid, hidden
// at first. Editing a row turns it on. Each change calls `changed`.

#include "BrowseFilter.h"

#include <hosts/gtk/MCGtkPredicateEditorRow.h>

#include <functional>
#include <memory>
#include <vector>

typedef struct _GtkWidget GtkWidget;

class BrowseFilterBar {
 public:
  /// `content` gets the keyboard back when the bar hides.
  BrowseFilterBar(BrowseFilter& filter, std::function<void()> changed, GtkWidget* content);
  BrowseFilterBar(const BrowseFilterBar&) = delete;
  BrowseFilterBar& operator=(const BrowseFilterBar&) = delete;

  GtkWidget* widget() const { return revealer_; }
  bool isShown() const;
  /// Shows the bar with the focus in its first field, or hides it.
  void toggle();

 private:
  void rowChanged(std::size_t index, bool turnOn);

  BrowseFilter& filter_;
  std::function<void()> changed_;
  GtkWidget* content_;
  GtkWidget* revealer_ = nullptr;
  std::vector<std::shared_ptr<MCGtkPredicateEditorRow>> rows_;
  std::vector<GtkWidget*> checks_;
  bool updating_ = false;
};
