#pragma once
// MCThumbnailResource: a loaded thumbnail and the size the client asked for, whatever size came back.

#include <vesperon/pipeline/MCResource.h>
#include <vesperon/pipeline/MCThumbnail.h>

class MCThumbnailResource : public MCResource {
 public:
  /// A thumbnail loaded for a request of `requestedPixelSize`.
  MCThumbnailResource(MCThumbnail thumbnail, int64_t requestedPixelSize, std::optional<std::string> error = std::nullopt)
      : thumbnail_(std::move(thumbnail)), requestedPixelSize_(requestedPixelSize), error_(std::move(error)) {}

  int64_t resourceType() const override { return 1; }
  const std::optional<std::string>& error() const override { return error_; }
  /// The thumbnail.
  const MCThumbnail& thumbnail() const { return thumbnail_; }
  /// The size asked for.
  int64_t requestedPixelSize() const { return requestedPixelSize_; }

 private:
  MCThumbnail thumbnail_;
  int64_t requestedPixelSize_;
  std::optional<std::string> error_;
};
