#pragma once
// The browser's delegate. The view tests for the optional operations before it calls them: a
// delegate says which it has by answering `respondsTo` for them (the defaults answer false and do
// nothing). The drop and preview operations are required where their feature is used.

#include <vesperon/core/MCGeometry.h>
#include <vesperon/core/MCIndexPath.h>
#include <vesperon/toolkit/MCEvent.h>

#include <cstdint>
#include <memory>
#include <vector>

class MCBrowserView;
class MCDraggingSession;
class MCPasteboard;
class MCPasteboardWriting;
class MCPreviewItem;
struct MCDraggingInfo;

/// The optional operations, for respondsTo.
enum class MCBrowserViewDelegateOperation {
  ScaleDidChange,
  SelectionDidChange,
  CellWasDoubleClicked,
  CellWasRightClicked,
  BackgroundWasRightClicked,
  PasteboardWriterForItem,
  DraggingSessionWillBegin,
  DraggingSessionEnded,
  ReadItemsFromPasteboard,
  WriteItemsToPasteboard,
};

/// The browser's delegate: every operation is empty by default; see the header's opening comment
/// for which are optional.
class MCBrowserViewDelegate {
 public:
  virtual ~MCBrowserViewDelegate() = default;

  /// Whether the delegate has the optional operation.
  virtual bool respondsTo(MCBrowserViewDelegateOperation operation) const;

  /// The scale changed.
  virtual void browserViewScaleDidChange(MCBrowserView& view);
  /// A selection changed (once per change, at the end of a sweep).
  virtual void browserViewSelectionDidChange(MCBrowserView& view);
  /// An item was double-clicked.
  virtual void cellWasDoubleClickedAtIndexPath(MCBrowserView& view, const MCIndexPath& indexPath, const MCEvent& event);
  /// An item was right-clicked (it is selected first).
  virtual void cellWasRightClickedAtIndexPath(MCBrowserView& view, const MCIndexPath& indexPath, const MCEvent& event);
  /// The view was right-clicked beside all items.
  virtual void backgroundWasRightClickedWithEvent(MCBrowserView& view, const MCEvent& event);
  /// What a dragged item writes to the pasteboard; without it nothing drags.
  virtual std::shared_ptr<MCPasteboardWriting> pasteboardWriterForItemAtIndexPath(MCBrowserView& view,
                                                                                  const MCIndexPath& indexPath);
  /// A drag of the selection begins.
  virtual void draggingSessionWillBeginAtPoint(MCBrowserView& view, MCDraggingSession& session, MCPoint screenPoint);
  /// A drag of the selection ended with `operation` (none when cancelled).
  virtual void draggingSessionEndedAtPoint(MCBrowserView& view, MCDraggingSession& session, MCPoint screenPoint,
                                           uint64_t operation);
  /// Paste: read items from `pasteboard`.
  virtual void readItemsFromPasteboard(MCBrowserView& view, MCPasteboard& pasteboard);
  /// Copy: write the items to `pasteboard`.
  virtual void writeItemsAtIndexPaths(MCBrowserView& view, const std::vector<MCIndexPath>& indexPaths,
                                      MCPasteboard& pasteboard);

  // Required where used.
  /// Required for drops: the operation a drop over the view would do.
  virtual uint64_t validateDrop(MCBrowserView& view, const MCDraggingInfo& info);
  /// Required for drops: take what was dropped; false refuses.
  virtual bool acceptDrop(MCBrowserView& view, const MCDraggingInfo& info);
  /// Required for the preview panel: the file that previews an item.
  virtual std::shared_ptr<MCPreviewItem> previewItemAtIndexPath(MCBrowserView& view, const MCIndexPath& indexPath);
};
