#include <vesperon/codecs/MCImageReader.h>

#include <vesperon/codecs/MCImageCodecManager.h>
#include <vesperon/core/MCLog.h>
#include <vesperon/platform/MCUniformTypeIdentifiers.h>

#include <algorithm>
#include <exception>
#include <mutex>
#include <unordered_set>

namespace {

// Runs one call into a plug-in. A plug-in that throws (a fault of its own, or an allocation that
// failed inside it) is treated as one that gave nothing, so the next extension is tried; the
// fault is logged once, here, in sdkGraphics.
template <typename Call>
auto guarded(const MCImageCodec& extension, const std::filesystem::path& url, Call call) -> decltype(call()) {
  const char* reason = "unknown exception";
  std::string what;
  try {
    return call();
  } catch (const std::bad_alloc&) {
    reason = "out of memory";
  } catch (const std::exception& e) {
    what = e.what();
    reason = what.c_str();
  } catch (...) {
  }
  try {
    MCLog::sdkGraphics()->logError("Codec " + extension.extensionIdentifier() + " raised reading " + url.string() +
                                   ": " + reason);
  } catch (...) {
  }
  return {};
}

std::optional<std::string> typeOf(const std::filesystem::path& url, const std::optional<std::string>& fileType) {
  if (fileType && !fileType->empty()) return fileType;
  auto identifier = MCTypeIdentifierForURL(url);
  if (!identifier || identifier->empty()) return std::nullopt;
  return identifier;
}

// A file whose name lies about its type (a WebP named ".tif", a HEIC named ".webp") is opened by
// no extension of the name's type. Its content may show another type that some extension not yet
// tried reads: that type, for a second round; none when there is nothing new to try. The mismatch
// is logged once per file for the process, however often the file is read.
std::optional<std::string> typeOfContentInstead(const std::filesystem::path& url, const std::string& tried) {
  auto& manager = MCImageCodecManager::sharedInstance();
  const auto triedExtensions = manager.sourceExtensionsForUTI(tried);
  if (!triedExtensions || triedExtensions->empty()) return std::nullopt;  // nothing was tried: the file stays unopened
  auto content = MCTypeIdentifierForContentsOfURL(url);
  if (!content || MCTypeEqual(*content, tried)) return std::nullopt;
  const auto extensions = manager.sourceExtensionsForUTI(*content);
  if (!extensions) return std::nullopt;
  const bool somethingNew = std::any_of(extensions->begin(), extensions->end(), [&](const auto& extension) {
    return std::find(triedExtensions->begin(), triedExtensions->end(), extension) == triedExtensions->end();
  });
  if (!somethingNew) return std::nullopt;
  static std::mutex mutex;
  static std::unordered_set<std::string> logged;
  bool first = false;
  {
    std::lock_guard lock(mutex);
    first = logged.insert(url.string()).second;
  }
  if (first)
    MCLog::sdkGraphics()->log("The file " + url.string() + " is named as " + tried + " but its content is " + *content +
                              "; read as " + *content);
  return content;
}

// The same options for another type.
MCImageSourceOptions retyped(const MCImageSourceOptions& options, const std::string& type) {
  MCImageSourceOptions out = *MCImageSourceOptions::create(type);
  out.minThumbnailPixelSize = options.minThumbnailPixelSize;
  out.maxThumbnailPixelSize = options.maxThumbnailPixelSize;
  out.shouldAutoRotate = options.shouldAutoRotate;
  out.subsampleFactor = options.subsampleFactor;
  out.maxDecodePixelCount = options.maxDecodePixelCount;
  out.setRawOptions(options.rawOptions());
  return out;
}

// The starting raw settings of every read: a thumbnail read uses them as they are.
MCRAWImageSourceOptions baseRawOptions() {
  MCRAWImageSourceOptions raw;
  raw.demosaic = -1;
  raw.outputColorSpace = 1;
  raw.outputColorDepth = 8;
  raw.outputGamma = 2;
  raw.noiseReduction = 0;
  raw.autoWhiteBalance = false;
  raw.cameraWhiteBalance = false;
  raw.autoBrightness = false;
  raw.autoBrightnessThreshold = 0.01;
  return raw;
}

// Tries the source extensions registered for `type` in their order of trial and gives the first
// image that `read` makes of a source, with that source's metadata when `metadata` is given.
// `opened` tells whether any extension opened the file at all.
template <typename Read, typename MetadataOptions>
MCRasterImageRef firstImage(const std::filesystem::path& url, const std::string& type,
                            const MCImageSourceOptions& sourceOptions, Read read,
                            const MetadataOptions& metadataOptions, std::optional<MCDictionary>* metadata,
                            bool& opened) {
  auto extensions = MCImageCodecManager::sharedInstance().sourceExtensionsForUTI(type);
  if (!extensions) return nullptr;
  for (const auto& extension : *extensions) {
    auto source = guarded(*extension, url, [&] { return extension->imageSourceWithURL(url, sourceOptions); });
    if (!source) continue;
    opened = true;
    if (auto image = guarded(*extension, url, [&] { return read(*source); })) {
      if (metadata) *metadata = guarded(*extension, url, [&] { return source->metadataWithOptions(metadataOptions); });
      return image;
    }
  }
  return nullptr;
}

// The first image as `firstImage` makes it by the name's type; when no extension of that type
// opened the file, by the type its content shows, if that brings another extension.
template <typename Read, typename MetadataOptions>
MCRasterImageRef imageByNameOrContent(const std::filesystem::path& url, const std::string& type,
                                      const MCImageSourceOptions& sourceOptions, Read read,
                                      const MetadataOptions& metadataOptions, std::optional<MCDictionary>* metadata) {
  bool opened = false;
  if (auto image = firstImage(url, type, sourceOptions, read, metadataOptions, metadata, opened)) return image;
  // A file that the name's codecs opened is of that type: damaged, or without such an image.
  const auto content = opened ? std::nullopt : typeOfContentInstead(url, type);
  if (!content) return nullptr;
  return firstImage(url, *content, retyped(sourceOptions, *content), read, metadataOptions, metadata, opened);
}

// The present result of the extensions in order: replaced by each that opens the file, until one
// has at least one entry.
template <typename Extensions>
std::optional<MCDictionary> firstMetadata(const std::filesystem::path& url, const Extensions& extensions,
                                          const MCImageSourceOptions& sourceOptions,
                                          const std::optional<MCMetadataReadingOptions>& options) {
  std::optional<MCDictionary> result;
  for (const auto& extension : extensions) {
    auto source = guarded(*extension, url, [&] { return extension->imageSourceWithURL(url, sourceOptions); });
    if (!source) continue;
    result = guarded(*extension, url, [&] { return source->metadataWithOptions(options); });
    if (result && !result->empty()) break;
  }
  return result;
}

}  // namespace

uint64_t MCImageReader::subsampleFactorForScaleFactor(double scaleFactor) {
  if (scaleFactor > 0.5) return 1;
  if (scaleFactor > 0.25) return 2;
  if (scaleFactor > 0.125) return 4;
  if (scaleFactor > 0) return 8;
  return 0;
}

MCRAWImageSourceOptions MCImageReader::rawSourceOptionsForReadingOptions(const std::optional<MCImageReadingOptions>& options) {
  MCRAWImageSourceOptions raw = baseRawOptions();
  if (!options) return raw;
  const int32_t demosaic = options->rawDemosaic;
  if ((demosaic >= 0 && demosaic <= 4) || demosaic == 11) raw.demosaic = demosaic;
  if (options->rawOutputColorSpace == 1 || options->rawOutputColorSpace == 2)
    raw.outputColorSpace = options->rawOutputColorSpace;
  if (options->rawOutputColorDepth == 8 || options->rawOutputColorDepth == 16)
    raw.outputColorDepth = options->rawOutputColorDepth;
  if (options->rawOutputGamma >= 0 && options->rawOutputGamma <= 2) raw.outputGamma = options->rawOutputGamma;
  if (options->rawNoiseReduction >= 0 && options->rawNoiseReduction <= 2) raw.noiseReduction = options->rawNoiseReduction;
  if (options->rawAutoWhiteBalance == 1) raw.cameraWhiteBalance = true;
  if (options->rawAutoWhiteBalance == 2) raw.autoWhiteBalance = true;
  raw.autoBrightness = options->rawAutoBrightness;
  raw.autoBrightnessThreshold = options->rawAutoBrightnessThresholdInPercent / 100.0;
  return raw;
}

MCRasterImageRef MCImageReader::newImageWithURL(const std::filesystem::path& url, const std::optional<std::string>& fileType,
                                                const std::optional<MCImageReadingOptions>& options,
                                                std::optional<MCDictionary>* metadata) {
  if (url.empty() || !options) return nullptr;
  auto type = typeOf(url, fileType);
  if (!type) return nullptr;
  auto sourceOptions = MCImageSourceOptions::create(*type);
  if (!sourceOptions) return nullptr;
  sourceOptions->minThumbnailPixelSize = 0;
  sourceOptions->maxThumbnailPixelSize = 0;
  sourceOptions->shouldAutoRotate = false;
  sourceOptions->subsampleFactor = subsampleFactorForScaleFactor(options->scaleFactor);
  sourceOptions->maxDecodePixelCount = options->maxDecodePixelCount;
  sourceOptions->setRawOptions(rawSourceOptionsForReadingOptions(options));
  return imageByNameOrContent(url, *type, *sourceOptions, [](MCImageSource& source) { return source.newImage(); },
                              options->metadataOptions, metadata);
}

MCRasterImageRef MCImageReader::newImageInRegionWithURL(const std::filesystem::path& url,
                                                        const std::optional<std::string>& fileType, std::size_t x,
                                                        std::size_t y, std::size_t width, std::size_t height,
                                                        const std::optional<MCImageReadingOptions>& options,
                                                        std::optional<MCDictionary>* metadata) {
  if (url.empty() || !options || width == 0 || height == 0) return nullptr;
  auto type = typeOf(url, fileType);
  if (!type) return nullptr;
  auto sourceOptions = MCImageSourceOptions::create(*type);
  if (!sourceOptions) return nullptr;
  sourceOptions->shouldAutoRotate = false;
  sourceOptions->subsampleFactor = 1;
  sourceOptions->maxDecodePixelCount = options->maxDecodePixelCount;
  sourceOptions->setRawOptions(rawSourceOptionsForReadingOptions(options));
  const auto read = [&](MCImageSource& source) -> MCRasterImageRef {
    if (auto region = source.newImageInRegion(x, y, width, height)) return region;
    return MCRasterImage::createWithImageInRect(source.newImage(),
                                                MCMakeRect(double(x), double(y), double(width), double(height)));
  };
  return imageByNameOrContent(url, *type, *sourceOptions, read, options->metadataOptions, metadata);
}

MCRasterImageRef MCImageReader::newThumbnailWithURL(const std::filesystem::path& url,
                                                    const std::optional<std::string>& fileType,
                                                    const std::optional<MCThumbnailReadingOptions>& options,
                                                    std::optional<MCDictionary>* metadata) {
  if (url.empty() || !options) return nullptr;
  auto type = typeOf(url, fileType);
  if (!type) return nullptr;
  auto sourceOptions = MCImageSourceOptions::create(*type);
  if (!sourceOptions) return nullptr;
  sourceOptions->minThumbnailPixelSize = options->thumbnailMinPixelSize;
  sourceOptions->maxThumbnailPixelSize = options->thumbnailMaxPixelSize;
  sourceOptions->shouldAutoRotate = true;
  sourceOptions->maxDecodePixelCount = options->maxDecodePixelCount;
  // A thumbnail read takes no raw settings from the client.
  sourceOptions->setRawOptions(baseRawOptions());
  return imageByNameOrContent(url, *type, *sourceOptions,
                              [&](MCImageSource& source) { return source.newThumbnailWithOptions(*options); },
                              options->metadataReadingOptions, metadata);
}

std::optional<MCDictionary> MCImageReader::metadataFromImageAtURL(const std::filesystem::path& url,
                                                                  const std::optional<MCMetadataReadingOptions>& options) {
  if (url.empty()) return std::nullopt;
  auto type = MCTypeIdentifierForURL(url);
  if (!type || type->empty()) return std::nullopt;
  auto sourceOptions = MCImageSourceOptions::create(*type);
  auto extensions = MCImageCodecManager::sharedInstance().sourceExtensionsForUTI(*type);
  if (!sourceOptions || !extensions) return std::nullopt;
  std::optional<MCDictionary> result = firstMetadata(url, *extensions, *sourceOptions, options);
  if (result) return result;  // an extension opened the file
  // No extension of the name's type opened the file: perhaps one of the type its content shows.
  const auto content = typeOfContentInstead(url, *type);
  if (!content) return result;
  auto contentOptions = MCImageSourceOptions::create(*content);
  auto contentExtensions = MCImageCodecManager::sharedInstance().sourceExtensionsForUTI(*content);
  if (!contentOptions || !contentExtensions) return result;
  return firstMetadata(url, *contentExtensions, *contentOptions, options);
}
