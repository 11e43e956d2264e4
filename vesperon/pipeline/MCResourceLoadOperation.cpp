#include <vesperon/pipeline/MCResourceLoadOperation.h>

#include <vesperon/platform/MCMainQueue.h>

void MCResourceLoadOperation::main() {
  std::shared_ptr<MCResource> result;
  if (options) {
    if (auto strategy = options->strategy()) result = strategy->loadResourceForDescriptor(descriptor, options);
  }
  MCMainQueue::async([completion = completion, result = std::move(result)] {
    if (completion) completion(result);
  });
}
