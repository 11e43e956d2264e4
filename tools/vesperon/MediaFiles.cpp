#include "MediaFiles.h"

#include <vesperon/catalogue/MCSearchableProperties.h>

namespace fs = std::filesystem;

// The library builds these, so that the catalogue answers as the files do.
std::vector<fs::path> findMediaFiles(const fs::path& folder) { return MCFindMediaFiles(folder); }

std::optional<MCDictionary> mediaPropertiesOfFile(const fs::path& file, uint64_t mergeMask) {
  return MCMediaPropertiesOfFile(file, mergeMask);
}

MCDictionary searchablePropertiesOfFile(const fs::path& file) { return MCSearchablePropertiesOfFile(file); }
