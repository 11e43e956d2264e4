#include "JPEGImageSource.h"

#include "DecodeBudget.h"

#include <vesperon/metadata/MCImagePropertyKeys.h>

#include <algorithm>

namespace mc_detail {

namespace {

MCRasterImageRef rasterImage(RGBAPixels pixels) {
  return MCRasterImage::createRGBA8(pixels.width, pixels.height, std::move(pixels.bytes));
}

}  // namespace

// Decodes through `decoder` within the budget; a refusal is logged once, naming the file.
bool JPEGImageSource::decodeWithinBudget(JPEGDecoder& decoder, unsigned scaleNumerator, const char* what,
                                         RGBAPixels& out) const {
  if (decoder.decode(scaleNumerator, options_.decodePixelLimit(), out)) return true;
  if (decoder.refusedWidth() != 0)
    logDecodeRefusal(url_.string(), decoder.refusedWidth(), decoder.refusedHeight(), decoder.refusedWorkingPixels(),
                     options_.decodePixelLimit(), what);
  return false;
}

bool JPEGImageSource::decodeFitting(JPEGDecoder& decoder, std::size_t maxPixelSize, const char* what,
                                    RGBAPixels& out) const {
  RGBAPixels decoded;
  if (!decodeWithinBudget(decoder, decoder.scaleNumeratorCovering(maxPixelSize), what, decoded)) return false;
  std::size_t w = 0, h = 0;
  fitWithin(decoded.width, decoded.height, maxPixelSize, w, h);
  out = (w == decoded.width && h == decoded.height) ? std::move(decoded) : resampleRGBA(decoded, w, h);
  return true;
}

std::shared_ptr<JPEGImageSource> JPEGImageSource::create(const std::filesystem::path& url,
                                                         const MCImageSourceOptions& options) {
  auto header = JPEGDecoder::openFile(url);
  if (!header) return nullptr;
  return std::shared_ptr<JPEGImageSource>(new JPEGImageSource(url, options, std::move(header)));
}

std::shared_ptr<JPEGImageSource> JPEGImageSource::create(std::shared_ptr<const MCData> data,
                                                         const MCImageSourceOptions& options) {
  if (!data) return nullptr;
  auto header = JPEGDecoder::openMemory(data->data(), data->size());
  if (!header) return nullptr;
  std::shared_ptr<JPEGImageSource> source(new JPEGImageSource("(in memory)", options, std::move(header)));
  source->data_ = std::move(data);
  return source;
}

JPEGImageSource::JPEGImageSource(std::filesystem::path url, MCImageSourceOptions options,
                                 std::unique_ptr<JPEGDecoder> header)
    : url_(std::move(url)),
      options_(std::move(options)),
      width_(header->width()),
      height_(header->height()),
      colorModel_(header->colorModel()) {
  const auto& segment = header->exifSegment();
  if (!segment.empty()) exif_ = EmbeddedExif::create(segment.data(), segment.size());
  header_ = std::move(header);
}

std::unique_ptr<JPEGDecoder> JPEGImageSource::imageDecoder() {
  if (header_) return std::move(header_);
  return data_ ? JPEGDecoder::openMemory(data_->data(), data_->size()) : JPEGDecoder::openFile(url_);
}

MCRasterImageRef JPEGImageSource::newImage() {
  auto decoder = imageDecoder();
  if (!decoder) return nullptr;
  unsigned scale = 8;
  switch (options_.subsampleFactor) {
    case 2: scale = 4; break;
    case 4: scale = 2; break;
    case 8: scale = 1; break;
    default: break;
  }
  RGBAPixels pixels;
  if (!decodeWithinBudget(*decoder, scale, "the image", pixels)) return nullptr;
  return rasterImage(std::move(pixels));
}

MCRasterImageRef JPEGImageSource::newImageInRegion(std::size_t x, std::size_t y, std::size_t width, std::size_t height) {
  auto decoder = imageDecoder();
  if (!decoder) return nullptr;
  RGBAPixels pixels;
  if (!decoder->decodeRegion(x, y, width, height, options_.decodePixelLimit(), pixels)) {
    if (decoder->refusedWidth() != 0)
      logDecodeRefusal(url_.string(), decoder->refusedWidth(), decoder->refusedHeight(),
                       decoder->refusedWorkingPixels(), options_.decodePixelLimit(), "a region of the image");
    return nullptr;
  }
  return rasterImage(std::move(pixels));
}

bool JPEGImageSource::embeddedThumbnail(std::size_t minPixelSize, std::size_t maxPixelSize, RGBAPixels& out) const {
  if (!exif_) return false;
  const std::vector<uint8_t> data = exif_->thumbnailData();
  auto decoder = JPEGDecoder::openMemory(data.data(), data.size());
  if (!decoder) return false;
  // An embedded thumbnail smaller than the least acceptable size counts as absent.
  if (std::max(decoder->width(), decoder->height()) < minPixelSize) return false;
  return decodeFitting(*decoder, maxPixelSize, "the embedded thumbnail", out);
}

bool JPEGImageSource::imageThumbnail(std::size_t maxPixelSize, RGBAPixels& out) {
  auto decoder = imageDecoder();
  return decoder && decodeFitting(*decoder, maxPixelSize, "the image", out);
}

// The platform's rules: with `createThumbnailFromImageAlways` the thumbnail comes from the full
// image. Otherwise the embedded thumbnail serves when there is one of at least the minimum size;
// failing that, `createThumbnailFromImageIfAbsent` makes one from the image, and without it there
// is none. The maximum bounds the larger side; 0 keeps the size of what was read.
MCRasterImageRef JPEGImageSource::newThumbnailWithOptions(const MCThumbnailReadingOptions& options) {
  const std::size_t minSize = options.thumbnailMinPixelSize;
  const std::size_t maxSize = options.thumbnailMaxPixelSize;
  RGBAPixels pixels;
  bool made = false;
  if (!options.createThumbnailFromImageAlways) {
    made = embeddedThumbnail(minSize, maxSize, pixels);
    if (!made && !options.createThumbnailFromImageIfAbsent) return nullptr;
  }
  if (!made) made = imageThumbnail(maxSize, pixels);
  if (!made) return nullptr;
  if (options.createThumbnailWithTransform) {
    const unsigned orientation = options.orientation != 0 ? unsigned(options.orientation) : (exif_ ? exif_->orientation() : 0);
    pixels = applyOrientation(std::move(pixels), orientation);
  }
  return rasterImage(std::move(pixels));
}

std::optional<MCDictionary> JPEGImageSource::metadataWithOptions(const std::optional<MCMetadataReadingOptions>&) {
  // What the Exif block says first; the frame itself knows its size and depth better.
  MCDictionary properties = exif_ ? exif_->properties() : MCDictionary();
  properties[kCGImagePropertyPixelWidth] = MCValue(int64_t(width_));
  properties[kCGImagePropertyPixelHeight] = MCValue(int64_t(height_));
  properties[kCGImagePropertyDepth] = MCValue(int64_t(8));
  switch (colorModel_) {
    case JPEGDecoder::ColorModel::Gray: properties[kCGImagePropertyColorModel] = kCGImagePropertyColorModelGray; break;
    case JPEGDecoder::ColorModel::CMYK: properties[kCGImagePropertyColorModel] = kCGImagePropertyColorModelCMYK; break;
    case JPEGDecoder::ColorModel::RGB: properties[kCGImagePropertyColorModel] = kCGImagePropertyColorModelRGB; break;
  }
  return properties;
}

}  // namespace mc_detail
