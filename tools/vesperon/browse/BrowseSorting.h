#pragma once
// The orders `vesperon browse` shows its photos in: by capture date (the default, in one group
// per day, newest day first, names in order within a day), by name (A to Z), by modification
// date (newest first) or by size (largest first), the last three in one flat group; each can be
// reversed.

#include <ctime>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

enum class BrowseSortKey { Date, Name, Modified, Size };

struct BrowseSortOrder {
  BrowseSortKey key = BrowseSortKey::Date;
  bool reversed = false;

  /// "date", "name", "modified", "size", as the command line and the settings name them.
  static const char* nameOfKey(BrowseSortKey key);
  static std::optional<BrowseSortKey> keyNamed(const std::string& name);
  /// What the menu and the flat group's header call the order ("Name, A to Z" …).
  std::string title() const;
  friend bool operator==(const BrowseSortOrder&, const BrowseSortOrder&) = default;
};

/// What the orders need of one file, read once by the folder's scan.
struct BrowseFileFacts {
  std::filesystem::path file;
  std::string captureDay;  ///< "YYYY-MM-DD", "" when unknown
  std::time_t modified = 0;
  uint64_t size = 0;
  bool dayPending = false;  ///< the capture day is still being read
};

/// One group of the grid: its title (a day, or the order's title) and its files.
struct BrowseSortedGroup {
  std::string title;
  std::vector<std::size_t> members;  ///< indexes into the facts given
};

/// The facts arranged in the order: groups by day for date, one group otherwise. Ties keep a
/// stable order by name, so the same folder always shows the same way. By date, files whose day
/// is still being read wait in a last group of their own (kPendingDayTitle), never under a day
/// that may not be theirs.
inline constexpr const char* kPendingDayTitle = "Reading capture dates…";
std::vector<BrowseSortedGroup> BrowseArrange(const std::vector<BrowseFileFacts>& facts, const BrowseSortOrder& order);
