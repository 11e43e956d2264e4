#pragma once
// MCMenu: an ordered list of menu items, as a model that a host shows as a real menu (the GTK host
// turns it into a GMenu with actions). Main thread only.

#include <vesperon/toolkit/MCMenuItem.h>

#include <string>
#include <vector>

class MCMenu {
 public:
  explicit MCMenu(std::string title = {}) : title_(std::move(title)) {}

  const std::string& title() const { return title_; }
  const std::vector<MCMenuItem>& items() const { return items_; }
  std::size_t numberOfItems() const { return items_.size(); }

  void addItem(MCMenuItem item) { items_.push_back(std::move(item)); }
  void addSeparator() { items_.push_back(MCMenuItem::separatorItem()); }
  void removeAllItems() { items_.clear(); }

  /// Removes the first item with the tag; true when there was one.
  bool removeItemWithTag(long tag);
  /// Removes every item with the tag; true when at least one went.
  bool removeAllItemsWithTag(long tag);

 private:
  std::string title_;
  std::vector<MCMenuItem> items_;
};
