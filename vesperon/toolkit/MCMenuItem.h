#pragma once
// MCMenuItem: what a menu item is to the views that validate it — its action (a command name such
// as "copy:"), title and tag. Hosts build their menus from these and ask the window whether each
// is enabled (MCWindow::validateMenuItem), so menus and key bindings share one set of names.
//
// Items built by the library's own menus (MCMenu) may also carry a represented object (an
// application id, a path …), an icon by icon-theme name, and a target: the responder the action
// goes to, instead of the window's responder chain.
//
// An item may hold a view instead (a row of controls, as the colour labels): the host shows the
// view in the menu in place of the title, in a small window of its own, and the view takes the
// pointer and clicks itself — choosing happens inside it, not through `chosen`. While the menu is
// open the view's `enclosingMenu` is that menu, so that the view can end its tracking.

#include <memory>
#include <string>

class MCMenu;
class MCResponder;
class MCView;

struct MCMenuItem {
  /// An item of `title` that sends `action`.
  MCMenuItem(std::string title = {}, std::string action = {}, long tag = 0, bool enabled = true)
      : title(std::move(title)), action(std::move(action)), tag(tag), enabled(enabled) {}

  /// The text shown.
  std::string title;
  /// The command sent when chosen ("copy:"); validated through the responder chain.
  std::string action;  // a command name, "copy:"
  /// A number for the program's own use.
  long tag = 0;
  /// Whether the item can be chosen.
  bool enabled = true;
  /// Whether the item is a separator line.
  bool separator = false;
  /// A value for the program's own use.
  std::string representedObject;
  /// An icon-theme name or an image file's path; empty for none.
  std::string iconName;
  /// The icon's size in points.
  double iconSize = 16;
  /// Where the action goes; none sends it down the responder chain.
  std::weak_ptr<MCResponder> target;
  /// The items shown beside this one when it is chosen, or none.
  std::shared_ptr<MCMenu> submenu;
  /// Shown in place of the title, at its own frame size; none for a plain item.
  std::shared_ptr<MCView> view;

  /// A separator.
  static MCMenuItem separatorItem() {
    MCMenuItem item;
    item.separator = true;
    return item;
  }
};
