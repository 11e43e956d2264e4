#include "MediaFiles.h"

#include "CommandFiles.h"

#include <vesperon/codecs/MCImageReader.h>
#include <vesperon/metadata/MCCGImageMetadataReader.h>
#include <vesperon/metadata/MCExifReader.h>
#include <vesperon/pixels/MCImageTypes.h>
#include <vesperon/platform/MCRegularFile.h>
#include <vesperon/platform/MCUniformTypeIdentifiers.h>

#include <sys/stat.h>

#include <algorithm>
#include <ctime>

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
  // A file up to this size is read whole for its Exif block (a TIFF's or a raw file's may lie
  // anywhere in it). Of a larger one (a 100-megapixel TIFF, a long clip) only the head is read, where
  // a JPEG keeps its Exif, and its plug-in reads the tags of the rest.
  constexpr std::size_t kWholeReadLimit = 64u << 20, kHeadSize = 1u << 20;
  try {
    MCRegularFile::Result bytes = MCRegularFile::read(file, kWholeReadLimit);
    if (bytes.status == MCRegularFile::Status::TooLarge) bytes = MCRegularFile::readHead(file, kHeadSize);
    if (!bytes) return std::nullopt;
    MCDictionary properties;
    if (auto reader = MCExifReader::create(bytes.bytes)) {
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

MCDictionary searchablePropertiesOfFile(const fs::path& file) {
  MCDictionary properties = mediaPropertiesOfFile(file).value_or(MCDictionary{});
  properties["name"] = MCValue(file.filename().string());
  properties["path"] = MCValue(file.string());
  std::error_code ec;
  if (const auto size = fs::file_size(file, ec); !ec) properties["size"] = MCValue(int64_t(size));
  if (auto type = MCTypeIdentifierForURL(file)) properties["type"] = MCValue(*type);
  struct stat st {};
  if (::stat(file.c_str(), &st) == 0) {
    const std::time_t when = st.st_mtime;
    std::tm local{};
    localtime_r(&when, &local);
    char text[32];
    std::strftime(text, sizeof text, "%Y:%m:%d %H:%M:%S", &local);
    properties["modificationDate"] = MCValue(std::string(text));
  }
  return properties;
}
