#include <vesperon/pipeline/MCResourceLoader.h>

MCResourceLoader::MCResourceLoader() : operationQueue_(MCOperationQueue::create()) {}

MCResourceLoader::~MCResourceLoader() { operationQueue_->cancelAllOperations(); }

MCResourceLoader& MCResourceLoader::sharedInstance() {
  static MCResourceLoader* loader = new MCResourceLoader();  // lives as long as the process
  return *loader;
}

void MCResourceLoader::requestResourceForIdentifier(const MCAnyHashable& identifier,
                                                    std::shared_ptr<const MCResourceDescriptor> descriptor,
                                                    std::shared_ptr<const MCResourceLoadOptions> options,
                                                    MCResourceCompletion completion) {
  auto operation = std::make_shared<MCResourceLoadOperation>(identifier);
  operation->descriptor = std::move(descriptor);
  operation->options = std::move(options);
  operation->completion = std::move(completion);
  operationQueue_->addOperation(operation);
}

void MCResourceLoader::cancelRequestWithID(const MCAnyHashable& identifier) {
  operationQueue_->cancelOperationWithIdentifier(identifier);
}

void MCResourceLoader::cancelRequestsWithIDs(const std::vector<MCAnyHashable>& identifiers) {
  operationQueue_->cancelOperationsWithIdentifiers(identifiers);
}

void MCResourceLoader::cancelAllRequests() { operationQueue_->cancelAllOperations(); }
