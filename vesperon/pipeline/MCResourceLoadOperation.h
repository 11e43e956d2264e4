#pragma once
// MCResourceLoadOperation: one request of MCResourceLoader. `main` runs the options' strategy on a
// worker thread and posts the completion, with the result or none, to the main queue. Once `main`
// has begun the load finishes and the completion is called, cancelled or not.

#include <vesperon/core/MCOperation.h>
#include <vesperon/pipeline/MCResource.h>

#include <functional>
#include <memory>

using MCResourceCompletion = std::function<void(std::shared_ptr<MCResource>)>;

class MCResourceLoadOperation : public MCOperation {
 public:
  explicit MCResourceLoadOperation(MCAnyHashable identifier) : MCOperation(std::move(identifier)) {}

  std::shared_ptr<const MCResourceDescriptor> descriptor;
  std::shared_ptr<const MCResourceLoadOptions> options;
  MCResourceCompletion completion;

  void main() override;
};
