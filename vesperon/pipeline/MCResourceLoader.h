#pragma once
// MCResourceLoader: the one road by which an image or a thumbnail comes out of a file.
//
// Every request becomes one MCResourceLoadOperation on the loader's own MCOperationQueue: the
// strategy runs on a worker thread, the completion on the main queue — one at a time, never on the
// caller's stack. Cancelling a queued request drops it (no completion); a running one delivers
// normally. Loaders are independent: cancelling on one never touches another's requests.
// Requests may be made from any thread. Destroying a loader cancels its operations.

#include <vesperon/core/MCOperationQueue.h>
#include <vesperon/pipeline/MCImageDescriptor.h>
#include <vesperon/pipeline/MCResourceLoadOperation.h>
#include <vesperon/pipeline/MCResourceReceivers.h>

#include <memory>
#include <vector>

class MCResourceLoader {
 public:
  MCResourceLoader();
  ~MCResourceLoader();
  MCResourceLoader(const MCResourceLoader&) = delete;
  MCResourceLoader& operator=(const MCResourceLoader&) = delete;

  /// The process-wide loader, made on first use.
  static MCResourceLoader& sharedInstance();

  /// Queues a load of `descriptor` with `options` under `identifier`; the completion gets the
  /// resource (or none) on the main queue.
  void requestResourceForIdentifier(const MCAnyHashable& identifier,
                                    std::shared_ptr<const MCResourceDescriptor> descriptor,
                                    std::shared_ptr<const MCResourceLoadOptions> options,
                                    MCResourceCompletion completion);
  /// Cancels the load of `identifier`; its completion is not called.
  void cancelRequestWithID(const MCAnyHashable& identifier);
  /// Cancels the loads of these identifiers.
  void cancelRequestsWithIDs(const std::vector<MCAnyHashable>& identifiers);
  /// Cancels every load.
  void cancelAllRequests();

  // Convenience requests, each with fresh load options and a new random UUID as its identifier.
  // The receiver or completion is held until the answer is delivered on the main queue.

  /// Loads the full image; the receiver gets the image and metadata, or none of either.
  std::string requestImage(std::shared_ptr<const MCImageDescriptor> descriptor, std::shared_ptr<MCImageReceiver> receiver);
  /// Loads a thumbnail of at most `maxPixelSize`; the receiver gets its image, or none.
  std::string requestThumbnail(std::shared_ptr<const MCImageDescriptor> descriptor, int64_t maxPixelSize,
                               std::shared_ptr<MCThumbnailReceiver> receiver);
  /// The same with a completion; it answers no identifier, so it cannot be cancelled alone.
  void requestThumbnail(std::shared_ptr<const MCImageDescriptor> descriptor, int64_t maxPixelSize,
                        std::function<void(MCRasterImageRef)> completion);

  /// The queue the loads run on.
  const std::shared_ptr<MCOperationQueue>& operationQueue() const { return operationQueue_; }

 private:
  std::shared_ptr<MCOperationQueue> operationQueue_;
};
