#pragma once
// MCImageDestinationOptions: what a codec plug-in receives to write an image.

#include <string>

struct MCImageDestinationOptions {
  MCImageDestinationOptions() = default;
  /// Options for writing `type`.
  explicit MCImageDestinationOptions(std::string type) : type(std::move(type)) {}

  std::string type;  ///< uniform type identifier of the file to write
  /// Whether the file holds several images.
  bool isMultipage = false;
  /// Whether alpha is written.
  bool hasAlpha = false;
  /// Whether compression must be lossless.
  bool lossless = false;
  double quality = 0;  ///< 0 to 1; 0 lets the codec use its default
  /// Whether the colour profile is embedded.
  bool embedColorProfile = false;
  /// Whether a thumbnail is embedded.
  bool embedThumbnail = false;

  friend bool operator==(const MCImageDestinationOptions&, const MCImageDestinationOptions&) = default;
};
