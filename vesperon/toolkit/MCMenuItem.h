#pragma once
// MCMenuItem: what a menu item is to the views that validate it — its action (a command name such
// as "copy:"), title and tag. Hosts build their menus from these and ask the window whether each
// is enabled (MCWindow::validateMenuItem), so menus and key bindings share one set of names.

#include <string>

struct MCMenuItem {
  std::string title;
  std::string action;  // a command name, "copy:"
  long tag = 0;
  bool enabled = true;
};
