#include "VesperonCommand.h"

#include <algorithm>

namespace {
std::vector<VesperonCommand>& storage() {
  static std::vector<VesperonCommand> commands;
  return commands;
}
}  // namespace

bool VesperonCommandRegistry::add(VesperonCommand command) {
  auto& commands = storage();
  auto at = std::lower_bound(commands.begin(), commands.end(), command.name,
                             [](const VesperonCommand& c, const std::string& n) { return c.name < n; });
  commands.insert(at, std::move(command));
  return true;
}

const std::vector<VesperonCommand>& VesperonCommandRegistry::all() { return storage(); }
