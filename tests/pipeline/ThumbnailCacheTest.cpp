#include "PipelineTestFiles.h"

#include <vesperon/pipeline/MCThumbnailCache.h>
#include <vesperon/platform/MCMainQueue.h>

#include <map>

namespace {

class Provider : public MCThumbnailDescriptorProvider {
 public:
  Provider(std::string id, std::filesystem::path file)
      : id_(std::move(id)), descriptor_(std::make_shared<MCImageDescriptor>(std::move(file))) {}
  MCAnyHashable resourceID() const override { return id_; }
  std::shared_ptr<const MCImageDescriptor> resourceDescriptor() const override { return descriptor_; }

 private:
  std::string id_;
  std::shared_ptr<MCImageDescriptor> descriptor_;
};

struct Arrival {
  MCIndexPath indexPath;
  std::shared_ptr<const MCThumbnail> thumbnail;
};

class Delegate : public MCThumbnailCacheDelegate {
 public:
  std::shared_ptr<MCThumbnailDescriptorProvider> descriptorProviderAtIndexPath(MCThumbnailCache&,
                                                                               const MCIndexPath& indexPath) override {
    auto it = items.find(indexPath);
    return it == items.end() ? nullptr : it->second;
  }
  void didFetchThumbnail(MCThumbnailCache&, const std::shared_ptr<const MCThumbnail>& thumbnail,
                         const MCIndexPath& indexPath) override {
    EXPECT_TRUE(MCMainQueue::isMainThread());
    arrivals.push_back({indexPath, thumbnail});
  }
  std::map<MCIndexPath, std::shared_ptr<Provider>> items;
  std::vector<Arrival> arrivals;
};

MCIndexPath at(uint64_t item) { return MCIndexPath::indexPathForItem(item, 0); }

struct Fixture {
  explicit Fixture(const std::string& name, uint64_t capacity = 16)
      : folder(name),
        strategy(std::make_shared<GatedStrategy>()),
        options(std::make_shared<MCThumbnailLoadOptions>(strategy)),
        cache(MCThumbnailCache::create(options, capacity)),
        delegate(std::make_shared<Delegate>()) {
    options->setThumbnailMaxPixelSize(32);
    cache->setDelegate(delegate);
    red = folder.jpeg("red.jpg", 64, 48, kRed);
    blue = folder.jpeg("blue.jpg", 64, 48, kBlue);
  }
  void waitForArrivals(std::size_t n) {
    ASSERT_TRUE(MCMainQueue::runUntil([&] { return delegate->arrivals.size() >= n; }));
  }
  PipelineTestFolder folder;
  std::shared_ptr<GatedStrategy> strategy;
  std::shared_ptr<MCThumbnailLoadOptions> options;
  std::shared_ptr<MCThumbnailCache> cache;
  std::shared_ptr<Delegate> delegate;
  std::filesystem::path red, blue;
};

}  // namespace

TEST(ThumbnailCache, LoadsAsynchronouslyThenAnswersFromMemory) {
  Fixture f("tc-load");
  auto provider = std::make_shared<Provider>("red", f.red);
  f.delegate->items[at(0)] = provider;
  f.delegate->items[at(1)] = provider;
  EXPECT_FALSE(f.cache->thumbnailForDescriptorProvider(*provider));
  EXPECT_EQ(f.strategy->started(), 0);  // asking what is known starts nothing

  f.strategy->open();
  f.cache->fetchThumbnailsAtIndexPaths({at(0)});
  EXPECT_TRUE(f.delegate->arrivals.empty());  // never on the caller's stack for a load
  f.waitForArrivals(1);
  EXPECT_EQ(f.delegate->arrivals[0].indexPath, at(0));
  ASSERT_TRUE(f.delegate->arrivals[0].thumbnail->image());
  EXPECT_EQ(f.delegate->arrivals[0].thumbnail->image()->width(), 32u);
  EXPECT_TRUE(centreIs(f.delegate->arrivals[0].thumbnail->image(), kRed));
  EXPECT_EQ(f.cache->thumbnailForDescriptorProvider(*provider), f.delegate->arrivals[0].thumbnail);
  EXPECT_EQ(f.cache->pendingCount(), 0u);

  // The same item at another index path, same size: a synchronous hit.
  f.cache->fetchThumbnailsAtIndexPaths({at(1)});
  ASSERT_EQ(f.delegate->arrivals.size(), 2u);
  EXPECT_EQ(f.delegate->arrivals[1].indexPath, at(1));
  EXPECT_EQ(f.strategy->started(), 1);

  // A new size misses, while the old thumbnail keeps answering until the new one arrives.
  f.cache->setThumbnailSize(16);
  f.cache->fetchThumbnailsAtIndexPaths({at(0)});
  EXPECT_EQ(f.cache->thumbnailForDescriptorProvider(*provider)->image()->width(), 32u);
  f.waitForArrivals(3);
  EXPECT_EQ(f.cache->thumbnailForDescriptorProvider(*provider)->image()->width(), 16u);

  EXPECT_EQ(f.strategy->started(), 2);
}

TEST(ThumbnailCache, DropsAnswersForPlacesThatMovedOn) {
  Fixture f("tc-stale");
  f.delegate->items[at(0)] = std::make_shared<Provider>("red", f.red);
  f.cache->fetchThumbnailsAtIndexPaths({at(0)});
  f.strategy->waitForStarted(1);
  // The item at the place changes and the place is fetched again before the first answer.
  f.delegate->items[at(0)] = std::make_shared<Provider>("blue", f.blue);
  f.cache->fetchThumbnailsAtIndexPaths({at(0)});
  f.strategy->open();
  f.waitForArrivals(1);
  f.cache->resourceCache().loader().operationQueue()->waitUntilAllOperationsAreFinished();
  MCMainQueue::drain();
  ASSERT_EQ(f.delegate->arrivals.size(), 1u);
  EXPECT_TRUE(centreIs(f.delegate->arrivals[0].thumbnail->image(), kBlue));
  // The dropped answer was not stored as the item's thumbnail either.
  Provider red("red", f.red);
  EXPECT_FALSE(f.cache->thumbnailForDescriptorProvider(red));
}

TEST(ThumbnailCache, CancelBeforeStartDeliversNothing) {
  Fixture f("tc-cancel");
  const int width = int(f.cache->resourceCache().loader().operationQueue()->maxConcurrentOperationCount());
  ASSERT_GT(width, 0);
  // Fill every worker with a held load, then queue one more and cancel it.
  std::vector<MCIndexPath> busy;
  for (int i = 0; i < width; ++i) {
    f.delegate->items[at(i)] = std::make_shared<Provider>("busy" + std::to_string(i), f.red);
    busy.push_back(at(i));
  }
  f.cache->fetchThumbnailsAtIndexPaths(busy);
  f.strategy->waitForStarted(width);
  const MCIndexPath last = at(width);
  auto cancelled = std::make_shared<Provider>("cancelled", f.blue);
  f.delegate->items[last] = cancelled;
  f.cache->fetchThumbnailsAtIndexPaths({last});
  f.cache->cancelFetchingForThumbnailsAtIndexPaths({last, at(999)});
  EXPECT_EQ(f.cache->pendingCount(), std::size_t(width));
  f.strategy->open();
  f.waitForArrivals(std::size_t(width));
  f.cache->resourceCache().loader().operationQueue()->waitUntilAllOperationsAreFinished();
  MCMainQueue::drain();
  EXPECT_EQ(f.delegate->arrivals.size(), std::size_t(width));
  for (const auto& arrival : f.delegate->arrivals) EXPECT_NE(arrival.indexPath, last);
  EXPECT_EQ(f.strategy->started(), width);
  EXPECT_FALSE(f.cache->thumbnailForDescriptorProvider(*cancelled));
  EXPECT_EQ(f.cache->pendingCount(), 0u);
}

TEST(ThumbnailCache, FailedLoadsArriveWithoutAnImageAndInvalidateForgets) {
  Fixture f("tc-fail");
  f.strategy->open();
  auto broken = std::make_shared<Provider>("broken", f.folder.path() / "missing.jpg");
  auto good = std::make_shared<Provider>("good", f.red);
  f.delegate->items[at(0)] = broken;
  f.delegate->items[at(1)] = good;
  f.cache->fetchThumbnailsAtIndexPaths({at(0), at(1), at(2)});  // at(2) has no item
  f.waitForArrivals(2);
  MCMainQueue::drain();
  ASSERT_EQ(f.delegate->arrivals.size(), 2u);
  for (const auto& arrival : f.delegate->arrivals) EXPECT_EQ(bool(arrival.thumbnail->image()), arrival.indexPath == at(1));
  ASSERT_TRUE(f.cache->thumbnailForDescriptorProvider(*broken));
  EXPECT_FALSE(f.cache->thumbnailForDescriptorProvider(*broken)->image());

  f.cache->invalidate();
  EXPECT_FALSE(f.cache->thumbnailForDescriptorProvider(*good));
  f.cache->fetchThumbnailsAtIndexPaths({at(1)});
  EXPECT_EQ(f.delegate->arrivals.size(), 2u);  // no hit any more: it loads again
  f.waitForArrivals(3);
}

TEST(ThumbnailCache, ConvenienceConstructorSharesItsOptions) {
  auto cache = MCThumbnailCache::cacheWithThumbnailSize(128);
  EXPECT_EQ(cache->thumbnailSize(), 128);
  EXPECT_FALSE(cache->options()->createThumbnailFromImageAlways());
  EXPECT_EQ(cache->options()->thumbnailMaxPixelSize(), 128u);
  EXPECT_EQ(cache->resourceCache().cache().cacheSize(), 2048u);
}
