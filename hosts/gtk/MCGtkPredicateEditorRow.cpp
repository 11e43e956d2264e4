#include "MCGtkPredicateEditorRow.h"

#include <vesperon/controls/MCDateRangeControl.h>

#include <gtk/gtk.h>

#include <cstdio>
#include <ctime>

namespace {

// The data each signal handler needs: the model, what to call after a change, and for a
// drop-down the model index of each entry.
struct Binding {
  std::shared_ptr<MCControlModel> model;
  std::vector<std::size_t> indexes;
  std::function<void()> changed;
};

void freeBinding(gpointer data, GClosure*) { delete static_cast<Binding*>(data); }

std::string dayText(double seconds) {
  const time_t whole = time_t(seconds);
  std::tm local{};
  localtime_r(&whole, &local);
  char text[16];
  std::strftime(text, sizeof text, "%Y-%m-%d", &local);
  return text;
}

GtkWidget* dropDown(const std::shared_ptr<MCPopUpModel>& popUp, const std::function<void()>& changed) {
  auto* binding = new Binding{popUp, {}, changed};
  GtkStringList* titles = gtk_string_list_new(nullptr);
  guint selected = 0;
  for (std::size_t i = 0; i < popUp->numberOfItems(); ++i) {
    if (popUp->items()[i].separator) continue;
    if (popUp->indexOfSelectedItem() == i) selected = guint(binding->indexes.size());
    binding->indexes.push_back(i);
    gtk_string_list_append(titles, popUp->items()[i].title.c_str());
  }
  GtkWidget* widget = gtk_drop_down_new(G_LIST_MODEL(titles), nullptr);
  gtk_drop_down_set_selected(GTK_DROP_DOWN(widget), selected);
  g_signal_connect_data(widget, "notify::selected", G_CALLBACK(+[](GObject* object, GParamSpec*, gpointer data) {
                          auto* b = static_cast<Binding*>(data);
                          const guint at = gtk_drop_down_get_selected(GTK_DROP_DOWN(object));
                          if (at >= b->indexes.size()) return;
                          static_cast<MCPopUpModel&>(*b->model).chooseItemAtIndex(b->indexes[at]);
                          b->changed();
                        }),
                        binding, freeBinding, GConnectFlags(0));
  return widget;
}

GtkWidget* entry(const std::shared_ptr<MCTextFieldModel>& field, const std::function<void()>& changed, int chars) {
  GtkWidget* widget = gtk_entry_new();
  gtk_editable_set_text(GTK_EDITABLE(widget), field->stringValue.c_str());
  gtk_entry_set_placeholder_text(GTK_ENTRY(widget), field->placeholderString.c_str());
  gtk_editable_set_width_chars(GTK_EDITABLE(widget), chars);
  auto* binding = new Binding{field, {}, changed};
  g_signal_connect_data(widget, "changed", G_CALLBACK(+[](GtkEditable* editable, gpointer data) {
                          auto* b = static_cast<Binding*>(data);
                          auto& model = static_cast<MCTextFieldModel&>(*b->model);
                          const std::string text = gtk_editable_get_text(editable);
                          // A field with a number format keeps its last good value; the entry
                          // says that it was refused.
                          if (model.numberFormat) {
                            const bool taken = model.enterText(text);
                            if (taken) gtk_widget_remove_css_class(GTK_WIDGET(editable), "error");
                            else gtk_widget_add_css_class(GTK_WIDGET(editable), "error");
                          } else {
                            model.stringValue = text;
                            model.sendAction();
                          }
                          b->changed();
                        }),
                        binding, freeBinding, GConnectFlags(0));
  return widget;
}

// A button with the day that opens a calendar; choosing a day sets the picker to its midday.
GtkWidget* datePicker(const std::shared_ptr<MCDatePickerModel>& picker, const std::function<void()>& changed) {
  GtkWidget* button = gtk_menu_button_new();
  gtk_menu_button_set_label(GTK_MENU_BUTTON(button), dayText(picker->dateValue).c_str());
  GtkWidget* calendar = gtk_calendar_new();
  GDateTime* day = g_date_time_new_from_unix_local(gint64(picker->dateValue));
  gtk_calendar_select_day(GTK_CALENDAR(calendar), day);
  g_date_time_unref(day);
  GtkWidget* popover = gtk_popover_new();
  gtk_popover_set_child(GTK_POPOVER(popover), calendar);
  gtk_menu_button_set_popover(GTK_MENU_BUTTON(button), popover);
  auto* binding = new Binding{picker, {}, changed};
  g_object_set_data(G_OBJECT(calendar), "vesperon-button", button);
  g_signal_connect_data(calendar, "day-selected", G_CALLBACK(+[](GtkCalendar* cal, gpointer data) {
                          auto* b = static_cast<Binding*>(data);
                          GDateTime* chosen = gtk_calendar_get_date(cal);
                          GDateTime* midday = g_date_time_new_local(g_date_time_get_year(chosen),
                                                                     g_date_time_get_month(chosen),
                                                                     g_date_time_get_day_of_month(chosen), 12, 0, 0);
                          const double seconds = double(g_date_time_to_unix(midday));
                          g_date_time_unref(midday);
                          g_date_time_unref(chosen);
                          auto* owner = GTK_MENU_BUTTON(g_object_get_data(G_OBJECT(cal), "vesperon-button"));
                          gtk_menu_button_set_label(owner, dayText(seconds).c_str());
                          gtk_menu_button_popdown(owner);
                          static_cast<MCDatePickerModel&>(*b->model).chooseDate(seconds);
                          b->changed();
                        }),
                        binding, freeBinding, GConnectFlags(0));
  return button;
}

}  // namespace

std::shared_ptr<MCGtkPredicateEditorRow> MCGtkPredicateEditorRow::create(MCPredicateEditorRowTemplateRef row,
                                                                         std::function<void()> changed) {
  std::shared_ptr<MCGtkPredicateEditorRow> made(new MCGtkPredicateEditorRow());
  made->row_ = std::move(row);
  made->changed_ = std::move(changed);
  made->box_ = gtk_box_new(GTK_ORIENTATION_HORIZONTAL, 6);
  g_object_ref_sink(made->box_);
  for (const auto& view : made->row_->templateViews()) {
    GtkWidget* widget = made->add(view);
    made->viewWidgets_.push_back(widget);
    gtk_box_append(GTK_BOX(made->box_), widget);
  }
  made->refresh();
  return made;
}

MCGtkPredicateEditorRow::~MCGtkPredicateEditorRow() {
  if (box_) g_object_unref(box_);
}

GtkWidget* MCGtkPredicateEditorRow::add(const std::shared_ptr<MCControlModel>& model) {
  // Weakly: GTK may still hold the widgets for a moment after the row is gone.
  const std::function<void()> changed = [weak = weak_from_this()] {
    if (auto row = weak.lock(); row && row->changed_) row->changed_();
  };
  GtkWidget* widget = nullptr;
  if (auto popUp = std::dynamic_pointer_cast<MCPopUpModel>(model)) {
    std::size_t entries = 0;
    for (const auto& item : popUp->items()) entries += item.separator ? 0 : 1;
    if (entries == 1 && popUp->selectedItem()) {
      widget = gtk_label_new(popUp->selectedItem()->title.c_str());
      gtk_widget_set_size_request(widget, 110, -1);
      gtk_label_set_xalign(GTK_LABEL(widget), 0);
    } else {
      widget = dropDown(popUp, changed);
    }
  } else if (auto field = std::dynamic_pointer_cast<MCTextFieldModel>(model)) {
    widget = entry(field, changed, field->numberFormat ? 5 : 16);
  } else if (auto picker = std::dynamic_pointer_cast<MCDatePickerModel>(model)) {
    widget = datePicker(picker, changed);
  } else if (auto control = std::dynamic_pointer_cast<MCDateRangeControl>(model)) {
    widget = gtk_box_new(GTK_ORIENTATION_HORIZONTAL, 6);
    for (const auto& part : control->arrangedViews()) gtk_box_append(GTK_BOX(widget), add(part));
  } else {
    widget = gtk_label_new("");
  }
  parts_.push_back({model, widget});
  return widget;
}

void MCGtkPredicateEditorRow::refresh() {
  row_->templateViews();  // a date row sets its control's type by the operator
  for (const Part& part : parts_) gtk_widget_set_visible(part.widget, !part.model->isHidden());
}

bool MCGtkPredicateEditorRow::grabFocus() {
  for (const Part& part : parts_)
    if (GTK_IS_ENTRY(part.widget) && gtk_widget_get_visible(part.widget)) return gtk_widget_grab_focus(part.widget);
  return false;
}

GtkWidget* MCGtkPredicateEditorRow::widgetOfView(std::size_t index) const {
  return index < viewWidgets_.size() ? viewWidgets_[index] : nullptr;
}

bool MCGtkPredicateEditorRow::centreInSurface(GtkWidget* widget, double& x, double& y) {
  GtkNative* native = widget ? gtk_widget_get_native(widget) : nullptr;
  if (!native || !gtk_widget_get_mapped(widget)) return false;
  double nx = 0, ny = 0;
  gtk_native_get_surface_transform(native, &nx, &ny);
  const graphene_point_t centre =
      GRAPHENE_POINT_INIT(float(gtk_widget_get_width(widget)) / 2, float(gtk_widget_get_height(widget)) / 2);
  graphene_point_t out;
  if (!gtk_widget_compute_point(widget, GTK_WIDGET(native), &centre, &out)) return false;
  x = out.x + nx;
  y = out.y + ny;
  return true;
}
