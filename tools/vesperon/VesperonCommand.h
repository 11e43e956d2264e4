#pragma once
// Subcommands of the `vesperon` program. A subcommand is a function in its own source file that
// registers itself with VESPERON_COMMAND. The program parses the command line with CLI11: each
// subcommand's `define` declares its arguments and options on the CLI::App made for it, with the
// texts of its generated help, and gives back the function that runs it once they are parsed.
// Usage errors (an unknown command or option, a missing or bad value) end the program with
// status 2 before anything runs.

#include <CLI/CLI.hpp>

#include <cctype>
#include <cerrno>
#include <cstdlib>
#include <functional>
#include <string>
#include <vector>

struct VesperonCommand {
  std::string name;
  std::string summary;  ///< one line, shown in `vesperon --help`
  std::function<int()> (*define)(CLI::App& command);
};

class VesperonCommandRegistry {
 public:
  static bool add(VesperonCommand command);
  /// Every registered command, by name.
  static const std::vector<VesperonCommand>& all();
};

#define VESPERON_COMMAND(name, summary, define) \
  static const bool vesperonCommandRegistered_##define = VesperonCommandRegistry::add({name, summary, define});

/// Value checks shared by the subcommands' options; each names what it wants in its message.
namespace vesperon_options {
/// A whole number above 0, in decimal.
inline const CLI::Validator kPositiveInteger(
    [](const std::string& text) -> std::string {
      const bool digits = !text.empty() && text.size() <= 18 && text.find_first_not_of("0123456789") == std::string::npos;
      if (!digits || std::stoll(text) <= 0) return "'" + text + "' is not a whole number above 0";
      return {};
    },
    "N>0");
/// An unsigned 64-bit number in decimal, or in hexadecimal with 0x.
inline const CLI::Validator kUnsignedNumber(
    [](const std::string& text) -> std::string {
      const std::string wrong = "'" + text + "' is not an unsigned number (decimal, or hexadecimal with 0x)";
      if (text.empty() || text[0] == '-' || text[0] == '+' || std::isspace(static_cast<unsigned char>(text[0]))) return wrong;
      errno = 0;
      char* end = nullptr;
      std::strtoull(text.c_str(), &end, 0);
      return errno == 0 && end && *end == '\0' ? std::string() : wrong;
    },
    "N");
}  // namespace vesperon_options
