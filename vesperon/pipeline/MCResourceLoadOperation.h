#pragma once
// MCResourceLoadOperation: one request of MCResourceLoader. `main` runs the options' strategy on a
// worker thread and posts the completion, with the result or none, to the main queue. Once `main`
// has begun the load finishes and the completion is called, cancelled or not.
//
// Every started request answers exactly once. A strategy that throws — its own fault, a plug-in's
// that got past the reader, a failed allocation — counts as a load that gave nothing: the error
// is logged once in sdkGraphics ("Couldn't load <file>: <reason>") and the completion gets none.
// The answer is made ready before the strategy runs, so posting it needs no allocation that could
// fail after a load; the operation queue's own catch-all stays a last guard only.

#include <vesperon/core/MCOperation.h>
#include <vesperon/pipeline/MCResource.h>

#include <functional>
#include <memory>

using MCResourceCompletion = std::function<void(std::shared_ptr<MCResource>)>;

class MCResourceLoadOperation : public MCOperation {
 public:
  /// An operation of `identifier`.
  explicit MCResourceLoadOperation(MCAnyHashable identifier) : MCOperation(std::move(identifier)) {}

  /// What to load.
  std::shared_ptr<const MCResourceDescriptor> descriptor;
  /// How to load it.
  std::shared_ptr<const MCResourceLoadOptions> options;
  /// What gets the resource on the main queue.
  MCResourceCompletion completion;

  void main() override;
};
