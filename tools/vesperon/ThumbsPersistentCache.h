#pragma once
// The persistent side of `vesperon thumbs --cache`: the thumbnails of a folder's files kept in an
// MCImageCache at the requested pixel size, so that a later run answers from them without
// decoding the originals.
//
// A file's identifier is the 64-bit FNV-1a hash of its canonical path, its size and its
// modification time: the same from run to run, and a file that changes gets a new entry rather
// than its old thumbnail. A cache file that no longer decodes counts as missing; the thumbnail is
// made again and replaces it.

#include <vesperon/pipeline/MCImageCache.h>

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <vector>

class ThumbsPersistentCache {
 public:
  ThumbsPersistentCache(std::shared_ptr<MCImageCache> cache, int64_t pixelSize)
      : cache_(std::move(cache)), pixelSize_(pixelSize) {}

  static int64_t identifierForFile(const std::filesystem::path& file);

  /// Looks every file up on `jobs` threads and hands each thumbnail found to `serve`, called on
  /// those threads with the file's index. For each file: whether it was found and served.
  std::vector<bool> serve(const std::vector<std::filesystem::path>& files, unsigned jobs,
                          const std::function<bool(std::size_t, const MCRasterImageRef&)>& serve) const;

  void store(const std::filesystem::path& file, const MCRasterImageRef& thumbnail) const {
    cache_->addImage(thumbnail, identifierForFile(file), pixelSize_);
  }

 private:
  std::shared_ptr<MCImageCache> cache_;
  int64_t pixelSize_;
};
