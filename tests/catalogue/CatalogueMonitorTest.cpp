// MCCatalogueMonitor on a real folder and a real main loop: new, edited and deleted photos, and a
// folder made after the monitor started, reach the catalogue without a scan being asked for.

#include <vesperon/catalogue/MCCatalogueMonitor.h>
#include <vesperon/platform/MCMainQueue.h>
#include <vesperon/platform/MCPlatformOperationQueue.h>
#include <vesperon/predicates/MCPredicateParser.h>

#include <gtest/gtest.h>

#include <unistd.h>

namespace fs = std::filesystem;

namespace {

struct Folder {
  fs::path path;
  Folder() {
    char name[] = "/tmp/vesperon-monitor-XXXXXX";
    path = ::mkdtemp(name);
  }
  ~Folder() {
    std::error_code ignored;
    fs::remove_all(path, ignored);
  }
};

void copySample(const std::string& sample, const fs::path& to) {
  fs::create_directories(to.parent_path());
  fs::copy_file(fs::path(VESPERON_SAMPLES_DIR) / sample, to, fs::copy_options::overwrite_existing);
}

}  // namespace

TEST(CatalogueMonitor, ChangesUnderTheRootsReachTheCatalogue) {
  Folder temp;
  const fs::path photos = temp.path / "photos";
  copySample("beach.jpg", photos / "a.jpg");
  copySample("fern.jpg", photos / "old" / "b.jpg");
  auto catalogue = MCCatalogue::open(temp.path / "catalogue.db");
  ASSERT_TRUE(catalogue);
  catalogue->scan({photos});
  ASSERT_EQ(catalogue->fileCount(), 2u);

  auto queue = std::make_shared<MCPlatformOperationQueue>();
  uint64_t updates = 0, read = 0, removed = 0;
  auto monitor = MCCatalogueMonitor::create(
      catalogue, {photos}, queue,
      [&](const MCCatalogueScanProgress& progress) {
        ++updates;
        read += progress.read;
        removed += progress.removed;
      },
      std::chrono::milliseconds(50));
  ASSERT_TRUE(monitor);
  EXPECT_EQ(monitor->watchedFolderCount(), 2u);

  // A new folder with a photo in it, a photo removed.
  fs::create_directories(photos / "new");
  MCMainQueue::drain(std::chrono::milliseconds(200));  // the folder is watched once its event arrives
  copySample("mushrooms.jpg", photos / "new" / "c.jpg");
  fs::remove(photos / "old" / "b.jpg");
  // Done once the scans that wrote both changes have reported.
  ASSERT_TRUE(MCMainQueue::runUntil([&] { return read >= 1 && removed >= 1; }, std::chrono::seconds(10)));
  EXPECT_EQ(catalogue->fileCount(), 2u);
  EXPECT_TRUE(catalogue->propertiesOfFile(photos / "new" / "c.jpg"));
  EXPECT_GE(updates, 1u);
  EXPECT_GE(read, 1u);  // once, or again if a scan came while it was being written
  EXPECT_EQ(removed, 1u);
  EXPECT_FALSE(catalogue->propertiesOfFile(photos / "old" / "b.jpg"));
  EXPECT_EQ(monitor->watchedFolderCount(), 3u);

  // After stop, nothing more arrives.
  monitor->stop();
  copySample("fern.jpg", photos / "d.jpg");
  MCMainQueue::drain(std::chrono::milliseconds(300));
  queue->waitUntilAllOperationsAreFinished();
  EXPECT_FALSE(catalogue->propertiesOfFile(photos / "d.jpg"));
}
