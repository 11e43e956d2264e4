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

class MCBrowserViewDelegate {
 public:
  virtual ~MCBrowserViewDelegate() = default;

  /// Whether the delegate has the optional operation.
  virtual bool respondsTo(MCBrowserViewDelegateOperation operation) const;

  virtual void browserViewScaleDidChange(MCBrowserView& view);
  virtual void browserViewSelectionDidChange(MCBrowserView& view);
  virtual void cellWasDoubleClickedAtIndexPath(MCBrowserView& view, const MCIndexPath& indexPath, const MCEvent& event);
  virtual void cellWasRightClickedAtIndexPath(MCBrowserView& view, const MCIndexPath& indexPath, const MCEvent& event);
  virtual void backgroundWasRightClickedWithEvent(MCBrowserView& view, const MCEvent& event);
  virtual std::shared_ptr<MCPasteboardWriting> pasteboardWriterForItemAtIndexPath(MCBrowserView& view,
                                                                                  const MCIndexPath& indexPath);
  virtual void draggingSessionWillBeginAtPoint(MCBrowserView& view, MCDraggingSession& session, MCPoint screenPoint);
  virtual void draggingSessionEndedAtPoint(MCBrowserView& view, MCDraggingSession& session, MCPoint screenPoint,
                                           uint64_t operation);
  virtual void readItemsFromPasteboard(MCBrowserView& view, MCPasteboard& pasteboard);
  virtual void writeItemsAtIndexPaths(MCBrowserView& view, const std::vector<MCIndexPath>& indexPaths,
                                      MCPasteboard& pasteboard);

  // Required where used.
  virtual uint64_t validateDrop(MCBrowserView& view, const MCDraggingInfo& info);
  virtual bool acceptDrop(MCBrowserView& view, const MCDraggingInfo& info);
  virtual std::shared_ptr<MCPreviewItem> previewItemAtIndexPath(MCBrowserView& view, const MCIndexPath& indexPath);
};
