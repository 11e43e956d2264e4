#pragma once
// WebPImageSource: one WebP file (or one in memory), read with libwebp.
//
//   newImage                 the still image, or an animation's first frame on its canvas, as
//                            8-bit RGBA premultiplied in sRGB (an ICCP profile applied)
//   newThumbnailWithOptions  made from the image (WebP holds no thumbnail of its own) when asked;
//                            a still image is decoded straight at the thumbnail's size by
//                            libwebp's scaler; oriented on request by the EXIF chunk
//   metadataWithOptions      pixel size, alpha, the EXIF chunk through the library's Exif road,
//                            and the frame count of an animation (kMCImagePropertyImageCount)
//
// Every decode keeps to the options' decode budget, which counts the canvas and, for an animation,
// the first frame decoded onto it; a damaged file gives none.

#include "EmbeddedExif.h"
#include "PixelResampler.h"
#include "SourceBytes.h"

#include <vesperon/codecs/MCImageCodec.h>

namespace mc_detail {

class WebPImageSource : public MCImageSource {
 public:
  static std::shared_ptr<WebPImageSource> create(std::shared_ptr<SourceBytes> bytes, const MCImageSourceOptions& options);

  MCRasterImageRef newImage() override;
  MCRasterImageRef newThumbnailWithOptions(const MCThumbnailReadingOptions& options) override;
  std::optional<MCDictionary> metadataWithOptions(const std::optional<MCMetadataReadingOptions>& options) override;

 private:
  WebPImageSource(std::shared_ptr<SourceBytes> bytes, MCImageSourceOptions options) : bytes_(std::move(bytes)), options_(std::move(options)) {}
  /// Decoded at `width` × `height` (the canvas size when 0), or none.
  bool decode(std::size_t width, std::size_t height, uint64_t pixelLimit, RGBAPixels& out) const;
  /// An animation's first frame on its canvas, decoded at the canvas size and resampled to
  /// `width` × `height`.
  bool decodeFirstFrame(std::size_t width, std::size_t height, uint64_t pixelLimit, RGBAPixels& out) const;

  std::shared_ptr<SourceBytes> bytes_;
  MCImageSourceOptions options_;
  std::size_t width_ = 0, height_ = 0;
  bool hasAlpha_ = false, animated_ = false;
  std::size_t frameCount_ = 1;
  std::vector<uint8_t> icc_;
  std::unique_ptr<EmbeddedExif> exif_;
};

}  // namespace mc_detail
