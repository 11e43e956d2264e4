#include <vesperon/toolkit/MCResponder.h>

#include <vesperon/toolkit/MCKeyBindings.h>

#define MC_FORWARD_EVENT(name) \
  void MCResponder::name(const MCEvent& event) {    \
    if (MCResponder* next = nextResponder()) next->name(event); \
  }

MC_FORWARD_EVENT(mouseDown)
MC_FORWARD_EVENT(mouseUp)
MC_FORWARD_EVENT(mouseDragged)
MC_FORWARD_EVENT(mouseMoved)
MC_FORWARD_EVENT(mouseEntered)
MC_FORWARD_EVENT(mouseExited)
MC_FORWARD_EVENT(rightMouseDown)
MC_FORWARD_EVENT(rightMouseUp)
MC_FORWARD_EVENT(rightMouseDragged)
MC_FORWARD_EVENT(otherMouseDown)
MC_FORWARD_EVENT(otherMouseUp)
MC_FORWARD_EVENT(otherMouseDragged)
MC_FORWARD_EVENT(scrollWheel)
MC_FORWARD_EVENT(magnifyWithEvent)
MC_FORWARD_EVENT(smartMagnifyWithEvent)
MC_FORWARD_EVENT(keyDown)
MC_FORWARD_EVENT(keyUp)

#undef MC_FORWARD_EVENT

void MCResponder::interpretKeyEvents(const std::vector<MCEvent>& events) {
  for (const MCEvent& event : events) {
    if (event.type() != MCEventType::KeyDown) continue;
    const std::vector<std::string>& commands = MCKeyBindings::standardBindings().commandsForEvent(event);
    if (!commands.empty()) {
      for (const std::string& command : commands) doCommandBySelector(command);
      continue;
    }
    // Text is typed only without command or control, and only printable characters.
    if (event.modifierFlags() & (MCEventModifierFlagCommand | MCEventModifierFlagControl)) continue;
    std::u32string text;
    for (char32_t c : event.characters())
      if (c >= 0x20 && c != MCDeleteCharacter && (c < 0xF700 || c > 0xF8FF)) text.push_back(c);
    if (!text.empty()) insertText(text);
  }
}

void MCResponder::doCommandBySelector(const std::string& command) { tryToPerform(command); }

void MCResponder::insertText(const std::u32string&) {}

void MCResponder::registerCommand(const std::string& command, CommandHandler handler) {
  commands_[command] = std::move(handler);
}

void MCResponder::unregisterCommand(const std::string& command) { commands_.erase(command); }

bool MCResponder::respondsToCommand(const std::string& command) const { return commands_.count(command) != 0; }

bool MCResponder::performCommand(const std::string& command) {
  auto it = commands_.find(command);
  if (it == commands_.end()) return false;
  // Copied: the handler may unregister itself.
  CommandHandler handler = it->second;
  handler();
  return true;
}

MCResponder* MCResponder::targetForCommand(const std::string& command) {
  for (MCResponder* responder = this; responder; responder = responder->nextResponder())
    if (responder->respondsToCommand(command)) return responder;
  return nullptr;
}

bool MCResponder::tryToPerform(const std::string& command) {
  MCResponder* target = targetForCommand(command);
  return target && target->performCommand(command);
}

bool MCResponder::validateMenuItem(const MCMenuItem&) { return true; }

bool MCResponder::acceptsPreviewPanelControl(MCPreviewPanel&) { return false; }
void MCResponder::beginPreviewPanelControl(MCPreviewPanel&) {}
void MCResponder::endPreviewPanelControl(MCPreviewPanel&) {}
