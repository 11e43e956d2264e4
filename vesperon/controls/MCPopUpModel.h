#pragma once
// MCPopUpModel: a pop-up button's menu and selection. Items have a title, a tag and a represented
// object of any type; a separator item is a line between groups and cannot be selected.

#include <vesperon/controls/MCControlModel.h>

#include <any>
#include <optional>
#include <string>
#include <vector>

/// One item of a pop-up.
struct MCPopUpItem {
  /// The text shown.
  std::string title;
  /// A number for the program's own use.
  long tag = 0;
  /// A value for the program's own use.
  std::any representedObject;
  /// Whether the item is a separator line.
  bool separator = false;

  /// A separator item.
  static MCPopUpItem separatorItem() {
    MCPopUpItem item;
    item.separator = true;
    return item;
  }
};

class MCPopUpModel : public MCControlModel {
 public:
  /// The items, in order.
  const std::vector<MCPopUpItem>& items() const { return items_; }
  /// How many items there are.
  std::size_t numberOfItems() const { return items_.size(); }
  /// The item at `index`; past the end raises std::out_of_range.
  MCPopUpItem& itemAtIndex(std::size_t index) { return items_.at(index); }

  /// Appends an item; the first selectable item added becomes the selection.
  void addItem(MCPopUpItem item);
  /// Inserts at `index` (at most the count); the selection stays on its item.
  void insertItem(MCPopUpItem item, std::size_t index);
  /// Removes every item; nothing is selected then.
  void removeAllItems();

  /// The selected item's index; none with no items or only separators.
  std::optional<std::size_t> indexOfSelectedItem() const { return selected_; }
  /// The selected item; none when nothing is selected.
  const MCPopUpItem* selectedItem() const { return selected_ ? &items_[*selected_] : nullptr; }
  /// Selects the item at `index`; false (and no change) for a separator or an index out of range.
  bool selectItemAtIndex(std::size_t index);
  /// Selects the first item with `tag`; false when there is none.
  bool selectItemWithTag(long tag);
  /// What a user's choice does: selects, then sends the action when the selection changed.
  void chooseItemAtIndex(std::size_t index);

  /// Whether the pop-up pulls down (its title stays) instead of popping up.
  bool pullsDown = false;

 private:
  std::vector<MCPopUpItem> items_;
  std::optional<std::size_t> selected_;
};
