#include "PipelineTestFiles.h"

#include <vesperon/pipeline/MCImage.h>
#include <vesperon/pipeline/MCImageDescriptor.h>
#include <vesperon/pipeline/MCResourceLoader.h>
#include <vesperon/pipeline/MCThumbnailLoadOptions.h>
#include <vesperon/platform/MCMainQueue.h>

namespace {

std::shared_ptr<const MCImageDescriptor> descriptor(const char* name) {
  return std::make_shared<MCImageDescriptor>(name);
}

}  // namespace

TEST(MCResourceLoader, CompletionRunsOnTheMainQueueNeverOnTheCallersStack) {
  auto strategy = std::make_shared<GatedStrategy>();
  strategy->open();
  auto options = std::make_shared<MCThumbnailLoadOptions>(strategy);
  MCResourceLoader loader;
  int calls = 0;
  bool onMain = false;
  std::shared_ptr<MCResource> got;
  loader.requestResourceForIdentifier("a", descriptor("a.jpg"), options, [&](std::shared_ptr<MCResource> r) {
    ++calls;
    onMain = MCMainQueue::isMainThread();
    got = r;
  });
  // Give the worker time to finish: the completion must still wait for the main queue.
  loader.operationQueue()->waitUntilAllOperationsAreFinished();
  EXPECT_EQ(calls, 0);
  ASSERT_TRUE(MCMainQueue::runUntil([&] { return calls == 1; }));
  EXPECT_TRUE(onMain);
  ASSERT_NE(got, nullptr);
  EXPECT_EQ(got->resourceType(), 1);
  EXPECT_NE(strategy->lastWorker(), std::this_thread::get_id());

  // A strategy that gives nothing still causes one completion, with nothing.
  int noneCalls = 0;
  loader.requestResourceForIdentifier("b", descriptor("none"), options, [&](std::shared_ptr<MCResource> r) {
    ++noneCalls;
    EXPECT_EQ(r, nullptr);
  });
  ASSERT_TRUE(MCMainQueue::runUntil([&] { return noneCalls == 1; }));
  MCMainQueue::drain();
  EXPECT_EQ(noneCalls, 1);
}

TEST(MCResourceLoader, CancelledQueuedRequestDeliversNothingAndRunningOneDelivers) {
  auto strategy = std::make_shared<GatedStrategy>();
  auto options = std::make_shared<MCThumbnailLoadOptions>(strategy);
  MCResourceLoader loader;
  loader.operationQueue()->setMaxConcurrentOperationCount(1);
  std::vector<std::string> delivered;
  for (const char* id : {"running", "queued", "kept"})
    loader.requestResourceForIdentifier(id, descriptor(id), options,
                                        [&, id](std::shared_ptr<MCResource>) { delivered.push_back(id); });
  strategy->waitForStarted(1);
  loader.cancelRequestWithID("running");
  loader.cancelRequestsWithIDs({"queued"});
  strategy->open();
  ASSERT_TRUE(MCMainQueue::runUntil([&] { return delivered.size() == 2; }));
  loader.operationQueue()->waitUntilAllOperationsAreFinished();
  MCMainQueue::drain();
  EXPECT_EQ(delivered, (std::vector<std::string>{"running", "kept"}));
}

TEST(MCResourceLoader, LoadersAreIndependentEvenWithEqualIdentifiers) {
  auto strategy = std::make_shared<GatedStrategy>();
  auto options = std::make_shared<MCThumbnailLoadOptions>(strategy);
  MCResourceLoader first, second;
  first.operationQueue()->setMaxConcurrentOperationCount(1);
  second.operationQueue()->setMaxConcurrentOperationCount(1);
  int firstCalls = 0, secondCalls = 0;
  // Each loader is busy with a blocker, so that "same" waits in both queues.
  first.requestResourceForIdentifier("blocker", descriptor("x"), options, [&](auto) { ++firstCalls; });
  second.requestResourceForIdentifier("blocker", descriptor("x"), options, [&](auto) { ++secondCalls; });
  strategy->waitForStarted(2);
  first.requestResourceForIdentifier("same", descriptor("x"), options, [&](auto) { ++firstCalls; });
  second.requestResourceForIdentifier("same", descriptor("x"), options, [&](auto) { ++secondCalls; });
  first.cancelRequestWithID("same");
  strategy->open();
  ASSERT_TRUE(MCMainQueue::runUntil([&] { return firstCalls == 1 && secondCalls == 2; }));
  first.operationQueue()->waitUntilAllOperationsAreFinished();
  MCMainQueue::drain();
  EXPECT_EQ(firstCalls, 1);
  EXPECT_EQ(secondCalls, 2);
}

TEST(MCResourceLoader, DestroyingTheLoaderDropsQueuedRequests) {
  auto strategy = std::make_shared<GatedStrategy>();
  auto options = std::make_shared<MCThumbnailLoadOptions>(strategy);
  int calls = 0;
  {
    MCResourceLoader loader;
    loader.operationQueue()->setMaxConcurrentOperationCount(1);
    loader.requestResourceForIdentifier(1, descriptor("x"), options, [&](auto) { ++calls; });
    loader.requestResourceForIdentifier(2, descriptor("x"), options, [&](auto) { ++calls; });
    strategy->waitForStarted(1);
  }
  strategy->open();
  EXPECT_TRUE(MCMainQueue::runUntil([&] { return calls == 1; }));
  MCMainQueue::runUntil([] { return false; }, std::chrono::milliseconds(50));
  EXPECT_EQ(calls, 1) << "the running request delivers, the queued one is dropped";
}

TEST(MCImage, RefusesNoImageAndKeepsPixelSize) {
  EXPECT_EQ(MCImage::create(nullptr, 2.0), nullptr);
  auto image = MCImage::create(MCRasterImage::createRGBA8(4, 2, std::vector<uint8_t>(32)), 2.0);
  ASSERT_NE(image, nullptr);
  EXPECT_EQ(image->size(), (MCSize{4, 2}));
  EXPECT_EQ(image->scale(), 2.0);
  EXPECT_EQ(image->colorSpace(), MCColorSpace::sRGB());
}
