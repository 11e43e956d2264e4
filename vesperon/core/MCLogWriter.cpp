#include <vesperon/core/MCLogWriter.h>

#include <vesperon/platform/MCApplicationDirectories.h>

#include <glib.h>

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <ctime>
#include <vector>

namespace fs = std::filesystem;

namespace {

std::string formatUTC(std::chrono::system_clock::time_point when, const char* pattern, bool millis) {
  auto seconds = std::chrono::time_point_cast<std::chrono::seconds>(when);
  std::time_t t = std::chrono::system_clock::to_time_t(seconds);
  std::tm tm{};
  gmtime_r(&t, &tm);
  char buffer[64];
  std::size_t n = std::strftime(buffer, sizeof buffer, pattern, &tm);
  std::string out(buffer, n);
  if (millis) {
    auto ms = std::chrono::duration_cast<std::chrono::milliseconds>(when - seconds).count();
    out += fmt::format(".{:03d}", ms);
  }
  return out;
}

// Numeric comparison of file names, as the platform's numeric string comparison: runs of digits
// compare by value, everything else by character.
bool numericLess(const std::string& a, const std::string& b) {
  std::size_t i = 0, j = 0;
  while (i < a.size() && j < b.size()) {
    if (std::isdigit(static_cast<unsigned char>(a[i])) && std::isdigit(static_cast<unsigned char>(b[j]))) {
      std::size_t i2 = i, j2 = j;
      while (i2 < a.size() && a[i2] == '0') ++i2;
      while (j2 < b.size() && b[j2] == '0') ++j2;
      std::size_t ie = i2, je = j2;
      while (ie < a.size() && std::isdigit(static_cast<unsigned char>(a[ie]))) ++ie;
      while (je < b.size() && std::isdigit(static_cast<unsigned char>(b[je]))) ++je;
      if (ie - i2 != je - j2) return ie - i2 < je - j2;
      int c = a.compare(i2, ie - i2, b, j2, je - j2);
      if (c != 0) return c < 0;
      i = ie;
      j = je;
      continue;
    }
    if (a[i] != b[j]) return static_cast<unsigned char>(a[i]) < static_cast<unsigned char>(b[j]);
    ++i;
    ++j;
  }
  return a.size() - i < b.size() - j;
}

}  // namespace

std::string MCLogFormatMessage(std::string_view format, fmt::format_args args) {
  try {
    return fmt::vformat(format, args);
  } catch (const std::exception& e) {
    return fmt::format("[Logger] {}", e.what());
  }
}

MCLogWriter* MCLogWriter::fileWriter() {
  static MCLogWriter* writer = []() -> MCLogWriter* {
    fs::path base = MCApplicationDirectories::stateDirectory();
    if (base.empty()) return nullptr;
    fs::path directory = base / MCApplicationDirectories::applicationIdentifier() / "Logs";
    auto url = preparedLogsURLAtDirectoryURL(directory);
    if (!url) return nullptr;
    return new MCLogWriter(*url);  // lives until the process ends, as its queue does
  }();
  return writer;
}

std::optional<fs::path> MCLogWriter::preparedLogsURLAtDirectoryURL(const fs::path& directory) {
  std::error_code ec;
  if (!fs::exists(directory, ec)) {
    fs::create_directories(directory, ec);
    if (ec) return std::nullopt;
  } else {
    std::vector<std::string> logs;
    for (const auto& entry : fs::directory_iterator(directory, ec)) {
      std::string name = entry.path().filename().string();
      if (name.empty() || name[0] == '.') continue;
      if (!entry.is_regular_file(ec)) continue;
      if (entry.path().extension() != ".log") continue;
      logs.push_back(name);
    }
    std::sort(logs.begin(), logs.end(), [](const std::string& a, const std::string& b) { return numericLess(b, a); });
    for (std::size_t i = 3; i < logs.size(); ++i) fs::remove(directory / logs[i], ec);  // failures ignored
  }
  fs::path url = directory / (formatUTC(std::chrono::system_clock::now(), "%Y_%m_%d_%H_%M_%S", false) + ".log");
  if (!fs::exists(url, ec)) {
    int fd = ::open(url.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0644);
    if (fd < 0) return std::nullopt;
    ::close(fd);
  }
  return url;
}

MCLogWriter::MCLogWriter(const fs::path& fileURL)
    : fileURL_(fileURL), queue_("com.quillary.log", MCDispatchQueue::Kind::Serial) {
  // Opened for updating from the start: a file reused within the same second is overwritten.
  fileHandle_ = ::open(fileURL.c_str(), O_RDWR | O_CLOEXEC);
}

MCLogWriter::~MCLogWriter() {
  flush();
  if (fileHandle_ >= 0) ::close(fileHandle_);
}

void MCLogWriter::log(const std::string& subsystem, const std::string& category, const std::string& message) {
  queue_.async([this, subsystem, category, message] {
    if (fileHandle_ < 0) return;
    if (!g_utf8_validate(message.data(), static_cast<gssize>(message.size()), nullptr)) return;
    std::string stamp = formatUTC(std::chrono::system_clock::now(), "%Y:%m:%d %H:%M:%S", true);
    std::string line = fmt::format("{} [{}, {}] : {}\n", stamp, subsystem, category, message);
    const char* p = line.data();
    std::size_t left = line.size();
    while (left > 0) {
      ssize_t n = ::write(fileHandle_, p, left);
      if (n <= 0) break;
      p += n;
      left -= static_cast<std::size_t>(n);
    }
  });
}

void MCLogWriter::logArgs(const std::string& subsystem, const std::string& category, std::string_view format,
                          fmt::format_args args) {
  log(subsystem, category, MCLogFormatMessage(format, args));
}

void MCLogWriter::flush() {
  queue_.sync([] {});
}
