#pragma once
// Reads the capture days of many files on a thread of its own, for `vesperon browse` on a large
// folder, and hands them to the main queue in batches: the first soon, so the grid's first screen
// is grouped quickly, then at most a few times a second, so the grid is not laid out anew for
// every file. Stops when destroyed; nothing is delivered after that.

#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <thread>
#include <utility>
#include <vector>

class BrowseDayReader {
 public:
  using Batch = std::vector<std::pair<std::filesystem::path, std::string>>;

  /// Starts reading `files` in their order; `deliver` runs on the main queue with each batch,
  /// and `finished` once after the last.
  BrowseDayReader(std::vector<std::filesystem::path> files, std::function<void(Batch)> deliver,
                  std::function<void()> finished = nullptr, double interval = 0.3);
  ~BrowseDayReader();
  BrowseDayReader(const BrowseDayReader&) = delete;
  BrowseDayReader& operator=(const BrowseDayReader&) = delete;

 private:
  struct Shared;
  std::shared_ptr<Shared> shared_;
  std::jthread thread_;
};
