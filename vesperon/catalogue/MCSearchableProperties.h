#pragma once
// What a predicate over a collection is evaluated against, built in one place so that the
// catalogue, `vesperon find` and the filter bar of `vesperon browse` can never disagree: the media
// files of a folder, the properties of one (its Exif block merged with its XMP sidecar), and the
// searchable dictionary made of those properties and the file's own attributes.

#include <vesperon/core/MCValue.h>

#include <cstdint>
#include <ctime>
#include <filesystem>
#include <optional>
#include <string>
#include <unordered_set>
#include <vector>

/// Every file under `folder` whose type some source extension reads (images and clips), in path
/// order, hidden files left out. A folder that cannot be read, or vanishes while it is walked,
/// just ends its part of the walk.
/// With `sidecars`, the files named *.xmp met on the way are added to it (their paths), so that a
/// caller can tell which media files have one (MCSidecarPathOfFile) without asking the disk.
std::vector<std::filesystem::path> MCFindMediaFiles(const std::filesystem::path& folder,
                                                    std::unordered_set<std::string>* sidecars = nullptr);

/// Whether `a` comes before `b` as std::filesystem::path orders them, name by name ("a/b" before
/// "a-b"), for paths without empty names: byte order with the slash below every other byte, at a
/// fraction of the cost.
bool MCPathPrecedes(const std::string& a, const std::string& b);

/// True when the file's name extension is of a type some source extension reads, and the name is
/// not hidden: the test MCFindMediaFiles applies to each regular file.
bool MCIsMediaFileName(const std::filesystem::path& file);

/// The file's own Exif block (or, without one, what its codec plug-in reads) merged with the XMP
/// sidecar beside it under `mergeMask`; none when the file cannot be read. Throws nothing.
std::optional<MCDictionary> MCMediaPropertiesOfFile(const std::filesystem::path& file, uint64_t mergeMask = 0);

/// The sidecar MCMediaPropertiesOfFile merges for `file`: the same name with the extension "xmp".
std::filesystem::path MCSidecarPathOfFile(const std::filesystem::path& file);

/// Adds the file's own attributes to `properties`: "name", "path", "size" (bytes), "type" (its
/// type identifier, when known) and "modificationDate" (Exif text, local time, to the second).
void MCAddSearchableFileAttributes(MCDictionary& properties, const std::filesystem::path& file, int64_t size,
                                   std::time_t modificationTime, const std::optional<std::string>& type);

/// What a predicate is evaluated against: the file's properties, empty when they cannot be read,
/// and beside them its own attributes (above), those that can be read.
MCDictionary MCSearchablePropertiesOfFile(const std::filesystem::path& file);
