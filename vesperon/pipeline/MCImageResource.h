#pragma once
// MCImageResource: a loaded image and the nested property dictionary the reader gave, unread.

#include <vesperon/core/MCValue.h>
#include <vesperon/pipeline/MCImage.h>
#include <vesperon/pipeline/MCResource.h>

#include <optional>

class MCImageResource : public MCResource {
 public:
  /// An image loaded, with its property dictionary when read.
  MCImageResource(std::shared_ptr<const MCImage> image, std::optional<MCDictionary> metadata,
                  std::optional<std::string> error = std::nullopt)
      : image_(std::move(image)), metadata_(std::move(metadata)), error_(std::move(error)) {}

  int64_t resourceType() const override { return 0; }
  const std::optional<std::string>& error() const override { return error_; }
  /// The image; none when the load failed.
  const std::shared_ptr<const MCImage>& image() const { return image_; }
  /// The nested property dictionary; none when not read.
  const std::optional<MCDictionary>& metadata() const { return metadata_; }

 private:
  std::shared_ptr<const MCImage> image_;
  std::optional<MCDictionary> metadata_;
  std::optional<std::string> error_;
};
