#pragma once
// The two interfaces a host of MCThumbnailCache implements: the provider that describes one item,
// and the delegate that gives providers by index path and hears of arrivals.

#include <vesperon/core/MCAnyHashable.h>
#include <vesperon/core/MCIndexPath.h>
#include <vesperon/pipeline/MCImageDescriptor.h>
#include <vesperon/pipeline/MCThumbnail.h>

#include <memory>

class MCThumbnailCache;

/// What a thumbnail cache asks of an item: its identifier and what to load.
class MCThumbnailDescriptorProvider {
 public:
  virtual ~MCThumbnailDescriptorProvider() = default;
  /// The item's stable identifier.
  virtual MCAnyHashable resourceID() const = 0;
  /// What to load for the item.
  virtual std::shared_ptr<const MCImageDescriptor> resourceDescriptor() const = 0;
};

/// The host of a thumbnail cache: it names the items and hears the thumbnails.
class MCThumbnailCacheDelegate {
 public:
  virtual ~MCThumbnailCacheDelegate() = default;
  /// The provider of the item at `indexPath`, or none when there is no item there.
  virtual std::shared_ptr<MCThumbnailDescriptorProvider> descriptorProviderAtIndexPath(MCThumbnailCache& cache,
                                                                                       const MCIndexPath& indexPath) = 0;
  /// A thumbnail arrived for `indexPath` — possibly one without an image, or none at all when the
  /// load gave no resource (a strategy that failed or threw). Called on the main
  /// thread, synchronously from a fetch answered from memory, or later from the main queue.
  virtual void didFetchThumbnail(MCThumbnailCache& cache, const std::shared_ptr<const MCThumbnail>& thumbnail,
                                 const MCIndexPath& indexPath) = 0;
};
