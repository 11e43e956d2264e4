// The persistent image cache under load: 8 threads add, read and remove 10,000 identifiers at
// once, over two pixel sizes. Checks that nothing is lost or torn — every read gives none or a
// whole image of the right colour, every surviving file decodes, removed files are gone and no
// temporary file is left — and reports operations per second.
//
// Peer, in the same run: the same file operations done directly (MCSaveImageToURL,
// MCCreateImageWithURL, remove) on one thread, without the cache's locks and atomic replace. The
// two take turns over slices of 1,000 identifiers, and each reports its processor time per
// operation as well: on a shared machine the wall-clock ratio moves with the neighbours' load
// (a process with more threads gets a larger share), the processor time much less.

#include <vesperon/pipeline/MCImageCache.h>
#include <vesperon/pixels/MCImageFiles.h>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <random>
#include <thread>
#include <sys/resource.h>
#include <unistd.h>

namespace {

constexpr int kThreads = 8;
constexpr int64_t kIdentifiers = 10000;
constexpr int64_t kRound = 1000;
constexpr std::size_t kSide = 48;

MCRasterImageRef imageFor(int64_t id) {
  std::vector<uint8_t> pixels(kSide * kSide * 4);
  for (std::size_t i = 0; i < pixels.size(); i += 4) {
    pixels[i] = uint8_t(id % 251);
    pixels[i + 1] = 128;
    pixels[i + 2] = uint8_t(i / 4 % kSide * 5);
    pixels[i + 3] = 255;
  }
  return MCRasterImage::createRGBA8(kSide, kSide, std::move(pixels));
}

bool whole(const MCRasterImageRef& image, int64_t id) {
  if (!image || image->width() != kSide || image->height() != kSide) return false;
  const auto info = image->alphaInfo();
  const bool first = info == MCImageAlphaNoneSkipFirst || info == MCImageAlphaPremultipliedFirst;
  return std::abs(int(image->row(kSide / 2)[first ? 1 : 0]) - int(id % 251)) <= 10;
}

double seconds(std::chrono::steady_clock::time_point since) {
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - since).count();
}

// Processor time of the whole process, user and system, in seconds.
double cpuSeconds() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  const auto add = [](const timeval& t) { return double(t.tv_sec) + double(t.tv_usec) / 1e6; };
  return add(usage.ru_utime) + add(usage.ru_stime);
}

}  // namespace

int main() {
  const auto root = std::filesystem::temp_directory_path() / ("vesperon-bench-cache-" + std::to_string(::getpid()));
  std::filesystem::remove_all(root);
  if (!MCSaveImageToURL(imageFor(1), root / "probe.jpg")) {
    std::printf("no JPEG destination is registered: nothing to measure\n");
    return 1;
  }
  std::filesystem::remove_all(root);

  // The cache: each thread owns the identifiers ≡ t (mod 8); it adds each, reads it back, removes
  // every third one, and in between reads a random identifier of any thread.
  std::atomic<long> operations{0}, broken{0};
  long peerOperations = 0;
  double cacheSeconds = 0, peerSeconds = 0, cacheCPU = 0, peerCPU = 0;
  std::mt19937 peerRandom{99};
  MCImageCache cache(root / "cache");
  const auto cacheRound = [&](int64_t first, int64_t last) {
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t)
      threads.emplace_back([&, t] {
        std::mt19937 random{unsigned(t + first) + 1};
        for (int64_t id = first + t; id < last; id += kThreads) {
          const int64_t size = id % 2 ? 128 : 256;
          cache.addImage(imageFor(id), id, size);
          if (!whole(cache.imageWithIdentifier(id, size), id)) ++broken;
          const int64_t other = int64_t(random() % uint64_t(kIdentifiers));
          if (auto image = cache.imageWithIdentifier(other, other % 2 ? 128 : 256); image && !whole(image, other)) ++broken;
          operations += 3;
          if (id % 3 == 0) {
            cache.removeImageWithIdentifier(id, size);
            ++operations;
          }
        }
      });
    for (auto& thread : threads) thread.join();
  };
  // The peer: the same adds, reads and removes straight on the files, one thread.
  const auto peerRound = [&](int64_t first, int64_t last) {
    for (int64_t id = first; id < last; ++id) {
      const auto url = root / "direct" / std::to_string(id % 256) / (std::to_string(id) + ".JPG");
      MCSaveImageToURL(imageFor(id), url);
      (void)MCCreateImageWithURL(url);
      const int64_t other = int64_t(peerRandom() % uint64_t(kIdentifiers));
      const auto otherURL = root / "direct" / std::to_string(other % 256) / (std::to_string(other) + ".JPG");
      if (std::filesystem::exists(otherURL)) (void)MCCreateImageWithURL(otherURL);
      peerOperations += 3;
      if (id % 3 == 0) {
        std::filesystem::remove(url);
        ++peerOperations;
      }
    }
  };
  // The two take turns over slices of the identifiers, so that both meet the same load from
  // whatever else the machine is doing.
  for (int64_t first = 0; first < kIdentifiers; first += kRound) {
    const int64_t last = std::min(first + kRound, kIdentifiers);
    auto start = std::chrono::steady_clock::now();
    double cpu = cpuSeconds();
    cacheRound(first, last);
    cacheSeconds += seconds(start);
    cacheCPU += cpuSeconds() - cpu;
    start = std::chrono::steady_clock::now();
    cpu = cpuSeconds();
    peerRound(first, last);
    peerSeconds += seconds(start);
    peerCPU += cpuSeconds() - cpu;
  }

  // Afterwards, from a fresh cache object: survivors decode, removed ones are gone, nothing stray.
  long lost = 0, leftover = 0, stray = 0;
  {
    MCImageCache cache(root / "cache");
    for (int64_t id = 0; id < kIdentifiers; ++id) {
      const int64_t size = id % 2 ? 128 : 256;
      const bool there = cache.containsImageWithIdentifier(id, size);
      if (id % 3 == 0) leftover += there;
      else if (!there || !whole(cache.imageWithIdentifier(id, size), id)) ++lost;
    }
    for (auto& entry : std::filesystem::recursive_directory_iterator(root / "cache"))
      if (entry.is_regular_file() && entry.path().extension() != ".JPG") ++stray;
  }

  std::filesystem::remove_all(root);

  const double ours = double(operations) / cacheSeconds, peer = double(peerOperations) / peerSeconds;
  std::printf("MCImageCache, %d threads, %lld identifiers: %ld operations in %.2f s = %.0f ops/s (%.0f us of CPU each)\n",
              kThreads, (long long)kIdentifiers, operations.load(), cacheSeconds, ours, cacheCPU * 1e6 / double(operations));
  std::printf("peer, direct file operations on one thread:  %ld operations in %.2f s = %.0f ops/s (%.0f us of CPU each)\n",
              peerOperations, peerSeconds, peer, peerCPU * 1e6 / double(peerOperations));
  std::printf("ratio (cache / direct): %.2fx\n", ours / peer);
  std::printf("torn reads: %ld, lost files: %ld, removed files still there: %ld, stray files: %ld\n", broken.load(),
              lost, leftover, stray);
  return broken == 0 && lost == 0 && leftover == 0 && stray == 0 ? 0 : 1;
}
