#pragma once
// MCKeyBindings: the one table from a key and its modifiers to command names — the desktop's
// standard text-editing bindings, which the views' keyboard logic is written against.
//
// Keys are the first character of an event's `charactersIgnoringModifiers` (letters compared in
// lower case); modifiers are shift, control, option and command. With the hosts' mapping (Ctrl
// gives command, Alt gives option) the table reads as a Linux user expects:
//
//   arrows                      moveUp: moveDown: moveLeft: moveRight:
//   Shift+arrows                move…AndModifySelection:
//   Ctrl+Left/Right, Alt+Left/Right       moveWordLeft: moveWordRight: (Shift: …AndModifySelection:)
//   Ctrl+Up/Down, Ctrl+Home/End moveToBeginningOfDocument: moveToEndOfDocument: (Shift: …AndModifySelection:)
//   Alt+Up/Down                 scrollLineUp: scrollLineDown:
//   Home, End                   scrollToBeginningOfDocument: scrollToEndOfDocument:
//   Page Up, Page Down          scrollPageUp: scrollPageDown:
//   Escape, Ctrl+.              cancelOperation:
//   Ctrl+A, C, X, V, Z, Shift+Ctrl+Z     selectAll: copy: cut: paste: undo: redo:
//   Return, Tab, Shift+Tab      insertNewline: insertTab: insertBacktab:
//   Backspace, Delete           deleteBackward: deleteForward:
//
// A table may be extended or changed by a host (`setCommands`), once, before windows open.

#include <vesperon/toolkit/MCEvent.h>

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

class MCKeyBindings {
 public:
  /// The shared table, filled with the standard bindings above.
  static MCKeyBindings& standardBindings();

  /// An empty table.
  MCKeyBindings() = default;

  /// The commands for a key event; empty for a key with no binding (or an event that is not a key).
  const std::vector<std::string>& commandsForEvent(const MCEvent& event) const;
  /// The commands for a key character and modifier flags (only shift, control, option and command
  /// are compared).
  const std::vector<std::string>& commandsForKey(char32_t key, uint64_t modifierFlags) const;

  /// Binds a key and modifiers to commands; an empty list removes the binding.
  void setCommands(char32_t key, uint64_t modifierFlags, std::vector<std::string> commands);

  /// The key and modifiers of the first binding that sends `command`, for menus that show their
  /// shortcut; none when no key sends it.
  std::optional<std::pair<char32_t, uint64_t>> keyForCommand(const std::string& command) const;

  /// The modifiers a binding is matched on.
  static constexpr uint64_t kComparedModifiers = MCEventModifierFlagShift | MCEventModifierFlagControl |
                                                 MCEventModifierFlagOption | MCEventModifierFlagCommand;

 private:
  static char32_t normalizedKey(char32_t key);
  std::map<std::pair<char32_t, uint64_t>, std::vector<std::string>> table_;
};
