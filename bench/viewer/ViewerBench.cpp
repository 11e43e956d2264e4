// bench_viewer MODE FOLDER [FILE]
//
//   next FOLDER    opens the first photo and steps through the rest as a user reading each photo
//                  for 0.6 s does, with look-ahead and then without: milliseconds from the step to
//                  a sharp fit image, median and worst
//   centre FILE    opens FILE at 1:1 on its centre: milliseconds to the sharp view and the process's
//                  peak memory; then libvips (loaded at run time) decodes the file whole to memory
//   walk FOLDER    steps through every photo as fast as each becomes sharp: resident memory after
//                  the first photo, the peak, and after the last
//
// The viewer runs in a 1600 × 1000 offscreen window on the real main loop.

#include "browse/BrowseViewer.h"

#include <vesperon/codecs/MCImageCodecManager.h>
#include <vesperon/controls/MCNavigationController.h>
#include <vesperon/platform/MCMainQueue.h>
#include <vesperon/toolkit/MCOffscreenHost.h>
#include <vesperon/toolkit/MCWindow.h>

#include <dlfcn.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

namespace {

double msSince(Clock::time_point start) {
  return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

/// A field of /proc/self/status in MB ("VmRSS", "VmHWM").
double memoryMB(const char* field) {
  std::ifstream status("/proc/self/status");
  std::string line;
  while (std::getline(status, line))
    if (line.rfind(field, 0) == 0) return std::stod(line.substr(std::strlen(field) + 1)) / 1024;
  return -1;
}

struct Viewer {
  std::shared_ptr<MCWindow> window = MCWindow::create({1600, 1000});
  std::shared_ptr<MCNavigationController> navigation;
  std::shared_ptr<BrowseViewerPage> page;
  std::unique_ptr<MCOffscreenHost> host;

  Viewer(const std::vector<fs::path>& files, bool looksAhead) {
    navigation = MCNavigationController::create(std::make_shared<MCViewController>());
    window->setContentView(navigation->view());
    host = std::make_unique<MCOffscreenHost>(window, 1.0);
    page = std::make_shared<BrowseViewerPage>(files.front(), nullptr, nullptr, nullptr);
    BrowseViewerSequence sequence;
    for (std::size_t i = 0; i < files.size(); ++i) sequence.paths.push_back(MCIndexPath::indexPathForItem(i, 0));
    sequence.file = [files](const MCIndexPath& at) { return files[at.item]; };
    page->setSequence(std::move(sequence), 0);
    page->setLooksAhead(looksAhead);
    navigation->pushViewController(page, false);
    host->render();
  }
  bool waitSharp() {
    return MCMainQueue::runUntil([&] { return page->isSettled(); }, std::chrono::seconds(60)) && page->isSharp();
  }
  void idle(double seconds) {
    const auto until = Clock::now() + std::chrono::duration<double>(seconds);
    MCMainQueue::runUntil([&] { return Clock::now() >= until; }, std::chrono::seconds(10));
  }
};

std::vector<fs::path> photosIn(const fs::path& folder) {
  std::vector<fs::path> files;
  for (const auto& entry : fs::directory_iterator(folder))
    if (entry.path().extension() == ".jpg") files.push_back(entry.path());
  std::sort(files.begin(), files.end());
  return files;
}

int next(const fs::path& folder) {
  const auto files = photosIn(folder);
  if (files.size() < 3) return std::fprintf(stderr, "bench_viewer: next needs 3 photos or more\n"), 1;
  for (bool looksAhead : {true, false}) {
    Viewer viewer(files, looksAhead);
    if (!viewer.waitSharp()) return std::fprintf(stderr, "bench_viewer: %s did not decode\n", files[0].c_str()), 1;
    std::vector<double> times;
    for (std::size_t i = 1; i < files.size(); ++i) {
      viewer.idle(0.6);  // the user looks at the photo; the look-ahead works meanwhile
      const auto start = Clock::now();
      viewer.page->step(1);
      if (!viewer.waitSharp()) return 1;
      times.push_back(msSince(start));
    }
    std::sort(times.begin(), times.end());
    std::printf("next photo, %s look-ahead: median %.1f ms, worst %.1f ms over %zu steps\n",
                looksAhead ? "with" : "without", times[times.size() / 2], times.back(), times.size());
  }
  return 0;
}

// libvips decoding the file whole into memory, as `vips copy FILE` to a memory image does.
double vipsWhole(const fs::path& file) {
  void* lib = dlopen("libvips.so.42", RTLD_NOW | RTLD_GLOBAL);
  if (!lib) return -1;
  using Init = int (*)(const char*);
  using NewFromFile = void* (*)(const char*, ...);
  using WriteToMemory = void* (*)(void*, size_t*);
  using Free = void (*)(void*);
  auto init = reinterpret_cast<Init>(dlsym(lib, "vips_init"));
  auto newFromFile = reinterpret_cast<NewFromFile>(dlsym(lib, "vips_image_new_from_file"));
  auto writeToMemory = reinterpret_cast<WriteToMemory>(dlsym(lib, "vips_image_write_to_memory"));
  auto unref = reinterpret_cast<Free>(dlsym(RTLD_DEFAULT, "g_object_unref"));
  auto gfree = reinterpret_cast<Free>(dlsym(RTLD_DEFAULT, "g_free"));
  if (!init || !newFromFile || !writeToMemory || !unref || !gfree || init("bench_viewer") != 0) return -1;
  const auto start = Clock::now();
  void* image = newFromFile(file.c_str(), nullptr);
  if (!image) return -1;
  size_t size = 0;
  void* pixels = writeToMemory(image, &size);
  const double ms = msSince(start);
  gfree(pixels);
  unref(image);
  return pixels ? ms : -1;
}

int centre(const fs::path& file) {
  const auto start = Clock::now();
  Viewer viewer({file}, true);
  if (!MCMainQueue::runUntil([&] { return viewer.page->isLoaded(); }, std::chrono::seconds(60))) return 1;
  const double fit = msSince(start);
  viewer.host->render();
  const auto& zoom = viewer.page->zoomView();
  const auto pressed = Clock::now();
  zoom->zoomTo(viewer.page->oneToOneZoom(), {MCMidX(zoom->bounds()), MCMidY(zoom->bounds())});
  if (!viewer.waitSharp()) return std::fprintf(stderr, "bench_viewer: no sharp 1:1 view of %s\n", file.c_str()), 1;
  const double ours = msSince(start), zoomed = msSince(pressed);
  const double ourPeak = memoryMB("VmHWM:");
  const MCSize photo = viewer.page->photoSize();
  std::printf("1:1 centre of %.0f x %.0f (%.0f MP): %.0f ms from opening to the sharp view (%.0f ms to the fit "
              "view, %.0f ms from the 1:1 key to the sharp centre), peak memory %.0f MB\n",
              photo.width, photo.height, photo.width * photo.height / 1e6, ours, fit, zoomed, ourPeak);
  const double peer = vipsWhole(file);
  if (peer < 0) {
    std::printf("libvips: not available, no peer figure\n");
    return 0;
  }
  std::printf("libvips decoding it whole to memory: %.0f ms, peak memory now %.0f MB\n", peer, memoryMB("VmHWM:"));
  std::printf("ratio: %.2fx of libvips's time from opening, %.2fx from the 1:1 key (goal <= 0.25x)\n", ours / peer,
              zoomed / peer);
  return 0;
}

int walk(const fs::path& folder) {
  const auto files = photosIn(folder);
  if (files.size() < 2) return std::fprintf(stderr, "bench_viewer: walk needs 2 photos or more\n"), 1;
  Viewer viewer(files, true);
  if (!viewer.waitSharp()) return 1;
  const double first = memoryMB("VmRSS:");
  double peak = first;
  for (std::size_t i = 1; i < files.size(); ++i) {
    viewer.page->step(1);
    if (!viewer.waitSharp()) return 1;
    peak = std::max(peak, memoryMB("VmRSS:"));
    if ((i + 1) % 50 == 0) std::printf("  after %zu photos: resident %.0f MB\n", i + 1, memoryMB("VmRSS:"));
  }
  viewer.idle(0.5);
  std::printf("walk over %zu photos: resident %.0f MB after the first, peak %.0f MB (%.2fx), %.0f MB after the last\n",
              files.size(), first, peak, peak / first, memoryMB("VmRSS:"));
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 3) return std::fprintf(stderr, "usage: bench_viewer next|centre|walk FOLDER|FILE\n"), 2;
  MCImageCodecManager::sharedInstance();
  const std::string mode = argv[1];
  if (mode == "next") return next(argv[2]);
  if (mode == "centre") return centre(argv[2]);
  if (mode == "walk") return walk(argv[2]);
  return std::fprintf(stderr, "bench_viewer: unknown mode %s\n", mode.c_str()), 2;
}
