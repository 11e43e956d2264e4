#pragma once
// MCImageSourceOptions: what a codec plug-in receives to open an image source.
//
// `rawOptions` is never seen absent: reading it while unset stores a default record and answers
// it, so that callers may change it in place. A copy of an options record whose raw options were
// unset has them set, as the source's were read to copy them.

#include <vesperon/codecs/MCRAWImageSourceOptions.h>

#include <cstdint>
#include <optional>
#include <string>

/// The decode budget when none is set: 128 million pixels (512 MB as 8-bit RGBA), measured on the
/// size a source will actually decode — after DCT scaling for JPEG. ImageMagick's shipped policy
/// keeps images of up to 128 megapixels in memory (`area`); our sources decode into memory whole, as
/// its pixel cache does, and have no disk to spill to, so beyond that they refuse. (libvips sets no
/// area limit because it streams in strips; its fixed bound is on coordinates.) A 100-megapixel
/// camera's photo decodes in full; a file that claims 100000 × 100000 pixels is refused before a
/// byte is allocated.
inline constexpr uint64_t MCDefaultMaxDecodePixelCount = 128'000'000;

class MCImageSourceOptions {
 public:
  /// None when the file type is empty.
  static std::optional<MCImageSourceOptions> create(const std::string& fileType) {
    if (fileType.empty()) return std::nullopt;
    return MCImageSourceOptions(fileType);
  }

  /// @name Copies
  //@{
  /// Options copy (the raw options with them) and move as values.
  MCImageSourceOptions(const MCImageSourceOptions& other)
      : minThumbnailPixelSize(other.minThumbnailPixelSize),
        maxThumbnailPixelSize(other.maxThumbnailPixelSize),
        shouldAutoRotate(other.shouldAutoRotate),
        subsampleFactor(other.subsampleFactor),
        maxDecodePixelCount(other.maxDecodePixelCount),
        fileType_(other.fileType_),
        rawOptions_(other.rawOptions()) {}
  MCImageSourceOptions& operator=(const MCImageSourceOptions& other) {
    if (this != &other) *this = MCImageSourceOptions(other);
    return *this;
  }
  MCImageSourceOptions(MCImageSourceOptions&&) = default;
  MCImageSourceOptions& operator=(MCImageSourceOptions&&) = default;
  //@}

  /// The uniform type identifier of the file.
  const std::string& fileType() const { return fileType_; }

  /// Read access that makes the default record on first use.
  MCRAWImageSourceOptions& rawOptions() const {
    if (!rawOptions_) rawOptions_ = MCRAWImageSourceOptions{};
    return *rawOptions_;
  }
  /// Sets the camera raw settings.
  void setRawOptions(const MCRAWImageSourceOptions& options) { rawOptions_ = options; }

  /// The smallest embedded thumbnail taken, in pixels; 0 takes any.
  uint64_t minThumbnailPixelSize = 0;
  /// The largest side of a thumbnail made; 0 for no limit.
  uint64_t maxThumbnailPixelSize = 0;
  /// Whether the image is turned upright by its orientation.
  bool shouldAutoRotate = false;
  uint64_t subsampleFactor = 0;  ///< 1, 2, 4 or 8 when set by the reader
  /// The most pixels (width × height of what is decoded) a source may decode; 0: the default.
  uint64_t maxDecodePixelCount = 0;

  /// The budget in force: `maxDecodePixelCount`, or MCDefaultMaxDecodePixelCount when it is 0.
  uint64_t decodePixelLimit() const {
    return maxDecodePixelCount != 0 ? maxDecodePixelCount : MCDefaultMaxDecodePixelCount;
  }

 private:
  explicit MCImageSourceOptions(std::string fileType) : fileType_(std::move(fileType)) {}
  std::string fileType_;
  mutable std::optional<MCRAWImageSourceOptions> rawOptions_;
};
