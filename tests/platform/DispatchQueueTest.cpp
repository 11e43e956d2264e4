#include <vesperon/platform/MCDispatchQueue.h>
#include <vesperon/platform/MCMainQueue.h>

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <mutex>
#include <thread>
#include <vector>

TEST(MCDispatchQueue, SerialQueueRunsInOrderOneAtATime) {
  MCDispatchQueue queue("test.serial", MCDispatchQueue::Kind::Serial);
  std::vector<int> seen;
  std::atomic<int> inside{0};
  std::atomic<int> overlap{0};
  for (int i = 0; i < 200; ++i)
    queue.async([&, i] {
      if (++inside > 1) ++overlap;
      seen.push_back(i);
      --inside;
    });
  queue.sync([] {});
  ASSERT_EQ(seen.size(), 200u);
  for (int i = 0; i < 200; ++i) EXPECT_EQ(seen[i], i);
  EXPECT_EQ(overlap.load(), 0);
}

TEST(MCDispatchQueue, BarrierRunsAloneBetweenReaders) {
  MCDispatchQueue queue("test.rw", MCDispatchQueue::Kind::Concurrent, 4);
  std::atomic<int> readers{0}, maxReaders{0};
  std::atomic<bool> barrierSawReaders{false};
  std::mutex m;
  std::vector<std::string> log;
  auto reader = [&] {
    int now = ++readers;
    int prev = maxReaders.load();
    while (now > prev && !maxReaders.compare_exchange_weak(prev, now)) {
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
    --readers;
    std::lock_guard l(m);
    log.push_back("r");
  };
  for (int i = 0; i < 8; ++i) queue.async(reader);
  queue.barrierAsync([&] {
    if (readers.load() != 0) barrierSawReaders = true;
    std::lock_guard l(m);
    log.push_back("W");
  });
  for (int i = 0; i < 8; ++i) queue.async(reader);
  queue.barrierSync([] {});
  EXPECT_FALSE(barrierSawReaders.load());
  EXPECT_GT(maxReaders.load(), 1) << "readers run side by side";
  ASSERT_EQ(log.size(), 17u);
  EXPECT_EQ(log[8], "W") << "everything before the barrier finished first, nothing after started";
}

TEST(MCDispatchQueue, SyncPassesExceptionsBack) {
  MCDispatchQueue queue("test.throw", MCDispatchQueue::Kind::Concurrent);
  EXPECT_THROW(queue.sync([] { throw std::runtime_error("x"); }), std::runtime_error);
  int after = 0;
  queue.sync([&] { after = 1; });
  EXPECT_EQ(after, 1);
}

TEST(MCMainQueue, PostsRunOnTheMainThreadInOrderAndSyncHopsFromWorkers) {
  ASSERT_TRUE(MCMainQueue::isMainThread());
  std::vector<int> order;
  bool ranInline = true;
  MCMainQueue::async([&] { order.push_back(1); });
  ranInline = !order.empty();
  MCMainQueue::async([&] { order.push_back(2); });
  EXPECT_FALSE(ranInline) << "posted work never runs on the caller's stack";
  EXPECT_TRUE(MCMainQueue::runUntil([&] { return order.size() == 2; }));
  EXPECT_EQ(order, (std::vector<int>{1, 2}));

  std::atomic<bool> onMain{false};
  std::atomic<bool> workerDone{false};
  std::thread worker([&] {
    EXPECT_FALSE(MCMainQueue::isMainThread());
    MCMainQueue::sync([&] { onMain = MCMainQueue::isMainThread(); });
    workerDone = true;
  });
  EXPECT_TRUE(MCMainQueue::runUntil([&] { return workerDone.load(); }));
  worker.join();
  EXPECT_TRUE(onMain.load());

  // A run that cannot finish ends at its timeout and says so.
  EXPECT_FALSE(MCMainQueue::runUntil([] { return false; }, std::chrono::milliseconds(30)));
}
