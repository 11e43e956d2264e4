// vesperon thumbs: thumbnails of every image under a folder, written as JPEG files.
//
// It drives the files through MCThumbnailCache the way a browser would, without a view: every file
// is an item at an index path, this command is the cache's delegate, and answers arrive on the main
// queue, which the command runs. It keeps a bounded window of index paths in flight, as a view
// keeps only what is near the screen, so memory does not grow with the folder.
//
// With --cache (or --cache-dir DIR) the files the persistent image cache holds are answered from it
// first, and every new thumbnail is stored there (ThumbsPersistentCache).

#include "MediaFiles.h"
#include "ThumbsPersistentCache.h"
#include "VesperonCommand.h"

#include <vesperon/codecs/MCImageCodecManager.h>
#include <vesperon/pipeline/MCFreedesktopThumbnailCache.h>
#include <vesperon/pipeline/MCThumbnailCache.h>
#include <vesperon/pixels/MCImageFiles.h>
#include <vesperon/pixels/MCImageTypes.h>
#include <vesperon/platform/MCMainQueue.h>
#include <vesperon/platform/MCUniformTypeIdentifiers.h>

#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <string>
#include <thread>

namespace fs = std::filesystem;

namespace {

struct Settings {
  fs::path folder;
  fs::path output = "thumbnails";
  int64_t size = 256;
  int64_t jobs = 0;  // 0: the operation queue's default (one per core)
  bool cache = false;  // through the persistent image cache
  fs::path cacheDirectory;  // empty: the application's folder under the user's cache folder
  bool share = false;  // also into the desktop's shared thumbnail cache
};


class Item : public MCThumbnailDescriptorProvider {
 public:
  Item(fs::path file, uint64_t size) : descriptor_(std::make_shared<MCImageDescriptor>(std::move(file))) {
    // A folder scan knows no image sizes. Saying the image is at least the requested size makes
    // the reader take an embedded thumbnail only when it is that large, and decode otherwise.
    descriptor_->estimatedPixelSize = size;
  }
  MCAnyHashable resourceID() const override { return descriptor_->fileURL.string(); }
  std::shared_ptr<const MCImageDescriptor> resourceDescriptor() const override { return descriptor_; }

 private:
  std::shared_ptr<MCImageDescriptor> descriptor_;
};

class Run : public MCThumbnailCacheDelegate {
 public:
  Run(const Settings& settings, std::vector<fs::path> files)
      : settings_(settings), files_(std::move(files)), tty_(isatty(STDERR_FILENO)) {
    for (const auto& file : files_) items_.push_back(std::make_shared<Item>(file, uint64_t(settings.size)));
    auto destinations = MCImageCodecManager::sharedInstance().destinationExtensionsForUTI("public.jpeg");
    canWrite_ = destinations && !destinations->empty();
  }

  bool canWrite() const { return canWrite_; }

  std::shared_ptr<MCThumbnailDescriptorProvider> descriptorProviderAtIndexPath(MCThumbnailCache&,
                                                                               const MCIndexPath& indexPath) override {
    return indexPath.item < items_.size() ? items_[indexPath.item] : nullptr;
  }

  void didFetchThumbnail(MCThumbnailCache&, const std::shared_ptr<const MCThumbnail>& thumbnail,
                         const MCIndexPath& indexPath) override {
    const fs::path& file = files_[indexPath.item];
    const MCRasterImageRef image = thumbnail ? thumbnail->image() : nullptr;
    if (!image || !write(image, outputPath(file))) failures_.push_back(file);
    else if (persistent_) persistent_->store(file, image);
    if (settings_.share) {
      if (image) shared_.writeThumbnailForFile(file, image);
      else shared_.writeFailureForFile(file);
    }
    ++done_;
    --inFlight_;
    progress();
  }

  void start(const std::shared_ptr<MCThumbnailCache>& cache) {
    cache_ = cache;
    window_ = std::size_t(std::max<int64_t>(4, (settings_.jobs ? settings_.jobs : int64_t(std::thread::hardware_concurrency())) * 4));
    refill();
  }

  // Answers every file the persistent cache holds, on `jobs` threads, before the thumbnail cache
  // starts; the others are stored there as they arrive.
  void serveFromCache(std::shared_ptr<ThumbsPersistentCache> persistent, unsigned jobs) {
    persistent_ = std::move(persistent);
    served_ = persistent_->serve(files_, jobs, [this](std::size_t i, const MCRasterImageRef& image) {
      return write(image, outputPath(files_[i]));
    });
    done_ = fromCache_ = std::size_t(std::count(served_.begin(), served_.end(), true));
  }
  std::size_t fromCache() const { return fromCache_; }

  // Keeps the window full; a fetch answered from memory calls back before it returns, so the loop
  // re-reads the counters each time.
  void refill() {
    if (!cache_) return;  // not started yet
    while (next_ < files_.size() && inFlight_ < window_) {
      if (next_ < served_.size() && served_[next_]) {
        ++next_;
        continue;
      }
      ++inFlight_;
      cache_->fetchThumbnailsAtIndexPaths({MCIndexPath::indexPathForItem(next_++, 0)});
    }
  }

  bool finished() const { return done_ == files_.size(); }
  std::size_t done() const { return done_; }
  const std::vector<fs::path>& failures() const { return failures_; }
  const std::vector<fs::path>& files() const { return files_; }
  void endProgress() const {
    if (tty_) std::fputs("\n", stderr);
  }

 private:
  fs::path outputPath(const fs::path& file) const {
    fs::path relative = file.lexically_relative(settings_.folder);
    if (relative.empty() || relative.native().rfind("..", 0) == 0) relative = file.filename();
    std::string ext = relative.extension().string();
    std::transform(ext.begin(), ext.end(), ext.begin(), [](unsigned char c) { return std::tolower(c); });
    // photo.png becomes photo.png.jpg, so that photo.png and photo.jpg do not collide.
    if (ext == ".jpg" || ext == ".jpeg")
      relative.replace_extension(".jpg");
    else
      relative += ".jpg";
    return settings_.output / relative;
  }

  bool write(const MCRasterImageRef& image, const fs::path& path) const { return MCSaveImageToURL(image, path); }

  void progress() {
    if (!tty_) return;
    const std::size_t total = files_.size(), width = 40;
    const std::size_t filled = total ? done_ * width / total : width;
    std::fprintf(stderr, "\r[%s%s] %zu/%zu", std::string(filled, '#').c_str(), std::string(width - filled, '.').c_str(),
                 done_, total);
    std::fflush(stderr);
  }

  const Settings& settings_;
  MCFreedesktopThumbnailCache shared_;
  std::vector<fs::path> files_;
  std::vector<std::shared_ptr<Item>> items_;
  bool canWrite_ = false;
  std::shared_ptr<MCThumbnailCache> cache_;
  std::vector<fs::path> failures_;
  std::shared_ptr<ThumbsPersistentCache> persistent_;
  std::vector<bool> served_;
  std::size_t fromCache_ = 0;
  std::size_t next_ = 0, done_ = 0, inFlight_ = 0, window_ = 8;
  bool tty_;
};

int runThumbs(Settings& settings) {
  if (!settings.cacheDirectory.empty()) settings.cache = true;
  std::error_code ec;
  if (!fs::is_directory(settings.folder, ec)) {
    std::fprintf(stderr, "vesperon thumbs: %s is not a folder\n", settings.folder.c_str());
    return 1;
  }
  const auto started = std::chrono::steady_clock::now();
  auto run = std::make_shared<Run>(settings, findMediaFiles(settings.folder));
  if (!run->canWrite()) {
    std::fprintf(stderr, "vesperon thumbs: no JPEG writer among the plug-ins\n");
    return 1;
  }

  // A small memory cache: each thumbnail is written once and not asked for again.
  auto options = std::make_shared<MCThumbnailLoadOptions>();
  options->setThumbnailMaxPixelSize(uint64_t(settings.size));
  auto cache = MCThumbnailCache::create(options, 16);
  if (settings.jobs > 0) cache->resourceCache().loader().operationQueue()->setMaxConcurrentOperationCount(settings.jobs);
  cache->setDelegate(run);
  if (settings.cache) {
    auto images = settings.cacheDirectory.empty() ? MCImageCache::thumbnailsCache()
                                                  : std::make_shared<MCImageCache>(settings.cacheDirectory);
    const int64_t jobs = settings.jobs ? settings.jobs : int64_t(std::thread::hardware_concurrency());
    run->serveFromCache(std::make_shared<ThumbsPersistentCache>(images, settings.size), unsigned(jobs));
  }

  MCMainQueue::async([run, cache] { run->start(cache); });
  MCMainQueue::runUntil(
      [&] {
        if (!run->finished()) run->refill();
        return run->finished();
      },
      std::chrono::hours(24));
  run->endProgress();

  const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - started).count();
  for (const auto& failure : run->failures()) std::fprintf(stderr, "failed: %s\n", failure.c_str());
  const std::size_t files = run->files().size();
  std::printf("%zu files, %zu failures, %.1f files/s (%.2f s), thumbnails in %s", files, run->failures().size(),
              seconds > 0 ? double(files) / seconds : 0.0, seconds, settings.output.c_str());
  if (settings.cache) std::printf(", %zu from the image cache", run->fromCache());
  std::printf("\n");
  // Files that could not be thumbnailed are counted, not fatal: the run itself succeeded.
  return 0;
}

std::function<int()> defineThumbs(CLI::App& command) {
  auto settings = std::make_shared<Settings>();
  command.add_option("DIR", settings->folder, "the folder whose images, at any depth, are thumbnailed")->required();
  command.add_option("--size", settings->size, "the larger side of each thumbnail, in pixels")
      ->check(vesperon_options::kPositiveInteger)
      ->capture_default_str();
  command.add_option("--out", settings->output, "the folder the thumbnails are written to")->capture_default_str();
  command.add_option("--jobs", settings->jobs, "decoding threads (default: one per core)")
      ->check(vesperon_options::kPositiveInteger);
  command.add_flag("--cache", settings->cache,
                   "answer from the persistent image cache and store new thumbnails there");
  command.add_flag("--share", settings->share,
                   "also write each thumbnail into the desktop's shared thumbnail cache ($XDG_CACHE_HOME/thumbnails), "
                   "which file managers show at once");
  command.add_option("--cache-dir", settings->cacheDirectory,
                     "the persistent image cache's folder (implies --cache; default under $XDG_CACHE_HOME/vesperon)");
  return [settings] { return runThumbs(*settings); };
}

}  // namespace

VESPERON_COMMAND("thumbs", "write a JPEG thumbnail of every image under DIR, through the thumbnail cache",
                 defineThumbs)
