#include "ThumbsPersistentCache.h"

#include <algorithm>
#include <atomic>
#include <thread>

namespace fs = std::filesystem;

int64_t ThumbsPersistentCache::identifierForFile(const fs::path& file) {
  std::error_code ec;
  fs::path path = fs::canonical(file, ec);
  if (ec) path = fs::absolute(file, ec).lexically_normal();
  const uint64_t size = fs::file_size(file, ec);
  const int64_t modified = int64_t(fs::last_write_time(file, ec).time_since_epoch().count());
  uint64_t hash = 0xcbf29ce484222325ull;
  const auto add = [&](const void* bytes, std::size_t length) {
    for (std::size_t i = 0; i < length; ++i) hash = (hash ^ static_cast<const uint8_t*>(bytes)[i]) * 0x100000001b3ull;
  };
  add(path.native().data(), path.native().size());
  add(&size, sizeof size);
  add(&modified, sizeof modified);
  return int64_t(hash);
}

std::vector<bool> ThumbsPersistentCache::serve(const std::vector<fs::path>& files, unsigned jobs,
                                               const std::function<bool(std::size_t, const MCRasterImageRef&)>& serve) const {
  std::vector<char> served(files.size(), 0);  // not vector<bool>: threads write neighbouring entries
  std::atomic<std::size_t> next{0};
  const auto work = [&] {
    for (std::size_t i; (i = next.fetch_add(1)) < files.size();)
      if (auto image = cache_->imageWithIdentifier(identifierForFile(files[i]), pixelSize_))
        served[i] = serve(i, image);
  };
  std::vector<std::thread> threads;
  for (unsigned t = 1; t < std::max(1u, jobs); ++t) threads.emplace_back(work);
  work();
  for (auto& thread : threads) thread.join();
  return {served.begin(), served.end()};
}
