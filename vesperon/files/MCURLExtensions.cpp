#include <vesperon/files/MCURLExtensions.h>

#include <vesperon/core/MCLog.h>
#include <vesperon/core/MCStringExtensions.h>
#include <vesperon/files/MCBookmarkData.h>
#include <vesperon/files/MCDocumentPortal.h>
#include <vesperon/files/MCFileIdentity.h>

#include <glib.h>

#include <algorithm>
#include <cctype>
#include <map>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>

namespace {

const MCLog& fileLog() { return *MCLog::sdkFileSystem(); }

std::filesystem::path standardized(const std::filesystem::path& url) {
  std::error_code ec;
  std::filesystem::path absolute = std::filesystem::absolute(url, ec);
  return (ec ? url : absolute).lexically_normal();
}

}  // namespace

std::optional<std::filesystem::path> URLWithSecurityScopedBookmark(const MCData* bookmark, std::string* error) {
  if (!bookmark) return std::nullopt;
  auto decoded = MCBookmarkData::decode(*bookmark);
  std::string reason = "the data is not a bookmark";
  std::optional<std::filesystem::path> url = decoded ? decoded->resolve(&reason) : std::nullopt;
  if (!url) {
    fileLog().logError("Couldn't resolve bookmark: " + reason);
    if (error) *error = reason;
  }
  return url;
}

std::optional<std::string> URLPathFromSecurityScopedBookmark(const MCData* bookmark) {
  auto decoded = bookmark ? MCBookmarkData::decode(*bookmark) : std::nullopt;
  if (!decoded) {
    fileLog().logError("Couldn't get URL path from bookmark data");
    return std::nullopt;
  }
  return decoded->path.string();
}

std::optional<MCData> securityScopedBookmark(const std::filesystem::path& url, std::string* error) {
  std::string reason;
  try {
    const bool claimed = startAccessingSecurityScopedResource(url);
    auto bookmark = MCBookmarkData::ofItemAtPath(url, &reason);
    if (claimed) stopAccessingSecurityScopedResource(url);
    if (bookmark) return bookmark->encoded();
  } catch (const std::exception& e) {
    reason = e.what();
  }
  fileLog().logError("Couldn't create security scoped bookmark: " + reason);
  if (error) *error = reason;
  return std::nullopt;
}

bool startAccessingSecurityScopedResource(const std::filesystem::path& url) {
  return ::access(url.c_str(), F_OK) == 0;
}

void stopAccessingSecurityScopedResource(const std::filesystem::path&) {}

std::optional<std::filesystem::path> commonURLForURLs(const std::vector<std::filesystem::path>& urls) {
  std::vector<std::string> paths;
  paths.reserve(urls.size());
  for (const auto& url : urls) paths.push_back(url.string());
  auto common = commonPathForPaths(paths);
  if (!common) return std::nullopt;
  return std::filesystem::path(*common);
}

std::set<std::filesystem::path> commonForVolumeURLs(const std::vector<std::filesystem::path>& urls) {
  std::map<dev_t, std::vector<std::filesystem::path>> byVolume;
  for (const auto& url : urls) {
    struct stat st {};
    if (::stat(url.c_str(), &st) != 0) {
      fileLog().logError("Couldn't read the volume of " + url.string());
      continue;
    }
    byVolume[st.st_dev].push_back(url);
  }
  std::set<std::filesystem::path> result;
  for (const auto& [volume, group] : byVolume)
    if (auto common = commonURLForURLs(group)) result.insert(*common);
  return result;
}

namespace {

// Whether the components begin with the pattern's; "*" stands for any one component.
bool beginsWith(const std::vector<std::string>& parts, const std::vector<std::string_view>& pattern) {
  if (parts.size() < pattern.size()) return false;
  std::size_t i = 0;
  for (std::string_view expected : pattern) {
    if (expected != "*" && parts[i] != expected) return false;
    ++i;
  }
  return true;
}

// Under a home folder, the hidden folders where programs keep their settings, caches and data.
bool isUserLibrary(const std::vector<std::string>& parts, std::size_t homeDepth) {
  static const std::set<std::string, std::less<>> library = {".cache", ".config", ".local", ".var"};
  return parts.size() > homeDepth && library.count(parts[homeDepth]);
}

std::vector<std::string> componentsOf(const std::filesystem::path& absolute) {
  std::vector<std::string> parts;
  for (const auto& part : absolute.lexically_normal().relative_path())
    if (!part.empty() && part != ".") parts.push_back(part.string());
  return parts;
}

}  // namespace

bool isSystemFileURL(const std::filesystem::path& url) {
  if (url.empty() || !url.is_absolute()) return false;
  const std::vector<std::string> parts = componentsOf(url);
  if (parts.empty()) return false;

  // Home folders: the user's own files, but for the programs' hidden folders in them.
  if (beginsWith(parts, {"home", "*"}) || beginsWith(parts, {"var", "home", "*"}))
    return isUserLibrary(parts, parts[0] == "var" ? 3 : 2);
  if (beginsWith(parts, {"root"}) || beginsWith(parts, {"var", "roothome"}))
    return isUserLibrary(parts, parts[0] == "var" ? 2 : 1);
  if (const char* home = g_get_home_dir(); home && *home == '/') {
    const std::vector<std::string> homeParts = componentsOf(home);
    if (!homeParts.empty() && parts.size() >= homeParts.size() &&
        std::equal(homeParts.begin(), homeParts.end(), parts.begin()) && isUserLibrary(parts, homeParts.size()))
      return true;
  }

  static const std::set<std::string, std::less<>> systemTree = {"bin",  "boot", "dev", "etc",  "lib", "lib32",
                                                                "lib64", "libx32", "opt", "proc", "run", "sbin",
                                                                "snap", "sys",  "usr", "var"};
  if (!systemTree.count(parts[0])) return false;
  // Users' own files inside the system tree.
  static const std::vector<std::vector<std::string_view>> usersOwn = {
      {"var", "tmp"},  {"var", "home"}, {"var", "mnt"}, {"run", "media"}, {"run", "user", "*", "gvfs"},
      {"run", "user", "*", "doc"}, {"run", "flatpak", "doc"}};
  for (const auto& pattern : usersOwn)
    if (beginsWith(parts, pattern)) return false;
  return true;
}

bool isInPackageItemAtURL(const std::filesystem::path& url) {
  if (url.empty()) return false;
  std::filesystem::path at = standardized(url);
  while (true) {
    std::error_code ec;
    const bool folder = std::filesystem::is_directory(at, ec);
    if (ec) return false;
    if (folder && at.has_extension()) {
      static const std::set<std::string> packages = {"app",    "bundle",        "framework", "plugin",
                                                     "kext",   "photoslibrary", "lrlibrary", "aplibrary",
                                                     "rtfd",   "pages",         "key",       "numbers"};
      std::string extension = at.extension().string().substr(1);
      for (char& c : extension) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
      if (packages.count(extension)) return true;
    }
    if (at == at.root_path() || !at.has_parent_path()) return false;
    at = at.parent_path();
  }
}

bool isSecurityScopedURL(const std::string& urlText) {
  const auto query = urlText.find('?');
  return query != std::string::npos && urlText.compare(query + 1, 18, "applesecurityscope") == 0;
}

bool isEqualFileURL(const std::optional<std::filesystem::path>& a, const std::optional<std::filesystem::path>& b) {
  if (!a || !b) return false;
  if (*a == *b) return true;
  auto first = MCFileIdentity::ofItemAtPath(*a);
  auto second = MCFileIdentity::ofItemAtPath(*b);
  return first && second && first->device == second->device && first->inode == second->inode;
}

bool isDescendantOfURL(const std::filesystem::path& url, const std::filesystem::path& ancestor) {
  return isDescendantOfPath(standardized(url).string(), standardized(ancestor).string());
}
