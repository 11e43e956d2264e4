#pragma once
// Watches the folder `vesperon browse` shows, and the folders inside it, through GIO's file
// monitors: files added, removed, renamed or rewritten are told in one batch once the folder has
// been quiet for a moment (or at the latest after a second), on the main loop, so that a copy of
// a hundred photos makes one change rather than a hundred. Folders that appear inside are watched
// too; at most kMaxFolders are watched in all.

#include <filesystem>
#include <functional>
#include <memory>
#include <set>

class BrowseFolderMonitor {
 public:
  static constexpr std::size_t kMaxFolders = 512;

  /// `changed` hears the paths that changed (files or folders), once per batch. Nothing is watched
  /// when the folder cannot be.
  BrowseFolderMonitor(const std::filesystem::path& folder, std::function<void(std::set<std::filesystem::path>)> changed,
                      double quiet = 0.25, double longest = 1.0);
  ~BrowseFolderMonitor();
  BrowseFolderMonitor(const BrowseFolderMonitor&) = delete;
  BrowseFolderMonitor& operator=(const BrowseFolderMonitor&) = delete;

  /// How many folders are watched.
  std::size_t folderCount() const;

 private:
  struct State;
  std::shared_ptr<State> state_;
};
