#include <vesperon/toolkit/MCMenu.h>

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
