#pragma once
// MCGtkPredicateEditorRow: one row of a predicate editor in GTK widgets, made from the row
// template's view models. A pop-up becomes a GtkDropDown (a label when it has one entry; its
// separators are left out), an entry field a GtkEntry with its placeholder, a date a button that
// opens a GtkCalendar, and a date range control its three parts side by side. A user's
// change goes into the model (through its action where it has one), then `changed` is called;
// `refresh` shows and hides the widgets as the models now say, after the owner has asked the
// template for its predicate.

#include <vesperon/predicates/MCPredicateEditorRowTemplate.h>

#include <functional>
#include <memory>
#include <vector>

typedef struct _GtkWidget GtkWidget;

class MCGtkPredicateEditorRow : public std::enable_shared_from_this<MCGtkPredicateEditorRow> {
 public:
  /// The widgets of `row`; `changed` is called after each change a person makes.
  static std::shared_ptr<MCGtkPredicateEditorRow> create(MCPredicateEditorRowTemplateRef row, std::function<void()> changed);
  ~MCGtkPredicateEditorRow();

  /// A horizontal box; it holds a reference of its own until this row is gone.
  GtkWidget* widget() const { return box_; }
  /// The row template shown.
  const MCPredicateEditorRowTemplateRef& rowTemplate() const { return row_; }
  /// Shows and hides the widgets as the row's models now say.
  void refresh();
  /// Puts the keyboard focus in the row's first shown entry; false when it has none.
  bool grabFocus();
  /// The widget of the row's view at `index` (of templateViews()); null past the end.
  GtkWidget* widgetOfView(std::size_t index) const;
  /// The centre of a widget in its window's surface, in GTK's units (y down), for tests that aim
  /// at it; false when it is not on screen.
  static bool centreInSurface(GtkWidget* widget, double& x, double& y);

 private:
  MCGtkPredicateEditorRow() = default;
  GtkWidget* add(const std::shared_ptr<MCControlModel>& model);

  MCPredicateEditorRowTemplateRef row_;
  std::function<void()> changed_;
  GtkWidget* box_ = nullptr;
  struct Part {
    std::shared_ptr<MCControlModel> model;
    GtkWidget* widget;
  };
  std::vector<Part> parts_;
  std::vector<GtkWidget*> viewWidgets_;  // one per view of the row, in order
};
