#pragma once
// Volumes and free file names.
//
// A volume is a mounted file system, known by its mount point: the mount table (GIO's
// g_unix_mounts_get) together with the mounts of GIO's volume monitor (removable drives, network
// shares mounted through GVfs).

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

/// The mount points of every mounted volume.
std::vector<std::filesystem::path> mountedVolumeURLs();

/// The mount point of the volume that holds the item, or none when the item cannot be read.
std::optional<std::filesystem::path> volumeURLOfItemAtURL(const std::filesystem::path& url);

/// Whether the volume holding the item is among the mounted volumes. None or an unreadable item
/// gives false.
bool isMountedVolumeOfItemAtURL(const std::optional<std::filesystem::path>& url);
/// Whether `path` is the root of a mounted volume.
bool isMountedVolumeOfItemAtPath(const std::string& path);
/// The same, when it is known whether `path` is a folder.
bool isMountedVolumeOfItemAtPath(const std::string& path, bool isDirectory);

/// `path` when nothing exists there, else the first free one of "stem 2.ext", "stem 3.ext" …
/// ("name 2" for a name without extension). None only when every number is taken.
std::optional<std::string> uniqueFilePathForPath(const std::string& path);
