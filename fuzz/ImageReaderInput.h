#pragma once
// What the image-file fuzz targets share: the input written to a file of the process's own, then
// read through MCImageReader as an application would — the full image, a thumbnail and the
// metadata — with the codec plug-ins of the build's plug-in folder. The reading options vary with
// the input's size, so that the corpus covers subsampled reads and every thumbnail mode.

#include <vesperon/codecs/MCImageReader.h>

#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <string>

namespace fuzz_support {

class InputFile {
 public:
  explicit InputFile(const std::string& extension)
      : path_(std::filesystem::temp_directory_path() /
              ("vesperon-fuzz-" + std::to_string(::getpid()) + "." + extension)) {}
  ~InputFile() {
    std::error_code ignored;
    std::filesystem::remove(path_, ignored);
  }
  const std::filesystem::path& write(const uint8_t* data, std::size_t size) {
    if (FILE* out = std::fopen(path_.c_str(), "wb")) {
      if (size) std::fwrite(data, 1, size, out);
      std::fclose(out);
    }
    return path_;
  }

 private:
  std::filesystem::path path_;
};

constexpr uint64_t kFuzzPixelBudget = 4u << 20;  // 4 megapixels

inline void readThroughImageReader(const std::filesystem::path& file, const std::string& type, std::size_t size) {
  static const double kScales[] = {1.0, 0.5, 0.25, 0.1};
  static const uint64_t kMaxSides[] = {0, 16, 64, 160};

  MCImageReadingOptions imageOptions;
  imageOptions.scaleFactor = kScales[size % 4];
  // A few hundred bytes may claim a hundred million pixels, within the default budget; the fuzzer
  // looks for faults in the logic, so it keeps decodes small and fast with a budget of its own.
  imageOptions.maxDecodePixelCount = kFuzzPixelBudget;
  std::optional<MCDictionary> metadata;
  if (auto image = MCImageReader::newImageWithURL(file, type, imageOptions, &metadata)) {
    (void)image->width();
  }

  MCThumbnailReadingOptions thumbnailOptions;
  thumbnailOptions.maxDecodePixelCount = kFuzzPixelBudget;
  thumbnailOptions.thumbnailMaxPixelSize = kMaxSides[(size / 4) % 4];
  thumbnailOptions.createThumbnailFromImageAlways = size & 16;
  thumbnailOptions.createThumbnailFromImageIfAbsent = size & 32;
  thumbnailOptions.createThumbnailWithTransform = size & 64;
  thumbnailOptions.metadataReadingOptions = MCMetadataReadingOptions();
  std::optional<MCDictionary> thumbnailMetadata;
  (void)MCImageReader::newThumbnailWithURL(file, type, thumbnailOptions, &thumbnailMetadata);

  (void)MCImageReader::metadataFromImageAtURL(file, MCMetadataReadingOptions());
}

}  // namespace fuzz_support
