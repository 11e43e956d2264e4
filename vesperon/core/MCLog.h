#pragma once
// MCLog: one log per category. A message goes to the system log (syslog, at debug, info or error
// level) or, while the process-wide switch `writesToFile` is on, to the application's log file
// (MCLogWriter) — never to both.
//
// Four shared logs exist from library load, each with the library's identifier as subsystem:
// sdkGeneric ("Generic"), sdkFileSystem ("File System"), sdkGraphics ("Graphics") and
// sdkImageCache ("Image Cache"). Every operation may be called from any thread.

#include <fmt/format.h>

#include <memory>
#include <string>
#include <string_view>

class MCLogWriter;

class MCLog {
 public:
  /// A log of `subsystem` and `category` (the shared ones below are what the library uses).
  MCLog(std::string subsystem, std::string category);

  /// @name Shared logs
  //@{
  /// The library's four logs.
  static const std::shared_ptr<MCLog>& sdkGeneric();
  static const std::shared_ptr<MCLog>& sdkFileSystem();
  static const std::shared_ptr<MCLog>& sdkGraphics();
  static const std::shared_ptr<MCLog>& sdkImageCache();
  //@}

  /// Whether everything goes to the application's log file instead of the system log.
  static bool writesToFile();
  /// Sends everything to the log file, or back to the system log.
  static void setWritesToFile(bool on);

  /// The subsystem the lines name.
  const std::string& subsystem() const { return subsystem_; }
  /// The category the lines name.
  const std::string& category() const { return category_; }

  /// Finished messages, at debug, info and error level.
  void logDebug(const std::string& message) const;
  /// A line at info level.
  void log(const std::string& message) const;
  /// A line at error level.
  void logError(const std::string& message) const;

  /// Writes a finished message to the log file whatever `writesToFile` says.
  void logToFileMessage(const std::string& message) const;

  /// Formats with the fmt library ("{}" placeholders) and writes to the log file whatever
  /// `writesToFile` says. A format that does not match its arguments writes "[Logger] <reason>".
  template <typename... Args>
  void logToFile(std::string_view format, const Args&... args) const {
    logToFileFormatted(format, fmt::make_format_args(args...));
  }

 private:
  enum class Level { Debug, Info, Error };
  void route(Level level, const std::string& message) const;
  void logToFileFormatted(std::string_view format, fmt::format_args args) const;

  std::string subsystem_;
  std::string category_;
};
