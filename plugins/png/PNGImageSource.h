#pragma once
// PNGImageSource: one opened PNG file, read with libpng.
//
//   newImage                 the full image as 8-bit RGBA in sRGB (16-bit samples reduced,
//                            palettes and gray expanded, an RGB iCCP profile applied,
//                            transparency kept and premultiplied)
//   newThumbnailWithOptions  always made from the full image (a PNG holds no thumbnail), unless
//                            neither creation flag is set; bounded and oriented as asked
//   metadataWithOptions      pixel size, depth, alpha, colour model, orientation, and the TIFF,
//                            Exif and GPS sub-dictionaries when the file has an eXIf chunk
//
// libpng's errors are caught per call; a damaged file gives none. Every decode is of the whole
// image (PNG has no reduced decode, so a thumbnail is resampled from it) and keeps to the options'
// decode budget (MCImageSourceOptions::decodePixelLimit, 128 million pixels by default): a larger
// image gives none and one log line in sdkGraphics, before anything is allocated.

#include "EmbeddedExif.h"
#include "PixelResampler.h"

#include <vesperon/codecs/MCImageCodec.h>

namespace mc_detail {

class PNGImageSource : public MCImageSource {
 public:
  /// None when the file cannot be opened or is not a PNG.
  static std::shared_ptr<PNGImageSource> create(const std::filesystem::path& url, const MCImageSourceOptions& options);
  /// The same over bytes in memory, which the source keeps.
  static std::shared_ptr<PNGImageSource> create(std::shared_ptr<const MCData> data, const MCImageSourceOptions& options);

  MCRasterImageRef newImage() override;
  MCRasterImageRef newThumbnailWithOptions(const MCThumbnailReadingOptions& options) override;
  std::optional<MCDictionary> metadataWithOptions(const std::optional<MCMetadataReadingOptions>& options) override;

  struct Header {
    std::size_t width = 0, height = 0;
    int bitDepth = 0;
    int colorType = 0;
    bool hasTransparency = false;
    std::vector<uint8_t> exif;
    std::vector<uint8_t> icc;
  };

 private:
  PNGImageSource(std::filesystem::path url, MCImageSourceOptions options, Header header);
  bool decode(RGBAPixels& out) const;
  /// Whether the image fits the decode budget; logs the refusal when it does not.
  bool withinBudget(const Header& header) const;

  std::filesystem::path url_;           // the file, or a name for log lines when reading from memory
  std::shared_ptr<const MCData> data_;  // the bytes, when the source reads from memory
  MCImageSourceOptions options_;
  Header header_;
  std::unique_ptr<EmbeddedExif> exif_;
};

}  // namespace mc_detail
