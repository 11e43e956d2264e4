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
  explicit MCImageDescriptor(std::filesystem::path fileURL) : fileURL(std::move(fileURL)) {}

  std::filesystem::path fileURL;
  std::optional<std::string> typeIdentifier;  ///< none: the reader asks the file system
  uint64_t estimatedPixelSize = 0;            ///< larger side in pixels; 0: unknown
  std::optional<std::vector<MCThumbnailDescriptor>> thumbnailDescriptors;
  std::optional<MCImageReadingOptions> readingOptions;
};
