#pragma once
// Subcommands of the `vesperon` program. A subcommand is a function in its own source file that
// registers itself with VESPERON_COMMAND; `vesperon help` lists them.

#include <string>
#include <vector>

struct VesperonCommand {
  std::string name;
  std::string usage;    ///< arguments, as "DIR [--size N]"
  std::string summary;  ///< one line
  int (*run)(const std::vector<std::string>& arguments);
};

class VesperonCommandRegistry {
 public:
  static bool add(VesperonCommand command);
  static const std::vector<VesperonCommand>& all();
  static const VesperonCommand* find(const std::string& name);
};

#define VESPERON_COMMAND(name, usage, summary, function) \
  static const bool vesperonCommandRegistered_##function = VesperonCommandRegistry::add({name, usage, summary, function});
