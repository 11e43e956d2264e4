#pragma once
// MCRAWImageSourceOptions: camera raw settings handed to a codec plug-in, with the defaults that
// a new record has.

#include <cstdint>

struct MCRAWImageSourceOptions {
  /// The demosaicing algorithm (LibRaw's number); -1 for its default.
  int32_t demosaic = -1;
  /// The output colour space (LibRaw's number; 1 is sRGB).
  int32_t outputColorSpace = 1;
  /// Bits per component of the output, 8 or 16.
  int32_t outputColorDepth = 8;
  /// The output gamma curve (LibRaw's number).
  int32_t outputGamma = 2;
  /// The wavelet noise reduction threshold; -1 for none.
  int32_t noiseReduction = -1;
  /// Whether the white balance is worked out from the image.
  bool autoWhiteBalance = false;
  /// Whether the camera's white balance is used.
  bool cameraWhiteBalance = false;
  /// Whether the brightness is adjusted from the histogram.
  bool autoBrightness = false;
  /// The share of pixels allowed to clip when brightening.
  double autoBrightnessThreshold = 0.01;

  friend bool operator==(const MCRAWImageSourceOptions&, const MCRAWImageSourceOptions&) = default;
};
