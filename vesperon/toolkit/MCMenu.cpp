#include <vesperon/toolkit/MCMenu.h>

#include <vesperon/toolkit/MCView.h>

#include <algorithm>

bool MCMenu::removeItemWithTag(long tag) {
  auto it = std::find_if(items_.begin(), items_.end(), [&](const MCMenuItem& item) { return item.tag == tag; });
  if (it == items_.end()) return false;
  items_.erase(it);
  return true;
}

bool MCMenu::removeAllItemsWithTag(long tag) {
  const auto before = items_.size();
  std::erase_if(items_, [&](const MCMenuItem& item) { return item.tag == tag; });
  return items_.size() != before;
}

void MCMenu::cancelTracking() {
  if (!cancelTracking_) return;
  // The host's canceller may clear itself (and with it this function) as the menu closes.
  const std::function<void()> cancel = cancelTracking_;
  cancelTracking_ = nullptr;
  cancel();
}

void MCMenu::setEnclosingMenuOfItemViews(MCMenu* menu) const {
  for (const MCMenuItem& item : items_) {
    if (item.view) item.view->setEnclosingMenu(menu);
    if (item.submenu) item.submenu->setEnclosingMenuOfItemViews(menu);
  }
}
