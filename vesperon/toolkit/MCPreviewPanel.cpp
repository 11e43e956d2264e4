#include <vesperon/toolkit/MCPreviewPanel.h>

#include <vesperon/toolkit/MCResponder.h>
#include <vesperon/toolkit/MCWindow.h>

#include <algorithm>

namespace {
std::shared_ptr<MCPreviewPanel>& sharedPanel() {
  static std::shared_ptr<MCPreviewPanel> panel;
  return panel;
}
}  // namespace

bool MCPreviewPanelDelegate::handleEvent(MCPreviewPanel&, const MCEvent&) { return false; }
MCRect MCPreviewPanelDelegate::sourceFrameOnScreenForPreviewItem(MCPreviewPanel&, const MCPreviewItem&) { return {}; }
MCRasterImageRef MCPreviewPanelDelegate::transitionImageForPreviewItem(MCPreviewPanel&, const MCPreviewItem&,
                                                                       MCRect*) {
  return nullptr;
}

std::shared_ptr<MCPreviewPanel> MCPreviewPanel::sharedPreviewPanel() {
  auto& panel = sharedPanel();
  if (!panel) panel = std::make_shared<MCPreviewPanel>();
  return panel;
}

bool MCPreviewPanel::sharedPreviewPanelExists() { return sharedPanel() != nullptr; }

void MCPreviewPanel::updateController(MCWindow* window) {
  MCResponder* found = nullptr;
  if (window) {
    for (MCResponder* r = window->firstResponder(); r; r = r->nextResponder()) {
      if (r->acceptsPreviewPanelControl(*this)) {
        found = r;
        break;
      }
    }
  }
  if (found == controller_) return;
  if (controller_) controller_->endPreviewPanelControl(*this);
  controller_ = found;
  if (controller_) controller_->beginPreviewPanelControl(*this);
  currentIndex_ = 0;
  reloadData();
}

void MCPreviewPanel::show(MCWindow* window, bool fullScreen) {
  updateController(window);
  visible_ = true;
  fullScreen_ = fullScreen;
  if (presenter_) presenter_->show(*this, fullScreen);
}

void MCPreviewPanel::makeKeyAndOrderFront(MCWindow* window) { show(window, false); }

void MCPreviewPanel::enterFullScreenMode(MCWindow* window) { show(window, true); }

void MCPreviewPanel::exitFullScreenMode() {
  if (!fullScreen_) return;
  fullScreen_ = false;
  if (visible_ && presenter_) presenter_->show(*this, false);
}

void MCPreviewPanel::orderOut() {
  if (!visible_) return;
  visible_ = false;
  fullScreen_ = false;
  if (presenter_) presenter_->hide(*this);
  if (controller_) controller_->endPreviewPanelControl(*this);
  controller_ = nullptr;
}

long MCPreviewPanel::numberOfPreviewItems() {
  return dataSource_ ? std::max(0L, dataSource_->numberOfPreviewItemsInPreviewPanel(*this)) : 0;
}

void MCPreviewPanel::setCurrentPreviewItemIndex(long index) {
  const long count = numberOfPreviewItems();
  currentIndex_ = count == 0 ? 0 : std::clamp(index, 0L, count - 1);
  if (presenter_) presenter_->reload(*this);
}

std::shared_ptr<MCPreviewItem> MCPreviewPanel::currentPreviewItem() {
  const long count = numberOfPreviewItems();
  if (count == 0 || !dataSource_) return nullptr;
  return dataSource_->previewItemAtIndex(*this, std::clamp(currentIndex_, 0L, count - 1));
}

void MCPreviewPanel::reloadData() {
  const long count = numberOfPreviewItems();
  if (currentIndex_ >= count) currentIndex_ = std::max(0L, count - 1);
  if (presenter_) presenter_->reload(*this);
}

bool MCPreviewPanel::handleEvent(const MCEvent& event) {
  if (delegate_ && delegate_->handleEvent(*this, event)) return true;
  if (event.type() != MCEventType::KeyDown || event.charactersIgnoringModifiers().empty()) return false;
  switch (event.charactersIgnoringModifiers().front()) {
    case MCLeftArrowFunctionKey:
    case MCUpArrowFunctionKey:
      setCurrentPreviewItemIndex(currentIndex_ - 1);
      return true;
    case MCRightArrowFunctionKey:
    case MCDownArrowFunctionKey:
      setCurrentPreviewItemIndex(currentIndex_ + 1);
      return true;
    case MCSpaceCharacter:
    case MCEscapeCharacter:
      orderOut();
      return true;
    default:
      return false;
  }
}

void MCPreviewPanel::controllerWillGoAway(MCResponder* responder) {
  if (responder != controller_) return;
  controller_->endPreviewPanelControl(*this);
  controller_ = nullptr;
  dataSource_ = nullptr;
  delegate_ = nullptr;
}
