#pragma once
// MCThumbnailDescriptor: one candidate file that holds a small version of an image (an embedded
// or side thumbnail).

#include <cstdint>
#include <filesystem>
#include <string>

struct MCThumbnailDescriptor {
  /// The thumbnail file.
  std::filesystem::path fileURL;
  std::string typeIdentifier;   ///< uniform type identifier; empty: ask the file system
  uint64_t estimatedPixelSize = 0;  ///< larger side in pixels; 0: unknown
  uint64_t orientation = 0;         ///< Exif orientation to apply to this candidate

  friend bool operator==(const MCThumbnailDescriptor&, const MCThumbnailDescriptor&) = default;
};
