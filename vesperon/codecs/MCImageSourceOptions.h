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

class MCImageSourceOptions {
 public:
  /// None when the file type is empty.
  static std::optional<MCImageSourceOptions> create(const std::string& fileType) {
    if (fileType.empty()) return std::nullopt;
    return MCImageSourceOptions(fileType);
  }

  MCImageSourceOptions(const MCImageSourceOptions& other)
      : minThumbnailPixelSize(other.minThumbnailPixelSize),
        maxThumbnailPixelSize(other.maxThumbnailPixelSize),
        shouldAutoRotate(other.shouldAutoRotate),
        subsampleFactor(other.subsampleFactor),
        fileType_(other.fileType_),
        rawOptions_(other.rawOptions()) {}
  MCImageSourceOptions& operator=(const MCImageSourceOptions& other) {
    if (this != &other) *this = MCImageSourceOptions(other);
    return *this;
  }
  MCImageSourceOptions(MCImageSourceOptions&&) = default;
  MCImageSourceOptions& operator=(MCImageSourceOptions&&) = default;

  /// The uniform type identifier of the file.
  const std::string& fileType() const { return fileType_; }

  /// Read access that makes the default record on first use.
  MCRAWImageSourceOptions& rawOptions() const {
    if (!rawOptions_) rawOptions_ = MCRAWImageSourceOptions{};
    return *rawOptions_;
  }
  void setRawOptions(const MCRAWImageSourceOptions& options) { rawOptions_ = options; }

  uint64_t minThumbnailPixelSize = 0;
  uint64_t maxThumbnailPixelSize = 0;
  bool shouldAutoRotate = false;
  uint64_t subsampleFactor = 0;  ///< 1, 2, 4 or 8 when set by the reader

 private:
  explicit MCImageSourceOptions(std::string fileType) : fileType_(std::move(fileType)) {}
  std::string fileType_;
  mutable std::optional<MCRAWImageSourceOptions> rawOptions_;
};
