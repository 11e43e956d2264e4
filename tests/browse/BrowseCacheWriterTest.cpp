// The writer behind the shared thumbnail cache of `vesperon browse`: every write submitted is done,
// in order, even those still waiting when the writer goes; a full queue makes the caller write,
// so no more than its capacity of thumbnails waits in memory.

#include "../../tools/vesperon/browse/BrowseCacheWriter.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <future>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

namespace {

// A write that holds the writer's thread until released, so the queue behind it fills.
struct Gate {
  std::promise<void> entered, open;
  std::shared_future<void> opened = open.get_future().share();
  std::function<void()> write() {
    return [this] {
      entered.set_value();
      opened.wait();
    };
  }
};

}  // namespace

TEST(BrowseCacheWriter, WritesInOrderAndTheCallerWritesWhenTheQueueIsFull) {
  BrowseCacheWriter writer(3);
  Gate gate;
  std::mutex mutex;
  std::vector<int> done;
  std::vector<std::thread::id> threads;
  auto record = [&](int n) {
    return [&, n] {
      std::lock_guard lock(mutex);
      done.push_back(n);
      threads.push_back(std::this_thread::get_id());
    };
  };
  writer.submit(gate.write());
  gate.entered.get_future().wait();  // the writer's thread is busy from here
  for (int n = 1; n <= 3; ++n) writer.submit(record(n));
  EXPECT_EQ(writer.waitingCount(), 3u);
  writer.submit(record(4));  // a fourth does not wait: written here, at once
  {
    std::lock_guard lock(mutex);
    ASSERT_EQ(done, std::vector<int>{4});
    EXPECT_EQ(threads[0], std::this_thread::get_id());
  }
  gate.open.set_value();
  writer.flush();
  EXPECT_EQ(done, (std::vector<int>{4, 1, 2, 3}));
  for (std::size_t i = 1; i < threads.size(); ++i) EXPECT_NE(threads[i], std::this_thread::get_id());
  EXPECT_EQ(writer.waitingCount(), 0u);
}

TEST(BrowseCacheWriter, WhatStillWaitsIsWrittenBeforeTheWriterGoes) {
  std::atomic<int> written{0};
  Gate gate;
  std::thread release;
  {
    BrowseCacheWriter writer(100);
    writer.submit(gate.write());
    gate.entered.get_future().wait();
    for (int n = 0; n < 50; ++n) writer.submit([&] { ++written; });
    // Let the held write go a little after the writer began to be destroyed.
    release = std::thread([&] {
      std::this_thread::sleep_for(std::chrono::milliseconds(30));
      gate.open.set_value();
    });
  }
  EXPECT_EQ(written.load(), 50);
  release.join();
}
