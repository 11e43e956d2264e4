#pragma once
// The filter bar of `vesperon browse` on screen, sliding down above the grid, hidden at first:
// the library's predicate editor (MCGtkPredicateEditor) over the filter's rows — the compound row
// ("All of the following are true"), then per filter row a check button that turns it on and the
// row's own widgets. Editing a row turns it on. Each change calls `changed`.

#include "BrowseFilter.h"

#include <hosts/gtk/MCGtkPredicateEditor.h>
#include <hosts/gtk/MCGtkSlidingBar.h>

#include <functional>
#include <memory>
#include <string>

typedef struct _GtkWidget GtkWidget;

class BrowseFilterBar {
 public:
  /// `content` gets the keyboard back when the bar hides. `report`, when set, hears where the
  /// compound row's pop-up lies once the bar has shown ("filter-bar compound X Y", surface
  /// coordinates), for a test to aim at.
  BrowseFilterBar(BrowseFilter& filter, std::function<void()> changed, GtkWidget* content,
                  std::function<void(const std::string&)> report = nullptr);
  BrowseFilterBar(const BrowseFilterBar&) = delete;
  BrowseFilterBar& operator=(const BrowseFilterBar&) = delete;
  ~BrowseFilterBar();

  GtkWidget* widget() const { return bar_->widget(); }
  bool isShown() const;
  /// Shows the bar with the focus in its first field, or hides it.
  void toggle();
  /// Turns every row off, as unticking each would.
  void clearRows();

 private:
  BrowseFilter& filter_;
  std::function<void()> changed_;
  std::shared_ptr<MCGtkPredicateEditor> editor_;
  std::unique_ptr<MCGtkSlidingBar> bar_;
};
