#include <vesperon/pipeline/MCResourceCache.h>

std::shared_ptr<MCResource> MCResourceCache::resourceForKey(const Key& key) { return cache_.objectForKey(key); }

void MCResourceCache::fetchResourceForKey(const Key& key, std::shared_ptr<const MCResourceDescriptor> descriptor,
                                          std::shared_ptr<const MCResourceLoadOptions> options,
                                          MCResourceCompletion completion) {
  if (auto resource = cache_.objectForKey(key)) {
    if (completion) completion(resource);
    return;
  }
  std::weak_ptr<MCResourceCache> weakSelf = weak_from_this();
  loader_.requestResourceForIdentifier(
      key, std::move(descriptor), std::move(options),
      [weakSelf, key, completion = std::move(completion)](std::shared_ptr<MCResource> resource) {
        if (auto self = weakSelf.lock()) self->cache_.setObject(resource, key);
        if (completion) completion(resource);
      });
}

void MCResourceCache::invalidate() {
  cache_.removeAllObjects();
  loader_.cancelAllRequests();
}

void MCResourceCache::invalidateResourceForKey(const Key& key) {
  cache_.removeObjectForKey(key);
  loader_.cancelRequestWithID(key);
}

void MCResourceCache::cancelFetchingResourceForKey(const Key& key) { loader_.cancelRequestWithID(key); }

void MCResourceCache::cancelFetchingResourcesForKeys(const std::vector<Key>& keys) {
  loader_.cancelRequestsWithIDs(keys);
}
