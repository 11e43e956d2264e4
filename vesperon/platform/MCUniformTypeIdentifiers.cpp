#include <vesperon/platform/MCUniformTypeIdentifiers.h>

#include <vesperon/platform/MCRegularFile.h>

#include <gio/gio.h>
#include <strings.h>

#include <algorithm>
#include <cstring>
#include <cctype>
#include <mutex>
#include <system_error>
#include <unordered_map>

namespace fs = std::filesystem;

namespace {

struct TypeEntry {
  const char* identifier;
  const char* description;
  std::vector<std::string> extensions;  // preferred first
  std::vector<std::string> parents;
  const char* mimeType;                 // lets a GIO guess land on a table entry
};

const std::vector<TypeEntry>& builtInTypes() {
  static const std::vector<TypeEntry> table = {
      // The abstract types above everything else.
      {"public.item", "item", {}, {}, nullptr},
      {"public.content", "content", {}, {}, nullptr},
      {"public.data", "data", {}, {"public.item"}, "application/octet-stream"},
      {"public.directory", "directory", {}, {"public.item"}, nullptr},
      {"public.folder", "folder", {}, {"public.directory"}, "inode/directory"},
      {"public.image", "image", {}, {"public.data", "public.content"}, nullptr},
      {"public.audiovisual-content", "audiovisual content", {}, {"public.data", "public.content"}, nullptr},
      {"public.movie", "movie", {}, {"public.audiovisual-content"}, nullptr},
      {"public.camera-raw-image", "raw image", {}, {"public.image"}, nullptr},

      // Still images.
      {"public.jpeg", "JPEG image", {"jpeg", "jpg", "jpe"}, {"public.image"}, "image/jpeg"},
      {"com.apple.rjpeg", "JPEG image", {}, {"public.jpeg"}, nullptr},
      {"public.jpeg-2000", "JPEG 2000 image", {"jp2", "jpf", "jpx", "j2k", "jpc"}, {"public.image"}, "image/jp2"},
      {"public.png", "PNG image", {"png"}, {"public.image"}, "image/png"},
      {"public.tiff", "TIFF image", {"tiff", "tif"}, {"public.image"}, "image/tiff"},
      {"org.webmproject.webp", "WebP image", {"webp"}, {"public.image"}, "image/webp"},
      {"public.heif-standard", "HEIF standard image", {}, {"public.image"}, nullptr},
      {"public.heic", "HEIC image", {"heic", "hif"}, {"public.heif-standard"}, "image/heic"},
      {"public.heif", "HEIF image", {"heif"}, {"public.heif-standard"}, "image/heif"},
      {"public.avif", "AVIF image", {"avif"}, {"public.image"}, "image/avif"},
      {"com.compuserve.gif", "GIF image", {"gif"}, {"public.image"}, "image/gif"},
      {"com.microsoft.bmp", "Windows bitmap image", {"bmp", "dib"}, {"public.image"}, "image/bmp"},

      // Camera raw images.
      {"com.adobe.raw-image", "Digital negative (DNG) image", {"dng"}, {"public.camera-raw-image"}, "image/x-adobe-dng"},
      {"com.canon.crw-raw-image", "Canon CRW raw image", {"crw"}, {"public.camera-raw-image"}, "image/x-canon-crw"},
      {"com.canon.cr2-raw-image", "Canon CR2 raw image", {"cr2"}, {"public.camera-raw-image"}, "image/x-canon-cr2"},
      {"com.canon.cr3-raw-image", "Canon CR3 raw image", {"cr3"}, {"public.camera-raw-image"}, "image/x-canon-cr3"},
      {"com.nikon.raw-image", "Nikon NEF raw image", {"nef"}, {"public.camera-raw-image"}, "image/x-nikon-nef"},
      {"com.nikon.nrw-raw-image", "Nikon NRW raw image", {"nrw"}, {"public.camera-raw-image"}, "image/x-nikon-nrw"},
      {"com.sony.raw-image", "Sony SRF raw image", {"srf"}, {"public.camera-raw-image"}, nullptr},
      {"com.sony.arw-raw-image", "Sony ARW raw image", {"arw"}, {"public.camera-raw-image"}, "image/x-sony-arw"},
      {"com.sony.sr2-raw-image", "Sony SR2 raw image", {"sr2"}, {"public.camera-raw-image"}, "image/x-sony-sr2"},
      {"com.fuji.raw-image", "Fujifilm RAF raw image", {"raf"}, {"public.camera-raw-image"}, "image/x-fuji-raf"},
      {"com.olympus.raw-image", "Olympus ORF raw image", {"orf"}, {"public.camera-raw-image"}, "image/x-olympus-orf"},
      {"com.olympus.or-raw-image", "OM System ORI raw image", {"ori"}, {"public.camera-raw-image"}, nullptr},
      {"com.panasonic.raw-image", "Panasonic raw image", {"raw"}, {"public.camera-raw-image"}, "image/x-panasonic-raw"},
      {"com.panasonic.rw2-raw-image", "Panasonic RW2 raw image", {"rw2"}, {"public.camera-raw-image"}, "image/x-panasonic-rw2"},
      {"com.pentax.raw-image", "Pentax PEF raw image", {"pef"}, {"public.camera-raw-image"}, "image/x-pentax-pef"},
      {"com.samsung.raw-image", "Samsung SRW raw image", {"srw"}, {"public.camera-raw-image"}, "image/x-samsung-srw"},
      {"com.leica.raw-image", "Leica RAW image", {"rwl"}, {"public.camera-raw-image"}, nullptr},
      {"com.hasselblad.3fr-raw-image", "Hasselblad 3FR raw image", {"3fr"}, {"public.camera-raw-image"}, nullptr},
      {"com.hasselblad.fff-raw-image", "Hasselblad FFF raw image", {"fff"}, {"public.camera-raw-image"}, nullptr},
      {"com.phaseone.raw-image", "Phase One IIQ raw image", {"iiq"}, {"public.camera-raw-image"}, nullptr},
      {"com.konicaminolta.raw-image", "Minolta MRW raw image", {"mrw"}, {"public.camera-raw-image"}, "image/x-minolta-mrw"},
      {"com.kodak.raw-image", "Kodak DCR raw image", {"dcr"}, {"public.camera-raw-image"}, "image/x-kodak-dcr"},
      {"com.epson.raw-image", "Epson ERF raw image", {"erf"}, {"public.camera-raw-image"}, nullptr},
      {"com.sigma.raw-image", "Sigma X3F raw image", {"x3f"}, {"public.camera-raw-image"}, "image/x-sigma-x3f"},

      // Movies.
      {"com.apple.quicktime-movie", "QuickTime movie", {"mov", "qt"}, {"public.movie"}, "video/quicktime"},
      {"public.mpeg-4", "MPEG-4 movie", {"mp4", "mpeg4"}, {"public.movie"}, "video/mp4"},
      {"com.apple.m4v-video", "Apple MPEG-4 movie", {"m4v"}, {"public.mpeg-4"}, "video/x-m4v"},
      {"public.mpeg", "MPEG movie", {"mpg", "mpeg", "m1v", "mpe"}, {"public.movie"}, "video/mpeg"},
      {"public.mpeg-2-video", "MPEG-2 video", {"m2v"}, {"public.movie"}, nullptr},
      {"public.mpeg-2-transport-stream", "MPEG-2 transport stream", {"mts", "m2ts", "ts"}, {"public.movie"}, "video/mp2t"},
      {"public.avi", "AVI movie", {"avi"}, {"public.movie"}, "video/x-msvideo"},
      {"public.3gpp", "3GPP movie", {"3gp", "3gpp"}, {"public.movie"}, "video/3gpp"},
      {"public.3gpp2", "3GPP2 movie", {"3g2", "3gp2"}, {"public.movie"}, "video/3gpp2"},
      {"org.matroska.mkv", "Matroska video", {"mkv"}, {"public.movie"}, "video/x-matroska"},
      {"org.webmproject.webm", "WebM video", {"webm"}, {"public.movie"}, "video/webm"},
      {"public.hevc", "HEVC video", {"hevc"}, {"public.movie"}, nullptr},
  };
  return table;
}

std::string lowered(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(), [](unsigned char c) { return std::tolower(c); });
  return text;
}

const TypeEntry* builtInEntry(const std::string& identifier) {
  static const std::unordered_map<std::string, const TypeEntry*> byIdentifier = [] {
    std::unordered_map<std::string, const TypeEntry*> map;
    for (const auto& entry : builtInTypes()) map.emplace(lowered(entry.identifier), &entry);
    return map;
  }();
  auto it = byIdentifier.find(lowered(identifier));
  return it == byIdentifier.end() ? nullptr : it->second;
}

constexpr const char* kDynamicPrefix = "dyn.mime.";

// Types that GIO named: identifier → (mime type, extension it was found for). Never emptied, like
// the platform's dynamic types.
struct DynamicType {
  std::string mimeType;
  std::string extension;
};
std::mutex dynamicMutex;
std::unordered_map<std::string, DynamicType>& dynamicTypes() {
  static std::unordered_map<std::string, DynamicType> types;
  return types;
}

std::optional<DynamicType> dynamicType(const std::string& identifier) {
  std::string id = lowered(identifier);
  if (id.rfind(kDynamicPrefix, 0) != 0) return std::nullopt;
  std::lock_guard lock(dynamicMutex);
  auto it = dynamicTypes().find(id);
  if (it != dynamicTypes().end()) return it->second;
  return DynamicType{id.substr(std::char_traits<char>::length(kDynamicPrefix)), {}};
}

bool conformsInTable(const std::string& type, const std::string& target, int depth) {
  if (depth > 16) return false;  // the table has no cycles; this only bounds a mistake
  if (MCTypeEqual(type, target)) return true;
  const TypeEntry* entry = builtInEntry(type);
  if (!entry) return false;
  for (const auto& parent : entry->parents)
    if (conformsInTable(parent, target, depth + 1)) return true;
  return false;
}

}  // namespace

bool MCTypeEqual(const std::string& a, const std::string& b) {
  return a.size() == b.size() && strcasecmp(a.c_str(), b.c_str()) == 0;
}

bool MCTypeConformsTo(const std::string& type, const std::string& conformsTo) {
  if (type.empty() || conformsTo.empty()) return false;
  if (auto dynamic = dynamicType(type)) {
    if (MCTypeEqual(type, conformsTo)) return true;
    std::string parent = kUTTypeData;
    if (dynamic->mimeType.rfind("image/", 0) == 0) parent = kUTTypeImage;
    if (dynamic->mimeType.rfind("video/", 0) == 0) parent = kUTTypeMovie;
    return conformsInTable(parent, conformsTo, 0);
  }
  return conformsInTable(type, conformsTo, 0);
}

std::optional<std::string> MCTypeCopyDescription(const std::string& type) {
  if (const TypeEntry* entry = builtInEntry(type)) return std::string(entry->description);
  if (auto dynamic = dynamicType(type)) {
    gchar* contentType = g_content_type_from_mime_type(dynamic->mimeType.c_str());
    if (!contentType) return std::nullopt;
    gchar* description = g_content_type_get_description(contentType);
    std::optional<std::string> result;
    if (description) result = description;
    g_free(description);
    g_free(contentType);
    return result;
  }
  return std::nullopt;
}

std::vector<std::string> MCTypeCopyAllFilenameExtensions(const std::string& type) {
  if (const TypeEntry* entry = builtInEntry(type)) return entry->extensions;
  if (auto dynamic = dynamicType(type); dynamic && !dynamic->extension.empty()) return {dynamic->extension};
  return {};
}

std::optional<std::string> MCTypeCopyPreferredFilenameExtension(const std::string& type) {
  auto extensions = MCTypeCopyAllFilenameExtensions(type);
  if (extensions.empty()) return std::nullopt;
  return extensions.front();
}

std::optional<std::string> MCTypeCreatePreferredIdentifierForFilenameExtension(const std::string& extension,
                                                                               const std::string& conformingTo) {
  if (extension.empty()) return std::nullopt;
  const std::string ext = lowered(extension);
  static const std::unordered_map<std::string, const TypeEntry*> byExtension = [] {
    std::unordered_map<std::string, const TypeEntry*> map;
    for (const auto& entry : builtInTypes())
      for (const auto& e : entry.extensions) map.emplace(e, &entry);  // first entry wins
    return map;
  }();
  if (auto it = byExtension.find(ext); it != byExtension.end()) {
    if (MCTypeConformsTo(it->second->identifier, conformingTo)) return std::string(it->second->identifier);
    return std::nullopt;
  }

  // Not in the table: ask shared-mime-info by a file name with that extension.
  const std::string name = "file." + ext;
  gboolean uncertain = FALSE;
  gchar* contentType = g_content_type_guess(name.c_str(), nullptr, 0, &uncertain);
  if (!contentType) return std::nullopt;
  gchar* mime = g_content_type_get_mime_type(contentType);
  g_free(contentType);
  if (!mime) return std::nullopt;
  std::string mimeType = lowered(mime);
  g_free(mime);
  if (mimeType == "application/octet-stream") return std::nullopt;
  for (const auto& entry : builtInTypes())
    if (entry.mimeType && mimeType == entry.mimeType) {
      if (MCTypeConformsTo(entry.identifier, conformingTo)) return std::string(entry.identifier);
      return std::nullopt;
    }
  std::string identifier = kDynamicPrefix + mimeType;
  {
    std::lock_guard lock(dynamicMutex);
    dynamicTypes().try_emplace(identifier, DynamicType{mimeType, ext});
  }
  if (!MCTypeConformsTo(identifier, conformingTo)) return std::nullopt;
  return identifier;
}

std::optional<std::string> MCTypeIdentifierForURL(const fs::path& url, std::string* error) {
  std::error_code ec;
  fs::file_status status = fs::status(url, ec);
  if (ec || !fs::exists(status)) {
    if (error) *error = ec ? ec.message() : "No such file or directory";
    return std::nullopt;
  }
  if (fs::is_directory(status)) return std::string(kUTTypeFolder);
  std::string extension = url.extension().string();
  if (!extension.empty()) extension.erase(0, 1);
  if (auto identifier = MCTypeCreatePreferredIdentifierForFilenameExtension(extension)) return identifier;
  return std::string(kUTTypeData);
}

std::optional<std::string> MCTypeIdentifierForBytes(const uint8_t* b, std::size_t n) {
  if (!b) return std::nullopt;
  const auto starts = [&](const char* magic, std::size_t at = 0) {
    const std::size_t m = std::strlen(magic);
    return n >= at + m && std::memcmp(b + at, magic, m) == 0;
  };
  if (n >= 3 && b[0] == 0xFF && b[1] == 0xD8 && b[2] == 0xFF) return "public.jpeg";
  if (starts("\x89PNG\r\n\x1a\n")) return "public.png";
  // Camera raw formats whose first bytes say so; NEF, ARW, DNG and the like are plain TIFF at the
  // start, and only their names tell them apart.
  if (starts("FUJIFILMCCD-RAW")) return "com.fuji.raw-image";
  if (starts("IIRO") || starts("IIRS") || starts("MMOR")) return "com.olympus.raw-image";
  if (starts("IIU") && n >= 4 && b[3] == 0) return "com.panasonic.rw2-raw-image";
  if (starts("II*") && n >= 4 && b[3] == 0 && starts("CR\x02", 8)) return "com.canon.cr2-raw-image";
  if (starts("II*") || starts("MM")) {
    if (n >= 4 && ((b[0] == 'I' && b[2] == 42 && b[3] == 0) || (b[0] == 'M' && b[2] == 0 && b[3] == 42)))
      return "public.tiff";
  }
  if (starts("GIF87a") || starts("GIF89a")) return "com.compuserve.gif";
  if (starts("BM") && n >= 14) return "com.microsoft.bmp";
  if (starts("RIFF") && starts("WEBP", 8)) return "org.webmproject.webp";
  if (starts("ftyp", 4)) {
    if (starts("heic", 8) || starts("heix", 8) || starts("hevc", 8) || starts("heim", 8)) return "public.heic";
    if (starts("avif", 8) || starts("avis", 8)) return "public.avif";
    if (starts("mif1", 8) || starts("msf1", 8)) return "public.heif";
    if (starts("crx ", 8)) return "com.canon.cr3-raw-image";
    if (starts("qt  ", 8)) return "com.apple.quicktime-movie";
    if (starts("M4V ", 8)) return "com.apple.m4v-video";
    if (starts("isom", 8) || starts("iso2", 8) || starts("mp41", 8) || starts("mp42", 8) || starts("avc1", 8))
      return "public.mpeg-4";
  }
  return std::nullopt;
}

std::optional<std::string> MCTypeIdentifierForContentsOfURL(const fs::path& url) {
  // Only a regular file is read: a FIFO or a device would block or never end.
  const auto head = MCRegularFile::readHead(url, 4096);
  if (!head || head.bytes.empty()) return std::nullopt;
  if (auto signed_ = MCTypeIdentifierForBytes(head.bytes.data(), head.bytes.size())) return signed_;
  gboolean uncertain = FALSE;
  gchar* contentType = g_content_type_guess(nullptr, head.bytes.data(), gsize(head.bytes.size()), &uncertain);
  if (!contentType) return std::nullopt;
  gchar* mime = uncertain ? nullptr : g_content_type_get_mime_type(contentType);
  g_free(contentType);
  if (!mime) return std::nullopt;
  const std::string mimeType = lowered(mime);
  g_free(mime);
  if (mimeType == "application/octet-stream" || mimeType == "text/plain") return std::nullopt;
  for (const auto& entry : builtInTypes())
    if (entry.mimeType && mimeType == entry.mimeType) return std::string(entry.identifier);
  return kDynamicPrefix + mimeType;
}
