// `vesperon browse` keeps its thumbnails in the desktop's shared thumbnail cache: a first run
// writes a large and a normal entry of each photo it shows and a failure entry for a file it
// cannot read; a second run takes them instead of decoding again; a corrupt entry is replaced;
// and a cache that cannot be written leaves the grid working.

#include <vesperon/pipeline/MCFreedesktopThumbnailCache.h>
#include <vesperon/pixels/MCImageFiles.h>

#include "../support/ProgramOutcome.h"

#include <gtest/gtest.h>

#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

namespace fs = std::filesystem;

namespace {

class SharedThumbnails : public ::testing::Test {
 protected:
  void SetUp() override {
    home_ = fs::path(VESPERON_TEST_BINARY_DIR) / ("browse-shared-" + std::to_string(::getpid()));
    fs::remove_all(home_);
    fs::create_directories(photos());
    for (const char* name : {"wide", "tall"}) {
      const std::string size = std::string(name) == "wide" ? "900x600" : "500x800";
      ASSERT_EQ(std::system(("/usr/bin/convert -size " + size + " plasma:red-blue -quality 85 '" +
                             (photos() / (std::string(name) + ".jpg")).string() + "' 2>/dev/null")
                                .c_str()),
                0)
          << "ImageMagick's convert comes with the imagemagick package (scripts/setup.sh)";
    }
    std::ofstream(photos() / "broken.jpg", std::ios::binary) << "\xFF\xD8\xFF\xE0 not a photo at all";
  }
  void TearDown() override {
    std::error_code ignored;
    fs::remove_all(home_, ignored);
  }
  fs::path photos() const { return home_ / "photos"; }
  fs::path cacheRoot() const { return home_ / "cache" / "thumbnails"; }
  ProgramOutcome browse() const {
    return ProgramOutcome::run("XDG_CONFIG_HOME='" + (home_ / "config").string() + "' XDG_CACHE_HOME='" +
                               (home_ / "cache").string() + "' timeout -k 5 60 '" VESPERON_TOOL "' browse '" +
                               photos().string() + "' --size 800x600 --render '" + (home_ / "grid.png").string() + "'");
  }
  fs::path entry(const char* folder, const char* photo) const {
    const std::string uri = MCFreedesktopThumbnailCache::uriOfFile(photos() / photo);
    for (const auto& item : fs::directory_iterator(cacheRoot() / folder)) {
      // Each entry names its file in its Thumb::URI chunk.
      std::ifstream in(item.path(), std::ios::binary);
      const std::string bytes((std::istreambuf_iterator<char>(in)), {});
      if (bytes.find(uri) != std::string::npos) return item.path();
    }
    return {};
  }
  static uint64_t largerSide(const fs::path& png) {
    auto image = MCCreateImageWithURL(png);
    return image ? std::max(image->width(), image->height()) : 0;
  }

  // Pixels of strong colour: photos, not the grey cards, the white page or the text.
  static std::size_t colouredPixels(const MCRasterImage& image) {
    const std::size_t step = image.bitsPerPixel() / 8;
    std::size_t n = 0;
    for (std::size_t y = 0; y < image.height(); ++y)
      for (std::size_t x = 0; x < image.width(); ++x) {
        const uint8_t* p = image.row(y) + x * step;
        n += std::max({p[0], p[1], p[2]}) - std::min({p[0], p[1], p[2]}) > 60;
      }
    return n;
  }

  fs::path home_;
};

}  // namespace

TEST_F(SharedThumbnails, FirstRunWritesTheStandardEntriesAndTheSecondTakesThem) {
  const ProgramOutcome first = browse();
  ASSERT_EQ(first.status, 0) << first.output;
  const MCFreedesktopThumbnailCache shared(cacheRoot());
  for (const char* photo : {"wide.jpg", "tall.jpg"}) {
    SCOPED_TRACE(photo);
    const fs::path large = entry("large", photo), normal = entry("normal", photo);
    ASSERT_FALSE(large.empty());
    ASSERT_FALSE(normal.empty());
    // Made at the sizes the folders stand for, not at the size of the card.
    EXPECT_EQ(largerSide(large), 256u);
    EXPECT_EQ(largerSide(normal), 128u);
    EXPECT_NE(shared.thumbnailForFile(photos() / photo, 256), nullptr);
  }
  EXPECT_TRUE(shared.hasFailedForFile(photos() / "broken.jpg"));
  EXPECT_FALSE(shared.hasFailedForFile(photos() / "wide.jpg"));

  // A second run takes every entry as it is: none is written again.
  const auto old = fs::file_time_type::clock::now() - std::chrono::hours(5);
  for (const auto& item : fs::recursive_directory_iterator(cacheRoot()))
    if (item.is_regular_file()) fs::last_write_time(item.path(), old);
  const ProgramOutcome second = browse();
  ASSERT_EQ(second.status, 0) << second.output;
  EXPECT_NE(second.output.find("3 photos"), std::string::npos) << second.output;
  for (const auto& item : fs::recursive_directory_iterator(cacheRoot())) {
    if (!item.is_regular_file()) continue;
    EXPECT_EQ(fs::last_write_time(item.path()), old) << item.path();
  }
}

TEST_F(SharedThumbnails, ACorruptOrStaleEntryIsReplaced) {
  ASSERT_EQ(browse().status, 0);
  const fs::path large = entry("large", "wide.jpg");
  ASSERT_FALSE(large.empty());
  const std::string name = large.filename().string();
  std::ofstream(large, std::ios::binary | std::ios::trunc) << "\x89PNG\r\n\x1a\n garbage";
  // The photo rewritten since its entry was made: the tall one's entry is stale.
  const fs::path tallEntry = entry("large", "tall.jpg");
  fs::last_write_time(photos() / "tall.jpg", fs::file_time_type::clock::now() + std::chrono::seconds(30));

  const ProgramOutcome again = browse();
  ASSERT_EQ(again.status, 0) << again.output;
  EXPECT_EQ(largerSide(cacheRoot() / "large" / name), 256u);
  const MCFreedesktopThumbnailCache shared(cacheRoot());
  EXPECT_NE(shared.thumbnailForFile(photos() / "wide.jpg", 256), nullptr);
  EXPECT_NE(shared.thumbnailForFile(photos() / "tall.jpg", 256), nullptr) << "the stale entry of " << tallEntry;
}

TEST_F(SharedThumbnails, AnUnwritableCacheLeavesTheGridWorking) {
  // A file where the cache's folder should be: nothing can be made below it.
  fs::create_directories(cacheRoot().parent_path());
  std::ofstream(cacheRoot()) << "not a folder";
  const ProgramOutcome outcome = browse();
  ASSERT_EQ(outcome.status, 0) << outcome.output;
  EXPECT_NE(outcome.output.find("3 photos"), std::string::npos) << outcome.output;
  // The photos still show: the render has the thumbnails' colours, not only the grey of the cards.
  auto render = MCCreateImageWithURL(home_ / "grid.png");
  ASSERT_NE(render, nullptr);
  EXPECT_GT(colouredPixels(*render), 20000u);
  EXPECT_TRUE(fs::is_regular_file(cacheRoot()));
}
