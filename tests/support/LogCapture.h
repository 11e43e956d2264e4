#pragma once
// LogCapture: routes the library's logs to the application's log file while it lives, and
// answers the lines written since it was made. The log file's folder is fixed on first use; a
// fresh process puts it under a temporary $XDG_STATE_HOME.

#include <vesperon/core/MCLog.h>
#include <vesperon/core/MCLogWriter.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <unistd.h>

class LogCapture {
 public:
  LogCapture() {
    const auto state = std::filesystem::temp_directory_path() / ("vesperon-logs-" + std::to_string(::getpid()));
    setenv("XDG_STATE_HOME", state.c_str(), 0);
    MCLog::setWritesToFile(true);
    writer_ = MCLogWriter::fileWriter();
    start_ = read().size();
  }
  ~LogCapture() { MCLog::setWritesToFile(false); }
  LogCapture(const LogCapture&) = delete;
  LogCapture& operator=(const LogCapture&) = delete;

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
