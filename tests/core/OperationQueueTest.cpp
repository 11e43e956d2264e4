#include <vesperon/core/MCOperationQueue.h>

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <future>
#include <mutex>
#include <thread>

namespace {

// A latch the test opens when it wants an operation to continue.
struct Gate {
  std::mutex m;
  std::condition_variable cv;
  bool open = false;
  void release() {
    std::lock_guard l(m);
    open = true;
    cv.notify_all();
  }
  void wait() {
    std::unique_lock l(m);
    cv.wait(l, [&] { return open; });
  }
};

class RecordingOperation : public MCOperation {
 public:
  RecordingOperation(MCAnyHashable id, Gate* gate = nullptr) : MCOperation(std::move(id)), gate_(gate) {}
  void main() override {
    started.set_value();
    if (gate_) gate_->wait();
    ran = true;
  }
  std::atomic<bool> ran{false};
  std::promise<void> started;

 private:
  Gate* gate_;
};

bool waitFor(const std::function<bool()>& condition) {
  for (int i = 0; i < 500 && !condition(); ++i) std::this_thread::sleep_for(std::chrono::milliseconds(5));
  return condition();
}

}  // namespace

TEST(MCOperationQueue, CancelledQueuedOperationNeverRunsAndStartedOneFinishes) {
  auto queue = MCOperationQueue::create();
  queue->setMaxConcurrentOperationCount(1);
  EXPECT_EQ(queue->maxConcurrentOperationCount(), 1);

  Gate gate;
  auto blocker = std::make_shared<RecordingOperation>("blocker", &gate);
  auto waiting = std::make_shared<RecordingOperation>("waiting");
  queue->addOperation(blocker);
  queue->addOperation(waiting);
  blocker->started.get_future().wait();

  // Cancelling the running one does not stop it; cancelling the queued one drops it.
  queue->cancelOperationWithIdentifier("blocker");
  queue->cancelOperationWithIdentifier("waiting");
  EXPECT_EQ(queue->operationWithIdentifier("blocker"), nullptr);
  EXPECT_EQ(queue->operationWithIdentifier("waiting"), nullptr);
  EXPECT_TRUE(blocker->isCancelled());
  gate.release();
  queue->waitUntilAllOperationsAreFinished();

  EXPECT_TRUE(blocker->ran);
  EXPECT_TRUE(blocker->isFinished());
  EXPECT_FALSE(waiting->ran);
  EXPECT_TRUE(waiting->isFinished()) << "a discarded operation still reaches its end";

  // Cancelling the same identifier twice is harmless; a later operation runs normally.
  queue->cancelOperationWithIdentifier("waiting");
  queue->cancelAllOperations();
  auto after = std::make_shared<RecordingOperation>("after");
  queue->addOperation(after);
  queue->waitUntilAllOperationsAreFinished();
  EXPECT_TRUE(after->ran);
}

TEST(MCOperationQueue, CompletionActionFiresOnWorkerForRunAndDiscardedOperations) {
  auto queue = MCOperationQueue::create();
  queue->setMaxConcurrentOperationCount(1);
  Gate gate;
  auto blocker = std::make_shared<RecordingOperation>(1, &gate);
  auto dropped = std::make_shared<RecordingOperation>(2);
  queue->addOperation(blocker);
  queue->addOperation(dropped);
  blocker->started.get_future().wait();
  dropped->cancel();
  gate.release();
  queue->waitUntilAllOperationsAreFinished();
  // The queue's completion action removed both entries: nothing is left to find by identifier.
  EXPECT_TRUE(waitFor([&] { return !queue->operationWithIdentifier(1) && !queue->operationWithIdentifier(2); }));
  EXPECT_FALSE(dropped->ran);
}

TEST(MCOperationQueue, TwoOperationsUnderOneIdentifier) {
  auto queue = MCOperationQueue::create();
  queue->setMaxConcurrentOperationCount(2);
  Gate firstGate, secondGate;
  auto first = std::make_shared<RecordingOperation>("same", &firstGate);
  auto second = std::make_shared<RecordingOperation>("same", &secondGate);
  queue->addOperation(first);
  queue->addOperation(second);
  first->started.get_future().wait();
  second->started.get_future().wait();
  EXPECT_EQ(queue->operationWithIdentifier("same"), second);

  // The first finishing late must not remove the entry of the second, which still runs.
  firstGate.release();
  EXPECT_TRUE(waitFor([&] { return first->isFinished(); }));
  std::this_thread::sleep_for(std::chrono::milliseconds(20));
  EXPECT_EQ(queue->operationWithIdentifier("same"), second);

  // Cancelling by identifier reaches only the later one.
  queue->cancelOperationWithIdentifier("same");
  EXPECT_FALSE(first->isCancelled());
  EXPECT_TRUE(second->isCancelled());
  secondGate.release();
  queue->waitUntilAllOperationsAreFinished();
  EXPECT_TRUE(second->ran);
}

TEST(MCOperationQueue, CancelManyIdentifiersPassesOverUnknownOnes) {
  auto queue = MCOperationQueue::create();
  queue->setMaxConcurrentOperationCount(1);
  Gate gate;
  auto blocker = std::make_shared<RecordingOperation>("blocker", &gate);
  queue->addOperation(blocker);
  blocker->started.get_future().wait();
  std::vector<std::shared_ptr<RecordingOperation>> ops;
  for (int i = 0; i < 5; ++i) {
    ops.push_back(std::make_shared<RecordingOperation>(i));
    queue->addOperation(ops.back());
  }
  queue->cancelOperationsWithIdentifiers({1, 3, "unknown", 3});
  gate.release();
  queue->waitUntilAllOperationsAreFinished();
  EXPECT_TRUE(ops[0]->ran);
  EXPECT_FALSE(ops[1]->ran);
  EXPECT_TRUE(ops[2]->ran);
  EXPECT_FALSE(ops[3]->ran);
  EXPECT_TRUE(ops[4]->ran);
}

TEST(MCOperationQueue, DefaultWidthIsCoreCountAndWorkRunsInParallel) {
  auto queue = MCOperationQueue::create();
  EXPECT_EQ(queue->maxConcurrentOperationCount(), std::max(1u, std::thread::hardware_concurrency()));
  queue->setMaxConcurrentOperationCount(3);
  Gate gate;
  std::vector<std::shared_ptr<RecordingOperation>> ops;
  for (int i = 0; i < 3; ++i) {
    ops.push_back(std::make_shared<RecordingOperation>(i, &gate));
    queue->addOperation(ops.back());
  }
  // All three must be running at once, or this would wait forever.
  for (auto& op : ops) op->started.get_future().wait();
  gate.release();
  queue->waitUntilAllOperationsAreFinished();
}

TEST(MCOperationQueue, DestroyingTheQueueCancelsWhatWaits) {
  Gate gate;
  auto blocker = std::make_shared<RecordingOperation>("b", &gate);
  auto waiting = std::make_shared<RecordingOperation>("w");
  {
    auto queue = MCOperationQueue::create();
    queue->setMaxConcurrentOperationCount(1);
    queue->addOperation(blocker);
    queue->addOperation(waiting);
    blocker->started.get_future().wait();
  }
  gate.release();
  EXPECT_TRUE(waitFor([&] { return blocker->isFinished() && waiting->isFinished(); }));
  EXPECT_TRUE(blocker->ran);
  EXPECT_FALSE(waiting->ran);
}

// Idle workers end after the idle time, so an idle queue holds no threads; new work starts them again.
TEST(MCOperationQueue, IdleWorkersEndAndWorkStartsThemAgain) {
  auto queue = MCOperationQueue::create();
  auto& platform = queue->operationQueue();
  EXPECT_EQ(platform.idleThreadTimeout(), std::chrono::milliseconds(1000));
  platform.setIdleThreadTimeout(std::chrono::milliseconds(10));
  std::vector<std::shared_ptr<RecordingOperation>> ops;
  const auto runTwo = [&] {
    for (int i = 0; i < 2; ++i) {
      ops.push_back(std::make_shared<RecordingOperation>(int(ops.size())));
      queue->addOperation(ops.back());
    }
    queue->waitUntilAllOperationsAreFinished();
  };
  runTwo();
  EXPECT_GE(platform.threadCount(), 1u);
  EXPECT_TRUE(waitFor([&] { return platform.threadCount() == 0; }));
  runTwo();
  for (const auto& op : ops) EXPECT_TRUE(op->ran);
}
