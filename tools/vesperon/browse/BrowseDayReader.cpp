#include "BrowseDayReader.h"

#include "BrowseCollection.h"

#include <vesperon/platform/MCMainQueue.h>

#include <atomic>
#include <chrono>

// What the thread and the main queue share: whether the reader still wants deliveries.
struct BrowseDayReader::Shared {
  std::atomic<bool> alive{true};
  std::function<void(Batch)> deliver;
  std::function<void()> finished;
};

BrowseDayReader::BrowseDayReader(std::vector<std::filesystem::path> files, std::function<void(Batch)> deliver,
                                 std::function<void()> finished, double interval)
    : shared_(std::make_shared<Shared>()) {
  shared_->deliver = std::move(deliver);
  shared_->finished = std::move(finished);
  thread_ = std::jthread([shared = shared_, files = std::move(files), interval](std::stop_token stop) {
    using Clock = std::chrono::steady_clock;
    const auto post = [&](Batch batch) {
      MCMainQueue::async([shared, batch = std::move(batch)]() mutable {
        if (shared->alive && shared->deliver) shared->deliver(std::move(batch));
      });
    };
    Batch batch;
    // The first batch after a screenful of files, the others on the interval.
    std::size_t firstBatch = 64;
    auto last = Clock::now();
    for (const auto& file : files) {
      if (stop.stop_requested()) return;
      batch.emplace_back(file, BrowseCollection::captureDay(file, true));
      const bool due = firstBatch ? batch.size() >= firstBatch
                                  : std::chrono::duration<double>(Clock::now() - last).count() >= interval;
      if (due) {
        post(std::exchange(batch, {}));
        firstBatch = 0;
        last = Clock::now();
      }
    }
    if (!batch.empty()) post(std::move(batch));
    MCMainQueue::async([shared] {
      if (shared->alive && shared->finished) shared->finished();
    });
  });
}

BrowseDayReader::~BrowseDayReader() {
  shared_->alive = false;
  thread_.request_stop();
}
