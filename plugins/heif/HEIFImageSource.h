#pragma once
// HEIFImageSource: one HEIC or AVIF file (or one in memory), read with libheif.
//
//   newImage                 the primary image with its transformations applied (rotation,
//                            mirroring, crop), as 8-bit RGBA premultiplied in sRGB (an ICC profile
//                            applied); depth and other auxiliary images are passed over
//   newThumbnailWithOptions  the file's own thumbnail item when it reaches the least size asked,
//                            else one made from the primary image, by the platform's rules
//   metadataWithOptions      the shown size, alpha, and the Exif item through the library's Exif
//                            road; the orientation is 1, since the pixels come turned already
//
// Every decode keeps to the options' decode budget; a file without a primary image, or one libheif
// cannot read, gives none.

#include "EmbeddedExif.h"
#include "PixelResampler.h"
#include "SourceBytes.h"

#include <vesperon/codecs/MCImageCodec.h>

struct heif_context;

namespace mc_detail {

class HEIFImageSource : public MCImageSource {
 public:
  static std::shared_ptr<HEIFImageSource> create(std::shared_ptr<SourceBytes> bytes, const MCImageSourceOptions& options);
  ~HEIFImageSource() override;

  MCRasterImageRef newImage() override;
  MCRasterImageRef newThumbnailWithOptions(const MCThumbnailReadingOptions& options) override;
  std::optional<MCDictionary> metadataWithOptions(const std::optional<MCMetadataReadingOptions>& options) override;

 private:
  HEIFImageSource(std::shared_ptr<SourceBytes> bytes, MCImageSourceOptions options) : bytes_(std::move(bytes)), options_(std::move(options)) {}
  /// The primary image (`thumbnail` false) or its largest thumbnail item, decoded; none on failure.
  bool decode(bool thumbnail, uint64_t pixelLimit, RGBAPixels& out) const;

  std::shared_ptr<SourceBytes> bytes_;
  MCImageSourceOptions options_;
  heif_context* context_ = nullptr;
  std::size_t width_ = 0, height_ = 0;
  std::size_t thumbnailWidth_ = 0, thumbnailHeight_ = 0;
  bool hasAlpha_ = false;
  int bitDepth_ = 8;
  std::unique_ptr<EmbeddedExif> exif_;
};

}  // namespace mc_detail
