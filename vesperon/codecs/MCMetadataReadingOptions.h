#pragma once
// MCMetadataReadingOptions: how to read metadata beside an image. The library passes `xmpOptions`
// on to the codec and gives it no meaning of its own.

#include <cstdint>

struct MCMetadataReadingOptions {
  /// How XMP is read and merged (MCCGImageMetadataReader merge bits).
  uint64_t xmpOptions = 0;
  friend bool operator==(const MCMetadataReadingOptions&, const MCMetadataReadingOptions&) = default;
};
