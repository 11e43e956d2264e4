#pragma once
// What several subcommands share about the photos and clips of a folder: finding them, and the
// property dictionary of one, as `vesperon info` prints it.

#include <vesperon/core/MCValue.h>

#include <cstdint>
#include <filesystem>
#include <optional>
#include <vector>

/// Every file under `folder` whose type some source extension reads (images and clips), in name
/// order, hidden files left out. A folder that cannot be read, or vanishes while it is walked,
/// just ends its part of the walk.
std::vector<std::filesystem::path> findMediaFiles(const std::filesystem::path& folder);

/// The file's own Exif block (or, without one, what its codec plug-in reads) merged with the XMP
/// sidecar beside it under `mergeMask`; none when the file cannot be read. Throws nothing.
std::optional<MCDictionary> mediaPropertiesOfFile(const std::filesystem::path& file, uint64_t mergeMask = 0);

/// What a predicate is evaluated against (`vesperon find`, the filter bar of `browse`): the
/// file's properties, empty when they cannot be read, and beside them its own attributes — "name",
/// "path", "size" (bytes), "type" (its type identifier) and "modificationDate" (Exif text, local
/// time), those that can be read.
MCDictionary searchablePropertiesOfFile(const std::filesystem::path& file);
