#include <vesperon/pipeline/MCImageCache.h>

#include <gtest/gtest.h>

#include "../support/LogCapture.h"

#include <fstream>
#include <unistd.h>

namespace {

std::filesystem::path freshFolder(const std::string& name) {
  const auto folder = std::filesystem::temp_directory_path() /
                      ("vesperon-cache-" + name + "-" + std::to_string(::getpid()));
  std::filesystem::remove_all(folder);
  return folder;
}

}  // namespace

TEST(ImageCacheContainer, PathTableUsesWholeShiftedNumbers) {
  MCImageCacheContainer container("/cache/Thumbnails", MCLog::sdkImageCache());
  EXPECT_EQ(container.imageURL(5), "/cache/Thumbnails/00/00/05.JPG");
  EXPECT_EQ(container.imageURL(418), "/cache/Thumbnails/00/01/1a2.JPG");
  EXPECT_EQ(container.imageURL(1193046), "/cache/Thumbnails/12/1234/123456.JPG");
  EXPECT_EQ(container.imageURL(0), "/cache/Thumbnails/00/00/00.JPG");
  EXPECT_EQ(container.imageURL(-1), "/cache/Thumbnails/ffffffffffffffff/ffffffffffffffff/ffffffffffffffff.JPG")
      << "the sign survives the arithmetic shift";
  EXPECT_EQ(container.imageURL(-256).parent_path(), "/cache/Thumbnails/ffffffffffffffff/ffffffffffffffff");
  EXPECT_EQ(container.imageURL(0x1200).parent_path(), container.imageURL(0x12ff).parent_path());
  EXPECT_NE(container.imageURL(0x1200).parent_path(), container.imageURL(0x1300).parent_path());
  EXPECT_FALSE(container.imageExists(container.imageURL(5)));
}

TEST(ImageCache, FindsContainersByFolderName) {
  const auto root = freshFolder("names");
  for (const char* name : {"Thumbnails", "Thumbnails.256", "Other.512", "Thumbnails.abc", "Thumbnails.12x", "plain",
                           ".hidden.64"})
    std::filesystem::create_directories(root / name);
  std::ofstream(root / "file.32") << "any entry with a numeric extension counts";
  MCImageCache cache(root);
  EXPECT_EQ(cache.pixelSizes(), (std::vector<int64_t>{32, 128, 256, 512}));
  EXPECT_EQ(MCImageCache::directoryNameForPixelSize(128), "Thumbnails");
  EXPECT_EQ(MCImageCache::directoryNameForPixelSize(256), "Thumbnails.256");
  std::filesystem::remove_all(root);
}

TEST(ImageCache, FirstStartAndQueriesOfNewSizes) {
  const auto root = freshFolder("first");
  MCImageCache cache(root);
  EXPECT_TRUE(cache.pixelSizes().empty());
  EXPECT_FALSE(std::filesystem::exists(root)) << "construction only looks";
  EXPECT_TRUE(cache.cacheExists());

  EXPECT_FALSE(cache.containsImageWithIdentifier(7, 300));
  EXPECT_EQ(cache.pixelSizes(), (std::vector<int64_t>{300})) << "a mere query enters the size";
  EXPECT_TRUE(std::filesystem::is_directory(root));
  EXPECT_FALSE(std::filesystem::exists(root / "Thumbnails.300")) << "its folder waits for the first image";
  EXPECT_FALSE(cache.containsImageWithIdentifier(7));
  EXPECT_FALSE(cache.imageWithIdentifier(7, 300));
  EXPECT_FALSE(cache.imageWithIdentifierMinPixelSize(7, 0));
  LogCapture log;
  cache.removeImageWithIdentifier(7);  // logs, and carries on
  cache.clean();
  if (log.available()) {
    EXPECT_TRUE(log.contains("[com.quillary.vesperon, Image Cache] : Couldn't remove from cache image with ID: 7\n"))
        << log.text();
    EXPECT_TRUE(log.contains("Couldn't clean caches container at: " + (root / "Thumbnails.300").string() + "\n"));
  }
  EXPECT_EQ(cache.pixelSizes(), (std::vector<int64_t>{300}));
  std::filesystem::remove_all(root);
}

TEST(ImageCache, RootThatCannotBeMadeGivesNoContainers) {
  const auto parent = freshFolder("blocked");
  std::filesystem::create_directories(parent);
  std::ofstream(parent / "file") << "a file where a folder should be";
  MCImageCache cache(parent / "file" / "root");
  LogCapture log;
  EXPECT_FALSE(cache.containsImageWithIdentifier(1, 128));
  if (log.available()) {
    EXPECT_TRUE(log.contains("Couldn't create Caches folder\n")) << log.text();
  }
  EXPECT_TRUE(cache.pixelSizes().empty());
  cache.addImage(MCRasterImage::createRGBA8(1, 1, {0, 0, 0, 255}), 1, 128);
  EXPECT_FALSE(cache.imageWithIdentifier(1, 128));
  std::filesystem::remove_all(parent);
}
