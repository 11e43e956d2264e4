#include <vesperon/toolkit/MCDraggingSession.h>

void MCDraggingSource::willBeginAtPoint(MCDraggingSession&, MCPoint) {}
void MCDraggingSource::endedAtPoint(MCDraggingSession&, MCPoint, uint64_t) {}

MCDraggingSession::MCDraggingSession(std::vector<MCDraggingItem> items, MCDraggingSource* source,
                                     MCPoint locationInWindow)
    : items_(std::move(items)), source_(source), pasteboard_(MCPasteboard::pasteboardWithName("drag")),
      location_(locationInWindow) {
  pasteboard_->clearContents();
  std::vector<std::shared_ptr<MCPasteboardWriting>> writers;
  for (const MCDraggingItem& item : items_) writers.push_back(item.item);
  pasteboard_->writeObjects(writers);
}

void MCDraggingSession::beginAtPoint(MCPoint screenPoint) {
  if (began_) return;
  began_ = true;
  if (source_) source_->willBeginAtPoint(*this, screenPoint);
}

void MCDraggingSession::endAtPoint(MCPoint screenPoint, uint64_t operation) {
  if (ended_) return;
  ended_ = true;
  operation_ = operation;
  if (source_) source_->endedAtPoint(*this, screenPoint, operation);
}

uint64_t MCDraggingSession::sourceOperationMask(MCDraggingContext context) {
  return source_ ? source_->sourceOperationMaskForDraggingContext(*this, context) : MCDragOperationNone;
}

std::vector<std::string> MCDraggingSession::fileURLStrings() const {
  std::vector<std::string> urls;
  for (const MCPasteboardItem& item : pasteboard_->pasteboardItems())
    if (auto url = item.stringForType(MCPasteboardTypeFileURL)) urls.push_back(*url);
  return urls;
}
