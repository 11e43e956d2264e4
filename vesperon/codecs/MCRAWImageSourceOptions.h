#pragma once
// MCRAWImageSourceOptions: camera raw settings handed to a codec plug-in, with the defaults that
// a new record has.

#include <cstdint>

struct MCRAWImageSourceOptions {
  int32_t demosaic = -1;
  int32_t outputColorSpace = 1;
  int32_t outputColorDepth = 8;
  int32_t outputGamma = 2;
  int32_t noiseReduction = -1;
  bool autoWhiteBalance = false;
  bool cameraWhiteBalance = false;
  bool autoBrightness = false;
  double autoBrightnessThreshold = 0.01;

  friend bool operator==(const MCRAWImageSourceOptions&, const MCRAWImageSourceOptions&) = default;
};
