#include "MCGtkPredicateEditor.h"

#include <vesperon/core/MCLog.h>
#include <vesperon/predicates/MCPredicateEditorBuilder.h>

#include <gtk/gtk.h>

namespace {

struct CheckBinding {
  std::weak_ptr<MCGtkPredicateEditor> editor;
  std::size_t index;
  std::function<void(MCGtkPredicateEditor&, std::size_t, bool)> toggled;
};

}  // namespace

std::shared_ptr<MCGtkPredicateEditor> MCGtkPredicateEditor::create(const MCPredicateEditorBuilder& builder,
                                                                   ChangeHandler changed) {
  const auto& templates = builder.rowTemplates();
  if (templates.empty()) {
    MCLog::sdkGeneric()->logError("MCGtkPredicateEditor::create: the builder has no row templates");
    return nullptr;
  }
  std::vector<MCPredicateEditorRowTemplateRef> rows;
  for (std::size_t i = 1; i < templates.size(); ++i) rows.push_back(templates[i]->copy());
  std::vector<bool> enabled(rows.size(), false);
  return create(templates.front()->copy(), std::move(rows), std::move(enabled), std::move(changed));
}

std::shared_ptr<MCGtkPredicateEditor> MCGtkPredicateEditor::create(MCPredicateEditorRowTemplateRef compound,
                                                                   std::vector<MCPredicateEditorRowTemplateRef> rows,
                                                                   std::vector<bool> enabled, ChangeHandler changed) {
  if (!compound) {
    MCLog::sdkGeneric()->logError("MCGtkPredicateEditor::create: no compound row");
    return nullptr;
  }
  auto editor = std::shared_ptr<MCGtkPredicateEditor>(new MCGtkPredicateEditor());
  editor->build(std::move(compound), std::move(rows), std::move(enabled), std::move(changed));
  return editor;
}

void MCGtkPredicateEditor::build(MCPredicateEditorRowTemplateRef compound,
                                 std::vector<MCPredicateEditorRowTemplateRef> templates, std::vector<bool> enabled,
                                 ChangeHandler changed) {
  changed_ = std::move(changed);
  box_ = gtk_box_new(GTK_ORIENTATION_VERTICAL, 4);
  g_object_ref_sink(box_);
  std::weak_ptr<MCGtkPredicateEditor> weak = weak_from_this();
  compound_ = MCGtkPredicateEditorRow::create(std::move(compound), [weak] {
    if (auto editor = weak.lock(); editor && editor->changed_) editor->changed_(editor->predicate());
  });
  gtk_box_append(GTK_BOX(box_), compound_->widget());
  for (std::size_t i = 0; i < templates.size(); ++i) {
    if (!templates[i]) continue;
    GtkWidget* line = gtk_box_new(GTK_ORIENTATION_HORIZONTAL, 6);
    GtkWidget* check = gtk_check_button_new();
    gtk_widget_set_tooltip_text(check, "Filter by this row");
    const std::size_t index = rows_.size();
    const bool on = i < enabled.size() && enabled[i];
    gtk_check_button_set_active(GTK_CHECK_BUTTON(check), on);
    auto* binding = new CheckBinding{weak, index, [](MCGtkPredicateEditor& editor, std::size_t at, bool active) {
                                       editor.checkToggled(at, active);
                                     }};
    g_signal_connect_data(check, "toggled", G_CALLBACK(+[](GtkCheckButton* button, gpointer data) {
                            auto* b = static_cast<CheckBinding*>(data);
                            if (auto editor = b->editor.lock())
                              b->toggled(*editor, b->index, gtk_check_button_get_active(button));
                          }),
                          binding, +[](gpointer data, GClosure*) { delete static_cast<CheckBinding*>(data); },
                          GConnectFlags(0));
    auto row = MCGtkPredicateEditorRow::create(templates[i], [weak, index] {
      if (auto editor = weak.lock()) editor->rowEdited(index, true);
    });
    gtk_box_append(GTK_BOX(line), check);
    gtk_box_append(GTK_BOX(line), row->widget());
    gtk_box_append(GTK_BOX(box_), line);
    rows_.push_back({row, check, on});
  }
}

MCGtkPredicateEditor::~MCGtkPredicateEditor() {
  if (box_) g_object_unref(box_);
}

MCPredicateRef MCGtkPredicateEditor::predicate() const {
  std::vector<MCPredicateRef> parts;
  for (const Line& line : rows_)
    if (line.enabled) parts.push_back(line.row->rowTemplate()->predicateWithSubpredicates({}));
  if (parts.empty()) return nullptr;
  return compound_->rowTemplate()->predicateWithSubpredicates(parts);
}

bool MCGtkPredicateEditor::isRowEnabled(std::size_t index) const { return index < rows_.size() && rows_[index].enabled; }

void MCGtkPredicateEditor::setRowEnabled(std::size_t index, bool enabled) {
  if (index >= rows_.size()) return;
  rows_[index].enabled = enabled;
  updating_ = true;
  gtk_check_button_set_active(GTK_CHECK_BUTTON(rows_[index].check), enabled);
  updating_ = false;
}

bool MCGtkPredicateEditor::grabFocus() { return !rows_.empty() && rows_.front().row->grabFocus(); }

void MCGtkPredicateEditor::checkToggled(std::size_t index, bool on) {
  if (updating_) return;
  rows_[index].enabled = on;
  rowEdited(index, false);
}

void MCGtkPredicateEditor::rowEdited(std::size_t index, bool turnOn) {
  if (turnOn && !rows_[index].enabled) setRowEnabled(index, true);
  // Asking for the predicate lets a text row hide its field for "is empty", and a date row
  // choose its parts; then the widgets follow.
  rows_[index].row->rowTemplate()->predicateWithSubpredicates({});
  rows_[index].row->refresh();
  if (changed_) changed_(predicate());
}
