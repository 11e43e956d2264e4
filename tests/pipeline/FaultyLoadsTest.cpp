// Loads that go wrong still answer, exactly once, on the main queue: a plug-in that throws, a
// strategy that throws or runs out of memory, a strategy that gives no resource, a completion
// that throws.

#include "PipelineTestFiles.h"

#include "../support/LogCapture.h"

#include <vesperon/pipeline/MCResourceLoader.h>
#include <vesperon/pipeline/MCThumbnailCache.h>
#include <vesperon/platform/MCMainQueue.h>

#include <fstream>
#include <map>
#include <new>
#include <stdexcept>

namespace fs = std::filesystem;

namespace {

void registerThrowingCodec() {
  static const bool registered = (MCImageCodecManager::sharedInstance().registerPlugInsAtURL(PIPELINE_FIXTURE_PLUGINS), true);
  ASSERT_TRUE(registered);
}

// The real thumbnail strategy, with faults of its own for files that ask for them.
class FaultyStrategy : public MCThumbnailLoadStrategy {
 public:
  std::shared_ptr<MCResource> loadResourceForDescriptor(const std::shared_ptr<const MCResourceDescriptor>& descriptor,
                                                        const std::shared_ptr<const MCResourceLoadOptions>& options) override {
    const std::string name = std::dynamic_pointer_cast<const MCImageDescriptor>(descriptor)->fileURL.filename().string();
    if (name.find("strategy-throws") != std::string::npos) throw std::runtime_error("strategy is broken");
    if (name.find("strategy-bad-alloc") != std::string::npos) throw std::bad_alloc();
    if (name.find("strategy-none") != std::string::npos) return nullptr;
    return MCThumbnailLoadStrategy::loadResourceForDescriptor(descriptor, options);
  }
};

class Provider : public MCThumbnailDescriptorProvider {
 public:
  explicit Provider(fs::path file) : descriptor_(std::make_shared<MCImageDescriptor>(std::move(file))) {}
  MCAnyHashable resourceID() const override { return descriptor_->fileURL.string(); }
  std::shared_ptr<const MCImageDescriptor> resourceDescriptor() const override { return descriptor_; }

 private:
  std::shared_ptr<MCImageDescriptor> descriptor_;
};

class Delegate : public MCThumbnailCacheDelegate {
 public:
  std::shared_ptr<MCThumbnailDescriptorProvider> descriptorProviderAtIndexPath(MCThumbnailCache&,
                                                                               const MCIndexPath& indexPath) override {
    return indexPath.item < items.size() ? items[indexPath.item] : nullptr;
  }
  void didFetchThumbnail(MCThumbnailCache&, const std::shared_ptr<const MCThumbnail>& thumbnail,
                         const MCIndexPath& indexPath) override {
    arrivals[indexPath.item].push_back(thumbnail);
    ++count;
  }
  std::vector<std::shared_ptr<Provider>> items;
  std::map<uint64_t, std::vector<std::shared_ptr<const MCThumbnail>>> arrivals;
  std::size_t count = 0;
};

std::size_t occurrences(const std::string& text, const std::string& part) {
  std::size_t n = 0;
  for (auto at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) ++n;
  return n;
}

}  // namespace

TEST(FaultyLoads, EveryIndexPathIsAnsweredOnceWhenPlugInsAndStrategiesThrow) {
  registerThrowingCodec();
  LogCapture log;
  ASSERT_TRUE(log.available());
  PipelineTestFolder folder("faulty-loads");
  const std::vector<std::string> names = {
      "good.jpg",                // the real plug-in
      "throws-open-good.jpg",    // the faulty plug-in throws on opening; the real one reads it
      "throws-decode-good.jpg",  // it throws while decoding; the real one reads it
      "bad-alloc-good.jpg",      // it runs out of memory; the real one reads it
      "strategy-throws.jpg",     // the strategy throws
      "strategy-bad-alloc.jpg",  // the strategy runs out of memory
      "strategy-none.jpg",       // the strategy gives no resource
  };
  auto delegate = std::make_shared<Delegate>();
  for (const auto& name : names) {
    folder.jpeg(name, 64, 48, kGreen);
    delegate->items.push_back(std::make_shared<Provider>(folder.path() / name));
  }
  // A throwing plug-in in front of a damaged file: none from either, still one answer.
  std::ofstream(folder.path() / "throws-decode-garbage.jpg") << "not a JPEG";
  delegate->items.push_back(std::make_shared<Provider>(folder.path() / "throws-decode-garbage.jpg"));

  auto options = std::make_shared<MCThumbnailLoadOptions>(std::make_shared<FaultyStrategy>());
  options->setThumbnailMaxPixelSize(32);
  auto cache = MCThumbnailCache::create(options, 64);
  cache->setDelegate(delegate);
  std::vector<MCIndexPath> paths;
  for (uint64_t i = 0; i < delegate->items.size(); ++i) paths.push_back(MCIndexPath::indexPathForItem(i, 0));
  cache->fetchThumbnailsAtIndexPaths(paths);
  ASSERT_TRUE(MCMainQueue::runUntil([&] { return delegate->count >= paths.size(); }, std::chrono::seconds(5)))
      << delegate->count << " of " << paths.size() << " answered";
  cache->resourceCache().loader().operationQueue()->waitUntilAllOperationsAreFinished();
  MCMainQueue::drain();
  EXPECT_EQ(cache->pendingCount(), 0u) << "no index path stays pending";
  ASSERT_EQ(delegate->count, paths.size()) << "each answered exactly once";

  for (uint64_t i = 0; i < delegate->items.size(); ++i) {
    const std::string name = delegate->items[i]->resourceDescriptor()->fileURL.filename().string();
    SCOPED_TRACE(name);
    ASSERT_EQ(delegate->arrivals[i].size(), 1u);
    const auto& thumbnail = delegate->arrivals[i].front();
    const bool readable = name.find("good") != std::string::npos;
    const bool noResource = name.rfind("strategy-", 0) == 0;
    if (readable) {
      ASSERT_TRUE(thumbnail && thumbnail->image());
      EXPECT_TRUE(centreIs(thumbnail->image(), kGreen));
    } else if (noResource) {
      // No resource: no thumbnail delivered, none stored, a later look-up is a miss.
      EXPECT_FALSE(thumbnail);
      EXPECT_FALSE(cache->thumbnailForDescriptorProvider(*delegate->items[i]));
    } else {
      ASSERT_TRUE(thumbnail);  // the strategy's resource, without an image
      EXPECT_FALSE(thumbnail->image());
    }
  }

  // Each fault logged once, where it was caught.
  const std::string text = log.text();
  const auto at = [&](const char* name) { return (folder.path() / name).string(); };
  EXPECT_EQ(occurrences(text, "Couldn't load " + at("strategy-throws.jpg") + ": strategy is broken"), 1u) << text;
  EXPECT_EQ(occurrences(text, "Couldn't load " + at("strategy-bad-alloc.jpg") + ": out of memory"), 1u) << text;
  EXPECT_EQ(occurrences(text, "Codec test.throwing raised reading " + at("throws-open-good.jpg") + ": opening is broken"), 1u)
      << text;
  EXPECT_EQ(occurrences(text, "Codec test.throwing raised reading " + at("bad-alloc-good.jpg") + ": out of memory"), 1u)
      << text;
  EXPECT_EQ(occurrences(text, "operation raised"), 0u) << "the queue's last guard is not the road";
  EXPECT_EQ(occurrences(text, "strategy-none"), 0u) << "a load that gives nothing is no fault";
}

TEST(FaultyLoads, AThrowingCompletionIsLoggedAndTheOtherAnswersArrive) {
  LogCapture log;
  ASSERT_TRUE(log.available());
  auto strategy = std::make_shared<GatedStrategy>();
  auto options = std::make_shared<MCThumbnailLoadOptions>(strategy);
  MCResourceLoader loader;
  loader.operationQueue()->setMaxConcurrentOperationCount(1);
  std::vector<int> answered;
  for (int i = 0; i < 4; ++i)
    loader.requestResourceForIdentifier(i, std::make_shared<MCImageDescriptor>("none"), options,
                                        [&, i](std::shared_ptr<MCResource>) {
                                          answered.push_back(i);
                                          if (i == 1) throw std::runtime_error("the host's completion failed");
                                        });
  strategy->open();
  // The answers come in one batch or several: either way the one that throws does not stop those
  // queued behind it.
  ASSERT_TRUE(MCMainQueue::runUntil([&] { return answered.size() == 4; }));
  EXPECT_EQ(answered, (std::vector<int>{0, 1, 2, 3}));
  EXPECT_EQ(occurrences(log.text(), "main queue work raised: the host's completion failed"), 1u) << log.text();
  // And the main queue goes on working.
  bool later = false;
  MCMainQueue::async([&] { later = true; });
  EXPECT_TRUE(MCMainQueue::runUntil([&] { return later; }));
}
