// vesperon plugins: the codec registry — source extensions in order of trial, destination
// extensions, and the types each serves.

#include "VesperonCommand.h"

#include <vesperon/codecs/MCImageCodecManager.h>

#include <cstdio>

namespace {

std::string joined(const std::vector<std::string>& items) {
  std::string out;
  for (const auto& item : items) out += (out.empty() ? "" : ", ") + item;
  return out.empty() ? "-" : out;
}

int runPlugins() {
  auto& manager = MCImageCodecManager::sharedInstance();
  std::printf("plug-in folder: %s\n\n", MCImageCodecManager::builtInPlugInsURL().c_str());
  std::printf("source extensions, in order of trial:\n");
  int n = 0;
  for (const auto& e : manager.allSourceExtensions()) {
    std::printf("  %d. %s (%s), priority %g\n", ++n, e->extensionIdentifier().c_str(),
                e->extensionDisplayName().c_str(), e->defaultPriority());
    std::printf("     images: %s\n", joined(e->sourceImageTypes()).c_str());
    if (!e->sourceVideoTypes().empty()) std::printf("     videos: %s\n", joined(e->sourceVideoTypes()).c_str());
  }
  if (n == 0) std::printf("  (none)\n");
  std::printf("\ndestination extensions:\n");
  n = 0;
  for (const auto& e : manager.allDestinationExtensions()) {
    std::printf("  %d. %s (%s)\n", ++n, e->extensionIdentifier().c_str(), e->extensionDisplayName().c_str());
    std::printf("     images: %s\n", joined(e->destinationImageTypes()).c_str());
  }
  if (n == 0) std::printf("  (none)\n");
  return 0;
}

std::function<int()> definePlugins(CLI::App&) { return runPlugins; }

}  // namespace

VESPERON_COMMAND("plugins", "list the codec plug-ins in their order of trial", definePlugins)
