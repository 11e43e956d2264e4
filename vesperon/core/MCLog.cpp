#include <vesperon/core/MCLog.h>

#include <vesperon/core/MCLogWriter.h>
#include <vesperon/platform/MCApplicationDirectories.h>

#include <syslog.h>

#include <atomic>

namespace {
std::atomic<bool> gWritesToFile{false};

std::shared_ptr<MCLog> makeShared(const char* category) {
  return std::make_shared<MCLog>(MCApplicationDirectories::libraryIdentifier(), category);
}
}  // namespace

// The shared logs are made when the library loads, before any caller can ask for them.
const std::shared_ptr<MCLog>& MCLog::sdkGeneric() {
  static const std::shared_ptr<MCLog> log = makeShared("Generic");
  return log;
}
const std::shared_ptr<MCLog>& MCLog::sdkFileSystem() {
  static const std::shared_ptr<MCLog> log = makeShared("File System");
  return log;
}
const std::shared_ptr<MCLog>& MCLog::sdkGraphics() {
  static const std::shared_ptr<MCLog> log = makeShared("Graphics");
  return log;
}
const std::shared_ptr<MCLog>& MCLog::sdkImageCache() {
  static const std::shared_ptr<MCLog> log = makeShared("Image Cache");
  return log;
}
namespace {
[[maybe_unused]] const bool sharedLogsAtLoad =
    (MCLog::sdkGeneric(), MCLog::sdkFileSystem(), MCLog::sdkGraphics(), MCLog::sdkImageCache(), true);
}

MCLog::MCLog(std::string subsystem, std::string category)
    : subsystem_(std::move(subsystem)), category_(std::move(category)) {}

bool MCLog::writesToFile() { return gWritesToFile.load(); }
void MCLog::setWritesToFile(bool on) { gWritesToFile.store(on); }

void MCLog::logDebug(const std::string& message) const { route(Level::Debug, message); }
void MCLog::log(const std::string& message) const { route(Level::Info, message); }
void MCLog::logError(const std::string& message) const { route(Level::Error, message); }

void MCLog::route(Level level, const std::string& message) const {
  if (writesToFile()) {
    logToFileMessage(message);
    return;
  }
  int priority = level == Level::Debug ? LOG_DEBUG : level == Level::Info ? LOG_INFO : LOG_ERR;
  // syslog filters by its own mask, the counterpart of the platform's "is this level enabled".
  if (!(setlogmask(0) & LOG_MASK(priority))) return;
  syslog(priority, "[%s, %s] : %s", subsystem_.c_str(), category_.c_str(), message.c_str());
}

void MCLog::logToFileMessage(const std::string& message) const {
  if (MCLogWriter* writer = MCLogWriter::fileWriter()) writer->log(subsystem_, category_, message);
}

void MCLog::logToFileFormatted(std::string_view format, fmt::format_args args) const {
  logToFileMessage(MCLogFormatMessage(format, args));
}
