#include <vesperon/catalogue/MCSearchableProperties.h>

#include <vesperon/codecs/MCImageReader.h>
#include <vesperon/metadata/MCCGImageMetadataReader.h>
#include <vesperon/metadata/MCExifReader.h>
#include <vesperon/pixels/MCImageTypes.h>
#include <vesperon/platform/MCUniformTypeIdentifiers.h>

#include <sys/stat.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <set>

namespace fs = std::filesystem;

namespace {

// The types are asked of the codec registry at each walk: a host may register plug-ins later.
std::set<std::string> mediaTypes() {
  auto types = MCImageTypes();
  types.merge(MCMovieTypes());  // a clip shows as its representative frame
  return types;
}

bool isMediaFileName(const fs::path& file, const std::set<std::string>& types) {
  const std::string name = file.filename().string();
  if (name.empty() || name.front() == '.') return false;
  const std::string ext = file.extension().string();
  if (ext.size() < 2) return false;
  auto type = MCTypeCreatePreferredIdentifierForFilenameExtension(ext.substr(1));
  return type && types.count(*type);
}

// How many leading bytes of a JPEG the Exif reader can look at: libexif walks the segments from
// the start to the first APP1 and reads its Exif block, which is at most 64 KiB, or gives up at
// the first segment that is not an application or comment one. Past the first APP1 (plus its
// 64 KiB) or the first other marker, no byte changes what it reads. None when the head given does
// not reach that far.
std::optional<std::size_t> exifExtent(const MCData& head) {
  constexpr std::size_t kBlock = 0x10000 + 16;
  const std::size_t n = head.size();
  if (n < 2 || head[0] != 0xFF || head[1] != 0xD8) return std::nullopt;  // not a JPEG: read it whole
  std::size_t at = 2;
  while (true) {
    while (at < n && head[at] == 0xFF) ++at;
    if (at >= n) return std::nullopt;
    const uint8_t marker = head[at++];
    if (marker == 0xD8) continue;
    if (marker == 0xE1) return at + kBlock;
    const bool skippable = (marker >= 0xE0 && marker <= 0xEF) || marker == 0xFE;
    if (!skippable) return at + 2;
    if (at + 2 > n) return std::nullopt;
    at += (std::size_t(head[at]) << 8) | head[at + 1];
  }
}

// The file's bytes as far as its Exif block can reach: its head when that covers it (most of a
// camera JPEG is its image data, which is never looked at), else the whole file — up to 64 MB.
// Of a larger file (a 100-megapixel TIFF, a long clip) only the first MiB is read, and its plug-in
// reads the tags of the rest.
std::optional<MCData> fileBytes(const fs::path& file) {
  constexpr std::size_t kHead = 256 * 1024, kWholeLimit = 64u << 20, kLargeHead = 1u << 20;
  std::ifstream in(file, std::ios::binary);
  if (!in) return std::nullopt;
  MCData bytes(kHead);
  in.read(reinterpret_cast<char*>(bytes.data()), std::streamsize(kHead));
  if (in.bad()) return std::nullopt;
  bytes.resize(std::size_t(in.gcount()));
  if (bytes.size() < kHead) return bytes;  // the whole file
  if (const auto extent = exifExtent(bytes); extent && *extent <= bytes.size()) return bytes;
  std::error_code ec;
  if (const auto size = fs::file_size(file, ec); !ec && size > kWholeLimit) {
    bytes.resize(kLargeHead);
    in.read(reinterpret_cast<char*>(bytes.data() + kHead), std::streamsize(kLargeHead - kHead));
    if (in.bad()) return std::nullopt;
    bytes.resize(kHead + std::size_t(in.gcount()));
    return bytes;
  }
  bytes.insert(bytes.end(), std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
  if (in.bad()) return std::nullopt;
  return bytes;
}

}  // namespace

bool MCPathPrecedes(const std::string& a, const std::string& b) {
  const std::size_t n = std::min(a.size(), b.size());
  const auto* x = reinterpret_cast<const unsigned char*>(a.data());
  const auto* y = reinterpret_cast<const unsigned char*>(b.data());
  std::size_t i = 0;
  while (i < n && x[i] == y[i]) ++i;
  if (i == n) return a.size() < b.size();
  const unsigned cx = x[i] == '/' ? 0u : x[i] + 1u, cy = y[i] == '/' ? 0u : y[i] + 1u;
  return cx < cy;
}

bool MCIsMediaFileName(const fs::path& file) { return isMediaFileName(file, mediaTypes()); }

std::vector<fs::path> MCFindMediaFiles(const fs::path& folder, std::unordered_set<std::string>* sidecars) {
  const auto types = mediaTypes();
  std::vector<fs::path> files;
  std::error_code ec;
  fs::recursive_directory_iterator it(folder, fs::directory_options::skip_permission_denied, ec), end;
  for (; !ec && it != end; it.increment(ec)) {
    std::error_code typeError;
    if (!it->is_regular_file(typeError)) continue;
    if (isMediaFileName(it->path(), types)) files.push_back(it->path());
    else if (sidecars && it->path().extension() == ".xmp") sidecars->insert(it->path().native());
  }
  // The walk names every file from the same folder, so no name is empty.
  std::sort(files.begin(), files.end(), [](const fs::path& a, const fs::path& b) { return MCPathPrecedes(a.native(), b.native()); });
  return files;
}

fs::path MCSidecarPathOfFile(const fs::path& file) {
  fs::path sidecar = file;
  sidecar.replace_extension("xmp");
  return sidecar;
}

std::optional<MCDictionary> MCMediaPropertiesOfFile(const fs::path& file, uint64_t mergeMask) {
  try {
    auto bytes = fileBytes(file);
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

void MCAddSearchableFileAttributes(MCDictionary& properties, const fs::path& file, int64_t size,
                                   std::time_t modificationTime, const std::optional<std::string>& type) {
  properties["name"] = MCValue(file.filename().string());
  properties["path"] = MCValue(file.string());
  if (size >= 0) properties["size"] = MCValue(size);
  if (type) properties["type"] = MCValue(*type);
  std::tm local{};
  localtime_r(&modificationTime, &local);
  char text[32];
  std::strftime(text, sizeof text, "%Y:%m:%d %H:%M:%S", &local);
  properties["modificationDate"] = MCValue(std::string(text));
}

MCDictionary MCSearchablePropertiesOfFile(const fs::path& file) {
  MCDictionary properties = MCMediaPropertiesOfFile(file).value_or(MCDictionary{});
  struct stat st {};
  if (::stat(file.c_str(), &st) != 0) {
    // What cannot be looked at keeps its name and path, as before.
    properties["name"] = MCValue(file.filename().string());
    properties["path"] = MCValue(file.string());
    if (auto type = MCTypeIdentifierForURL(file)) properties["type"] = MCValue(*type);
    return properties;
  }
  MCAddSearchableFileAttributes(properties, file, int64_t(st.st_size), st.st_mtime, MCTypeIdentifierForURL(file));
  return properties;
}
