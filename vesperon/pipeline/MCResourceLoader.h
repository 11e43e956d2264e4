#pragma once
// MCResourceLoader: the one road by which an image or a thumbnail comes out of a file.
//
// Every request becomes one MCResourceLoadOperation on the loader's own MCOperationQueue: the
// strategy runs on a worker thread, the completion on the main queue — one at a time, never on the
// caller's stack. Cancelling a queued request drops it (no completion); a running one delivers
// normally. Loaders are independent: cancelling on one never touches another's requests.
// Requests may be made from any thread. Destroying a loader cancels its operations.

#include <vesperon/core/MCOperationQueue.h>
#include <vesperon/pipeline/MCResourceLoadOperation.h>

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

  void requestResourceForIdentifier(const MCAnyHashable& identifier,
                                    std::shared_ptr<const MCResourceDescriptor> descriptor,
                                    std::shared_ptr<const MCResourceLoadOptions> options,
                                    MCResourceCompletion completion);
  void cancelRequestWithID(const MCAnyHashable& identifier);
  void cancelRequestsWithIDs(const std::vector<MCAnyHashable>& identifiers);
  void cancelAllRequests();

  const std::shared_ptr<MCOperationQueue>& operationQueue() const { return operationQueue_; }

 private:
  std::shared_ptr<MCOperationQueue> operationQueue_;
};
