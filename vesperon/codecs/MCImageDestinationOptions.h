#pragma once
// MCImageDestinationOptions: what a codec plug-in receives to write an image.

#include <string>

struct MCImageDestinationOptions {
  MCImageDestinationOptions() = default;
  explicit MCImageDestinationOptions(std::string type) : type(std::move(type)) {}

  std::string type;  ///< uniform type identifier of the file to write
  bool isMultipage = false;
  bool hasAlpha = false;
  bool lossless = false;
  double quality = 0;  ///< 0 to 1; 0 lets the codec use its default
  bool embedColorProfile = false;
  bool embedThumbnail = false;

  friend bool operator==(const MCImageDestinationOptions&, const MCImageDestinationOptions&) = default;
};
