// vesperon: the library's command-line program. `vesperon help` lists the subcommands.

#include "VesperonCommand.h"

#include <vesperon/platform/MCApplicationDirectories.h>

#include <cstdio>
#include <exception>

namespace {
void printUsage(FILE* out) {
  std::fprintf(out, "usage: vesperon COMMAND [ARGUMENTS]\n\ncommands:\n");
  for (const auto& c : VesperonCommandRegistry::all())
    std::fprintf(out, "  %-10s %-34s %s\n", c.name.c_str(), c.usage.c_str(), c.summary.c_str());
}
}  // namespace

int main(int argc, char** argv) {
  MCApplicationDirectories::setApplicationIdentifier("vesperon");
  if (argc < 2 || std::string(argv[1]) == "help" || std::string(argv[1]) == "--help") {
    printUsage(argc < 2 ? stderr : stdout);
    return argc < 2 ? 2 : 0;
  }
  const VesperonCommand* command = VesperonCommandRegistry::find(argv[1]);
  if (!command) {
    std::fprintf(stderr, "vesperon: unknown command '%s'\n\n", argv[1]);
    printUsage(stderr);
    return 2;
  }
  std::vector<std::string> arguments(argv + 2, argv + argc);
  try {
    return command->run(arguments);
  } catch (const std::exception& e) {
    std::fprintf(stderr, "vesperon %s: %s\n", argv[1], e.what());
    return 1;
  }
}
