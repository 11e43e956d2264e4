#pragma once
// Helpers of the codec plug-in tests: opening a fixture through the registered plug-in, and
// reading pixels back.

#include <vesperon/codecs/MCImageCodecManager.h>

#include <gtest/gtest.h>
#include <lcms2.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

inline std::filesystem::path fixture(const std::string& name) { return std::filesystem::path(PLUGIN_FIXTURES_DIR) / name; }

/// A new, empty folder of this test process under the build's test folder.
inline std::filesystem::path scratchDirectory(const std::string& name) {
  auto dir = std::filesystem::path(VESPERON_TEST_BINARY_DIR) / (name + "-" + std::to_string(getpid()));
  std::filesystem::remove_all(dir);
  std::filesystem::create_directories(dir);
  return dir;
}

/// An RGB profile whose red primary is sRGB's green (and green sRGB's red), with linear curves:
/// stored (128, 0, 0) means sRGB green at the sRGB encoding of 0.5, which is 188, where a reader
/// that ignores the profile sees dark red.
inline std::vector<uint8_t> swappedPrimariesProfile() {
  cmsCIExyY white;
  cmsWhitePointFromTemp(&white, 6504);
  cmsCIExyYTRIPLE primaries = {{0.30, 0.60, 1.0}, {0.64, 0.33, 1.0}, {0.15, 0.06, 1.0}};
  cmsToneCurve* linear = cmsBuildGamma(nullptr, 1.0);
  cmsToneCurve* curves[3] = {linear, linear, linear};
  cmsHPROFILE profile = cmsCreateRGBProfile(&white, &primaries, curves);
  cmsUInt32Number length = 0;
  cmsSaveProfileToMem(profile, nullptr, &length);
  std::vector<uint8_t> icc(length);
  cmsSaveProfileToMem(profile, icc.data(), &length);
  cmsCloseProfile(profile);
  cmsFreeToneCurve(linear);
  return icc;
}

/// The first source extension registered for `type` by the shared manager.
inline std::shared_ptr<MCImageCodec> codecFor(const std::string& type) {
  auto extensions = MCImageCodecManager::sharedInstance().sourceExtensionsForUTI(type);
  if (!extensions || extensions->empty()) return nullptr;
  return extensions->front();
}

inline std::shared_ptr<MCImageSource> openSource(const std::string& type, const std::filesystem::path& path,
                                                 uint64_t subsampleFactor = 0) {
  auto codec = codecFor(type);
  if (!codec) return nullptr;
  auto options = MCImageSourceOptions::create(type);
  options->subsampleFactor = subsampleFactor;
  return codec->imageSourceWithURL(path, *options);
}

inline MCThumbnailReadingOptions thumbnailOptions(bool always, bool ifAbsent, bool transform, uint64_t min, uint64_t max) {
  MCThumbnailReadingOptions o;
  o.createThumbnailFromImageAlways = always;
  o.createThumbnailFromImageIfAbsent = ifAbsent;
  o.createThumbnailWithTransform = transform;
  o.thumbnailMinPixelSize = min;
  o.thumbnailMaxPixelSize = max;
  return o;
}

/// R, G, B, A at (x, y) of an 8-bit RGBA image.
inline std::array<int, 4> pixelAt(const MCRasterImageRef& image, std::size_t x, std::size_t y) {
  const uint8_t* p = image->row(y) + x * 4;
  return {p[0], p[1], p[2], p[3]};
}

/// True when each colour channel is within `tolerance` of the expected one.
inline ::testing::AssertionResult colourNear(const MCRasterImageRef& image, double fx, double fy,
                                             std::array<int, 3> expected, int tolerance = 12) {
  const auto x = std::size_t(fx * double(image->width()));
  const auto y = std::size_t(fy * double(image->height()));
  const auto p = pixelAt(image, x, y);
  for (int i = 0; i < 3; ++i)
    if (std::abs(p[i] - expected[i]) > tolerance)
      return ::testing::AssertionFailure() << "at (" << x << ", " << y << ") got " << p[0] << "," << p[1] << "," << p[2];
  return ::testing::AssertionSuccess();
}

constexpr std::array<int, 3> kRed{255, 0, 0}, kGreen{0, 255, 0}, kBlue{0, 0, 255}, kWhite{255, 255, 255};

/// The quadrant pattern of the fixtures: red | green over blue | white, as shown.
inline void expectQuadrants(const MCRasterImageRef& image, int tolerance = 12) {
  ASSERT_TRUE(image);
  EXPECT_TRUE(colourNear(image, 0.25, 0.25, kRed, tolerance));
  EXPECT_TRUE(colourNear(image, 0.75, 0.25, kGreen, tolerance));
  EXPECT_TRUE(colourNear(image, 0.25, 0.75, kBlue, tolerance));
  EXPECT_TRUE(colourNear(image, 0.75, 0.75, kWhite, tolerance));
}
