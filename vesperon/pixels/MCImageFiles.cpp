#include <vesperon/codecs/MCImageCodecManager.h>
#include <vesperon/core/MCLog.h>
#include <vesperon/metadata/MCImagePropertyKeys.h>
#include <vesperon/pixels/MCImageCreation.h>
#include <vesperon/pixels/MCImageFiles.h>

#include <fmt/format.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <fstream>

namespace {

constexpr const char* kJPEGType = "public.jpeg";
constexpr int kStatusUnknownType = -2;
constexpr int kStatusInvalidData = -4;

enum class Outcome { Image, NoImage, Unreadable, Empty, UnknownType, InvalidData };

MCRasterImageRef decode(const std::filesystem::path& path, const MCDictionary& options, Outcome& outcome) {
  uint8_t head[32] = {};
  std::size_t length = 0;
  {
    std::ifstream file(path, std::ios::binary);
    if (!file) {
      outcome = Outcome::Unreadable;
      return nullptr;
    }
    file.read(reinterpret_cast<char*>(head), sizeof head);
    length = std::size_t(file.gcount());
  }
  if (length == 0) {
    outcome = Outcome::Empty;
    return nullptr;
  }
  const std::string type = MCImageTypeOfBytes(head, length);
  auto extensions = type.empty() ? std::nullopt : MCImageCodecManager::sharedInstance().sourceExtensionsForUTI(type);
  if (!extensions || extensions->empty()) {
    outcome = Outcome::UnknownType;
    return nullptr;
  }
  auto sourceOptions = MCImageSourceOptions::create(type);
  auto factor = options.find(kCGImageSourceSubsampleFactor);
  if (factor != options.end()) {
    const auto value = factor->second.integerValue();
    if (value && (*value == 1 || *value == 2 || *value == 4 || *value == 8)) sourceOptions->subsampleFactor = uint64_t(*value);
  }
  for (const auto& extension : *extensions) {
    auto source = extension->imageSourceWithURL(path, *sourceOptions);
    if (!source) continue;
    auto image = source->newImage();
    outcome = image ? Outcome::Image : Outcome::NoImage;
    return image;
  }
  outcome = Outcome::InvalidData;
  return nullptr;
}

// A private temporary file holding bytes, removed at destruction.
class TemporaryFile {
 public:
  explicit TemporaryFile(const MCData& data) {
    std::string pattern = (std::filesystem::temp_directory_path() / "vesperon-image-XXXXXX").string();
    const int fd = mkstemp(pattern.data());
    if (fd < 0) return;
    path_ = pattern;
    std::size_t written = 0;
    while (written < data.size()) {
      const ssize_t n = ::write(fd, data.data() + written, data.size() - written);
      if (n <= 0) break;
      written += std::size_t(n);
    }
    ::close(fd);
    if (written != data.size()) {
      std::filesystem::remove(path_);
      path_.clear();
    }
  }
  ~TemporaryFile() {
    std::error_code ignored;
    if (!path_.empty()) std::filesystem::remove(path_, ignored);
  }
  const std::filesystem::path& path() const { return path_; }

 private:
  std::filesystem::path path_;
};

}  // namespace

std::string MCImageTypeOfBytes(const uint8_t* b, std::size_t n) {
  if (!b) return {};
  const auto starts = [&](const char* magic, std::size_t at = 0) {
    const std::size_t m = std::strlen(magic);
    return n >= at + m && std::memcmp(b + at, magic, m) == 0;
  };
  if (n >= 3 && b[0] == 0xFF && b[1] == 0xD8 && b[2] == 0xFF) return "public.jpeg";
  if (starts("\x89PNG\r\n\x1a\n")) return "public.png";
  if (starts("II*") || starts("MM")) {
    if (n >= 4 && ((b[0] == 'I' && b[2] == 42 && b[3] == 0) || (b[0] == 'M' && b[2] == 0 && b[3] == 42)))
      return "public.tiff";
  }
  if (starts("GIF87a") || starts("GIF89a")) return "com.compuserve.gif";
  if (starts("BM") && n >= 14) return "com.microsoft.bmp";
  if (starts("RIFF") && starts("WEBP", 8)) return "org.webmproject.webp";
  if (starts("ftyp", 4)) {
    if (starts("heic", 8) || starts("heix", 8) || starts("hevc", 8) || starts("heim", 8)) return "public.heic";
    if (starts("mif1", 8) || starts("msf1", 8)) return "public.heif";
  }
  return {};
}

MCRasterImageRef MCCreateImageWithURL(const std::filesystem::path& url, const MCDictionary& options) {
  const auto& log = MCLog::sdkGraphics();
  if (url.empty()) {
    log->logError("CGImageSource: URL cannot be nil");
    return nullptr;
  }
  Outcome outcome;
  auto image = decode(url, options, outcome);
  switch (outcome) {
    case Outcome::Empty: log->logError(fmt::format("CGImageSource: zero count at URL: {}", url.string())); break;
    case Outcome::UnknownType:
      log->logError(fmt::format("CGImageSource: bad status {} at URL: {}", kStatusUnknownType, url.string()));
      break;
    case Outcome::InvalidData:
      log->logError(fmt::format("CGImageSource: bad status {} at URL: {}", kStatusInvalidData, url.string()));
      break;
    default: break;
  }
  return image;
}

MCRasterImageRef MCCreateImageWithData(const MCData* data, const MCDictionary& options) {
  const auto& log = MCLog::sdkGraphics();
  if (!data) {
    log->logError("CGImageSource: data cannot be nil");
    return nullptr;
  }
  if (data->empty()) {
    log->logError("CGImageSource: zero count.");
    return nullptr;
  }
  TemporaryFile file(*data);
  if (file.path().empty()) return nullptr;
  Outcome outcome;
  auto image = decode(file.path(), options, outcome);
  if (outcome == Outcome::UnknownType) log->logError(fmt::format("CGImageSource: bad status {}.", kStatusUnknownType));
  if (outcome == Outcome::InvalidData) log->logError(fmt::format("CGImageSource: bad status {}.", kStatusInvalidData));
  return image;
}

bool MCSaveImageToURL(const MCRasterImageRef& image, const std::filesystem::path& url, std::error_code* error) {
  if (!image || url.empty()) return false;
  std::error_code ec;
  if (url.has_parent_path()) std::filesystem::create_directories(url.parent_path(), ec);
  if (ec) {
    if (error) *error = ec;
    return false;
  }
  auto extensions = MCImageCodecManager::sharedInstance().destinationExtensionsForUTI(kJPEGType);
  if (!extensions || extensions->empty()) return false;
  auto destination = extensions->front()->imageDestinationAtURL(url, MCImageDestinationOptions(kJPEGType));
  if (!destination) return false;
  MCRasterImageRef output = image;
  if (output->bitsPerComponent() != 8) output = MCCopyImageWithRGBColorspace_4C_8(output);
  if (!output) return false;
  if (!destination->addImage(output, nullptr)) {
    // A layout the codec does not take: hand it the plainest one.
    output = MCCreateImageFromImageWithSRGBColorSpace(output);
    destination = extensions->front()->imageDestinationAtURL(url, MCImageDestinationOptions(kJPEGType));
    if (!output || !destination || !destination->addImage(output, nullptr)) return false;
  }
  return destination->finalize();
}
