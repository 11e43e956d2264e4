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
#include <vector>

/// Every file under `folder` whose type some source extension reads (images and clips), in path
/// order, hidden files left out. A folder that cannot be read, or vanishes while it is walked,
/// just ends its part of the walk.
std::vector<std::filesystem::path> MCFindMediaFiles(const std::filesystem::path& folder);

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
