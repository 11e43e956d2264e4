#pragma once
// What `vesperon browse` remembers between runs besides the folders: the thumbnail size (the
// view's scale) and the sort order, in the application's settings file (MCUserDefaults). A value
// that is missing or of the wrong kind reads as the default; one out of range is brought into it.

#include "BrowseSorting.h"

#include <vesperon/platform/MCUserDefaults.h>

#include <optional>

class BrowsePreferences {
 public:
  explicit BrowsePreferences(std::filesystem::path file = MCUserDefaults::defaultFileURL()) : defaults_(std::move(file)) {}

  static constexpr const char* kScaleKey = "BrowseThumbnailScale";
  static constexpr const char* kSortKey = "BrowseSortOrder";
  static constexpr const char* kSortReversedKey = "BrowseSortReversed";

  /// The scale kept, within [minimum, maximum]; none when none is kept.
  std::optional<double> scale(double minimum, double maximum) const;
  void setScale(double scale);
  BrowseSortOrder sortOrder() const;
  void setSortOrder(const BrowseSortOrder& order);

 private:
  MCUserDefaults defaults_;
};
