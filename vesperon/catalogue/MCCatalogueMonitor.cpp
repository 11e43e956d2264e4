#include <vesperon/catalogue/MCCatalogueMonitor.h>

#include <vesperon/core/MCLog.h>
#include <vesperon/platform/MCPlatformOperationQueue.h>

#include <gio/gio.h>

namespace fs = std::filesystem;

struct MCCatalogueMonitor::Watch {
  fs::path folder;
  GFileMonitor* monitor = nullptr;
  gulong handler = 0;
  std::weak_ptr<MCCatalogueMonitor> owner;
  ~Watch() {
    if (!monitor) return;
    g_signal_handler_disconnect(monitor, handler);
    g_file_monitor_cancel(monitor);
    g_object_unref(monitor);
  }
};

// GIO's callback, a friend so that it reaches the watch and the monitor.
struct MCCatalogueMonitorEvents {
  static void onChanged(GFileMonitor*, GFile* file, GFile* other, GFileMonitorEvent event, gpointer data);
};

std::shared_ptr<MCCatalogueMonitor> MCCatalogueMonitor::create(std::shared_ptr<MCCatalogue> catalogue, std::vector<fs::path> roots,
                                                               std::shared_ptr<MCPlatformOperationQueue> queue,
                                                               std::function<void(const MCCatalogueScanProgress&)> didUpdate,
                                                               std::chrono::milliseconds delay) {
  if (!catalogue || !queue) return nullptr;
  std::shared_ptr<MCCatalogueMonitor> monitor(new MCCatalogueMonitor());
  monitor->catalogue_ = std::move(catalogue);
  monitor->queue_ = std::move(queue);
  monitor->didUpdate_ = std::move(didUpdate);
  monitor->delay_ = delay;
  for (const fs::path& root : roots) monitor->watchTree(root);
  if (monitor->watches_.empty()) return nullptr;
  return monitor;
}

MCCatalogueMonitor::~MCCatalogueMonitor() { stop(); }

std::size_t MCCatalogueMonitor::watchedFolderCount() const { return watches_.size(); }

void MCCatalogueMonitor::stop() {
  stopped_ = true;
  watches_.clear();
  if (timer_) g_source_remove(timer_);
  timer_ = 0;
}

void MCCatalogueMonitor::watchTree(const fs::path& folder) {
  std::error_code ec;
  if (!fs::is_directory(folder, ec)) return;
  watchFolder(folder);
  // Folders as the scan walks them: symbolic links to folders are not followed.
  fs::recursive_directory_iterator it(folder, fs::directory_options::skip_permission_denied, ec), end;
  for (; !ec && it != end; it.increment(ec)) {
    std::error_code typeError;
    if (it->is_directory(typeError) && !it->is_symlink(typeError)) watchFolder(it->path());
  }
}

void MCCatalogueMonitor::watchFolder(const fs::path& folder) {
  if (watches_.size() >= kMaximumFolders) {
    MCLog::sdkFileSystem()->logError("MCCatalogueMonitor: more than " + std::to_string(kMaximumFolders) +
                                     " folders; " + folder.string() + " is not watched");
    return;
  }
  for (const auto& watch : watches_)
    if (watch->folder == folder) return;
  GFile* file = g_file_new_for_path(folder.c_str());
  GError* error = nullptr;
  GFileMonitor* monitor = g_file_monitor_directory(file, G_FILE_MONITOR_WATCH_MOVES, nullptr, &error);
  g_object_unref(file);
  if (!monitor) {
    MCLog::sdkFileSystem()->logError("MCCatalogueMonitor: cannot watch " + folder.string() + ": " +
                                     (error ? error->message : "unknown error"));
    g_clear_error(&error);
    return;
  }
  auto watch = std::make_unique<Watch>();
  watch->folder = folder;
  watch->monitor = monitor;
  watch->owner = weak_from_this();
  watch->handler = g_signal_connect(monitor, "changed", G_CALLBACK(MCCatalogueMonitorEvents::onChanged), watch.get());
  watches_.push_back(std::move(watch));
}

void MCCatalogueMonitor::changed(const fs::path& folder, const fs::path& file, bool createdFolder, bool deleted) {
  if (stopped_) return;
  if (createdFolder) watchTree(file);
  if (deleted) {
    // A folder that went takes its watches with it.
    std::erase_if(watches_, [&](const std::unique_ptr<Watch>& watch) {
      const std::string inner = watch->folder.string(), gone = file.string();
      return inner == gone || (inner.size() > gone.size() && inner.compare(0, gone.size(), gone) == 0 && inner[gone.size()] == '/');
    });
  }
  pending_.insert(folder);
  if (timer_) return;
  std::weak_ptr<MCCatalogueMonitor> weak = weak_from_this();
  auto* holder = new std::weak_ptr<MCCatalogueMonitor>(weak);
  timer_ = g_timeout_add_full(
      G_PRIORITY_DEFAULT, guint(delay_.count()),
      [](gpointer data) -> gboolean {
        if (auto monitor = static_cast<std::weak_ptr<MCCatalogueMonitor>*>(data)->lock()) {
          monitor->timer_ = 0;
          monitor->flush();
        }
        return G_SOURCE_REMOVE;
      },
      holder, [](gpointer data) { delete static_cast<std::weak_ptr<MCCatalogueMonitor>*>(data); });
}

void MCCatalogueMonitor::flush() {
  if (pending_.empty() || stopped_) return;
  // A folder inside another pending one is scanned with it.
  std::vector<fs::path> folders;
  for (const fs::path& folder : pending_) {
    const std::string text = folder.string();
    const bool inner = !folders.empty() && text.size() > folders.back().string().size() &&
                       text.compare(0, folders.back().string().size(), folders.back().string()) == 0 &&
                       text[folders.back().string().size()] == '/';
    if (!inner) folders.push_back(folder);
  }
  pending_.clear();
  std::weak_ptr<MCCatalogueMonitor> weak = weak_from_this();
  catalogue_->scanInBackground(*queue_, std::move(folders), nullptr, [weak](MCCatalogueScanProgress progress) {
    auto monitor = weak.lock();
    if (monitor && !monitor->stopped_ && monitor->didUpdate_) monitor->didUpdate_(progress);
  });
}

void MCCatalogueMonitorEvents::onChanged(GFileMonitor*, GFile* file, GFile* other, GFileMonitorEvent event, gpointer data) {
  auto* watch = static_cast<MCCatalogueMonitor::Watch*>(data);
  auto monitor = watch->owner.lock();
  if (!monitor) return;
  char* path = g_file_get_path(file);
  const fs::path changed = path ? fs::path(path) : fs::path();
  g_free(path);
  switch (event) {
    case G_FILE_MONITOR_EVENT_CHANGES_DONE_HINT:
    case G_FILE_MONITOR_EVENT_CREATED:
    case G_FILE_MONITOR_EVENT_DELETED:
    case G_FILE_MONITOR_EVENT_ATTRIBUTE_CHANGED:
    case G_FILE_MONITOR_EVENT_MOVED_IN:
    case G_FILE_MONITOR_EVENT_MOVED_OUT:
    case G_FILE_MONITOR_EVENT_RENAMED: break;
    default: return;  // CHANGED comes many times while a file is written; its CHANGES_DONE follows
  }
  std::error_code ec;
  const bool createdFolder = (event == G_FILE_MONITOR_EVENT_CREATED || event == G_FILE_MONITOR_EVENT_MOVED_IN) &&
                             fs::is_directory(changed, ec) && !fs::is_symlink(changed, ec);
  bool renamedFolder = false;
  fs::path target;
  if (event == G_FILE_MONITOR_EVENT_RENAMED && other) {
    char* to = g_file_get_path(other);
    target = to ? fs::path(to) : fs::path();
    g_free(to);
    renamedFolder = fs::is_directory(target, ec);
  }
  const bool deleted = event == G_FILE_MONITOR_EVENT_DELETED || event == G_FILE_MONITOR_EVENT_MOVED_OUT ||
                       event == G_FILE_MONITOR_EVENT_RENAMED;
  monitor->changed(watch->folder, changed, createdFolder, deleted);
  if (renamedFolder) monitor->changed(watch->folder, target, true, false);
}
