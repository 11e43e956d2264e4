#pragma once
// The browser's data source: how many groups and items there are, and the refilling of the shared
// cells before each use. Every operation is required.

#include <vesperon/core/MCIndexPath.h>

#include <cstdint>
#include <string>
#include <vector>

class MCBrowserView;
class MCBrowserViewCell;

/// The browser's data source; see the header's opening comment.
class MCBrowserViewDataSource {
 public:
  virtual ~MCBrowserViewDataSource() = default;
  /// How many groups there are.
  virtual uint64_t numberOfGroupsInBrowserView(MCBrowserView& view) = 0;
  /// How many items a group holds.
  virtual uint64_t numberOfItemsInGroup(MCBrowserView& view, uint64_t group) = 0;
  /// Refills the item cell for `indexPath` (image, texts, selection).
  virtual void updateItemCell(MCBrowserView& view, MCBrowserViewCell& cell, const MCIndexPath& indexPath) = 0;
  /// Refills the header cell for `group`.
  virtual void updateHeaderCell(MCBrowserView& view, MCBrowserViewCell& cell, uint64_t group) = 0;
  /// The item's name as a screen reader says it (a file name); empty by default, which the view
  /// reads as "Item N".
  virtual std::string accessibilityNameForItem(MCBrowserView& view, const MCIndexPath& indexPath) {
    (void)view;
    (void)indexPath;
    return {};
  }
};

/// Prefetching: each call gets an ascending list of index paths. The view always sends its
/// cancels before its new requests.
class MCBrowserViewPrefetching {
 public:
  virtual ~MCBrowserViewPrefetching() = default;
  /// These items will show soon: start loading them.
  virtual void prefetchItemsAtIndexPaths(MCBrowserView& view, const std::vector<MCIndexPath>& indexPaths) = 0;
  /// These items left the prefetched area: stop loading them.
  virtual void cancelPrefetchingForItemsAtIndexPaths(MCBrowserView& view,
                                                     const std::vector<MCIndexPath>& indexPaths) = 0;
};
