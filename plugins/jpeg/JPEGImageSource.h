#pragma once
// JPEGImageSource: one opened JPEG file.
//
//   newImage                 the full image as 8-bit RGBA in sRGB, at 1/subsampleFactor through
//                            libjpeg-turbo's DCT scaling when the factor is 2, 4 or 8
//   newImageInRegion         a rectangle of the full image, skipping the rows above it and
//                            leaving the blocks beside it untransformed
//   newThumbnailWithOptions  the embedded Exif (IFD 1) thumbnail or one made from the image, by the
//                            platform's rules (see the .cpp), oriented on request
//   metadataWithOptions      the Exif block's nested property dictionary as MCExif presents it
//                            (orientation, DPI, TIFF, Exif and GPS sub-dictionaries), with the
//                            frame's own pixel size, depth and colour model
//
// Grayscale and CMYK files come out as RGBA like any other, and every image is in sRGB: an
// embedded ICC profile is applied when the pixels are decoded.
//
// Every decode keeps to the options' decode budget (MCImageSourceOptions::decodePixelLimit,
// 128 million pixels by default), measured on what is decoded after DCT scaling, so a thumbnail of
// a 100-megapixel photo decodes at 1/8 well inside it while its full image needs the budget
// raised. Beyond it the source gives none and logs once, before anything is allocated.
//
// Truncated files: a file that ends after the first row of blocks of its image gives the partial
// image, the missing rows grey, for the image and for thumbnails alike — what vipsthumbnail,
// ImageMagick and gdk-pixbuf (eog, the file manager) show for a half-downloaded photo, and what
// lets a user recognise it. A file cut inside its header or before any row gives none (see
// JPEGDecoder).

#include "EmbeddedExif.h"
#include "JPEGDecoder.h"

#include <vesperon/codecs/MCImageCodec.h>

namespace mc_detail {

class JPEGImageSource : public MCImageSource {
 public:
  /// None when the file cannot be opened or is not a JPEG.
  static std::shared_ptr<JPEGImageSource> create(const std::filesystem::path& url, const MCImageSourceOptions& options);
  /// The same over bytes in memory, which the source keeps.
  static std::shared_ptr<JPEGImageSource> create(std::shared_ptr<const MCData> data, const MCImageSourceOptions& options);

  MCRasterImageRef newImage() override;
  MCRasterImageRef newThumbnailWithOptions(const MCThumbnailReadingOptions& options) override;
  MCRasterImageRef newImageInRegion(std::size_t x, std::size_t y, std::size_t width, std::size_t height) override;
  std::optional<MCDictionary> metadataWithOptions(const std::optional<MCMetadataReadingOptions>& options) override;

 private:
  JPEGImageSource(std::filesystem::path url, MCImageSourceOptions options, std::unique_ptr<JPEGDecoder> header);
  /// The embedded thumbnail if it is there and its larger side reaches `minPixelSize`, at most
  /// `maxPixelSize` (0: as it is).
  bool embeddedThumbnail(std::size_t minPixelSize, std::size_t maxPixelSize, RGBAPixels& out) const;
  /// The full image, decoded at the smallest DCT scale that covers `maxPixelSize` and resampled to it.
  bool imageThumbnail(std::size_t maxPixelSize, RGBAPixels& out);
  /// Decodes at scale n/8 within the options' decode budget, logging a refusal (sdkGraphics:
  /// "Refused to decode <what> of <file>: <w> x <h> pixels is beyond the limit of <n>").
  bool decodeWithinBudget(JPEGDecoder& decoder, unsigned scaleNumerator, const char* what, RGBAPixels& out) const;
  /// Decodes at the smallest DCT scale that covers `maxPixelSize`, then resamples to it.
  bool decodeFitting(JPEGDecoder& decoder, std::size_t maxPixelSize, const char* what, RGBAPixels& out) const;
  /// The decoder that read the header, the first time; a fresh one after that.
  std::unique_ptr<JPEGDecoder> imageDecoder();

  std::filesystem::path url_;         // the file, or a name for log lines when reading from memory
  std::shared_ptr<const MCData> data_;  // the bytes, when the source reads from memory
  MCImageSourceOptions options_;
  std::size_t width_, height_;
  JPEGDecoder::ColorModel colorModel_;
  std::unique_ptr<EmbeddedExif> exif_;
  std::unique_ptr<JPEGDecoder> header_;  // reused for the first decode: the header is read once
};

}  // namespace mc_detail
