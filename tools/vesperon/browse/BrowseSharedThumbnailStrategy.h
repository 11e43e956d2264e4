#pragma once
// The thumbnail strategy of `vesperon browse`: thumbnails kept between runs, in the desktop's
// shared thumbnail cache (MCFreedesktopThumbnailCache), so that a second launch, and any file
// manager, shows them without decoding the photos again.
//
// A valid entry that reaches the size wanted is the answer, and a valid failure entry of this
// library answers none without reading the file. Otherwise the photo is read at the size of the
// cache folder that will hold it (128 for "normal", 256 for "large", …), the entry is written
// there, a large one also as a normal one, and a file that gives no thumbnail is recorded under
// fail/. An entry that cannot be read (corrupt, foreign, stale) counts as missing and is
// replaced; a cache that cannot be written leaves the thumbnails coming all the same. Runs on the
// loader's worker threads, several at once; the entries are written afterwards by a
// BrowseCacheWriter, so a thumbnail reaches the screen without waiting for the disk.

#include "BrowseCacheWriter.h"

#include <vesperon/pipeline/MCFreedesktopThumbnailCache.h>
#include <vesperon/pipeline/MCThumbnailLoadStrategy.h>

#include <atomic>

class BrowseSharedThumbnailStrategy : public MCThumbnailLoadStrategy {
 public:
  explicit BrowseSharedThumbnailStrategy(MCFreedesktopThumbnailCache shared = MCFreedesktopThumbnailCache())
      : shared_(std::move(shared)) {}

  std::shared_ptr<MCResource> loadResourceForDescriptor(const std::shared_ptr<const MCResourceDescriptor>& descriptor,
                                                        const std::shared_ptr<const MCResourceLoadOptions>& options) override;

  /// The larger side of the thumbnails kept for a wanted size: the smallest standard folder size
  /// that holds it, or the wanted size itself above the largest.
  static uint64_t keptPixelSize(uint64_t wanted);

  /// How many thumbnails came from the shared cache, and how many were made and written.
  uint64_t takenCount() const { return taken_.load(); }
  uint64_t madeCount() const { return made_.load(); }
  /// Returns once the entries of every thumbnail made so far are written.
  void flushWrites();

 private:
  MCFreedesktopThumbnailCache shared_;
  std::atomic<uint64_t> taken_{0}, made_{0};
  std::atomic<bool> writeFailureLogged_{false};
  BrowseCacheWriter writer_;  // last: it writes what waits, with the members above, as it goes
};
