#pragma once
// Helpers of the pipeline tests: flat-coloured JPEGs of known sizes, written through the JPEG
// plug-in into a folder of the test's own, and a gate that holds loads on their workers.

#include <vesperon/codecs/MCImageCodecManager.h>
#include <vesperon/pipeline/MCThumbnailLoadStrategy.h>

#include <gtest/gtest.h>

#include <array>
#include <condition_variable>
#include <cstdlib>
#include <filesystem>
#include <mutex>
#include <thread>
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
    std::vector<uint8_t> pixels;
    for (std::size_t i = 0; i < width * height; ++i) pixels.insert(pixels.end(), {rgb[0], rgb[1], rgb[2], 255});
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

/// The real thumbnail strategy behind a gate, so that a test decides when loads may run; it
/// counts the loads that came and notes the thread of the last. A descriptor of the file "none" gives no resource.
class GatedStrategy : public MCThumbnailLoadStrategy {
 public:
  std::shared_ptr<MCResource> loadResourceForDescriptor(const std::shared_ptr<const MCResourceDescriptor>& descriptor,
                                                        const std::shared_ptr<const MCResourceLoadOptions>& options) override {
    {
      std::unique_lock lock(mutex_);
      ++started_;
      lastWorker_ = std::this_thread::get_id();
      changed_.notify_all();
      changed_.wait(lock, [&] { return open_; });
    }
    auto image = std::dynamic_pointer_cast<const MCImageDescriptor>(descriptor);
    if (image && image->fileURL == "none") return nullptr;
    return MCThumbnailLoadStrategy::loadResourceForDescriptor(descriptor, options);
  }
  void open() {
    std::lock_guard lock(mutex_);
    open_ = true;
    changed_.notify_all();
  }
  void waitForStarted(int n) {
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [&] { return started_ >= n; });
  }
  int started() {
    std::lock_guard lock(mutex_);
    return started_;
  }
  std::thread::id lastWorker() {
    std::lock_guard lock(mutex_);
    return lastWorker_;
  }

 private:
  std::mutex mutex_;
  std::condition_variable changed_;
  bool open_ = false;
  int started_ = 0;
  std::thread::id lastWorker_;
};
