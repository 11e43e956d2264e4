#pragma once
// Test files of the pipeline tests: flat-coloured JPEGs of known sizes, written through the JPEG
// plug-in into a folder of the test's own.

#include <vesperon/codecs/MCImageCodecManager.h>

#include <gtest/gtest.h>

#include <array>
#include <cstdlib>
#include <filesystem>
#include <unistd.h>

class PipelineTestFolder {
 public:
  explicit PipelineTestFolder(const std::string& name)
      : path_(std::filesystem::path(VESPERON_TEST_BINARY_DIR) / (name + "-" + std::to_string(getpid()))) {
    std::filesystem::remove_all(path_);
    std::filesystem::create_directories(path_);
  }
  ~PipelineTestFolder() { std::filesystem::remove_all(path_); }

  /// A width × height JPEG of one colour.
  std::filesystem::path jpeg(const std::string& name, std::size_t width, std::size_t height, std::array<uint8_t, 3> rgb) {
    std::vector<uint8_t> pixels(width * height * 4);
    for (std::size_t i = 0; i < width * height; ++i) {
      pixels[i * 4 + 0] = rgb[0];
      pixels[i * 4 + 1] = rgb[1];
      pixels[i * 4 + 2] = rgb[2];
      pixels[i * 4 + 3] = 255;
    }
    auto codec = MCImageCodecManager::sharedInstance().destinationExtensionsForUTI("public.jpeg")->front();
    auto path = path_ / name;
    auto destination = codec->imageDestinationAtURL(path, MCImageDestinationOptions("public.jpeg"));
    EXPECT_TRUE(destination->addImage(MCRasterImage::createRGBA8(width, height, std::move(pixels)), nullptr));
    EXPECT_TRUE(destination->finalize());
    return path;
  }

  const std::filesystem::path& path() const { return path_; }

 private:
  std::filesystem::path path_;
};

/// Whether the centre pixel of `image` is near `rgb`.
inline bool centreIs(const MCRasterImageRef& image, std::array<uint8_t, 3> rgb) {
  if (!image) return false;
  const uint8_t* p = image->row(image->height() / 2) + image->width() / 2 * 4;
  for (int i = 0; i < 3; ++i)
    if (std::abs(int(p[i]) - int(rgb[i])) > 12) return false;
  return true;
}

constexpr std::array<uint8_t, 3> kRed{230, 20, 20}, kGreen{20, 200, 20}, kBlue{20, 20, 230}, kGray{128, 128, 128};
