#include <vesperon/platform/MCApplicationDirectories.h>

#include <glib.h>

#include <mutex>

namespace {
std::mutex& identifierMutex() {
  static std::mutex m;
  return m;
}
std::string& identifierStorage() {
  static std::string id;
  return id;
}
}  // namespace

std::string MCApplicationDirectories::executableName() {
  std::error_code ec;
  auto exe = std::filesystem::read_symlink("/proc/self/exe", ec);
  if (ec || exe.filename().empty()) {
    const char* prg = g_get_prgname();
    return prg ? prg : "vesperon";
  }
  return exe.filename().string();
}

std::string MCApplicationDirectories::applicationIdentifier() {
  std::lock_guard lock(identifierMutex());
  if (identifierStorage().empty()) identifierStorage() = executableName();
  return identifierStorage();
}

void MCApplicationDirectories::setApplicationIdentifier(const std::string& identifier) {
  std::lock_guard lock(identifierMutex());
  identifierStorage() = identifier;
}

const std::string& MCApplicationDirectories::libraryIdentifier() {
  static const std::string id = "com.quillary.vesperon";
  return id;
}

std::filesystem::path MCApplicationDirectories::stateDirectory() { return g_get_user_state_dir(); }
std::filesystem::path MCApplicationDirectories::cacheDirectory() { return g_get_user_cache_dir(); }
std::filesystem::path MCApplicationDirectories::configDirectory() { return g_get_user_config_dir(); }
