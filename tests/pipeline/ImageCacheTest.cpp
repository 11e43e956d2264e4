#include <vesperon/pipeline/MCImageCache.h>

#include <gtest/gtest.h>

#include "../support/LogCapture.h"

#include <atomic>
#include <fstream>
#include <random>
#include <thread>
#include <sys/wait.h>
#include <unistd.h>

namespace {

MCRasterImageRef solid(std::size_t side, uint8_t red) {
  std::vector<uint8_t> pixels;
  for (std::size_t i = 0; i < side * side; ++i) pixels.insert(pixels.end(), {red, 60, 90, 255});
  return MCRasterImage::createRGBA8(side, side, std::move(pixels));
}

int firstRed(const MCRasterImage& image) {
  const auto info = image.alphaInfo();
  const bool first = info == MCImageAlphaNoneSkipFirst || info == MCImageAlphaPremultipliedFirst || info == MCImageAlphaFirst;
  return image.row(0)[first ? 1 : 0];
}

// Every file under `folder` that is not a finished .JPG: temporary or partial files.
std::vector<std::filesystem::path> strayFiles(const std::filesystem::path& folder) {
  std::vector<std::filesystem::path> stray;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(folder))
    if (entry.is_regular_file() && entry.path().extension() != ".JPG") stray.push_back(entry.path());
  return stray;
}

class ImageCacheFiles : public ::testing::Test {
 protected:
  void SetUp() override {
    root_ = std::filesystem::temp_directory_path() /
            ("vesperon-imagecache-" + std::to_string(::getpid()) + "-" +
             ::testing::UnitTest::GetInstance()->current_test_info()->name());
    std::filesystem::remove_all(root_);
  }
  void TearDown() override { std::filesystem::remove_all(root_); }
  std::filesystem::path root_;
};

}  // namespace

TEST(ImageCacheContainer, PathTableUsesWholeShiftedNumbers) {
  MCImageCacheContainer container("/cache/Thumbnails", MCLog::sdkImageCache());
  EXPECT_EQ(container.imageURL(5), "/cache/Thumbnails/00/00/05.JPG");
  EXPECT_EQ(container.imageURL(418), "/cache/Thumbnails/00/01/1a2.JPG");
  EXPECT_EQ(container.imageURL(1193046), "/cache/Thumbnails/12/1234/123456.JPG");
  EXPECT_EQ(container.imageURL(-1), "/cache/Thumbnails/ffffffffffffffff/ffffffffffffffff/ffffffffffffffff.JPG")
      << "the sign survives the arithmetic shift";
  EXPECT_EQ(container.imageURL(0x1200).parent_path(), container.imageURL(0x12ff).parent_path());
  EXPECT_NE(container.imageURL(0x1200).parent_path(), container.imageURL(0x1300).parent_path());
}

TEST_F(ImageCacheFiles, FindsContainersByFolderName) {
  for (const char* name : {"Thumbnails", "Thumbnails.256", "Other.512", "Thumbnails.abc", "Thumbnails.12x", "plain",
                           ".hidden.64"})
    std::filesystem::create_directories(root_ / name);
  std::ofstream(root_ / "file.32") << "any entry with a numeric extension counts";
  EXPECT_EQ(MCImageCache(root_).pixelSizes(), (std::vector<int64_t>{32, 128, 256, 512}));
}

TEST_F(ImageCacheFiles, FirstStartAndQueriesOfNewSizes) {
  MCImageCache cache(root_);
  EXPECT_TRUE(cache.pixelSizes().empty());
  EXPECT_FALSE(std::filesystem::exists(root_)) << "construction only looks";
  EXPECT_FALSE(cache.containsImageWithIdentifier(7, 300));
  EXPECT_EQ(cache.pixelSizes(), (std::vector<int64_t>{300})) << "a mere query enters the size";
  EXPECT_TRUE(std::filesystem::is_directory(root_));
  EXPECT_FALSE(std::filesystem::exists(root_ / "Thumbnails.300")) << "its folder waits for the first image";
  EXPECT_FALSE(cache.imageWithIdentifierMinPixelSize(7, 0));
  LogCapture log;
  ASSERT_TRUE(log.available()) << "no log file";
  cache.removeImageWithIdentifier(7);  // logs, and carries on
  cache.clean();
  EXPECT_TRUE(log.contains("[com.quillary.vesperon, Image Cache] : Couldn't remove from cache image with ID: 7\n"))
      << log.text();
  EXPECT_TRUE(log.contains("Couldn't clean caches container at: " + (root_ / "Thumbnails.300").string() + "\n"));
  EXPECT_EQ(cache.pixelSizes(), (std::vector<int64_t>{300}));
}

TEST_F(ImageCacheFiles, RootThatCannotBeMadeGivesNoContainers) {
  std::filesystem::create_directories(root_);
  std::ofstream(root_ / "file") << "a file where a folder should be";
  MCImageCache cache(root_ / "file" / "root");
  LogCapture log;
  ASSERT_TRUE(log.available()) << "no log file";
  EXPECT_FALSE(cache.containsImageWithIdentifier(1, 128));
  EXPECT_TRUE(log.contains("Couldn't create Caches folder\n")) << log.text();
  EXPECT_TRUE(cache.pixelSizes().empty());
  cache.addImage(solid(1, 0), 1, 128);
  EXPECT_FALSE(cache.imageWithIdentifier(1, 128));
}

TEST_F(ImageCacheFiles, AddFindRestartRemoveAndClean) {
  {
    MCImageCache cache(root_);
    cache.addImage(solid(16, 200), 418, 128);
    cache.addImage(solid(32, 100), 418, 512);
    cache.addImage(solid(32, 50), 5, 512);
    EXPECT_TRUE(std::filesystem::is_regular_file(root_ / "Thumbnails/00/01/1a2.JPG"));
    EXPECT_TRUE(std::filesystem::is_regular_file(root_ / "Thumbnails.512/00/00/05.JPG"));
    EXPECT_TRUE(strayFiles(root_).empty());
  }
  // A new cache finds the containers on disk.
  MCImageCache cache(root_);
  EXPECT_EQ(cache.pixelSizes(), (std::vector<int64_t>{128, 512}));
  EXPECT_TRUE(cache.containsImageWithIdentifier(418));
  EXPECT_TRUE(cache.containsImageWithIdentifier(5, 512));
  EXPECT_FALSE(cache.containsImageWithIdentifier(5, 128));
  auto small = cache.imageWithIdentifier(418, 128);
  ASSERT_TRUE(small);
  EXPECT_EQ(small->width(), 16u);
  EXPECT_NEAR(firstRed(*small), 200, 8);

  // By minimum size: the container's size counts, not the image's.
  auto atLeast200 = cache.imageWithIdentifierMinPixelSize(418, 200);
  ASSERT_TRUE(atLeast200);
  EXPECT_EQ(atLeast200->width(), 32u);
  EXPECT_TRUE(cache.imageWithIdentifierMinPixelSize(5, 0));
  EXPECT_FALSE(cache.imageWithIdentifierMinPixelSize(418, 513));

  // Saving over a file replaces it.
  cache.addImage(solid(16, 10), 418, 128);
  EXPECT_NEAR(firstRed(*cache.imageWithIdentifier(418, 128)), 10, 8);

  cache.removeImageWithIdentifier(418, 128);
  EXPECT_FALSE(cache.containsImageWithIdentifier(418, 128));
  EXPECT_TRUE(cache.containsImageWithIdentifier(418, 512));
  cache.removeImageWithIdentifier(418);  // the 128 container logs its missing file and the loop goes on
  EXPECT_FALSE(cache.containsImageWithIdentifier(418));

  cache.clean();
  EXPECT_FALSE(cache.containsImageWithIdentifier(5));
  EXPECT_FALSE(std::filesystem::exists(root_ / "Thumbnails.512"));
  EXPECT_EQ(cache.pixelSizes(), (std::vector<int64_t>{128, 512}));
  cache.addImage(solid(8, 0), 5, 512);
  EXPECT_TRUE(cache.containsImageWithIdentifier(5, 512)) << "a cleaned container makes its folders again";
}

TEST_F(ImageCacheFiles, BrokenFilesAndUnwritableFolders) {
  MCImageCache cache(root_);
  cache.addImage(solid(8, 0), 1, 128);
  // A cache file replaced by garbage reads as none, with the image source's report.
  const auto file = root_ / "Thumbnails/00/00/01.JPG";
  std::ofstream(file, std::ios::binary | std::ios::trunc) << "not a JPEG at all";
  EXPECT_TRUE(cache.containsImageWithIdentifier(1, 128));
  LogCapture log;
  ASSERT_TRUE(log.available()) << "no log file";
  EXPECT_FALSE(cache.imageWithIdentifier(1, 128));
  EXPECT_TRUE(log.contains("CGImageSource: bad status -4 at URL: " + file.string() + "\n")) << log.text();
  // Cut short: a JPEG header with no scan.
  std::ofstream(file, std::ios::binary | std::ios::trunc) << std::string("\xFF\xD8\xFF\xE0\x00\x10JFIF", 10);
  EXPECT_FALSE(cache.imageWithIdentifier(1, 128));

  // A file where the container's folder should be: nothing is written, nothing is left.
  std::ofstream(root_ / "Thumbnails.64") << "blocks the folder";
  cache.addImage(solid(8, 0), 2, 64);
  EXPECT_TRUE(log.contains("[com.quillary.vesperon, Image Cache] : Couldn't cache image with ID: 2\n")) << log.text();
  EXPECT_FALSE(cache.containsImageWithIdentifier(2, 64));
  cache.addImage(nullptr, 3, 128);
  EXPECT_FALSE(cache.containsImageWithIdentifier(3, 128));
  EXPECT_TRUE(strayFiles(root_ / "Thumbnails").empty());
}

// Eight threads add, read and remove over one small set of identifiers at once, and one of them
// cleans now and then. Every read gives none (not there) or a whole image; nothing torn, nothing
// stray; the survivors all decode.
TEST_F(ImageCacheFiles, ConcurrentAddReadRemove) {
  MCImageCache cache(root_);
  constexpr int kThreads = 8, kIdentifiers = 40, kSteps = 60;
  std::atomic<int> torn{0};
  std::vector<std::thread> threads;
  for (int t = 0; t < kThreads; ++t)
    threads.emplace_back([&, t] {
      std::mt19937 random{unsigned(t)};
      for (int step = 0; step < kSteps; ++step) {
        if (t == 0 && step % 20 == 19) cache.clean();
        const int64_t id = int64_t(random() % kIdentifiers);
        const int64_t size = random() % 2 ? 128 : 256;
        switch (random() % 3) {
          case 0: cache.addImage(solid(12, uint8_t(id * 5)), id, size); break;
          case 1:
            if (auto image = cache.imageWithIdentifier(id, size); image && (image->width() != 12 || std::abs(firstRed(*image) - int(id * 5)) > 8))
              ++torn;
            break;
          default: cache.removeImageWithIdentifier(id, size); break;
        }
      }
    });
  for (auto& thread : threads) thread.join();
  EXPECT_EQ(torn.load(), 0);
  EXPECT_TRUE(strayFiles(root_).empty());
  for (int64_t id = 0; id < kIdentifiers; ++id)
    for (int64_t size : {128, 256})
      if (cache.containsImageWithIdentifier(id, size)) {
        EXPECT_TRUE(cache.imageWithIdentifier(id, size)) << id;
      }
}

// A clean running alongside never makes a save fail: each runs alone, and the log says so.
TEST_F(ImageCacheFiles, SavesAreNeverLostToAClean) {
  LogCapture log;
  ASSERT_TRUE(log.available());
  MCImageCache cache(root_);
  cache.addImage(solid(8, 10), 1, 256);  // the container and its folder exist
  std::atomic<bool> saving{true};
  std::atomic<int> cleans{0};
  std::thread cleaner([&] {
    do {
      cache.clean();
      ++cleans;
    } while (saving.load());
  });
  // The saves start once the cleaner is under way, so the two overlap on a busy machine too.
  while (cleans.load() == 0) std::this_thread::yield();
  const auto image = solid(24, 200);
  for (int64_t id = 0; id < 150; ++id) cache.addImage(image, id, 256);
  saving = false;
  cleaner.join();
  EXPECT_GT(cleans.load(), 0);
  EXPECT_FALSE(log.contains("Couldn't cache image with ID")) << log.text();
  cache.addImage(image, 7, 256);
  EXPECT_TRUE(cache.imageWithIdentifier(7, 256));
  EXPECT_TRUE(strayFiles(root_).empty());
}

// Temporaries of a writer that died are swept when the cache opens and in clean; a live writer's stay.
TEST_F(ImageCacheFiles, StaleTemporariesOfDeadWritersAreSwept) {
  const pid_t dead = fork();
  if (dead == 0) _exit(0);
  ASSERT_GT(dead, 0);
  waitpid(dead, nullptr, 0);
  std::filesystem::create_directories(root_ / "Thumbnails.256");
  const auto touch = [&](const std::string& name) { std::ofstream(root_ / name) << "half a JPEG"; };
  const std::string deadSave = ".Thumbnails.256.05.JPG." + std::to_string(dead) + ".3.tmp";
  const std::string deadEncoder = deadSave + ".aB3dE9";
  const std::string liveSave = ".Thumbnails.256.06.JPG." + std::to_string(::getpid()) + ".4.tmp";
  touch(deadSave);
  touch(deadEncoder);
  touch(liveSave);
  touch(".not-a-temporary");
  {
    MCImageCache cache(root_);
    EXPECT_FALSE(std::filesystem::exists(root_ / deadSave));
    EXPECT_FALSE(std::filesystem::exists(root_ / deadEncoder));
    EXPECT_TRUE(std::filesystem::exists(root_ / liveSave)) << "its writer is alive";
    EXPECT_TRUE(std::filesystem::exists(root_ / ".not-a-temporary"));
    EXPECT_EQ(cache.pixelSizes(), (std::vector<int64_t>{256}));
    touch(deadSave);
    cache.clean();
    EXPECT_FALSE(std::filesystem::exists(root_ / deadSave));
  }
}
