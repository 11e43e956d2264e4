#include "BrowseFolderMonitor.h"

#include <vesperon/core/MCLog.h>

#include <gio/gio.h>

#include <chrono>
#include <map>
#include <vector>

namespace fs = std::filesystem;

struct BrowseFolderMonitor::State {
  std::function<void(std::set<fs::path>)> changed;
  double quiet = 0.25, longest = 1.0;
  std::map<fs::path, GFileMonitor*> monitors;
  std::set<fs::path> pending;
  std::chrono::steady_clock::time_point firstPending, lastEvent;
  guint timer = 0;

  ~State() {
    if (timer) g_source_remove(timer);
    for (auto& [path, monitor] : monitors) {
      g_signal_handlers_disconnect_by_data(monitor, this);
      g_file_monitor_cancel(monitor);
      g_object_unref(monitor);
    }
  }

  void watch(const fs::path& folder) {
    if (monitors.size() >= kMaxFolders || monitors.count(folder)) return;
    GFile* file = g_file_new_for_path(folder.c_str());
    GError* error = nullptr;
    GFileMonitor* monitor = g_file_monitor_directory(file, G_FILE_MONITOR_WATCH_MOVES, nullptr, &error);
    g_object_unref(file);
    if (!monitor) {
      MCLog::sdkFileSystem()->logError("browse cannot watch " + folder.string() + ": " +
                                       (error ? error->message : "no monitor"));
      if (error) g_error_free(error);
      return;
    }
    g_signal_connect(monitor, "changed", G_CALLBACK(&State::event), this);
    monitors.emplace(folder, monitor);
  }

  void watchTree(const fs::path& folder) {
    watch(folder);
    std::error_code ec;
    for (fs::recursive_directory_iterator it(folder, fs::directory_options::skip_permission_denied, ec), end;
         !ec && it != end && monitors.size() < kMaxFolders; it.increment(ec)) {
      if (it->path().filename().string().rfind('.', 0) == 0) {
        if (it->is_directory(ec)) it.disable_recursion_pending();
        continue;
      }
      if (it->is_directory(ec) && !it->is_symlink(ec)) watch(it->path());
    }
  }

  static void event(GFileMonitor*, GFile* file, GFile* other, GFileMonitorEvent type, State* self) {
    // Attribute changes (a thumbnailer touching access times) say nothing about the photos.
    if (type == G_FILE_MONITOR_EVENT_ATTRIBUTE_CHANGED || type == G_FILE_MONITOR_EVENT_PRE_UNMOUNT) return;
    const auto now = std::chrono::steady_clock::now();
    if (self->pending.empty()) self->firstPending = now;
    self->lastEvent = now;
    for (GFile* f : {file, other}) {
      if (!f) continue;
      if (char* path = g_file_get_path(f)) {
        self->pending.insert(path);
        std::error_code ec;
        if ((type == G_FILE_MONITOR_EVENT_CREATED || type == G_FILE_MONITOR_EVENT_MOVED_IN ||
             type == G_FILE_MONITOR_EVENT_RENAMED) && fs::is_directory(path, ec))
          self->watchTree(path);
        g_free(path);
      }
    }
    if (!self->timer) self->timer = g_timeout_add(50, &State::tick, self);
  }

  static gboolean tick(gpointer data) {
    auto* self = static_cast<State*>(data);
    const auto now = std::chrono::steady_clock::now();
    const double sinceLast = std::chrono::duration<double>(now - self->lastEvent).count();
    const double sinceFirst = std::chrono::duration<double>(now - self->firstPending).count();
    if (sinceLast < self->quiet && sinceFirst < self->longest) return G_SOURCE_CONTINUE;
    self->timer = 0;
    std::set<fs::path> batch = std::move(self->pending);
    self->pending.clear();
    // Folders that went away are no longer watched.
    for (auto it = self->monitors.begin(); it != self->monitors.end();) {
      std::error_code ec;
      if (batch.count(it->first) && !fs::is_directory(it->first, ec)) {
        g_signal_handlers_disconnect_by_data(it->second, self);
        g_file_monitor_cancel(it->second);
        g_object_unref(it->second);
        it = self->monitors.erase(it);
      } else {
        ++it;
      }
    }
    // The listener may destroy the monitor, and this state with it: nothing is touched after.
    if (auto changed = self->changed) changed(std::move(batch));
    return G_SOURCE_REMOVE;
  }
};

BrowseFolderMonitor::BrowseFolderMonitor(const fs::path& folder, std::function<void(std::set<fs::path>)> changed,
                                         double quiet, double longest)
    : state_(std::make_shared<State>()) {
  state_->changed = std::move(changed);
  state_->quiet = quiet;
  state_->longest = longest;
  state_->watchTree(folder);
}

BrowseFolderMonitor::~BrowseFolderMonitor() = default;

std::size_t BrowseFolderMonitor::folderCount() const { return state_->monitors.size(); }
