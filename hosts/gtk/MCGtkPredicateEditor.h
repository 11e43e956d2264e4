#pragma once
// MCGtkPredicateEditor: a predicate editor in GTK widgets, over the row templates that an
// MCPredicateEditorBuilder makes. The first line is the compound row ("All / Any / None of the
// following are true"); each other template gets a line of its own: a check button that turns the
// row on, then the row's widgets (MCGtkPredicateEditorRow). Editing a row turns it on. The
// predicate is the compound row's over the rows that are on, none while no row is on; `changed`
// hears it after every change a person makes.
//
//   MCPredicateEditorBuilder builder(true);
//   builder.addTextFieldTemplate({"name", "Name"}, "part of the name", withIsEmptyOperators);
//   auto editor = MCGtkPredicateEditor::create(builder, [](const MCPredicateRef& predicate) { ... });
//   gtk_box_append(GTK_BOX(column), editor->widget());

#include <hosts/gtk/MCGtkPredicateEditorRow.h>
#include <vesperon/predicates/MCPredicate.h>
#include <vesperon/predicates/MCPredicateEditorRowTemplate.h>

#include <cstddef>
#include <functional>
#include <memory>
#include <vector>

class MCPredicateEditorBuilder;
typedef struct _GtkWidget GtkWidget;

class MCGtkPredicateEditor : public std::enable_shared_from_this<MCGtkPredicateEditor> {
 public:
  /// What the editor calls after each change, with the predicate as it now is (null when no row
  /// is on).
  using ChangeHandler = std::function<void(const MCPredicateRef& predicate)>;

  /// An editor over copies of the builder's templates: the first is the compound row, each other
  /// one a row, all off. Null when the builder has no templates.
  static std::shared_ptr<MCGtkPredicateEditor> create(const MCPredicateEditorBuilder& builder, ChangeHandler changed);
  /// An editor over these very templates, shared with the caller (who may keep reading their
  /// predicates), with the rows on whose flag in `enabled` is true. Null without a compound row.
  static std::shared_ptr<MCGtkPredicateEditor> create(MCPredicateEditorRowTemplateRef compound,
                                                      std::vector<MCPredicateEditorRowTemplateRef> rows,
                                                      std::vector<bool> enabled, ChangeHandler changed);
  ~MCGtkPredicateEditor();
  MCGtkPredicateEditor(const MCGtkPredicateEditor&) = delete;
  MCGtkPredicateEditor& operator=(const MCGtkPredicateEditor&) = delete;

  /// A vertical box of the lines; it holds a reference of its own until the editor is gone.
  GtkWidget* widget() const { return box_; }

  /// The compound row's predicate over the rows that are on; null when none is on.
  MCPredicateRef predicate() const;
  /// How many rows there are besides the compound row.
  std::size_t numberOfRows() const { return rows_.size(); }
  /// Whether the row at `index` takes part in the predicate; false past the end.
  bool isRowEnabled(std::size_t index) const;
  /// Turns a row on or off, as its check button does, without calling `changed`.
  void setRowEnabled(std::size_t index, bool enabled);
  /// The template of the row at `index`.
  const MCPredicateEditorRowTemplateRef& rowTemplate(std::size_t index) const { return rows_.at(index).row->rowTemplate(); }
  /// The widgets of the compound row.
  const std::shared_ptr<MCGtkPredicateEditorRow>& compoundRow() const { return compound_; }
  /// The widgets of the row at `index`.
  const std::shared_ptr<MCGtkPredicateEditorRow>& row(std::size_t index) const { return rows_.at(index).row; }
  /// The check button that turns the row at `index` on and off.
  GtkWidget* checkButtonOfRow(std::size_t index) const { return rows_.at(index).check; }
  /// Puts the keyboard focus in the first row's first field; false when there is none.
  bool grabFocus();

 private:
  MCGtkPredicateEditor() = default;
  void build(MCPredicateEditorRowTemplateRef compound, std::vector<MCPredicateEditorRowTemplateRef> templates,
             std::vector<bool> enabled, ChangeHandler changed);
  void rowEdited(std::size_t index, bool turnOn);
  void checkToggled(std::size_t index, bool on);

  struct Line {
    std::shared_ptr<MCGtkPredicateEditorRow> row;
    GtkWidget* check = nullptr;
    bool enabled = false;
  };
  GtkWidget* box_ = nullptr;
  std::shared_ptr<MCGtkPredicateEditorRow> compound_;
  std::vector<Line> rows_;
  ChangeHandler changed_;
  bool updating_ = false;
};
