#pragma once
// MCResourceCache: an MCCache in front of a private MCResourceLoader, so that a fetch is answered
// from memory or by one load whose result is then remembered.
//
// A key (any hashable, comparable, copyable value) is both the cache key and the loader's request
// identifier. A hit answers synchronously, on the caller's stack; a miss answers later on the main
// queue, after the result — present or not — has been stored under the key. A load that gave no
// resource is stored too, as an item without an object, so the next fetch of that key loads again.
//
// Main thread only, like the MCCache inside.

#include <vesperon/core/MCAnyHashable.h>
#include <vesperon/pipeline/MCCache.h>
#include <vesperon/pipeline/MCResourceLoader.h>

#include <memory>
#include <vector>

class MCResourceCache : public std::enable_shared_from_this<MCResourceCache> {
 public:
  /// What resources are cached under.
  using Key = MCAnyHashable;

  /// A cache that keeps `capacity` resources.
  static std::shared_ptr<MCResourceCache> create(uint64_t capacity) {
    return std::shared_ptr<MCResourceCache>(new MCResourceCache(capacity));
  }
  MCResourceCache(const MCResourceCache&) = delete;
  MCResourceCache& operator=(const MCResourceCache&) = delete;

  /// The cached resource or none, without a load. A hit makes the entry young, as any look-up does.
  std::shared_ptr<MCResource> resourceForKey(const Key& key);
  /// The resource of `key` from the cache, or loaded from `descriptor`; the completion gets it on
  /// the main queue.
  void fetchResourceForKey(const Key& key, std::shared_ptr<const MCResourceDescriptor> descriptor,
                           std::shared_ptr<const MCResourceLoadOptions> options, MCResourceCompletion completion);
  /// Empties the cache, then cancels every queued load.
  void invalidate();
  /// Forgets the key, then cancels its queued load.
  void invalidateResourceForKey(const Key& key);
  /// Cancels queued loads; what is cached stays.
  void cancelFetchingResourceForKey(const Key& key);
  /// Cancels the loads of these keys.
  void cancelFetchingResourcesForKeys(const std::vector<Key>& keys);

  /// The cache itself.
  MCCache<Key, std::shared_ptr<MCResource>>& cache() { return cache_; }
  /// The private loader.
  MCResourceLoader& loader() { return loader_; }

 private:
  explicit MCResourceCache(uint64_t capacity) : cache_(capacity) {}
  MCCache<Key, std::shared_ptr<MCResource>> cache_;
  MCResourceLoader loader_;
};
