#include <vesperon/files/MCFileManagerExtensions.h>

#include <gio/gio.h>
#include <gio/gunixmounts.h>

#include <algorithm>
#include <limits>
#include <sys/stat.h>

std::vector<std::filesystem::path> mountedVolumeURLs() {
  std::vector<std::filesystem::path> volumes;
  GList* mounts = g_unix_mounts_get(nullptr);
  for (GList* it = mounts; it; it = it->next) {
    auto* entry = static_cast<GUnixMountEntry*>(it->data);
    volumes.emplace_back(g_unix_mount_get_mount_path(entry));
    g_unix_mount_free(entry);
  }
  g_list_free(mounts);
  GVolumeMonitor* monitor = g_volume_monitor_get();
  GList* monitored = g_volume_monitor_get_mounts(monitor);
  for (GList* it = monitored; it; it = it->next) {
    GFile* root = g_mount_get_root(static_cast<GMount*>(it->data));
    if (char* path = g_file_get_path(root)) {
      volumes.emplace_back(path);
      g_free(path);
    }
    g_object_unref(root);
    g_object_unref(it->data);
  }
  g_list_free(monitored);
  g_object_unref(monitor);
  std::sort(volumes.begin(), volumes.end());
  volumes.erase(std::unique(volumes.begin(), volumes.end()), volumes.end());
  return volumes;
}

std::optional<std::filesystem::path> volumeURLOfItemAtURL(const std::filesystem::path& url) {
  std::error_code ec;
  const std::filesystem::path real = std::filesystem::canonical(url, ec);
  struct stat item {};
  if (ec || ::stat(real.c_str(), &item) != 0) return std::nullopt;
  // The mount point is the highest folder on the item's path that is still on the item's device.
  std::filesystem::path volume = real;
  for (std::filesystem::path at = real; at.has_relative_path(); ) {
    at = at.parent_path();
    struct stat above {};
    if (::stat(at.c_str(), &above) != 0 || above.st_dev != item.st_dev) break;
    volume = at;
  }
  return volume;
}

bool isMountedVolumeOfItemAtURL(const std::optional<std::filesystem::path>& url) {
  if (!url) return false;
  auto volume = volumeURLOfItemAtURL(*url);
  if (!volume) return false;
  const auto volumes = mountedVolumeURLs();
  return std::binary_search(volumes.begin(), volumes.end(), *volume);
}

bool isMountedVolumeOfItemAtPath(const std::string& path) {
  return isMountedVolumeOfItemAtURL(std::filesystem::path(path));
}

bool isMountedVolumeOfItemAtPath(const std::string& path, bool) { return isMountedVolumeOfItemAtPath(path); }

std::optional<std::string> uniqueFilePathForPath(const std::string& path) {
  std::error_code ec;
  if (!std::filesystem::exists(std::filesystem::symlink_status(path, ec))) return path;
  const std::filesystem::path original(path);
  const std::string extension = original.extension().string();  // with its dot, or empty
  const std::string stem = (original.parent_path() / original.stem()).string();
  for (unsigned long n = 2; n < std::numeric_limits<unsigned long>::max(); ++n) {
    std::string candidate = stem + " " + std::to_string(n) + extension;
    if (!std::filesystem::exists(std::filesystem::symlink_status(candidate, ec))) return candidate;
  }
  return std::nullopt;
}
