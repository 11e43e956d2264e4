#include "MediaFiles.h"

#include "CommandFiles.h"

#include <vesperon/codecs/MCImageReader.h>
#include <vesperon/metadata/MCCGImageMetadataReader.h>
#include <vesperon/metadata/MCExifReader.h>
#include <vesperon/pixels/MCImageTypes.h>
#include <vesperon/platform/MCUniformTypeIdentifiers.h>

#include <algorithm>

namespace fs = std::filesystem;

std::vector<fs::path> findMediaFiles(const fs::path& folder) {
  auto types = MCImageTypes();
  types.merge(MCMovieTypes());  // a clip shows as its representative frame
  std::vector<fs::path> files;
  std::error_code ec;
  fs::recursive_directory_iterator it(folder, fs::directory_options::skip_permission_denied, ec), end;
  for (; !ec && it != end; it.increment(ec)) {
    std::error_code typeError;
    if (!it->is_regular_file(typeError)) continue;
    const std::string name = it->path().filename().string();
    if (name.empty() || name.front() == '.') continue;
    const std::string ext = it->path().extension().string();
    if (ext.size() < 2) continue;
    auto type = MCTypeCreatePreferredIdentifierForFilenameExtension(ext.substr(1));
    if (type && types.count(*type)) files.push_back(it->path());
  }
  std::sort(files.begin(), files.end());
  return files;
}

std::optional<MCDictionary> mediaPropertiesOfFile(const fs::path& file, uint64_t mergeMask) {
  try {
    auto bytes = readFileBytes(file.string());
    if (!bytes) return std::nullopt;
    MCDictionary properties;
    if (auto reader = MCExifReader::create(*bytes)) {
      if (auto exif = reader->parseExif()) properties = exif->dictionary();
    }
    // Without an Exif block of its own (a PNG, a clip …) the file says what its plug-in reads.
    if (properties.empty()) {
      if (auto read = MCImageReader::metadataFromImageAtURL(file, std::nullopt)) properties = std::move(*read);
    }
    if (auto sidecar = MCCGImageMetadataReader::extractMetadataFromXMPSidecarForImageAtURL(file))
      properties = MCCGImageMetadataReader::mergeImageMetadata(properties, *sidecar, mergeMask);
    return properties;
  } catch (const std::exception&) {
    return std::nullopt;
  }
}
