#pragma once
// MCImageDescriptor: what to load — an image file, what is known of its size, candidate
// thumbnails, and how to read it in full.
//
// `readingOptions` has no default: a descriptor whose reading options were never set cannot be
// loaded as a full image (the reader refuses missing options). Thumbnail loading ignores it.

#include <vesperon/codecs/MCImageReadingOptions.h>
#include <vesperon/pipeline/MCResource.h>
#include <vesperon/pipeline/MCThumbnailDescriptor.h>

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

class MCImageDescriptor : public MCResourceDescriptor {
 public:
  MCImageDescriptor() = default;
  /// The image of the file at `fileURL`.
  explicit MCImageDescriptor(std::filesystem::path fileURL) : fileURL(std::move(fileURL)) {}

  /// The file.
  std::filesystem::path fileURL;
  std::optional<std::string> typeIdentifier;  ///< none: the reader asks the file system
  uint64_t estimatedPixelSize = 0;            ///< larger side in pixels; 0: unknown
  /// Thumbnail files known beside the image, tried first.
  std::optional<std::vector<MCThumbnailDescriptor>> thumbnailDescriptors;
  /// How to read; none for the defaults.
  std::optional<MCImageReadingOptions> readingOptions;
};
