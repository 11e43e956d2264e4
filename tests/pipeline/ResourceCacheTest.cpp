// MCResourceCache on its own: a hit on the caller's stack, a failed load stored and loaded again,
// invalidating a key, a cancel, the answer after the cache is gone, two fetches of one key.

#include "PipelineTestFiles.h"

#include <vesperon/pipeline/MCResourceCache.h>
#include <vesperon/pipeline/MCThumbnailLoadOptions.h>
#include <vesperon/pipeline/MCThumbnailResource.h>
#include <vesperon/platform/MCMainQueue.h>

namespace {

std::shared_ptr<const MCImageDescriptor> descriptor(const std::filesystem::path& file) {
  return std::make_shared<MCImageDescriptor>(file);
}

struct Answers {
  std::vector<std::shared_ptr<MCResource>> got;
  MCResourceCompletion completion() {
    return [this](std::shared_ptr<MCResource> r) { got.push_back(std::move(r)); };
  }
};

}  // namespace

TEST(MCResourceCache, HitAnswersOnTheCallersStackAndFailedLoadsLoadAgain) {
  PipelineTestFolder folder("resource-cache-hit");
  auto red = folder.jpeg("red.jpg", 40, 30, kRed);
  auto strategy = std::make_shared<GatedStrategy>();
  strategy->open();
  auto options = std::make_shared<MCThumbnailLoadOptions>(strategy);
  options->setThumbnailMaxPixelSize(16);
  auto cache = MCResourceCache::create(8);

  Answers a;
  cache->fetchResourceForKey("red", descriptor(red), options, a.completion());
  EXPECT_TRUE(a.got.empty()) << "a miss answers later, on the main queue";
  ASSERT_TRUE(MCMainQueue::runUntil([&] { return a.got.size() == 1; }));
  ASSERT_TRUE(a.got[0]);
  EXPECT_EQ(cache->resourceForKey("red"), a.got[0]);
  cache->fetchResourceForKey("red", descriptor(red), options, a.completion());
  ASSERT_EQ(a.got.size(), 2u) << "a hit answers before the fetch returns";
  EXPECT_EQ(a.got[1], a.got[0]);
  EXPECT_EQ(strategy->started(), 1);

  // A load that gives nothing is stored as an empty item: it takes a place, and misses.
  cache->fetchResourceForKey("none", descriptor("none"), options, a.completion());
  ASSERT_TRUE(MCMainQueue::runUntil([&] { return a.got.size() == 3; }));
  EXPECT_FALSE(a.got[2]);
  EXPECT_EQ(cache->cache().count(), 2u);
  EXPECT_FALSE(cache->resourceForKey("none"));
  cache->fetchResourceForKey("none", descriptor("none"), options, a.completion());
  EXPECT_EQ(a.got.size(), 3u) << "the empty item is no hit";
  ASSERT_TRUE(MCMainQueue::runUntil([&] { return a.got.size() == 4; }));
  EXPECT_EQ(strategy->started(), 3);

  // invalidateResourceForKey forgets the key: the next fetch loads again.
  cache->invalidateResourceForKey("red");
  EXPECT_FALSE(cache->resourceForKey("red"));
  EXPECT_EQ(cache->cache().count(), 1u);
  cache->fetchResourceForKey("red", descriptor(red), options, a.completion());
  ASSERT_TRUE(MCMainQueue::runUntil([&] { return a.got.size() == 5; }));
  EXPECT_EQ(strategy->started(), 4);
  EXPECT_NE(a.got[4], a.got[0]) << "a new load, not the forgotten resource";
}

TEST(MCResourceCache, CancelDropsAQueuedLoadAndTheAnswerOutlivesTheCache) {
  PipelineTestFolder folder("resource-cache-cancel");
  auto blue = folder.jpeg("blue.jpg", 40, 30, kBlue);
  auto strategy = std::make_shared<GatedStrategy>();
  auto options = std::make_shared<MCThumbnailLoadOptions>(strategy);
  auto cache = MCResourceCache::create(8);
  cache->loader().operationQueue()->setMaxConcurrentOperationCount(1);

  Answers a;
  cache->fetchResourceForKey("running", descriptor(blue), options, a.completion());
  strategy->waitForStarted(1);
  Answers cancelled;
  cache->fetchResourceForKey("cancelled", descriptor(blue), options, cancelled.completion());
  cache->cancelFetchingResourcesForKeys({"cancelled"});
  EXPECT_FALSE(cache->loader().operationQueue()->operationWithIdentifier("cancelled")) << "the cancel leaves the queue";
  EXPECT_TRUE(cache->loader().operationQueue()->operationWithIdentifier("running"));

  // The cache goes away before the answers: they still arrive, and nothing is stored anywhere.
  std::weak_ptr<MCResourceCache> weak = cache;
  cache.reset();
  strategy->open();
  // The destroyed loader dropped what was queued; the running load answers.
  ASSERT_TRUE(MCMainQueue::runUntil([&] { return a.got.size() == 1; }));
  EXPECT_TRUE(a.got[0]);
  EXPECT_FALSE(weak.lock());
  MCMainQueue::runUntil([] { return false; }, std::chrono::milliseconds(30));
  EXPECT_TRUE(cancelled.got.empty());
}

TEST(MCResourceCache, TwoFetchesOfOneKeyBothAnswerUnlessTheLaterIsCancelled) {
  PipelineTestFolder folder("resource-cache-twice");
  auto red = folder.jpeg("red.jpg", 40, 30, kRed);
  auto strategy = std::make_shared<GatedStrategy>();
  auto options = std::make_shared<MCThumbnailLoadOptions>(strategy);
  auto cache = MCResourceCache::create(8);
  cache->loader().operationQueue()->setMaxConcurrentOperationCount(1);

  Answers blocker, first, second, third;
  cache->fetchResourceForKey("blocker", descriptor(red), options, blocker.completion());
  strategy->waitForStarted(1);
  cache->fetchResourceForKey("k", descriptor(red), options, first.completion());
  cache->fetchResourceForKey("k", descriptor(red), options, second.completion());
  cache->cancelFetchingResourceForKey("k");  // reaches the later one only
  strategy->open();
  ASSERT_TRUE(MCMainQueue::runUntil([&] { return first.got.size() == 1; }));
  cache->loader().operationQueue()->waitUntilAllOperationsAreFinished();
  MCMainQueue::drain();
  EXPECT_TRUE(second.got.empty());
  EXPECT_TRUE(first.got[0]);
  EXPECT_EQ(cache->resourceForKey("k"), first.got[0]);
  EXPECT_EQ(cache->cache().count(), 2u);

  // Without a cancel both run, and the later answer is the one stored.
  cache->invalidate();
  cache->fetchResourceForKey("k", descriptor(red), options, first.completion());
  cache->fetchResourceForKey("k", descriptor(red), options, third.completion());
  ASSERT_TRUE(MCMainQueue::runUntil([&] { return first.got.size() == 2 && third.got.size() == 1; }));
  EXPECT_EQ(cache->resourceForKey("k"), third.got[0]);
  EXPECT_EQ(cache->cache().count(), 1u);
}
