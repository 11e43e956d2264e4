#pragma once
// Per-user folders of the application (XDG base directories) and the application identifier.
//
// The identifier names the application's folder inside each base directory. A host sets it once
// at start; until then it is the executable's file name.

#include <filesystem>
#include <string>

/// The application's identifier and its folders (XDG state, cache, config).
class MCApplicationDirectories {
 public:
  MCApplicationDirectories() = delete;

  /// The application's identifier; the executable's name unless set.
  static std::string applicationIdentifier();
  /// Sets the application's identifier.
  static void setApplicationIdentifier(const std::string& identifier);

  /// The identifier of the library itself, used as the subsystem of its logs.
  static const std::string& libraryIdentifier();

  /// $XDG_STATE_HOME (or ~/.local/state): logs and other state that outlives a run.
  static std::filesystem::path stateDirectory();
  /// $XDG_CACHE_HOME (or ~/.cache).
  static std::filesystem::path cacheDirectory();
  /// $XDG_CONFIG_HOME (or ~/.config).
  static std::filesystem::path configDirectory();

  /// The executable's file name, from /proc/self/exe.
  static std::string executableName();
};
