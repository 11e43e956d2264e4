#pragma once
// TIFFImageSource: one TIFF file (or one in memory), read with libtiff.
//
//   newImage                 the first page as 8-bit RGBA in sRGB, rows as stored (the orientation
//                            tag is metadata), through libtiff's RGBA reader: 1 to 16 bits, gray,
//                            palette, RGB, YCbCr and CMYK, striped or tiled, alpha premultiplied;
//                            an RGB ICC profile is applied
//   newImageInRegion         a rectangle of the first page, reading only the strips or tiles
//                            under it
//   newThumbnailWithOptions  the file's own reduced image (a reduced-resolution page after the
//                            first, or a SubIFD of the first) when it reaches the least size asked,
//                            else one made from the first page, by the platform's rules; oriented
//                            on request
//   metadataWithOptions      the first page's tags through the library's Exif road ({TIFF},
//                            {Exif}, {GPS}, orientation, DPI), pixel size, depth, colour model,
//                            alpha, and the number of pages (kMCImagePropertyImageCount)
//
// Every decode keeps to the options' decode budget (128 million pixels by default): a larger page
// gives none and one log line in sdkGraphics before anything is allocated. libtiff's errors and
// warnings are caught per call; a damaged file gives none.

#include "PixelResampler.h"
#include "SourceBytes.h"

#include <vesperon/codecs/MCImageCodec.h>

#include <optional>

// libtiff's handles, declared as its header does (it is not included here: it names a TIFFCodec).
typedef struct tiff TIFF;
struct _TIFFRGBAImage;

namespace mc_detail {

class TIFFImageSource : public MCImageSource {
 public:
  static std::shared_ptr<TIFFImageSource> create(std::shared_ptr<SourceBytes> bytes, const MCImageSourceOptions& options);

  MCRasterImageRef newImage() override;
  MCRasterImageRef newImageInRegion(std::size_t x, std::size_t y, std::size_t width, std::size_t height) override;
  MCRasterImageRef newThumbnailWithOptions(const MCThumbnailReadingOptions& options) override;
  std::optional<MCDictionary> metadataWithOptions(const std::optional<MCMetadataReadingOptions>& options) override;

  struct Page {
    uint64_t directoryOffset = 0;  // where its IFD lies, to go back to it
    bool isSubIFD = false;
    std::size_t width = 0, height = 0;
  };

 private:
  TIFFImageSource(std::shared_ptr<SourceBytes> bytes, MCImageSourceOptions options);
  /// Decodes one page, or none (logging a refusal of the budget).
  bool decode(const Page& page, uint64_t pixelLimit, RGBAPixels& out) const;
  /// Reads `rows` rows from `top` (a strip's or tile's first row) of the image begun on `tif`, in
  /// sRGB with alpha premultiplied.
  bool readRows(TIFF* tif, _TIFFRGBAImage& image, std::size_t top, std::size_t rows, std::size_t width,
                RGBAPixels& out) const;
  /// Decodes one page shrunk by the whole factor that keeps its larger side at least
  /// `maxPixelSize`, a band of rows at a time (a small page, or one in huge strips, whole).
  bool decodeReduced(const Page& page, std::size_t maxPixelSize, uint64_t pixelLimit, RGBAPixels& out) const;
  /// Decodes the rectangle of one page, reading only the strips or tiles under it.
  bool decodeRect(const Page& page, std::size_t x, std::size_t y, std::size_t width, std::size_t height,
                  uint64_t pixelLimit, RGBAPixels& out) const;

  std::shared_ptr<SourceBytes> bytes_;
  MCImageSourceOptions options_;
  Page first_;
  std::vector<Page> reduced_;  // the file's own smaller images, smallest first
  std::size_t pageCount_ = 0;
  int bitsPerSample_ = 0, samplesPerPixel_ = 0, photometric_ = 0;
  bool hasAlpha_ = false;
  unsigned orientation_ = 0;  // the orientation tag, for turning thumbnails
  std::vector<uint8_t> icc_;
  std::optional<MCDictionary> exifProperties_;  // the tags' dictionary, once read
};

}  // namespace mc_detail
