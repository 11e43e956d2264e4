#pragma once
// MCImageCache: the persistent image cache — JPEG files under the user's cache folder, addressed
// by an integer identifier and a pixel size (the larger side), one MCImageCacheContainer per size.
//
// The root is `$XDG_CACHE_HOME/<application identifier>` (MCApplicationDirectories). The folder of
// pixel size 128 is "Thumbnails", of any other size n "Thumbnails.n". At construction the root is
// listed (hidden entries skipped): "Thumbnails" gives the container of 128, any other entry whose
// extension reads as a decimal integer the container of that integer; a missing root — the first
// start — simply gives none. There is no eviction and no limit: a file stays until removed or
// until clean.
//
// Every operation may be called from any thread and waits until its disk work is done. The map of
// containers is guarded by a reader-writer lock, each container's folder by its own (see
// MCImageCacheContainer); both are taken on the caller's thread, and the map's lock is never held
// while a container's is waited for. Asking for an unknown size, even by a query, enters a
// container for it; its folder appears with the first saved image. Errors go to the log
// sdkImageCache.

#include <vesperon/pipeline/MCImageCacheContainer.h>

#include <cstdint>
#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <shared_mutex>

class MCImageCache {
 public:
  /// The cache under the user's cache folder.
  MCImageCache();
  /// A cache with another root, for hosts that keep it elsewhere.
  explicit MCImageCache(std::filesystem::path root);
  MCImageCache(const MCImageCache&) = delete;
  MCImageCache& operator=(const MCImageCache&) = delete;

  /// The process-wide cache, made on first use.
  static const std::shared_ptr<MCImageCache>& thumbnailsCache();

  /// Whether the cache's root can be used.
  bool cacheExists() const { return true; }
  /// The cache's folder.
  const std::filesystem::path& root() const { return root_; }
  /// The pixel sizes that have a container, ascending.
  std::vector<int64_t> pixelSizes() const;

  /// Whether any container holds a file for `id`.
  /// Whether the image of `id` at `pixelSize` is stored.
  bool containsImageWithIdentifier(int64_t id);
  /// Whether the image of `id` is stored at `pixelSize`.
  bool containsImageWithIdentifier(int64_t id, int64_t pixelSize);
  /// An image of `id` from any container of at least `minPixelSize` (the first found in ascending
  /// order of size, so the smallest that decodes); none when no such file decodes.
  MCRasterImageRef imageWithIdentifierMinPixelSize(int64_t id, int64_t minPixelSize);
  /// The image of `id` at `pixelSize`; none when not stored or unreadable.
  MCRasterImageRef imageWithIdentifier(int64_t id, int64_t pixelSize);
  /// Stores `image` as `id` at `pixelSize` (written to a temporary name, then renamed).
  void addImage(const MCRasterImageRef& image, int64_t id, int64_t pixelSize);
  /// Removes the file of `id` from every container; those without it log their failure.
  /// Removes the image of `id` at `pixelSize`.
  void removeImageWithIdentifier(int64_t id);
  /// Removes the image of `id` at `pixelSize`.
  void removeImageWithIdentifier(int64_t id, int64_t pixelSize);
  /// Deletes every container's folder; the containers stay and work again at the next save.
  void clean();

  /// The folder name of a pixel size: "Thumbnails" for 128, "Thumbnails.<n>" otherwise.
  static std::string directoryNameForPixelSize(int64_t pixelSize);

 private:
  using Containers = std::map<int64_t, std::shared_ptr<MCImageCacheContainer>>;
  void loadContainers();
  std::shared_ptr<MCImageCacheContainer> containerForPixelSize(int64_t pixelSize);
  Containers snapshot();

  std::shared_ptr<MCLog> log_;
  Containers containers_;
  mutable std::shared_mutex syncLock_;
  std::filesystem::path root_;
};
