#include <vesperon/codecs/MCImageCodecManager.h>
#include <vesperon/core/MCLog.h>
#include <vesperon/metadata/MCImagePropertyKeys.h>
#include <vesperon/pixels/MCImageCreation.h>
#include <vesperon/pixels/MCImageFiles.h>
#include <vesperon/platform/MCUniformTypeIdentifiers.h>

#include <fmt/format.h>

#include <cstdio>
#include <cstring>
#include <fstream>
#include <memory>
#include <vector>

namespace {

constexpr const char* kJPEGType = "public.jpeg";
// The platform's image source statuses.
constexpr int kStatusUnknownType = -3;
constexpr int kStatusInvalidData = -4;

enum class Outcome { Image, NoImage, Unreadable, Empty, UnknownType, InvalidData };

// Where the bytes are: a file, or memory.
struct Input {
  const std::filesystem::path* url = nullptr;
  std::shared_ptr<const MCData> data;
};

MCRasterImageRef decode(const Input& input, const std::vector<std::string>& types, const MCDictionary& options,
                        Outcome& outcome) {
  bool anyExtension = false;
  for (const std::string& type : types) {
    auto extensions = MCImageCodecManager::sharedInstance().sourceExtensionsForUTI(type);
    if (!extensions || extensions->empty()) continue;
    anyExtension = true;
    auto sourceOptions = MCImageSourceOptions::create(type);
    auto factor = options.find(kCGImageSourceSubsampleFactor);
    if (factor != options.end()) {
      const auto value = factor->second.integerValue();
      if (value && (*value == 1 || *value == 2 || *value == 4 || *value == 8)) sourceOptions->subsampleFactor = uint64_t(*value);
    }
    for (const auto& extension : *extensions) {
      auto source = input.url ? extension->imageSourceWithURL(*input.url, *sourceOptions)
                              : extension->imageSourceWithData(input.data, *sourceOptions);
      if (!source) continue;
      auto image = source->newImage();
      outcome = image ? Outcome::Image : Outcome::NoImage;
      return image;
    }
  }
  outcome = anyExtension ? Outcome::InvalidData : Outcome::UnknownType;
  return nullptr;
}

// The types to try for a file: the type its name gives through the type vocabulary, then, when
// its first bytes show another, that one — a PNG saved under a ".jpg" name still opens.
std::vector<std::string> typesOfFile(const std::filesystem::path& url, const uint8_t* head, std::size_t length) {
  std::vector<std::string> types;
  if (auto byName = MCTypeIdentifierForURL(url)) types.push_back(*byName);
  const std::string byContent = MCTypeIdentifierForBytes(head, length).value_or("");
  if (!byContent.empty() && (types.empty() || !MCTypeEqual(types.front(), byContent))) types.push_back(byContent);
  return types;
}

}  // namespace

MCRasterImageRef MCCreateImageWithURL(const std::filesystem::path& url, const MCDictionary& options) {
  const auto& log = MCLog::sdkGraphics();
  if (url.empty()) {
    log->logError("CGImageSource: URL cannot be nil");
    return nullptr;
  }
  uint8_t head[32] = {};
  std::size_t length = 0;
  {
    std::ifstream file(url, std::ios::binary);
    if (!file) return nullptr;  // no source at all: none, without a report
    file.read(reinterpret_cast<char*>(head), sizeof head);
    length = std::size_t(file.gcount());
  }
  if (length == 0) {
    log->logError(fmt::format("CGImageSource: zero count at URL: {}", url.string()));
    return nullptr;
  }
  Outcome outcome;
  auto image = decode(Input{&url, nullptr}, typesOfFile(url, head, length), options, outcome);
  if (outcome == Outcome::UnknownType)
    log->logError(fmt::format("CGImageSource: bad status {} at URL: {}", kStatusUnknownType, url.string()));
  if (outcome == Outcome::InvalidData)
    log->logError(fmt::format("CGImageSource: bad status {} at URL: {}", kStatusInvalidData, url.string()));
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
  // Bytes have no name: their type is what their first bytes show. They are read where they are.
  const std::string type = MCTypeIdentifierForBytes(data->data(), data->size()).value_or("");
  std::vector<std::string> types;
  if (!type.empty()) types.push_back(type);
  std::shared_ptr<const MCData> shared(data, [](const MCData*) {});  // borrowed for the call only
  Outcome outcome;
  auto image = decode(Input{nullptr, shared}, types, options, outcome);
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
