#pragma once
// MCThumbnailCache: thumbnails for a view that shows many items by index path.
//
// `thumbnailForDescriptorProvider` answers at once with the thumbnail last known for an item, at
// whatever size, or none. `fetchThumbnailsAtIndexPaths` asks for thumbnails at the present size:
// each index path remembers the key it asked for, and an answer is delivered to the delegate only
// if its index path still holds that key — an answer for a place that has since been refetched
// with another item, or cancelled, is dropped.
//
// Changing the thumbnail size only changes the shared load options: thumbnails of the old size
// keep answering until fetches at the new size replace them, and requests not yet started load at
// the new size. Main thread only.

#include <vesperon/pipeline/MCCache.h>
#include <vesperon/pipeline/MCResourceCache.h>
#include <vesperon/pipeline/MCThumbnailCacheDelegate.h>
#include <vesperon/pipeline/MCThumbnailCacheKey.h>
#include <vesperon/pipeline/MCThumbnailLoadOptions.h>
#include <vesperon/pipeline/MCThumbnailResource.h>

#include <memory>
#include <unordered_map>
#include <vector>

class MCThumbnailCache : public std::enable_shared_from_this<MCThumbnailCache> {
 public:
  /// Options with the size and `createThumbnailFromImageAlways` false, and capacity 2048.
  static std::shared_ptr<MCThumbnailCache> cacheWithThumbnailSize(int64_t size);
  /// A cache that loads with the shared `options` and keeps `capacity` thumbnails.
  static std::shared_ptr<MCThumbnailCache> create(std::shared_ptr<MCThumbnailLoadOptions> options, uint64_t capacity);
  MCThumbnailCache(const MCThumbnailCache&) = delete;
  MCThumbnailCache& operator=(const MCThumbnailCache&) = delete;

  /// The delegate, held weakly.
  std::shared_ptr<MCThumbnailCacheDelegate> delegate() const { return delegate_.lock(); }
  /// Held weakly.
  void setDelegate(const std::shared_ptr<MCThumbnailCacheDelegate>& delegate) { delegate_ = delegate; }
  /// The load options, shared with the requests.
  const std::shared_ptr<MCThumbnailLoadOptions>& options() const { return options_; }

  /// The largest side of the thumbnails loaded, in pixels.
  int64_t thumbnailSize() const { return int64_t(options_->thumbnailMaxPixelSize()); }
  /// Sets the size of the thumbnails loaded from now on (0 or less: no limit).
  void setThumbnailSize(int64_t size) { options_->setThumbnailMaxPixelSize(size > 0 ? uint64_t(size) : 0); }

  /// Forgets pending index paths and thumbnails, then empties the resource cache and cancels its loads.
  void invalidate();
  /// The thumbnail held for the provider's item, or none; starts no load.
  std::shared_ptr<const MCThumbnail> thumbnailForDescriptorProvider(const MCThumbnailDescriptorProvider& provider);
  /// Asks for the thumbnails of these items at the present size; each arrives through the delegate.
  void fetchThumbnailsAtIndexPaths(const std::vector<MCIndexPath>& indexPaths);
  /// Forgets these requests; their answers are dropped.
  void cancelFetchingForThumbnailsAtIndexPaths(const std::vector<MCIndexPath>& indexPaths);
  /// The arrival step: stores and delivers `resource` if `indexPath` still waits for `key`.
  void processReceivedResource(const std::shared_ptr<MCResource>& resource, const MCThumbnailCacheKey& key,
                               const MCIndexPath& indexPath);

  /// How many thumbnails are kept at most.
  uint64_t capacity() const { return thumbnailCache_.cacheSize(); }
  /// Sets how many thumbnails are kept at most, here and in the resource cache behind; a smaller
  /// number drops the least recently used at the next store.
  void setCapacity(uint64_t capacity) {
    thumbnailCache_.setCacheSize(capacity);
    resourceCache_->cache().setCacheSize(capacity);
  }

  /// The cache of loaded thumbnails behind this one.
  MCResourceCache& resourceCache() { return *resourceCache_; }
  /// Index paths fetched and not yet answered or cancelled.
  std::size_t pendingCount() const { return indexPathToKeyMap_.size(); }

 private:
  MCThumbnailCache(std::shared_ptr<MCThumbnailLoadOptions> options, uint64_t capacity);

  std::weak_ptr<MCThumbnailCacheDelegate> delegate_;
  std::shared_ptr<MCThumbnailLoadOptions> options_;
  std::shared_ptr<MCResourceCache> resourceCache_;
  MCCache<MCAnyHashable, std::shared_ptr<const MCThumbnail>> thumbnailCache_;
  std::unordered_map<MCIndexPath, MCThumbnailCacheKey> indexPathToKeyMap_;
};
