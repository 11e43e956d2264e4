// vesperon: the library's command-line program. `vesperon --help` lists the subcommands and
// `vesperon COMMAND --help` (or `vesperon help COMMAND`) shows one. Exit status: 0 done, 1 the
// command failed, 2 a usage error.

#include "VesperonCommand.h"

#include <vesperon/platform/MCApplicationDirectories.h>

#include <algorithm>
#include <cstdio>
#include <exception>
#include <map>

namespace {
constexpr int kUsageError = 2;

bool isCommand(const std::string& word) {
  for (const auto& command : VesperonCommandRegistry::all())
    if (command.name == word) return true;
  return false;
}
}  // namespace

int main(int argc, char** argv) {
  MCApplicationDirectories::setApplicationIdentifier("vesperon");
  CLI::App app("The Vesperon library's command-line program.", "vesperon");
  app.set_version_flag("--version", VESPERON_VERSION);
  app.require_subcommand(1);
  app.footer("Run `vesperon COMMAND --help` for the arguments of one command.");

  std::map<const CLI::App*, std::function<int()>> runs;
  for (const auto& command : VesperonCommandRegistry::all()) {
    CLI::App* sub = app.add_subcommand(command.name, command.summary);
    runs[sub] = command.define(*sub);
  }
  app.add_subcommand("help", "show the help of the program, or of one command (help COMMAND)");

  // `help [COMMAND]` is `[COMMAND] --help`, so that both print the same text; a word that names no
  // command is reported as such rather than as a missing one.
  std::vector<std::string> words(argv + 1, argv + argc);
  if (!words.empty() && words[0] == "help") {
    if (words.size() > 2) words.resize(2);
    words.erase(words.begin());
    words.push_back("--help");
  }
  if (!words.empty() && words[0][0] != '-' && !isCommand(words[0])) {
    std::fprintf(stderr, "vesperon: unknown command '%s'\nRun with --help for the commands.\n", words[0].c_str());
    return kUsageError;
  }

  try {
    std::reverse(words.begin(), words.end());  // CLI11 takes the arguments as a stack
    app.parse(words);
  } catch (const CLI::ParseError& e) {
    if (e.get_exit_code() == 0) return app.exit(e);  // --help, --version
    app.exit(e);
    return kUsageError;
  }

  for (const CLI::App* sub : app.get_subcommands()) {
    try {
      return runs.at(sub)();
    } catch (const std::exception& e) {
      std::fprintf(stderr, "vesperon %s: %s\n", sub->get_name().c_str(), e.what());
      return 1;
    }
  }
  return kUsageError;
}
