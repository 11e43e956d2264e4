#pragma once
// The codec plug-in contract.
//
// A codec plug-in is a shared module with the suffix ".vcodec" that exports one C entry point,
// `MCImageCodecPlugInEntry`, answering an MCImageCodecPlugInInfo: the ABI version it was built
// against and a function that makes its MCImageCodec. MCImageCodecManager loads modules with
// dlopen, refuses another ABI version, and never unloads a module. Write a plug-in as
//
//     class MyCodec : public MCImageCodec { … };
//     MC_IMAGE_CODEC_PLUGIN(MyCodec)
//
// An MCImageCodec opens image sources (readers of one file) and image destinations (writers).

#include <vesperon/codecs/MCImageDestinationOptions.h>
#include <vesperon/codecs/MCImageSourceOptions.h>
#include <vesperon/codecs/MCMetadataReadingOptions.h>
#include <vesperon/codecs/MCThumbnailReadingOptions.h>
#include <vesperon/core/MCValue.h>
#include <vesperon/platform/MCRasterImage.h>

#include <atomic>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

/// One opened file. Operations may return none; the "new" results belong to the caller.
class MCImageSource {
 public:
  virtual ~MCImageSource() = default;
  /// The decoded image, or none.
  virtual MCRasterImageRef newImage() = 0;
  /// A thumbnail as the options ask, or none.
  virtual MCRasterImageRef newThumbnailWithOptions(const MCThumbnailReadingOptions& options) = 0;
  /// The nested image property dictionary, or none.
  virtual std::optional<MCDictionary> metadataWithOptions(const std::optional<MCMetadataReadingOptions>& options) = 0;
  /// The pixels of the full-size image inside the rectangle from (x, y), `width` × `height`, in the
  /// stored orientation and cut to the image, decoding no more of the file than the format lets a
  /// reader skip; the decode budget counts what is decoded. None by default, for a source that can
  /// only decode the whole: MCImageReader then decodes the whole and cuts.
  virtual MCRasterImageRef newImageInRegion(std::size_t x, std::size_t y, std::size_t width, std::size_t height) {
    (void)x, (void)y, (void)width, (void)height;
    return nullptr;
  }
};

/// One file being written. `finalize` writes it; false on failure, with no partial file left.
class MCImageDestination {
 public:
  virtual ~MCImageDestination() = default;
  /// Adds an image with an optional nested property dictionary; false when it cannot be taken.
  virtual bool addImage(const MCRasterImageRef& image, const MCDictionary* properties) = 0;
  /// Writes the file; false on failure, with no partial file left.
  virtual bool finalize() = 0;
};

/// A codec plug-in: the image sources and destinations of the types it reads and writes.
class MCImageCodec {
 public:
  virtual ~MCImageCodec() = default;

  /// A source over the file at `url`; none when the codec cannot read it.
  virtual std::shared_ptr<MCImageSource> imageSourceWithURL(const std::filesystem::path& url,
                                                            const MCImageSourceOptions& options) = 0;
  /// A source over bytes already in memory, which the source shares and never copies to disk.
  /// None by default: a codec that cannot read from memory is passed over for in-memory images.
  virtual std::shared_ptr<MCImageSource> imageSourceWithData(std::shared_ptr<const MCData> data,
                                                             const MCImageSourceOptions& options) {
    (void)data;
    (void)options;
    return nullptr;
  }
  /// A destination that writes the file at `url`; none when the codec cannot write it.
  virtual std::shared_ptr<MCImageDestination> imageDestinationAtURL(const std::filesystem::path& url,
                                                                    const MCImageDestinationOptions& options) = 0;

  /// Unique per plug-in, such as "org.vesperon.codec.jpeg".
  virtual std::string extensionIdentifier() const = 0;
  /// The plug-in's name as a user sees it.
  virtual std::string extensionDisplayName() const = 0;
  /// What the plug-in does, in a sentence.
  virtual std::string extensionDescription() const = 0;
  /// The higher, the earlier tried.
  virtual double defaultPriority() const = 0;
  /// The image types (type identifiers) it reads.
  virtual std::vector<std::string> sourceImageTypes() const = 0;
  /// The video types it reads; none by default.
  virtual std::vector<std::string> sourceVideoTypes() const { return {}; }
  /// The image types it writes; none by default.
  virtual std::vector<std::string> destinationImageTypes() const { return {}; }
  /// The video types it writes; none by default.
  virtual std::vector<std::string> destinationVideoTypes() const { return {}; }

  /// Whether the codec manager uses it for reading now.
  bool isAvailableAsSource() const { return availableAsSource_.load(); }
  /// Turns reading through this codec on or off (any thread).
  void setIsAvailableAsSource(bool available) { availableAsSource_.store(available); }
  /// Whether it cannot be turned off; not by default.
  virtual bool isAlwaysAvailableAsSource() const { return false; }

 private:
  std::atomic<bool> availableAsSource_{false};
};

/// Bumped whenever MCImageCodec, MCImageSource, MCImageDestination or the records they take change.
inline constexpr uint32_t MC_IMAGE_CODEC_ABI_VERSION = 4;

extern "C" {
/// What a plug-in's entry point answers.
struct MCImageCodecPlugInInfo {
  /// The MC_IMAGE_CODEC_ABI_VERSION the plug-in was built with; another version is refused.
  uint32_t abiVersion;
  /// Makes the codec; the manager owns it.
  MCImageCodec* (*createCodec)();
};
/// The type of the entry point.
typedef const MCImageCodecPlugInInfo* (*MCImageCodecPlugInEntryFunction)();
}

/// The name of the entry point that every plug-in exports.
inline constexpr const char* MCImageCodecPlugInEntryName = "MCImageCodecPlugInEntry";

/// Defines a plug-in's entry point for `CodecClass`; put it in one source file of the plug-in.
#define MC_IMAGE_CODEC_PLUGIN(CodecClass)                                                          \
  extern "C" __attribute__((visibility("default"))) const MCImageCodecPlugInInfo* MCImageCodecPlugInEntry() { \
    static const MCImageCodecPlugInInfo info{MC_IMAGE_CODEC_ABI_VERSION,                           \
                                             []() -> MCImageCodec* { return new CodecClass(); }};  \
    return &info;                                                                                  \
  }
