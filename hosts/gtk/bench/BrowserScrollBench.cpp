// browser-scroll-bench: page-downs through 1,000,000 items in a 1280 × 800 window on screen,
// the browser view in the GTK host against GTK 4's own GtkGridView with the same cell size.
// Reports the main thread's CPU time per page, from the scroll request to the painted frame.
// Run under an X server (bench/browser-scroll.sh starts Xvfb).
//
//   browser-scroll-bench ours|gridview [pages]

#include <hosts/gtk/MCGtkWindowHost.h>
#include <vesperon/browser/MCBrowserView.h>
#include <vesperon/platform/MCGraphicsContext.h>
#include <vesperon/toolkit/MCScrollView.h>

#include <gtk/gtk.h>

#include <cstdio>
#include <cstring>
#include <ctime>
#include <string>

namespace {

constexpr int kItems = 1000000;
constexpr int kWidth = 1280, kHeight = 800;

double threadSeconds() {
  timespec t{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &t);
  return double(t.tv_sec) + double(t.tv_nsec) * 1e-9;
}

int paints = 0;

void countPaints(GtkWidget* widget) {
  GdkFrameClock* clock = gtk_widget_get_frame_clock(widget);
  g_signal_connect(clock, "after-paint", G_CALLBACK(+[](GdkFrameClock*, gpointer) { ++paints; }), nullptr);
}

void waitForPaint() {
  const int before = paints;
  while (paints == before) g_main_context_iteration(nullptr, TRUE);
}

class TileCell : public MCBrowserViewCell {
 public:
  MCSize cellSizeForBounds(const MCRect&, double scale) override { return {200 * scale, 200 * scale}; }
  std::shared_ptr<const MCImage> previewImage() override { return nullptr; }
  MCRect previewSourceRectForCellFrame(const MCRect& frame) override { return frame; }
  void drawWithFrame(const MCRect& frame, MCView*) override {
    MCGraphicsContext& context = *MCGraphicsContext::currentContext();
    context.setRGBFillColor(0.85, 0.85, 0.9, 1);
    context.fillRect(frame);
  }
};

struct Source : MCBrowserViewDataSource {
  uint64_t numberOfGroupsInBrowserView(MCBrowserView&) override { return 1; }
  uint64_t numberOfItemsInGroup(MCBrowserView&, uint64_t) override { return kItems; }
  void updateItemCell(MCBrowserView&, MCBrowserViewCell&, const MCIndexPath&) override {}
  void updateHeaderCell(MCBrowserView&, MCBrowserViewCell&, uint64_t) override {}
};

void report(const char* who, int pages, double seconds) {
  std::printf("%s: %.3f ms of main-thread CPU per page over %d pages\n", who, seconds * 1000 / pages, pages);
  std::fflush(stdout);
}

void runOurs(GtkApplication* application, int pages) {
  static auto window = MCWindow::create({kWidth, kHeight});
  static auto source = std::make_shared<Source>();
  static auto view = std::make_shared<MCBrowserView>(MCMakeRect(0, 0, kWidth, kHeight));
  auto scrollView = std::make_shared<MCScrollView>(MCMakeRect(0, 0, kWidth, kHeight));
  scrollView->setAutoresizingMask(MCViewWidthSizable | MCViewHeightSizable);
  view->setItemCell(std::make_shared<TileCell>());
  view->setDataSource(source);
  scrollView->setDocumentView(view);
  window->contentView()->addSubview(scrollView);
  static auto host = MCGtkWindowHost::create(window);
  GtkWindow* toplevel = host->presentInNewWindow(application, false);
  view->reloadData();
  while (!host->isShown()) g_main_context_iteration(nullptr, TRUE);
  countPaints(GTK_WIDGET(toplevel));
  gtk_widget_queue_draw(host->widget());
  waitForPaint();
  const double start = threadSeconds();
  for (int page = 0; page < pages; ++page) {
    view->scrollPageDown();
    waitForPaint();
  }
  report("MCBrowserView in the GTK host", pages, threadSeconds() - start);
  gtk_window_destroy(toplevel);
}

void runGridView(GtkApplication* application, int pages) {
  GtkWidget* toplevel = gtk_application_window_new(application);
  gtk_window_set_decorated(GTK_WINDOW(toplevel), FALSE);
  gtk_window_set_default_size(GTK_WINDOW(toplevel), kWidth, kHeight);
  GtkStringList* list = gtk_string_list_new(nullptr);
  for (int i = 0; i < kItems; ++i) gtk_string_list_take(list, g_strdup_printf("%d", i));
  GtkListItemFactory* factory = gtk_signal_list_item_factory_new();
  g_signal_connect(factory, "setup", G_CALLBACK(+[](GtkSignalListItemFactory*, GtkListItem* item) {
                     GtkWidget* label = gtk_label_new("");
                     gtk_widget_set_size_request(label, 100, 100);
                     gtk_list_item_set_child(item, label);
                   }), nullptr);
  g_signal_connect(factory, "bind", G_CALLBACK(+[](GtkSignalListItemFactory*, GtkListItem* item) {
                     auto* object = GTK_STRING_OBJECT(gtk_list_item_get_item(item));
                     gtk_label_set_text(GTK_LABEL(gtk_list_item_get_child(item)), gtk_string_object_get_string(object));
                   }), nullptr);
  GtkWidget* grid = gtk_grid_view_new(GTK_SELECTION_MODEL(gtk_no_selection_new(G_LIST_MODEL(list))), factory);
  gtk_grid_view_set_max_columns(GTK_GRID_VIEW(grid), 32);
  GtkWidget* scrolled = gtk_scrolled_window_new();
  gtk_scrolled_window_set_child(GTK_SCROLLED_WINDOW(scrolled), grid);
  gtk_window_set_child(GTK_WINDOW(toplevel), scrolled);
  gtk_window_present(GTK_WINDOW(toplevel));
  while (!gtk_widget_get_mapped(grid) || gtk_widget_get_height(grid) < 2) g_main_context_iteration(nullptr, TRUE);
  countPaints(toplevel);
  gtk_widget_queue_draw(toplevel);
  waitForPaint();
  GtkAdjustment* adjustment = gtk_scrollable_get_vadjustment(GTK_SCROLLABLE(grid));
  const double start = threadSeconds();
  for (int page = 0; page < pages; ++page) {
    gtk_adjustment_set_value(adjustment, gtk_adjustment_get_value(adjustment) + gtk_adjustment_get_page_size(adjustment));
    waitForPaint();
  }
  report("GtkGridView", pages, threadSeconds() - start);
  gtk_window_destroy(GTK_WINDOW(toplevel));
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 2 || (std::strcmp(argv[1], "ours") && std::strcmp(argv[1], "gridview"))) {
    std::fprintf(stderr, "usage: browser-scroll-bench ours|gridview [pages]\n");
    return 2;
  }
  const bool ours = !std::strcmp(argv[1], "ours");
  const int pages = argc > 2 ? std::max(1, std::atoi(argv[2])) : 200;
  return MCGtkRunApplication("org.vesperon.ScrollBench", argv[0], [ours, pages](GtkApplication* application) {
    g_application_hold(G_APPLICATION(application));
    if (ours) runOurs(application, pages);
    else runGridView(application, pages);
    g_application_release(G_APPLICATION(application));
  });
}
