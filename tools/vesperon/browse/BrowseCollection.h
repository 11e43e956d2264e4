#pragma once
// The photos `vesperon browse` shows: every image under a folder, in the groups of a sort order
// (BrowseSorting). By capture date, the default, a group is a capture day — the Exif
// DateTimeOriginal of the file (its own Exif block, else what its codec plug-in reads, as for
// HEIC, WebP and clips), or the day the file was last changed when it has none — newest day
// first, files in name order within a day.

#include "BrowseSorting.h"

#include <filesystem>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <stop_token>
#include <string>
#include <unordered_map>
#include <vector>

struct BrowseGroup {
  std::string day;  // "2024-05-01", or the order's title for the flat orders
  std::vector<std::filesystem::path> files;
};

class BrowseCollection {
 public:
  /// Scans `folder`. Capture days are read from the files' Exif blocks while there are at most
  /// `exifLimit` files; in a larger folder they are left pending, to be read in the background
  /// (BrowseDayReader) and given by `setCaptureDays`, so the window opens at once whatever the
  /// folder holds.
  static BrowseCollection scan(const std::filesystem::path& folder, BrowseSortOrder order = {},
                               std::size_t exifLimit = 5000);
  /// The folder as it is now, in this collection's order: what is known of a file whose size and
  /// modification time did not change is kept, and only new or rewritten files are read.
  BrowseCollection rescanned(const std::filesystem::path& folder, std::size_t exifLimit = 5000) const;
  /// What the scan knows of a file, if the collection holds it.
  const BrowseFileFacts* factsOfFile(const std::filesystem::path& file) const;
  /// A file as a walk tells whether it changed.
  struct FileIdentity {
    std::string path;
    uint64_t size = 0;
    std::time_t modified = 0;
  };
  /// Whether `folder` holds exactly these files, with these sizes and modification times, as a
  /// scan would find them: a catalogue's rows stand in for the walk until this says otherwise.
  /// None when `stop` was requested before the answer was known.
  static std::optional<bool> folderHolds(const std::vector<FileIdentity>& files, const std::filesystem::path& folder,
                                         std::stop_token stop);
  /// These files with what is known of them, arranged in `order`.
  static BrowseCollection withFacts(std::vector<BrowseFileFacts> facts, BrowseSortOrder order);
  /// Items laid out in groups of the given sizes (for benchmarks and tests), with made-up names.
  static BrowseCollection synthetic(const std::vector<std::size_t>& groupSizes);

  /// Gives files their capture days (by path); a file not among them keeps its own. Files not
  /// in the collection are passed over. Answers whether any group changed.
  bool setCaptureDays(const std::vector<std::pair<std::filesystem::path, std::string>>& days);
  /// The files whose capture day is still to be read, in name order.
  std::vector<std::filesystem::path> filesWithPendingDays() const;

  /// The same files in another order.
  BrowseCollection sorted(const BrowseSortOrder& order) const;
  const BrowseSortOrder& sortOrder() const { return order_; }
  /// The size in bytes of a file, as the scan found it; 0 when unknown.
  uint64_t sizeOfFile(const std::filesystem::path& file) const;

  /// The files that `keep` answers true for, in the same groups and order; empty groups go.
  BrowseCollection filtered(const std::function<bool(const std::filesystem::path&)>& keep) const;

  const std::vector<BrowseGroup>& groups() const { return contents_->groups; }
  std::size_t numberOfFiles() const;
  const std::filesystem::path& file(std::size_t group, std::size_t item) const { return contents_->groups[group].files[item]; }

  /// The capture day of one file: its Exif DateTimeOriginal ("2024:05:01 10:00:00", from its own
  /// Exif block or its plug-in's metadata), else the
  /// day of its modification time, as "YYYY-MM-DD"; "" when neither can be read.
  static std::string captureDay(const std::filesystem::path& file, bool readExif);

 private:
  // What a collection holds, shared by its copies (the browser's own and the grid's) until one
  // of them changes: a copy of 100,000 files costs as much as a walk of them.
  struct Contents {
    std::vector<BrowseFileFacts> facts;
    std::unordered_map<std::string, std::size_t> indexes;  // of facts, by path
    std::vector<BrowseGroup> groups;
  };
  /// The contents, this collection's own, to change.
  Contents& own();
  void arrange();

  std::shared_ptr<Contents> contents_ = std::make_shared<Contents>();
  BrowseSortOrder order_;
};
