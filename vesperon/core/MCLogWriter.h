#pragma once
// MCLogWriter: the application's log file.
//
// The file lives in `$XDG_STATE_HOME/<application id>/Logs` and is named after the UTC time of the
// process's first file message, "yyyy_MM_dd_HH_mm_ss.log". Preparing the folder keeps the three
// newest earlier ".log" files and deletes the others, so a folder holds at most four while a
// process runs. Lines read "<yyyy:MM:dd HH:mm:ss.SSS> [<subsystem>, <category>] : <message>\n",
// stamped in UTC when written; a serial queue ("com.quillary.log") writes them in call order and
// callers never wait for the disk.

#include <vesperon/platform/MCDispatchQueue.h>

#include <fmt/format.h>

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

class MCLogWriter {
 public:
  /// The one writer of the process, made on first use; nullptr when the log folder cannot be had
  /// (messages to the file are then dropped).
  static MCLogWriter* fileWriter();

  /// Prepares `directory` (creates it, or trims old logs) and answers the new log file's path,
  /// creating the file if it does not exist; none when the folder cannot be made.
  static std::optional<std::filesystem::path> preparedLogsURLAtDirectoryURL(const std::filesystem::path& directory);

  /// Opens the file for updating from its start. A failed open makes a writer that writes nothing.
  explicit MCLogWriter(const std::filesystem::path& fileURL);
  ~MCLogWriter();
  MCLogWriter(const MCLogWriter&) = delete;
  MCLogWriter& operator=(const MCLogWriter&) = delete;

  /// The log file.
  const std::filesystem::path& fileURL() const { return fileURL_; }

  /// Queues one line; returns at once. A message that is not valid UTF-8 is dropped.
  void log(const std::string& subsystem, const std::string& category, const std::string& message);

  /// Formats with fmt ("{}" placeholders); a bad format logs "[Logger] <reason>" instead.
  template <typename... Args>
  void logFormat(const std::string& subsystem, const std::string& category, std::string_view format,
                 const Args&... args) {
    logArgs(subsystem, category, format, fmt::make_format_args(args...));
  }
  /// Writes one line of `subsystem` and `category`, formatted from `format` and the arguments.
  void logArgs(const std::string& subsystem, const std::string& category, std::string_view format,
               fmt::format_args args);

  /// Waits until every line queued so far is written. For tests and orderly shutdown.
  void flush();

 private:
  std::filesystem::path fileURL_;
  int fileHandle_ = -1;
  MCDispatchQueue queue_;
};

/// Formats `format` with `args`; on a bad format answers "[Logger] <reason>".
std::string MCLogFormatMessage(std::string_view format, fmt::format_args args);
