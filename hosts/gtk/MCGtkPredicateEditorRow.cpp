#include "MCGtkPredicateEditorRow.h"

#include <vesperon/controls/MCDateRangeControl.h>
#include <vesperon/predicates/MCPredicateDate.h>

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

GtkWidget* dateEntry(const std::shared_ptr<MCDatePickerModel>& picker, const std::function<void()>& changed) {
  GtkWidget* widget = gtk_entry_new();
  gtk_editable_set_text(GTK_EDITABLE(widget), dayText(picker->dateValue).c_str());
  gtk_entry_set_placeholder_text(GTK_ENTRY(widget), "YYYY-MM-DD");
  gtk_editable_set_width_chars(GTK_EDITABLE(widget), 11);
  auto* binding = new Binding{picker, {}, changed};
  g_signal_connect_data(widget, "changed", G_CALLBACK(+[](GtkEditable* editable, gpointer data) {
                          auto* b = static_cast<Binding*>(data);
                          const std::string text = gtk_editable_get_text(editable);
                          const auto day = text.size() == 10 ? MCPredicateDate::instantOfText(text) : std::nullopt;
                          if (!day) {
                            gtk_widget_add_css_class(GTK_WIDGET(editable), "error");
                            return;
                          }
                          gtk_widget_remove_css_class(GTK_WIDGET(editable), "error");
                          static_cast<MCDatePickerModel&>(*b->model).chooseDate(*day + 12 * 3600);  // midday of that day
                          b->changed();
                        }),
                        binding, freeBinding, GConnectFlags(0));
  return widget;
}

}  // namespace

std::shared_ptr<MCGtkPredicateEditorRow> MCGtkPredicateEditorRow::create(MCPredicateEditorRowTemplateRef row,
                                                                         std::function<void()> changed) {
  std::shared_ptr<MCGtkPredicateEditorRow> made(new MCGtkPredicateEditorRow());
  made->row_ = std::move(row);
  made->changed_ = std::move(changed);
  made->box_ = gtk_box_new(GTK_ORIENTATION_HORIZONTAL, 6);
  g_object_ref_sink(made->box_);
  for (const auto& view : made->row_->templateViews()) gtk_box_append(GTK_BOX(made->box_), made->add(view));
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
    widget = dateEntry(picker, changed);
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
