#pragma once
// The receivers of MCResourceLoader's convenience requests. A request holds its receiver strongly
// until the answer has been delivered, on the main queue.

#include <vesperon/core/MCValue.h>
#include <vesperon/platform/MCRasterImage.h>

#include <memory>
#include <optional>
#include <string>

class MCImage;

/// Gets the images a loader answers.
class MCImageReceiver {
 public:
  virtual ~MCImageReceiver() = default;
  /// The image and its metadata, both none when the load failed; `uuid` is the request's identifier.
  virtual void receiveImage(std::shared_ptr<const MCImage> image, std::optional<MCDictionary> metadata,
                            const std::string& uuid) = 0;
};

/// Gets the thumbnails a loader answers.
class MCThumbnailReceiver {
 public:
  virtual ~MCThumbnailReceiver() = default;
  /// The thumbnail's image, none when no thumbnail could be made.
  virtual void receiveThumbnail(MCRasterImageRef image, const std::string& uuid) = 0;
};
