#pragma once
// LogCapture: routes the library's logs to the application's log file while it lives, and
// answers the lines written since it was made.
//
// The log file's folder comes from $XDG_STATE_HOME, fixed on first use. Every test program that
// includes this header points it, before main, at a folder of its own that goes when the program
// ends, replacing whatever the user has set: tests never write into the user's own folder. A
// capture whose writer would lie elsewhere is not available, and tests assert that it is.

#include <vesperon/core/MCLog.h>
#include <vesperon/core/MCLogWriter.h>
#include <vesperon/platform/MCApplicationDirectories.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <system_error>
#include <unistd.h>

/// This test program's state folder, set as $XDG_STATE_HOME on first use.
inline const std::filesystem::path& testStateHome() {
  static const struct Home {
    std::filesystem::path path =
        std::filesystem::temp_directory_path() / ("vesperon-test-state-" + std::to_string(::getpid()));
    Home() {
      std::error_code ignored;
      std::filesystem::remove_all(path, ignored);
      setenv("XDG_STATE_HOME", path.c_str(), 1);
    }
    ~Home() {
      std::error_code ignored;
      std::filesystem::remove_all(path, ignored);
    }
  } home;
  return home.path;
}
// Set before main, ahead of anything that could read the state folder and keep it.
inline const std::filesystem::path& kTestStateHome = testStateHome();

class LogCapture {
 public:
  LogCapture() {
    if (MCApplicationDirectories::stateDirectory() != testStateHome()) return;  // read and kept before us
    MCLog::setWritesToFile(true);
    writer_ = MCLogWriter::fileWriter();
    start_ = read().size();
  }
  ~LogCapture() { MCLog::setWritesToFile(false); }
  LogCapture(const LogCapture&) = delete;
  LogCapture& operator=(const LogCapture&) = delete;

  /// Whether the log file is there, in this program's own state folder.
  bool available() const { return writer_ != nullptr; }
  /// What was logged since construction.
  std::string text() {
    const std::string all = read();
    return all.size() > start_ ? all.substr(start_) : std::string();
  }
  bool contains(const std::string& line) { return text().find(line) != std::string::npos; }

 private:
  std::string read() {
    if (!writer_) return {};
    writer_->flush();
    std::ifstream file(writer_->fileURL(), std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(file), {});
  }
  MCLogWriter* writer_ = nullptr;
  std::size_t start_ = 0;
};
