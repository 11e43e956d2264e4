#pragma once
// MCPopUpModel: a pop-up button's menu and selection. Items have a title, a tag and a represented
// object of any type; a separator item is a line between groups and cannot be selected.

#include <vesperon/controls/MCControlModel.h>

#include <any>
#include <optional>
#include <string>
#include <vector>

struct MCPopUpItem {
  std::string title;
  long tag = 0;
  std::any representedObject;
  bool separator = false;

  static MCPopUpItem separatorItem() {
    MCPopUpItem item;
    item.separator = true;
    return item;
  }
};

class MCPopUpModel : public MCControlModel {
 public:
  const std::vector<MCPopUpItem>& items() const { return items_; }
  std::size_t numberOfItems() const { return items_.size(); }
  MCPopUpItem& itemAtIndex(std::size_t index) { return items_.at(index); }

  /// Appends an item; the first selectable item added becomes the selection.
  void addItem(MCPopUpItem item);
  /// Inserts at `index` (at most the count); the selection stays on its item.
  void insertItem(MCPopUpItem item, std::size_t index);
  void removeAllItems();

  /// The selected item's index; none with no items or only separators.
  std::optional<std::size_t> indexOfSelectedItem() const { return selected_; }
  const MCPopUpItem* selectedItem() const { return selected_ ? &items_[*selected_] : nullptr; }
  /// Selects the item at `index`; false (and no change) for a separator or an index out of range.
  bool selectItemAtIndex(std::size_t index);
  /// Selects the first item with `tag`; false when there is none.
  bool selectItemWithTag(long tag);
  /// What a user's choice does: selects, then sends the action when the selection changed.
  void chooseItemAtIndex(std::size_t index);

  bool pullsDown = false;

 private:
  std::vector<MCPopUpItem> items_;
  std::optional<std::size_t> selected_;
};
