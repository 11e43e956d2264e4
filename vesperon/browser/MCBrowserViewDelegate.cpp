#include <vesperon/browser/MCBrowserViewDelegate.h>

#include <vesperon/toolkit/MCDraggingSession.h>

bool MCBrowserViewDelegate::respondsTo(MCBrowserViewDelegateOperation) const { return false; }
void MCBrowserViewDelegate::browserViewScaleDidChange(MCBrowserView&) {}
void MCBrowserViewDelegate::browserViewSelectionDidChange(MCBrowserView&) {}
void MCBrowserViewDelegate::cellWasDoubleClickedAtIndexPath(MCBrowserView&, const MCIndexPath&, const MCEvent&) {}
void MCBrowserViewDelegate::cellWasRightClickedAtIndexPath(MCBrowserView&, const MCIndexPath&, const MCEvent&) {}
void MCBrowserViewDelegate::backgroundWasRightClickedWithEvent(MCBrowserView&, const MCEvent&) {}
std::shared_ptr<MCPasteboardWriting> MCBrowserViewDelegate::pasteboardWriterForItemAtIndexPath(MCBrowserView&,
                                                                                               const MCIndexPath&) {
  return nullptr;
}
void MCBrowserViewDelegate::draggingSessionWillBeginAtPoint(MCBrowserView&, MCDraggingSession&, MCPoint) {}
void MCBrowserViewDelegate::draggingSessionEndedAtPoint(MCBrowserView&, MCDraggingSession&, MCPoint, uint64_t) {}
void MCBrowserViewDelegate::readItemsFromPasteboard(MCBrowserView&, MCPasteboard&) {}
void MCBrowserViewDelegate::writeItemsAtIndexPaths(MCBrowserView&, const std::vector<MCIndexPath>&, MCPasteboard&) {}
uint64_t MCBrowserViewDelegate::validateDrop(MCBrowserView&, const MCDraggingInfo&) { return MCDragOperationNone; }
bool MCBrowserViewDelegate::acceptDrop(MCBrowserView&, const MCDraggingInfo&) { return false; }
std::shared_ptr<MCPreviewItem> MCBrowserViewDelegate::previewItemAtIndexPath(MCBrowserView&, const MCIndexPath&) {
  return nullptr;
}
