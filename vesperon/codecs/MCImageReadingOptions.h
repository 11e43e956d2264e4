#pragma once
// MCImageReadingOptions: what a client asks of a full read. A value; copies are independent.
//
// The raw selections are handed to codec plug-ins, which give them meaning; MCImageReader keeps
// only the values it knows to be valid.

#include <vesperon/codecs/MCMetadataReadingOptions.h>

#include <cstdint>
#include <optional>

struct MCImageReadingOptions {
  std::optional<MCMetadataReadingOptions> metadataOptions;  ///< none by default
  /// @name Camera raw
  //@{
  /// Camera raw settings, as MCRAWImageSourceOptions names them; 0 and false keep its defaults.
  int32_t rawDemosaic = 0;
  int32_t rawOutputColorSpace = 0;
  int32_t rawOutputColorDepth = 0;
  int32_t rawOutputGamma = 0;
  int32_t rawNoiseReduction = 0;
  int32_t rawAutoWhiteBalance = 0;  ///< 1: the camera's white balance; 2: automatic; others: neither
  bool rawAutoBrightness = false;
  double rawAutoBrightnessThresholdInPercent = 0.0;
  //@}
  double scaleFactor = 1.0;  ///< wanted scale of the decoded image
  /// The decode budget in pixels of what is decoded; 0: MCDefaultMaxDecodePixelCount (128 million).
  /// An application that opens larger images raises it; sources refuse, with a log line, beyond it.
  uint64_t maxDecodePixelCount = 0;

  friend bool operator==(const MCImageReadingOptions&, const MCImageReadingOptions&) = default;
};
