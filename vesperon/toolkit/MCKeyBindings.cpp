#include <vesperon/toolkit/MCKeyBindings.h>

namespace {

constexpr uint64_t kShift = MCEventModifierFlagShift;
constexpr uint64_t kOption = MCEventModifierFlagOption;
constexpr uint64_t kCommand = MCEventModifierFlagCommand;

void addStandardBindings(MCKeyBindings& table) {
  struct Move {
    char32_t key;
    const char* plain;
    const char* word;      // with command or option
    const char* document;  // with command
  };
  const Move moves[] = {
      {MCUpArrowFunctionKey, "moveUp:", nullptr, "moveToBeginningOfDocument:"},
      {MCDownArrowFunctionKey, "moveDown:", nullptr, "moveToEndOfDocument:"},
      {MCLeftArrowFunctionKey, "moveLeft:", "moveWordLeft:", nullptr},
      {MCRightArrowFunctionKey, "moveRight:", "moveWordRight:", nullptr},
  };
  auto modifying = [](const std::string& command) {
    return command.substr(0, command.size() - 1) + "AndModifySelection:";
  };
  for (const Move& move : moves) {
    table.setCommands(move.key, 0, {move.plain});
    table.setCommands(move.key, kShift, {modifying(move.plain)});
    if (move.word) {
      for (uint64_t modifier : {kCommand, kOption}) {
        table.setCommands(move.key, modifier, {move.word});
        table.setCommands(move.key, modifier | kShift, {modifying(move.word)});
      }
    }
    if (move.document) {
      table.setCommands(move.key, kCommand, {move.document});
      table.setCommands(move.key, kCommand | kShift, {modifying(move.document)});
    }
  }
  table.setCommands(MCUpArrowFunctionKey, kOption, {"scrollLineUp:"});
  table.setCommands(MCDownArrowFunctionKey, kOption, {"scrollLineDown:"});
  table.setCommands(MCHomeFunctionKey, 0, {"scrollToBeginningOfDocument:"});
  table.setCommands(MCEndFunctionKey, 0, {"scrollToEndOfDocument:"});
  table.setCommands(MCBeginFunctionKey, 0, {"scrollToBeginningOfDocument:"});
  table.setCommands(MCHomeFunctionKey, kCommand, {"moveToBeginningOfDocument:"});
  table.setCommands(MCEndFunctionKey, kCommand, {"moveToEndOfDocument:"});
  table.setCommands(MCHomeFunctionKey, kShift, {"moveToBeginningOfDocumentAndModifySelection:"});
  table.setCommands(MCEndFunctionKey, kShift, {"moveToEndOfDocumentAndModifySelection:"});
  table.setCommands(MCPageUpFunctionKey, 0, {"scrollPageUp:"});
  table.setCommands(MCPageDownFunctionKey, 0, {"scrollPageDown:"});
  table.setCommands(MCPageUpFunctionKey, kShift, {"pageUpAndModifySelection:"});
  table.setCommands(MCPageDownFunctionKey, kShift, {"pageDownAndModifySelection:"});
  table.setCommands(MCEscapeCharacter, 0, {"cancelOperation:"});
  table.setCommands(U'.', kCommand, {"cancelOperation:"});
  table.setCommands(U'a', kCommand, {"selectAll:"});
  table.setCommands(U'c', kCommand, {"copy:"});
  table.setCommands(U'x', kCommand, {"cut:"});
  table.setCommands(U'v', kCommand, {"paste:"});
  table.setCommands(U'z', kCommand, {"undo:"});
  table.setCommands(U'z', kCommand | kShift, {"redo:"});
  table.setCommands(MCCarriageReturnCharacter, 0, {"insertNewline:"});
  table.setCommands(MCTabCharacter, 0, {"insertTab:"});
  table.setCommands(MCTabCharacter, kShift, {"insertBacktab:"});
  table.setCommands(MCBackTabCharacter, kShift, {"insertBacktab:"});
  table.setCommands(MCDeleteCharacter, 0, {"deleteBackward:"});
  table.setCommands(MCDeleteFunctionKey, 0, {"deleteForward:"});
}

const std::vector<std::string>& noCommands() {
  static const std::vector<std::string> none;
  return none;
}

}  // namespace

MCKeyBindings& MCKeyBindings::standardBindings() {
  static MCKeyBindings table = [] {
    MCKeyBindings t;
    addStandardBindings(t);
    return t;
  }();
  return table;
}

char32_t MCKeyBindings::normalizedKey(char32_t key) {
  if (key >= U'A' && key <= U'Z') return key - U'A' + U'a';
  return key;
}

const std::vector<std::string>& MCKeyBindings::commandsForEvent(const MCEvent& event) const {
  if (!event.isKeyEvent() || event.charactersIgnoringModifiers().empty()) return noCommands();
  return commandsForKey(event.charactersIgnoringModifiers().front(), event.modifierFlags());
}

const std::vector<std::string>& MCKeyBindings::commandsForKey(char32_t key, uint64_t modifierFlags) const {
  auto it = table_.find({normalizedKey(key), modifierFlags & kComparedModifiers});
  return it == table_.end() ? noCommands() : it->second;
}

void MCKeyBindings::setCommands(char32_t key, uint64_t modifierFlags, std::vector<std::string> commands) {
  const std::pair<char32_t, uint64_t> entry{normalizedKey(key), modifierFlags & kComparedModifiers};
  if (commands.empty()) table_.erase(entry);
  else table_[entry] = std::move(commands);
}

std::optional<std::pair<char32_t, uint64_t>> MCKeyBindings::keyForCommand(const std::string& command) const {
  for (const auto& [key, commands] : table_)
    for (const std::string& c : commands)
      if (c == command) return key;
  return std::nullopt;
}
