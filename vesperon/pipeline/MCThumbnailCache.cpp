#include <vesperon/pipeline/MCThumbnailCache.h>

std::shared_ptr<MCThumbnailCache> MCThumbnailCache::cacheWithThumbnailSize(int64_t size) {
  auto options = std::make_shared<MCThumbnailLoadOptions>();
  options->setCreateThumbnailFromImageAlways(false);
  options->setThumbnailMaxPixelSize(size > 0 ? uint64_t(size) : 0);
  return create(std::move(options), 2048);
}

std::shared_ptr<MCThumbnailCache> MCThumbnailCache::create(std::shared_ptr<MCThumbnailLoadOptions> options,
                                                           uint64_t capacity) {
  if (!options) return nullptr;
  return std::shared_ptr<MCThumbnailCache>(new MCThumbnailCache(std::move(options), capacity));
}

MCThumbnailCache::MCThumbnailCache(std::shared_ptr<MCThumbnailLoadOptions> options, uint64_t capacity)
    : options_(std::move(options)), resourceCache_(MCResourceCache::create(capacity)), thumbnailCache_(capacity) {
  indexPathToKeyMap_.reserve(128);
}

void MCThumbnailCache::invalidate() {
  indexPathToKeyMap_.clear();
  thumbnailCache_.removeAllObjects();
  resourceCache_->invalidate();
}

std::shared_ptr<const MCThumbnail> MCThumbnailCache::thumbnailForDescriptorProvider(
    const MCThumbnailDescriptorProvider& provider) {
  return thumbnailCache_.objectForKey(provider.resourceID());
}

void MCThumbnailCache::fetchThumbnailsAtIndexPaths(const std::vector<MCIndexPath>& indexPaths) {
  for (const MCIndexPath& indexPath : indexPaths) {
    auto delegate = delegate_.lock();
    if (!delegate) return;
    auto provider = delegate->descriptorProviderAtIndexPath(*this, indexPath);
    if (!provider) continue;
    MCThumbnailCacheKey key{provider->resourceID(), thumbnailSize()};
    // A newer key replaces an older one here; the older load goes on and its answer is dropped.
    indexPathToKeyMap_.insert_or_assign(indexPath, key);
    std::weak_ptr<MCThumbnailCache> weakSelf = weak_from_this();
    resourceCache_->fetchResourceForKey(MCAnyHashable(key), provider->resourceDescriptor(), options_,
                                        [weakSelf, key, indexPath](std::shared_ptr<MCResource> resource) {
                                          if (auto self = weakSelf.lock())
                                            self->processReceivedResource(resource, key, indexPath);
                                        });
  }
}

void MCThumbnailCache::processReceivedResource(const std::shared_ptr<MCResource>& resource, const MCThumbnailCacheKey& key,
                                               const MCIndexPath& indexPath) {
  auto it = indexPathToKeyMap_.find(indexPath);
  if (it == indexPathToKeyMap_.end() || !(it->second == key)) return;
  indexPathToKeyMap_.erase(it);
  // A load that gave no resource has no thumbnail: none is stored (a later look-up misses) and
  // none is delivered. A resource whose thumbnail has no image is stored and delivered as it is.
  auto thumbnailResource = std::dynamic_pointer_cast<MCThumbnailResource>(resource);
  auto thumbnail = thumbnailResource ? std::make_shared<const MCThumbnail>(thumbnailResource->thumbnail()) : nullptr;
  thumbnailCache_.setObject(thumbnail, key.identifier);
  if (auto delegate = delegate_.lock()) delegate->didFetchThumbnail(*this, thumbnail, indexPath);
}

void MCThumbnailCache::cancelFetchingForThumbnailsAtIndexPaths(const std::vector<MCIndexPath>& indexPaths) {
  std::vector<MCAnyHashable> keys;
  for (const MCIndexPath& indexPath : indexPaths) {
    auto it = indexPathToKeyMap_.find(indexPath);
    if (it == indexPathToKeyMap_.end()) continue;
    keys.emplace_back(it->second);
    indexPathToKeyMap_.erase(it);
  }
  if (!keys.empty()) resourceCache_->cancelFetchingResourcesForKeys(keys);
}
