#pragma once
// A private world for the file tests: $XDG_DATA_HOME (applications, trash) and $XDG_CONFIG_HOME
// (mimeapps.list, settings) point into this program's own folder under the build tree before
// main, so GIO reads them on first use and nothing of the user's is touched. The folder lies on
// the build tree's disk rather than in /tmp, whose overlay on some machines keeps no birth times.

#include "../support/LogCapture.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <unistd.h>

inline const std::filesystem::path& filesTestHome() {
  static const struct Home {
    std::filesystem::path path = std::filesystem::path(VESPERON_TEST_BINARY_DIR) /
                                 ("home-" + std::to_string(::getpid()));
    Home() {
      std::error_code ignored;
      std::filesystem::remove_all(path, ignored);
      std::filesystem::create_directories(path / "data" / "applications");
      std::filesystem::create_directories(path / "config");
      setenv("XDG_DATA_HOME", (path / "data").c_str(), 1);
      setenv("XDG_CONFIG_HOME", (path / "config").c_str(), 1);
      // The system's MIME database, but none of the system's applications.
      std::filesystem::create_directories(path / "system");
      std::filesystem::create_directory_symlink("/usr/share/mime", path / "system" / "mime", ignored);
      setenv("XDG_DATA_DIRS", (path / "system").c_str(), 1);
      setenv("GIO_USE_VFS", "local", 1);
    }
    ~Home() {
      std::error_code ignored;
      std::filesystem::remove_all(path, ignored);
    }
  } home;
  return home.path;
}
inline const std::filesystem::path& kFilesTestHome = filesTestHome();

/// A fresh, empty folder for one test.
inline std::filesystem::path freshFolder(const std::string& name) {
  const std::filesystem::path folder = filesTestHome() / "tree" / name;
  std::filesystem::remove_all(folder);
  std::filesystem::create_directories(folder);
  return folder;
}

inline void writeText(const std::filesystem::path& path, const std::string& text) {
  std::filesystem::create_directories(path.parent_path());
  std::ofstream(path, std::ios::binary) << text;
}
