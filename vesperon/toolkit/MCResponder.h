#pragma once
// MCResponder: the base of everything that takes events and commands — views and windows.
//
// Events. Each event operation passes the event on to the next responder unless a subclass takes
// it; for a view the next responder is its superview, for the content view the window, for the
// window nothing. A key that no view takes reaches the window, which turns it into commands
// through the key bindings (see MCWindow::keyDown).
//
// Commands. A command is an action named as the platform names it ("moveLeft:", "copy:"). A
// responder registers the commands it answers with a handler; `tryToPerform` runs the first
// handler along the chain from a responder up. `interpretKeyEvents` looks key events up in
// MCKeyBindings and sends each command it finds through `doCommandBySelector`, or hands the typed
// text to `insertText`.

#include <vesperon/toolkit/MCEvent.h>
#include <vesperon/toolkit/MCMenuItem.h>

#include <functional>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

class MCPreviewPanel;

/// The base of everything that takes events and commands; see the header's opening comment.
class MCResponder : public std::enable_shared_from_this<MCResponder> {
 public:
  /// A responder that answers no command yet.
  MCResponder() = default;
  /// Responders are used through pointers to the base.
  virtual ~MCResponder() = default;
  MCResponder(const MCResponder&) = delete;
  MCResponder& operator=(const MCResponder&) = delete;

  /// The responder after this one in the chain; none at its end.
  virtual MCResponder* nextResponder() const { return nullptr; }

  /// Whether the responder can take the keyboard; not by default.
  virtual bool acceptsFirstResponder() const { return false; }
  /// Asked when the window makes this responder first; false refuses.
  virtual bool becomeFirstResponder() { return true; }
  /// Asked when the window moves first-responder status away; false keeps it.
  virtual bool resignFirstResponder() { return true; }

  // Events: each passes the event to the next responder unless overridden.
  /// @name Events
  //@{
  /// The event operations: each passes the event on to the next responder unless a subclass
  /// overrides it to take it (mouse buttons, moves, enter and exit of tracking areas, the wheel,
  /// pinches, smart zoom and keys).
  virtual void mouseDown(const MCEvent& event);
  virtual void mouseUp(const MCEvent& event);
  virtual void mouseDragged(const MCEvent& event);
  virtual void mouseMoved(const MCEvent& event);
  virtual void mouseEntered(const MCEvent& event);
  virtual void mouseExited(const MCEvent& event);
  virtual void rightMouseDown(const MCEvent& event);
  virtual void rightMouseUp(const MCEvent& event);
  virtual void rightMouseDragged(const MCEvent& event);
  virtual void otherMouseDown(const MCEvent& event);
  virtual void otherMouseUp(const MCEvent& event);
  virtual void otherMouseDragged(const MCEvent& event);
  virtual void scrollWheel(const MCEvent& event);
  virtual void magnifyWithEvent(const MCEvent& event);
  virtual void smartMagnifyWithEvent(const MCEvent& event);
  virtual void keyDown(const MCEvent& event);
  virtual void keyUp(const MCEvent& event);
  //@}

  // Key bindings and commands.
  /// Turns key-down events into commands (MCKeyBindings) sent through `doCommandBySelector`, and
  /// key-downs with no binding that type text into `insertText`.
  void interpretKeyEvents(const std::vector<MCEvent>& events);
  /// Performs the command here or further along the chain; nothing happens when no responder
  /// answers it.
  virtual void doCommandBySelector(const std::string& command);
  /// Typed text from `interpretKeyEvents`; ignored by default.
  virtual void insertText(const std::u32string& text);

  /// What runs a command.
  using CommandHandler = std::function<void()>;
  /// Makes this responder answer `command` with `handler` (replacing an earlier one).
  void registerCommand(const std::string& command, CommandHandler handler);
  /// Stops answering `command`.
  void unregisterCommand(const std::string& command);
  /// Whether this responder itself answers `command`.
  bool respondsToCommand(const std::string& command) const;
  /// Runs this responder's own handler; false when it has none.
  bool performCommand(const std::string& command);
  /// Runs the first handler along the chain from this responder; false when none answers.
  bool tryToPerform(const std::string& command);
  /// The responder along the chain from this one that answers `command`, or none.
  MCResponder* targetForCommand(const std::string& command);

  /// Whether a menu item whose action this responder answers is enabled; true by default.
  virtual bool validateMenuItem(const MCMenuItem& item);

  // The preview panel asks the chain for a controller (see MCPreviewPanel).
  /// Whether this responder controls the preview panel when asked along the chain; not by default.
  virtual bool acceptsPreviewPanelControl(MCPreviewPanel& panel);
  /// The panel is now under this responder's control: set its data source and delegate here.
  virtual void beginPreviewPanelControl(MCPreviewPanel& panel);
  /// The panel left this responder's control.
  virtual void endPreviewPanelControl(MCPreviewPanel& panel);

 private:
  std::unordered_map<std::string, CommandHandler> commands_;
};
