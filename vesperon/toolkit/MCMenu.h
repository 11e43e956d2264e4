#pragma once
// MCMenu: an ordered list of menu items, as a model that a host shows as a real menu (the GTK host
// turns it into a GMenu with actions). Main thread only.
//
// Tracking: while a host shows a menu, the host's copy of it is tracking, and `cancelTracking`
// closes it as a dismissal does (nothing is chosen). That is how a view inside an item (see
// MCMenuItem::view) ends the menu when the user has picked something in it.

#include <vesperon/toolkit/MCMenuItem.h>

#include <functional>
#include <string>
#include <vector>

class MCMenu {
 public:
  /// An empty menu of `title`.
  explicit MCMenu(std::string title = {}) : title_(std::move(title)) {}
  /// A copy has the title and the items; it is not shown, so it is not tracking.
  MCMenu(const MCMenu& other) : title_(other.title_), items_(other.items_) {}
  /// @name Copies
  //@{
  /// Menus copy (items and their views shared, tracking not) and move as values.
  MCMenu& operator=(const MCMenu& other) {
    title_ = other.title_;
    items_ = other.items_;
    cancelTracking_ = nullptr;
    return *this;
  }
  MCMenu(MCMenu&&) = default;
  MCMenu& operator=(MCMenu&&) = default;
  //@}

  /// The menu's title.
  const std::string& title() const { return title_; }
  /// The items, in order.
  const std::vector<MCMenuItem>& items() const { return items_; }
  /// How many items there are.
  std::size_t numberOfItems() const { return items_.size(); }

  /// Appends an item.
  void addItem(MCMenuItem item) { items_.push_back(std::move(item)); }
  /// Appends a separator.
  void addSeparator() { items_.push_back(MCMenuItem::separatorItem()); }
  /// Removes every item.
  void removeAllItems() { items_.clear(); }

  /// Removes the first item with the tag; true when there was one.
  bool removeItemWithTag(long tag);
  /// Removes every item with the tag; true when at least one went.
  bool removeAllItemsWithTag(long tag);

  /// Whether a host shows this menu now.
  bool isTracking() const { return bool(cancelTracking_); }
  /// Closes the menu while a host shows it, choosing nothing; nothing when it is not shown.
  void cancelTracking();

  // For hosts. While a host shows the menu, `cancel` closes it; the host sets none when the menu
  // closes, however that happens.
  /// Set by a host while it shows the menu (see above).
  void setTrackingCanceller(std::function<void()> cancel) { cancelTracking_ = std::move(cancel); }
  /// Gives each item's view (in submenus too) this menu as its enclosing menu, or none.
  void setEnclosingMenuOfItemViews(MCMenu* menu) const;

 private:
  std::string title_;
  std::vector<MCMenuItem> items_;
  std::function<void()> cancelTracking_;
};
