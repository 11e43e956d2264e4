#pragma once
// MCThumbnailReadingOptions: what a client asks of a thumbnail read. Every field starts at zero,
// false or none.

#include <vesperon/codecs/MCMetadataReadingOptions.h>

#include <cstdint>
#include <optional>

struct MCThumbnailReadingOptions {
  /// Whether and how metadata is read with the thumbnail; none reads none.
  std::optional<MCMetadataReadingOptions> metadataReadingOptions;
  /// Make the thumbnail from the full image even if the file holds one.
  bool createThumbnailFromImageAlways = false;
  /// Make it from the full image only if the file holds none.
  bool createThumbnailFromImageIfAbsent = false;
  /// Apply the orientation to the thumbnail.
  bool createThumbnailWithTransform = false;
  uint64_t thumbnailMinPixelSize = 0;  ///< smallest acceptable larger side
  uint64_t thumbnailMaxPixelSize = 0;  ///< largest wanted side
  uint64_t orientation = 0;            ///< Exif orientation to apply; 0: the file's own
  /// The decode budget in pixels of what is decoded to make the thumbnail; 0: the default
  /// (MCDefaultMaxDecodePixelCount, 128 million).
  uint64_t maxDecodePixelCount = 0;

  friend bool operator==(const MCThumbnailReadingOptions&, const MCThumbnailReadingOptions&) = default;
};
