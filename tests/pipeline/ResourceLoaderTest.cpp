#include <vesperon/pipeline/MCImage.h>
#include <vesperon/pipeline/MCImageDescriptor.h>
#include <vesperon/pipeline/MCResourceLoader.h>
#include <vesperon/pipeline/MCThumbnailResource.h>
#include <vesperon/platform/MCMainQueue.h>

#include <gtest/gtest.h>

#include <condition_variable>
#include <future>
#include <mutex>
#include <thread>

namespace {

// A strategy that makes a one-pixel thumbnail, or nothing for files named "none"; it can be held
// at a gate so that a test controls what is queued and what runs.
class GatedStrategy : public MCResourceLoadStrategy {
 public:
  std::shared_ptr<MCResource> loadResourceForDescriptor(const std::shared_ptr<const MCResourceDescriptor>& descriptor,
                                                        const std::shared_ptr<const MCResourceLoadOptions>&) override {
    {
      std::unique_lock l(m);
      ++started;
      startedChanged.notify_all();
      cv.wait(l, [&] { return open; });
      workerThreads.push_back(std::this_thread::get_id());
    }
    auto image = std::dynamic_pointer_cast<const MCImageDescriptor>(descriptor);
    if (!image || image->fileURL == "none") return nullptr;
    return std::make_shared<MCThumbnailResource>(MCThumbnail(MCRasterImage::createRGBA8(1, 1, {1, 2, 3, 255})), 64);
  }
  void release() {
    std::lock_guard l(m);
    open = true;
    cv.notify_all();
  }
  void waitForStarted(int n) {
    std::unique_lock l(m);
    startedChanged.wait(l, [&] { return started >= n; });
  }
  std::mutex m;
  std::condition_variable cv, startedChanged;
  bool open = false;
  int started = 0;
  std::vector<std::thread::id> workerThreads;
};

class Options : public MCResourceLoadOptions {
 public:
  explicit Options(std::shared_ptr<MCResourceLoadStrategy> s) : s_(std::move(s)) {}
  std::shared_ptr<MCResourceLoadStrategy> strategy() const override { return s_; }

 private:
  std::shared_ptr<MCResourceLoadStrategy> s_;
};

std::shared_ptr<const MCImageDescriptor> descriptor(const char* name) {
  return std::make_shared<MCImageDescriptor>(name);
}

}  // namespace

TEST(MCResourceLoader, CompletionRunsOnTheMainQueueNeverOnTheCallersStack) {
  auto strategy = std::make_shared<GatedStrategy>();
  strategy->release();
  auto options = std::make_shared<Options>(strategy);
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
  EXPECT_NE(strategy->workerThreads.at(0), std::this_thread::get_id());

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
  auto options = std::make_shared<Options>(strategy);
  MCResourceLoader loader;
  loader.operationQueue()->setMaxConcurrentOperationCount(1);
  std::vector<std::string> delivered;
  for (const char* id : {"running", "queued", "kept"})
    loader.requestResourceForIdentifier(id, descriptor(id), options,
                                        [&, id](std::shared_ptr<MCResource>) { delivered.push_back(id); });
  strategy->waitForStarted(1);
  loader.cancelRequestWithID("running");
  loader.cancelRequestsWithIDs({"queued"});
  strategy->release();
  ASSERT_TRUE(MCMainQueue::runUntil([&] { return delivered.size() == 2; }));
  loader.operationQueue()->waitUntilAllOperationsAreFinished();
  MCMainQueue::drain();
  EXPECT_EQ(delivered, (std::vector<std::string>{"running", "kept"}));
}

TEST(MCResourceLoader, LoadersAreIndependentEvenWithEqualIdentifiers) {
  auto strategy = std::make_shared<GatedStrategy>();
  auto options = std::make_shared<Options>(strategy);
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
  strategy->release();
  ASSERT_TRUE(MCMainQueue::runUntil([&] { return firstCalls == 1 && secondCalls == 2; }));
  first.operationQueue()->waitUntilAllOperationsAreFinished();
  MCMainQueue::drain();
  EXPECT_EQ(firstCalls, 1);
  EXPECT_EQ(secondCalls, 2);
}

TEST(MCResourceLoader, DestroyingTheLoaderDropsQueuedRequests) {
  auto strategy = std::make_shared<GatedStrategy>();
  auto options = std::make_shared<Options>(strategy);
  int calls = 0;
  {
    MCResourceLoader loader;
    loader.operationQueue()->setMaxConcurrentOperationCount(1);
    loader.requestResourceForIdentifier(1, descriptor("x"), options, [&](auto) { ++calls; });
    loader.requestResourceForIdentifier(2, descriptor("x"), options, [&](auto) { ++calls; });
    strategy->waitForStarted(1);
  }
  strategy->release();
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
  EXPECT_EQ(MCRasterImage::createRGBA8(4, 2, std::vector<uint8_t>(31)), nullptr) << "too few pixel bytes";
}
