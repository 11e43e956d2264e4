#pragma once
// MCOperation: an operation that carries an identifier, by which MCOperationQueue finds and
// cancels it. Subclasses put their work in `main`.

#include <vesperon/core/MCAnyHashable.h>
#include <vesperon/platform/MCPlatformOperation.h>

class MCOperation : public MCPlatformOperation {
 public:
  /// An operation known by `identifier`.
  explicit MCOperation(MCAnyHashable identifier) : identifier_(std::move(identifier)) {}

  /// The identifier it is cancelled by.
  const MCAnyHashable& identifier() const { return identifier_; }

 private:
  const MCAnyHashable identifier_;
};
