#pragma once
// MCImageLoadStrategy: turns an MCImageDescriptor into an MCImageResource through MCImageReader.
// No image gives no resource. Stateless; one object may run on several threads at once.

#include <vesperon/pipeline/MCResource.h>

class MCImageLoadStrategy : public MCResourceLoadStrategy {
 public:
  std::shared_ptr<MCResource> loadResourceForDescriptor(const std::shared_ptr<const MCResourceDescriptor>& descriptor,
                                                        const std::shared_ptr<const MCResourceLoadOptions>& options) override;
};
