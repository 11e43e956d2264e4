#pragma once
// MCBrowserViewLayoutDelegate: where a browser layout gets the sizes of its cells.

#include <vesperon/core/MCGeometry.h>

class MCBrowserViewLayout;

class MCBrowserViewLayoutDelegate {
 public:
  virtual ~MCBrowserViewLayoutDelegate() = default;

  /// The size of an item cell. `bounds` has its origin at 0, 0; a dimension that is not
  /// constrained is given as the largest finite double.
  virtual MCSize itemCellSizeForBounds(MCBrowserViewLayout& layout, MCRect bounds) = 0;
  /// The size of a group header cell, with bounds as above.
  virtual MCSize headerCellSizeForBounds(MCBrowserViewLayout& layout, MCRect bounds) = 0;
};
