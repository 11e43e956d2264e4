// browser-scroll-bench: page-downs through 1,000,000 items in a 1280 × 800 window on screen,
// the browser view in the GTK host against GTK 4's own GtkGridView with the same cell size, the
// same 160 × 120 thumbnails (64 images, item i showing image i mod 64) and a caption with the
// item's number under each. Reports per page, from the scroll request to the painted frame, the
// main thread's CPU time and the whole process's (GL renderers draw on threads of their own),
// then the process's peak and present resident memory.
// Run under an X server (bench/browser-scroll.sh starts Xvfb, with each of GTK's renderers).
//
//   browser-scroll-bench ours|gridview [pages]

#include <hosts/gtk/MCGtkWindowHost.h>
#include <vesperon/browser/MCBrowserView.h>
#include <vesperon/platform/MCGraphicsContext.h>
#include <vesperon/toolkit/MCAttributedString.h>
#include <vesperon/toolkit/MCImageDrawing.h>
#include <vesperon/toolkit/MCScrollView.h>

#include <sys/resource.h>
#include <unistd.h>

#include <gtk/gtk.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <string>

namespace {

constexpr int kItems = 1000000;
constexpr int kWidth = 1280, kHeight = 800;
constexpr int kCell = 200, kThumbWidth = 160, kThumbHeight = 120, kThumbs = 64;
// The browser view's layout of 200-point cells in 1280 points: 5 columns, rows 224 points apart
// (its minimum vertical spacing is 24). GtkGridView is given the same, so both show as many cells.
constexpr int kColumns = 5, kRowPitch = kCell + 24;

/// The thumbnails' pixels: premultiplied B, G, R, A (Cairo's and GDK's layout), a gradient of
/// each image's own hue.
std::vector<std::vector<uint8_t>> thumbnailPixels() {
  std::vector<std::vector<uint8_t>> all;
  for (int t = 0; t < kThumbs; ++t) {
    std::vector<uint8_t> pixels(std::size_t(kThumbWidth) * kThumbHeight * 4);
    for (int y = 0; y < kThumbHeight; ++y)
      for (int x = 0; x < kThumbWidth; ++x) {
        uint8_t* p = pixels.data() + (std::size_t(y) * kThumbWidth + x) * 4;
        p[0] = uint8_t(x + 4 * t);
        p[1] = uint8_t(2 * y + 7 * t);
        p[2] = uint8_t(255 - 3 * t - x / 2);
        p[3] = 255;
      }
    all.push_back(std::move(pixels));
  }
  return all;
}

double processSeconds() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  return double(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec) + double(usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) * 1e-6;
}

double peakResidentMiB() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  return double(usage.ru_maxrss) / 1024;
}

double residentMiB() {
  long pages = 0, resident = 0;
  if (FILE* f = std::fopen("/proc/self/statm", "r")) {
    if (std::fscanf(f, "%ld %ld", &pages, &resident) != 2) resident = 0;
    std::fclose(f);
  }
  return double(resident) * double(sysconf(_SC_PAGESIZE)) / (1024.0 * 1024.0);
}

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
  std::vector<MCRasterImageRef> thumbnails;
  uint64_t item = 0;
  MCSize cellSizeForBounds(const MCRect&, double) override { return {kCell, kCell}; }
  std::shared_ptr<const MCImage> previewImage() override { return nullptr; }
  MCRect previewSourceRectForCellFrame(const MCRect& frame) override { return frame; }
  int drawn = 0;  // cells drawn since the count was last cleared
  void drawWithFrame(const MCRect& frame, MCView*) override {
    ++drawn;
    MCGraphicsContext& context = *MCGraphicsContext::currentContext();
    const MCRect image = MCMakeRect(frame.origin.x + (frame.size.width - kThumbWidth) / 2, frame.origin.y + 20,
                                    kThumbWidth, kThumbHeight);
    MCDrawImageInRect(context, thumbnails[item % kThumbs], image);
    MCAttributedString caption(std::to_string(item));
    caption.setAlignment(MCTextAlignment::Center);
    caption.drawInRect(MCMakeRect(frame.origin.x, MCMaxY(image) + 4, frame.size.width, 20), context);
  }
};

struct Source : MCBrowserViewDataSource {
  uint64_t numberOfGroupsInBrowserView(MCBrowserView&) override { return 1; }
  uint64_t numberOfItemsInGroup(MCBrowserView&, uint64_t) override { return kItems; }
  void updateItemCell(MCBrowserView&, MCBrowserViewCell& cell, const MCIndexPath& path) override {
    static_cast<TileCell&>(cell).item = path.item;
  }
  void updateHeaderCell(MCBrowserView&, MCBrowserViewCell&, uint64_t) override {}
};

/// With BENCH_NODES set, writes the render nodes of the toplevel's content (its own CSS background left
/// out) in the present frame to that file.
void writeNodes(GtkWidget* toplevel) {
  const char* path = std::getenv("BENCH_NODES");
  if (!path) return;
  GtkSnapshot* snapshot = gtk_snapshot_new();
  GTK_WIDGET_GET_CLASS(toplevel)->snapshot(toplevel, snapshot);
  if (GskRenderNode* node = gtk_snapshot_free_to_node(snapshot)) {
    gsk_render_node_write_to_file(node, path, nullptr);
    gsk_render_node_unref(node);
  }
}

void report(const char* who, int pages, double thread, double process) {
  std::printf("%s: %.3f ms main-thread CPU per page, %.3f ms process CPU per page, peak RSS %.1f MiB, RSS %.1f MiB, "
              "over %d pages\n",
              who, thread * 1000 / pages, process * 1000 / pages, peakResidentMiB(), residentMiB(), pages);
  std::fflush(stdout);
}

void runOurs(GtkApplication* application, int pages) {
  static auto window = MCWindow::create({kWidth, kHeight});
  static auto source = std::make_shared<Source>();
  static auto view = std::make_shared<MCBrowserView>(MCMakeRect(0, 0, kWidth, kHeight));
  auto scrollView = std::make_shared<MCScrollView>(MCMakeRect(0, 0, kWidth, kHeight));
  scrollView->setAutoresizingMask(MCViewWidthSizable | MCViewHeightSizable);
  auto cell = std::make_shared<TileCell>();
  for (auto& pixels : thumbnailPixels())
    cell->thumbnails.push_back(MCRasterImage::create(kThumbWidth, kThumbHeight, 8, 32, kThumbWidth * 4, MCColorSpace::sRGB(),
                                                     MCImageAlphaPremultipliedFirst | MCBitmapByteOrder32Little,
                                                     std::move(pixels)));
  view->setItemCell(cell);
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
  const double start = threadSeconds(), startProcess = processSeconds();
  const int paintsBefore = paints;
  for (int page = 0; page < pages; ++page) {
    cell->drawn = 0;
    view->scrollPageDown();
    waitForPaint();
  }
  report("MCBrowserView in the GTK host", pages, threadSeconds() - start, processSeconds() - startProcess);
  std::fprintf(stderr, "%.2f frames per page\n", double(paints - paintsBefore) / pages);
  writeNodes(GTK_WIDGET(toplevel));
  const auto& nodes = host->lastFrameNodeCounts();
  std::fprintf(stderr, "last frame: %d cells, %zu texture, %zu text, %zu colour, %zu Cairo nodes; %zu textures cached\n",
               cell->drawn, nodes.texture, nodes.text, nodes.color, nodes.cairo, host->numberOfCachedTextures());
  gtk_window_destroy(toplevel);
}

void runGridView(GtkApplication* application, int pages) {
  GtkWidget* toplevel = gtk_application_window_new(application);
  gtk_window_set_decorated(GTK_WINDOW(toplevel), FALSE);
  gtk_window_set_default_size(GTK_WINDOW(toplevel), kWidth, kHeight);
  GtkStringList* list = gtk_string_list_new(nullptr);
  for (int i = 0; i < kItems; ++i) gtk_string_list_take(list, g_strdup_printf("%d", i));
  static std::vector<GdkTexture*> textures;
  for (auto& pixels : thumbnailPixels()) {
    GBytes* bytes = g_bytes_new(pixels.data(), pixels.size());
    textures.push_back(gdk_memory_texture_new(kThumbWidth, kThumbHeight, GDK_MEMORY_DEFAULT, bytes, kThumbWidth * 4));
    g_bytes_unref(bytes);
  }
  GtkListItemFactory* factory = gtk_signal_list_item_factory_new();
  g_signal_connect(factory, "setup", G_CALLBACK(+[](GtkSignalListItemFactory*, GtkListItem* item) {
                     GtkWidget* box = gtk_box_new(GTK_ORIENTATION_VERTICAL, 4);
                     gtk_widget_set_size_request(box, kCell, kRowPitch);
                     GtkWidget* picture = gtk_picture_new();
                     gtk_widget_set_size_request(picture, kThumbWidth, kThumbHeight);
                     gtk_widget_set_halign(picture, GTK_ALIGN_CENTER);
                     gtk_widget_set_margin_top(picture, 20);
                     gtk_box_append(GTK_BOX(box), picture);
                     gtk_box_append(GTK_BOX(box), gtk_label_new(""));
                     gtk_list_item_set_child(item, box);
                   }), nullptr);
  g_signal_connect(factory, "bind", G_CALLBACK(+[](GtkSignalListItemFactory*, GtkListItem* item) {
                     auto* object = GTK_STRING_OBJECT(gtk_list_item_get_item(item));
                     GtkWidget* box = gtk_list_item_get_child(item);
                     GtkWidget* picture = gtk_widget_get_first_child(box);
                     const guint position = gtk_list_item_get_position(item);
                     gtk_picture_set_paintable(GTK_PICTURE(picture), GDK_PAINTABLE(textures[position % kThumbs]));
                     gtk_label_set_text(GTK_LABEL(gtk_widget_get_next_sibling(picture)), gtk_string_object_get_string(object));
                   }), nullptr);
  GtkWidget* grid = gtk_grid_view_new(GTK_SELECTION_MODEL(gtk_no_selection_new(G_LIST_MODEL(list))), factory);
  gtk_grid_view_set_max_columns(GTK_GRID_VIEW(grid), kColumns);
  GtkWidget* scrolled = gtk_scrolled_window_new();
  gtk_scrolled_window_set_child(GTK_SCROLLED_WINDOW(scrolled), grid);
  gtk_window_set_child(GTK_WINDOW(toplevel), scrolled);
  gtk_window_present(GTK_WINDOW(toplevel));
  while (!gtk_widget_get_mapped(grid) || gtk_widget_get_height(grid) < 2) g_main_context_iteration(nullptr, TRUE);
  countPaints(toplevel);
  gtk_widget_queue_draw(toplevel);
  waitForPaint();
  GtkAdjustment* adjustment = gtk_scrollable_get_vadjustment(GTK_SCROLLABLE(grid));
  const double start = threadSeconds(), startProcess = processSeconds();
  const int paintsBefore = paints;
  for (int page = 0; page < pages; ++page) {
    gtk_adjustment_set_value(adjustment, gtk_adjustment_get_value(adjustment) + gtk_adjustment_get_page_size(adjustment));
    waitForPaint();
  }
  report("GtkGridView", pages, threadSeconds() - start, processSeconds() - startProcess);
  std::fprintf(stderr, "%.2f frames per page\n", double(paints - paintsBefore) / pages);
  writeNodes(toplevel);
  int shown = 0;
  for (GtkWidget* child = gtk_widget_get_first_child(grid); child; child = gtk_widget_get_next_sibling(child)) {
    graphene_rect_t bounds;
    if (gtk_widget_get_mapped(child) && gtk_widget_compute_bounds(child, scrolled, &bounds) &&
        bounds.origin.y + bounds.size.height > 0 && bounds.origin.y < kHeight)
      ++shown;
  }
  std::fprintf(stderr, "last frame: %d cells on screen\n", shown);
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
