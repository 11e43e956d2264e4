// folder-browser: the images of a folder in Vesperon's browser view, inside a GTK window of the
// program's own. It uses the installed library and its GTK host alone:
//
//   find_package(Vesperon REQUIRED COMPONENTS gtk)   target_link_libraries(... Vesperon::gtk)
//   c++ main.cpp $(pkg-config --cflags --libs vesperon-gtk)
//
//   folder-browser [FOLDER] [--quit-when-shown]
//
// With --quit-when-shown it prints how many thumbnails of the first screen arrived and quits once
// they all have (the package test runs it so under a virtual X server).
#include <hosts/gtk/MCGtkWindowHost.h>
#include <vesperon/browser/MCBrowserView.h>
#include <vesperon/browser/MCBrowserViewItemCardCell.h>
#include <vesperon/pipeline/MCImageDescriptor.h>
#include <vesperon/pipeline/MCThumbnailCache.h>
#include <vesperon/pixels/MCImageTypes.h>
#include <vesperon/platform/MCUniformTypeIdentifiers.h>

#include <gtk/gtk.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <unordered_set>

namespace fs = std::filesystem;

namespace {

/// One file, as the thumbnail cache asks for it.
class Photo : public MCThumbnailDescriptorProvider {
 public:
  explicit Photo(const fs::path& file) : descriptor_(std::make_shared<MCImageDescriptor>(file)) {}
  MCAnyHashable resourceID() const override { return descriptor_->fileURL.string(); }
  std::shared_ptr<const MCImageDescriptor> resourceDescriptor() const override { return descriptor_; }

 private:
  std::shared_ptr<MCImageDescriptor> descriptor_;
};

/// The browser view's data source and prefetcher over the images of one folder, in name order;
/// the thumbnail cache answers it and it redraws each item whose thumbnail arrives.
class Folder : public MCBrowserViewDataSource,
               public MCBrowserViewPrefetching,
               public MCThumbnailCacheDelegate,
               public std::enable_shared_from_this<Folder> {
 public:
  explicit Folder(const fs::path& folder) {
    std::error_code ec;
    for (const auto& entry : fs::directory_iterator(folder, ec)) {
      const std::string extension = entry.path().extension().string();
      if (entry.is_regular_file(ec) && extension.size() > 1 &&
          MCIsImageType(MCTypeCreatePreferredIdentifierForFilenameExtension(extension.substr(1))))
        files_.push_back(entry.path());
    }
    std::sort(files_.begin(), files_.end());
  }

  void show(const std::shared_ptr<MCBrowserView>& view) {
    view_ = view;
    cell_->backgroundColor = MCColor::colorWithHex(0xEDEDEC);
    cell_->selectionColor = MCColor::controlAccentColor();
    cell_->titleAttributes = {MCFont::systemFontOfSize(12), MCColor::labelColor(), {}, {}, {}};
    cell_->setControlView(view);
    view->setItemCell(cell_);
    view->setDataSource(shared_from_this());
    view->setPrefetchDataSource(shared_from_this());
    thumbnails_->setDelegate(shared_from_this());
    view->reloadData();
  }

  /// Called whenever a thumbnail arrives, with how many arrived so far and how many are awaited.
  std::function<void(std::size_t arrived, std::size_t awaited)> arrived;

  uint64_t numberOfGroupsInBrowserView(MCBrowserView&) override { return 1; }
  uint64_t numberOfItemsInGroup(MCBrowserView&, uint64_t) override { return files_.size(); }
  void updateItemCell(MCBrowserView& view, MCBrowserViewCell& cell, const MCIndexPath& path) override {
    auto& card = static_cast<MCBrowserViewItemCardCell&>(cell);
    auto thumbnail = thumbnails_->thumbnailForDescriptorProvider(Photo(files_[path.item]));
    card.image = MCImage::create(thumbnail ? thumbnail->image() : nullptr);
    card.shouldDrawImagePlaceholder = !card.image;
    card.imageSize = card.image ? card.image->size() : MCSize{0, 0};
    card.title = files_[path.item].filename().string();
    card.setSelected(view.isSelectedItemAtIndexPath(path, nullptr));
  }
  void updateHeaderCell(MCBrowserView&, MCBrowserViewCell&, uint64_t) override {}

  void prefetchItemsAtIndexPaths(MCBrowserView&, const std::vector<MCIndexPath>& paths) override {
    awaited_.insert(paths.begin(), paths.end());
    thumbnails_->fetchThumbnailsAtIndexPaths(paths);
  }
  void cancelPrefetchingForItemsAtIndexPaths(MCBrowserView&, const std::vector<MCIndexPath>& paths) override {
    for (const MCIndexPath& path : paths) awaited_.erase(path);
    thumbnails_->cancelFetchingForThumbnailsAtIndexPaths(paths);
  }

  std::shared_ptr<MCThumbnailDescriptorProvider> descriptorProviderAtIndexPath(MCThumbnailCache&,
                                                                               const MCIndexPath& path) override {
    return path.item < files_.size() ? std::make_shared<Photo>(files_[path.item]) : nullptr;
  }
  void didFetchThumbnail(MCThumbnailCache&, const std::shared_ptr<const MCThumbnail>&, const MCIndexPath& path) override {
    if (awaited_.erase(path)) ++arrivals_;
    if (auto view = view_.lock()) view->reloadItemAtIndexPath(path);
    if (arrived) arrived(arrivals_, awaited_.size());
  }

 private:
  std::vector<fs::path> files_;
  std::weak_ptr<MCBrowserView> view_;
  std::shared_ptr<MCBrowserViewItemCardCell> cell_ = std::make_shared<MCBrowserViewItemCardCell>();
  std::shared_ptr<MCThumbnailCache> thumbnails_ = MCThumbnailCache::cacheWithThumbnailSize(256);
  std::unordered_set<MCIndexPath> awaited_;
  std::size_t arrivals_ = 0;
};

struct Program {
  fs::path folder = ".";
  bool quitWhenShown = false;
  std::shared_ptr<Folder> source;
};

void activate(GtkApplication* application, Program* program) {
  auto browser = std::make_shared<MCBrowserView>(MCMakeRect(0, 0, 800, 600));
  program->source = std::make_shared<Folder>(program->folder);
  auto host = MCGtkWindowHost::createForView(browser);  // the widget keeps the host and the view

  GtkWidget* window = gtk_application_window_new(application);
  gtk_window_set_title(GTK_WINDOW(window), program->folder.filename().c_str());
  gtk_window_set_default_size(GTK_WINDOW(window), 800, 600);
  gtk_window_set_child(GTK_WINDOW(window), host->widget());
  gtk_window_present(GTK_WINDOW(window));
  program->source->show(browser);

  if (program->quitWhenShown)
    program->source->arrived = [application](std::size_t arrived, std::size_t awaited) {
      if (awaited > 0) return;
      std::printf("shown with %zu thumbnails\n", arrived);
      std::fflush(stdout);
      // One more frame, with the last thumbnail in it, before quitting.
      g_timeout_add(500, +[](gpointer app) { g_application_quit(G_APPLICATION(app)); return G_SOURCE_REMOVE; }, application);
    };
}

}  // namespace

int main(int argc, char** argv) {
  Program program;
  for (int i = 1; i < argc; ++i) {
    if (!std::strcmp(argv[i], "--quit-when-shown")) program.quitWhenShown = true;
    else program.folder = argv[i];
  }
  GtkApplication* application = gtk_application_new("org.vesperon.FolderBrowser", G_APPLICATION_NON_UNIQUE);
  g_signal_connect(application, "activate", G_CALLBACK(activate), &program);
  char* arguments[] = {argv[0], nullptr};  // the folder is ours, not GApplication's
  const int status = g_application_run(G_APPLICATION(application), 1, arguments);
  g_object_unref(application);
  return status;
}
