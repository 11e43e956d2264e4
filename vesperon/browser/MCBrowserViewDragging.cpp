// MCBrowserView: dragging, the pasteboard and the preview panel. What may be dragged, written,
// read and previewed is the delegate's to say; the view gives the selection, frames and images.
#include <vesperon/browser/MCBrowserView.h>
#include <vesperon/browser/MCBrowserViewPreviewItem.h>

#include <vesperon/toolkit/MCPasteboard.h>
#include <vesperon/toolkit/MCWindow.h>

bool MCBrowserView::canBeginDragging(const MCEvent& event) {
  if (!respondsTo(MCBrowserViewDelegateOperation::PasteboardWriterForItem)) return false;
  const MCPoint p = convertPoint(event.locationInWindow(), nullptr);
  const uint64_t item = contentLayout_->itemIndexAtPoint(p);
  if (item == NSNotFound || !selectionIndexes_.containsIndex(item)) return false;
  return hitTestWithPoint(p, item);
}

bool MCBrowserView::isDraggingEvent(const MCEvent& event) {
  if (!canBeginDragging(event) || !window()) return false;
  // Holding still for half a second also begins a drag.
  constexpr MCEventMask kUpOrDragged = 68;
  const auto next = window()->nextEventMatchingMask(kUpOrDragged, 0.5, false);
  if (!next) return true;
  return next->type() == MCEventType::LeftMouseDragged;
}

void MCBrowserView::beginDragging(const MCEvent& event) {
  auto delegate = this->delegate();
  if (!delegate) return;
  std::vector<MCDraggingItem> items;
  std::weak_ptr<MCView> weakSelf = sharedView();
  for (uint64_t index : selectionIndexes_) {
    const auto path = contentLayout_->indexPathFromItemIndex(index);
    if (!path) continue;
    MCDraggingItem item(delegate->pasteboardWriterForItemAtIndexPath(*this, *path));
    const MCRect frame = contentLayout_->cellFrameAtItemIndex(index);
    item.draggingFrame = frame;
    const MCIndexPath indexPath = *path;
    item.imageComponentsProvider = [weakSelf, indexPath, frame] {
      std::vector<MCDraggingImageComponent> components;
      auto view = std::static_pointer_cast<MCBrowserView>(weakSelf.lock());
      if (!view) return components;
      MCPoint offset{};
      auto image = view->dragImageAtIndexPath(indexPath, frame.size, &offset);
      MCDraggingImageComponent component = MCDraggingImageComponent::draggingImageComponentWithKey(
          MCDraggingImageComponentIconKey);
      if (image) {
        component.frame = MCMakeRect(offset.x, offset.y, image->size().width / image->scale(),
                                     image->size().height / image->scale());
        component.contents = image->CGImage();
      }
      components.push_back(component);
      return components;
    };
    items.push_back(std::move(item));
  }
  if (auto session = beginDraggingSession(std::move(items), event, this)) session->setDraggingFormation(0);
}

std::shared_ptr<const MCImage> MCBrowserView::dragImageAtIndexPath(const MCIndexPath& indexPath, MCSize size,
                                                                   MCPoint* offset) {
  MCBrowserViewCell* cell = preparedItemCellAtIndexPath(indexPath);
  return cell ? cell->dragImageWithSize(size, offset) : nullptr;
}

uint64_t MCBrowserView::sourceOperationMaskForDraggingContext(MCDraggingSession&, MCDraggingContext context) {
  switch (context) {
    case MCDraggingContext::OutsideApplication: return MCDragOperationCopy | MCDragOperationDelete;
    case MCDraggingContext::WithinApplication: return MCDragOperationCopy;
  }
  return MCDragOperationNone;
}

void MCBrowserView::willBeginAtPoint(MCDraggingSession& session, MCPoint screenPoint) {
  if (respondsTo(MCBrowserViewDelegateOperation::DraggingSessionWillBegin))
    delegate()->draggingSessionWillBeginAtPoint(*this, session, screenPoint);
}

void MCBrowserView::endedAtPoint(MCDraggingSession& session, MCPoint screenPoint, uint64_t operation) {
  if (respondsTo(MCBrowserViewDelegateOperation::DraggingSessionEnded))
    delegate()->draggingSessionEndedAtPoint(*this, session, screenPoint, operation);
}

uint64_t MCBrowserView::draggingEntered(const MCDraggingInfo& info) {
  auto delegate = this->delegate();
  return delegate ? delegate->validateDrop(*this, info) : MCDragOperationNone;
}

bool MCBrowserView::performDragOperation(const MCDraggingInfo& info) {
  auto delegate = this->delegate();
  return delegate && delegate->acceptDrop(*this, info);
}

bool MCBrowserView::canReadItemsFromPasteboard(MCPasteboard& pasteboard) {
  return respondsTo(MCBrowserViewDelegateOperation::ReadItemsFromPasteboard) &&
         pasteboard.canReadItemWithDataConformingToTypes(registeredDraggedTypes());
}

void MCBrowserView::readItemsFromPasteboard(MCPasteboard& pasteboard) {
  if (canReadItemsFromPasteboard(pasteboard)) delegate()->readItemsFromPasteboard(*this, pasteboard);
}

bool MCBrowserView::canWriteSelectedItemsToPasteboard(MCPasteboard&) {
  return respondsTo(MCBrowserViewDelegateOperation::WriteItemsToPasteboard) && hasSelection();
}

void MCBrowserView::writeSelectedItemsToPasteboard(MCPasteboard& pasteboard) {
  if (canWriteSelectedItemsToPasteboard(pasteboard))
    delegate()->writeItemsAtIndexPaths(*this, selectionIndexPaths(), pasteboard);
}

// MARK: The preview panel

bool MCBrowserView::handleSpacebarKeyDownEvent(const MCEvent& event) {
  auto panel = MCPreviewPanel::sharedPreviewPanel();
  if (panel->isVisible()) panel->orderOut();
  else if (event.modifierFlags() & MCEventModifierFlagOption) panel->enterFullScreenMode(window());
  else panel->makeKeyAndOrderFront(window());
  return true;
}

bool MCBrowserView::acceptsPreviewPanelControl(MCPreviewPanel&) { return allowsPreviewPanel_; }

void MCBrowserView::beginPreviewPanelControl(MCPreviewPanel& panel) {
  panel.setDelegate(this);
  panel.setDataSource(this);
}

void MCBrowserView::endPreviewPanelControl(MCPreviewPanel& panel) {
  panel.setDelegate(nullptr);
  panel.setDataSource(nullptr);
}

long MCBrowserView::numberOfPreviewItemsInPreviewPanel(MCPreviewPanel&) { return long(selectionIndexes_.count()); }

std::shared_ptr<MCPreviewItem> MCBrowserView::previewItemAtIndex(MCPreviewPanel&, long index) {
  if (index < 0 || uint64_t(index) >= selectionIndexes_.count()) return nullptr;
  uint64_t item = NSNotFound;
  long k = 0;
  for (uint64_t i : selectionIndexes_)
    if (k++ == index) {
      item = i;
      break;
    }
  const auto path = contentLayout_->indexPathFromItemIndex(item);
  auto delegate = this->delegate();
  if (!path || !delegate) return nullptr;
  return std::make_shared<MCBrowserViewPreviewItem>(delegate->previewItemAtIndexPath(*this, *path), *path);
}

bool MCBrowserView::handleEvent(MCPreviewPanel&, const MCEvent& event) {
  if (event.type() != MCEventType::KeyDown) return false;
  keyDown(event);
  return true;
}

namespace {
std::optional<MCIndexPath> indexPathOf(const MCPreviewItem& item) {
  const std::any state = item.previewItemDisplayState();
  if (const auto* path = std::any_cast<MCIndexPath>(&state)) return *path;
  return std::nullopt;
}
}  // namespace

MCRasterImageRef MCBrowserView::transitionImageForPreviewItem(MCPreviewPanel&, const MCPreviewItem& item, MCRect*) {
  const auto path = indexPathOf(item);
  MCBrowserViewCell* cell = path ? preparedItemCellAtIndexPath(path) : nullptr;
  if (!cell) return nullptr;
  auto image = cell->previewImage();
  return image ? image->CGImage() : nullptr;
}

MCRect MCBrowserView::sourceFrameOnScreenForPreviewItem(MCPreviewPanel&, const MCPreviewItem& item) {
  const MCRect visible = visibleRect();
  const auto path = indexPathOf(item);
  if (!path) return {};
  const MCRect frame = contentLayout_->cellFrameAtItemIndex(contentLayout_->itemIndexFromIndexPath(*path));
  if (!MCContainsRect(visible, frame)) return {};
  MCBrowserViewCell* cell = preparedItemCellAtIndexPath(path);
  if (!cell) return {};
  const MCRect source = cell->previewSourceRectForCellFrame(frame);
  if (!MCContainsRect(visible, source) || !window()) return {};
  return window()->convertRectToScreen(convertRectToView(source, nullptr));
}
