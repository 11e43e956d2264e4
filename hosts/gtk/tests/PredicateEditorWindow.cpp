// A small window of the tests' own that holds an MCGtkPredicateEditor over three rows (name, ISO,
// kind), for the on-screen test that drives it with xdotool. It prints where each widget lies once
// shown ("at compound X Y", "at check ROW X Y", "at row ROW VIEW TYPE X Y", surface coordinates),
// and after each change the predicate and which of three fixed files it lets through
// ("predicate FORMAT | beach.jpg,forest.jpg", "predicate none" when no row is on).
#include <hosts/gtk/MCGtkPredicateEditor.h>
#include <vesperon/predicates/MCPredicateEditorBuilder.h>

#include <gtk/gtk.h>

#include <cmath>
#include <cstdio>
#include <string>

namespace {

using Type = MCPredicateOperatorType;

const MCDictionary& file(int which) {
  static const MCDictionary files[] = {
      {{"name", "beach.jpg"}, {"iso", 100}, {"kind", "photo"}},
      {{"name", "beach-clip.mp4"}, {"iso", 400}, {"kind", "video"}},
      {{"name", "forest.jpg"}, {"iso", 800}, {"kind", "photo"}},
  };
  return files[which];
}

void print(const std::string& line) {
  std::printf("%s\n", line.c_str());
  std::fflush(stdout);
}

void reportChange(const MCPredicateRef& predicate) {
  if (!predicate) return print("predicate none");
  std::string passed;
  for (int i = 0; i < 3; ++i)
    if (predicate->evaluateWithObject(file(i))) passed += (passed.empty() ? "" : ",") + *file(i).at("name").string();
  print("predicate " + predicate->predicateFormat() + " | " + passed);
}

std::string at(GtkWidget* widget) {
  double x = 0, y = 0;
  if (!MCGtkPredicateEditorRow::centreInSurface(widget, x, y)) return "";
  return std::to_string(std::lround(x)) + " " + std::to_string(std::lround(y));
}

void reportPlaces(MCGtkPredicateEditor& editor) {
  print("at compound " + at(editor.compoundRow()->widgetOfView(0)));
  for (std::size_t r = 0; r < editor.numberOfRows(); ++r) {
    print("at check " + std::to_string(r) + " " + at(editor.checkButtonOfRow(r)));
    for (std::size_t v = 0; GtkWidget* widget = editor.row(r)->widgetOfView(v); ++v)
      if (gtk_widget_get_visible(widget))
        print("at row " + std::to_string(r) + " " + std::to_string(v) + " " + G_OBJECT_TYPE_NAME(widget) + " " + at(widget));
  }
  print("ready");
}

}  // namespace

int main() {
  gtk_init();
  MCPredicateEditorBuilder builder(true);
  builder.addTextFieldTemplate({"name", "Name"}, "part of the name", withIsEmptyOperators);
  builder.addNumberTemplate({"iso", "ISO"}, {{{int(Type::GreaterThanOrEqualTo), std::nullopt}, {int(Type::LessThan), std::nullopt}}});
  builder.addTemplate("kind", "Kind", {{{MCValue("photo"), "photo"}, {MCValue("video"), "video"}}},
                      {{{int(Type::EqualTo), std::nullopt}, {int(Type::NotEqualTo), std::nullopt}}});
  auto editor = MCGtkPredicateEditor::create(builder, reportChange);
  if (!editor) return 1;

  GtkWidget* window = gtk_window_new();
  gtk_window_set_title(GTK_WINDOW(window), "Predicate editor");
  gtk_window_set_default_size(GTK_WINDOW(window), 640, 200);
  gtk_window_set_child(GTK_WINDOW(window), editor->widget());
  bool done = false;
  g_signal_connect(window, "destroy", G_CALLBACK(+[](GtkWidget*, gpointer flag) { *static_cast<bool*>(flag) = true; }), &done);
  gtk_window_present(GTK_WINDOW(window));
  // Where things are, once the window has its size.
  g_timeout_add(300, +[](gpointer data) {
                  reportPlaces(*static_cast<MCGtkPredicateEditor*>(data));
                  return G_SOURCE_REMOVE;
                }, editor.get());
  while (!done) g_main_context_iteration(nullptr, TRUE);
  return 0;
}
