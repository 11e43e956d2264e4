#pragma once
// MCCatalogueMonitor: keeps a catalogue current while an application runs. It watches every
// folder under its roots with GIO file monitors; the changes of a moment (a burst of new files, a
// rename, an edited sidecar) are gathered for `delay`, then the folders they touched are scanned
// again on an operation queue, which reads only the files that changed. Folders made later are
// watched as they appear.
//
// Made and used on the main thread: GIO delivers its events on the main context, which the host
// runs (a GTK or GLib application does already; a program without one iterates it with
// MCMainQueue::runUntil). `didUpdate` runs on the main queue after each scan it started.

#include <vesperon/catalogue/MCCatalogue.h>

#include <chrono>
#include <filesystem>
#include <functional>
#include <memory>
#include <set>
#include <vector>

class MCCatalogueMonitor : public std::enable_shared_from_this<MCCatalogueMonitor> {
 public:
  /// Folders watched at most: each is a file descriptor's worth of inotify watch.
  static constexpr std::size_t kMaximumFolders = 20000;

  /// Watches `roots` (scan them first: the monitor only follows changes). None when no root can
  /// be watched.
  static std::shared_ptr<MCCatalogueMonitor> create(std::shared_ptr<MCCatalogue> catalogue, std::vector<std::filesystem::path> roots,
                                                    std::shared_ptr<MCPlatformOperationQueue> queue,
                                                    std::function<void(const MCCatalogueScanProgress&)> didUpdate,
                                                    std::chrono::milliseconds delay = std::chrono::milliseconds(500));
  ~MCCatalogueMonitor();
  MCCatalogueMonitor(const MCCatalogueMonitor&) = delete;
  MCCatalogueMonitor& operator=(const MCCatalogueMonitor&) = delete;

  /// Folders being watched now.
  std::size_t watchedFolderCount() const;
  /// Stops watching; a scan already queued still runs.
  void stop();

 private:
  friend struct MCCatalogueMonitorEvents;
  struct Watch;
  MCCatalogueMonitor() = default;
  void watchTree(const std::filesystem::path& folder);
  void watchFolder(const std::filesystem::path& folder);
  void changed(const std::filesystem::path& folder, const std::filesystem::path& file, bool createdFolder, bool deleted);
  void flush();

  std::shared_ptr<MCCatalogue> catalogue_;
  std::shared_ptr<MCPlatformOperationQueue> queue_;
  std::function<void(const MCCatalogueScanProgress&)> didUpdate_;
  std::chrono::milliseconds delay_{500};
  std::vector<std::unique_ptr<Watch>> watches_;
  std::set<std::filesystem::path> pending_;
  unsigned timer_ = 0;
  bool stopped_ = false;
};
