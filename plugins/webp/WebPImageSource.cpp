#include "DecodeBudget.h"
#include "WebPImageSource.h"

#include "ProfileConversion.h"

#include <vesperon/codecs/MCImageSourceProperties.h>
#include <vesperon/core/MCLog.h>
#include <vesperon/metadata/MCImagePropertyKeys.h>

#include <webp/decode.h>
#include <webp/demux.h>

#include <algorithm>
#include <cstring>

namespace mc_detail {

namespace {

std::vector<uint8_t> chunk(WebPDemuxer* demux, const char* fourcc) {
  WebPChunkIterator iterator;
  std::vector<uint8_t> bytes;
  if (WebPDemuxGetChunk(demux, fourcc, 1, &iterator)) {
    bytes.assign(iterator.chunk.bytes, iterator.chunk.bytes + iterator.chunk.size);
    WebPDemuxReleaseChunkIterator(&iterator);
  }
  return bytes;
}


}  // namespace

std::shared_ptr<WebPImageSource> WebPImageSource::create(std::shared_ptr<SourceBytes> bytes,
                                                         const MCImageSourceOptions& options) {
  if (!bytes) return nullptr;
  WebPBitstreamFeatures features;
  if (WebPGetFeatures(bytes->data(), bytes->size(), &features) != VP8_STATUS_OK) return nullptr;
  std::shared_ptr<WebPImageSource> source(new WebPImageSource(std::move(bytes), options));
  const WebPData data{source->bytes_->data(), source->bytes_->size()};
  WebPDemuxer* demux = WebPDemux(&data);
  if (!demux) return nullptr;
  source->width_ = WebPDemuxGetI(demux, WEBP_FF_CANVAS_WIDTH);
  source->height_ = WebPDemuxGetI(demux, WEBP_FF_CANVAS_HEIGHT);
  source->frameCount_ = std::max<uint32_t>(1, WebPDemuxGetI(demux, WEBP_FF_FRAME_COUNT));
  source->animated_ = features.has_animation;
  source->hasAlpha_ = features.has_alpha;
  source->icc_ = chunk(demux, "ICCP");
  const std::vector<uint8_t> exif = chunk(demux, "EXIF");
  WebPDemuxDelete(demux);
  if (!exif.empty()) source->exif_ = EmbeddedExif::create(exif.data(), exif.size());
  if (!source->width_ || !source->height_) return nullptr;
  return source;
}

// The first frame on its canvas, as the animation decoder composes it — a first frame is a key
// frame, so that is the frame over a transparent canvas — but decoded straight into the output:
// the animation decoder keeps two canvases of its own and hands out a third, three times the
// image, where this holds the image and, for a lossless frame, the frame's own pixels beside it.
bool WebPImageSource::decodeFirstFrame(std::size_t width, std::size_t height, uint64_t pixelLimit, RGBAPixels& out) const {
  const WebPData data{bytes_->data(), bytes_->size()};
  WebPDemuxer* demux = WebPDemux(&data);
  if (!demux) return false;
  WebPIterator frame;
  if (!WebPDemuxGetFrame(demux, 1, &frame)) {
    WebPDemuxDelete(demux);
    return false;
  }
  const std::size_t x = std::size_t(frame.x_offset), y = std::size_t(frame.y_offset);
  const std::size_t frameWidth = std::size_t(frame.width), frameHeight = std::size_t(frame.height);
  bool ok = frameWidth && frameHeight && x + frameWidth <= width_ && y + frameHeight <= height_ &&
            withinDecodeBudget(bytes_->name(), width_, height_, pixelLimit, "the image", uint64_t(frameWidth) * frameHeight);
  WebPDecoderConfig config;
  ok = ok && WebPInitDecoderConfig(&config);
  if (ok) {
    out.width = width_;
    out.height = height_;
    out.bytes.assign(width_ * height_ * 4, 0);
    config.output.colorspace = MODE_RGBA;
    config.output.is_external_memory = 1;
    config.output.u.RGBA.rgba = out.bytes.data() + (y * width_ + x) * 4;
    config.output.u.RGBA.stride = int(width_ * 4);
    config.output.u.RGBA.size = (frameHeight - 1) * width_ * 4 + frameWidth * 4;
    ok = WebPDecode(frame.fragment.bytes, frame.fragment.size, &config) == VP8_STATUS_OK;
    WebPFreeDecBuffer(&config.output);
  }
  WebPDemuxReleaseIterator(&frame);
  WebPDemuxDelete(demux);
  if (!ok) return false;
  if (!icc_.empty()) convertProfiledPixelsToSRGB(out.bytes.data(), width_ * height_, ProfiledLayout::RGBA, icc_);
  premultiplyRGBA(out.bytes);
  if (width != width_ || height != height_) out = resampleRGBA(out, width, height);
  return true;
}

bool WebPImageSource::decode(std::size_t width, std::size_t height, uint64_t pixelLimit, RGBAPixels& out) const {
  if (!width || !height) {
    width = width_;
    height = height_;
  }
  if (animated_) return decodeFirstFrame(width, height, pixelLimit, out);
  if (!withinDecodeBudget(bytes_->name(), width_, height_, pixelLimit)) return false;
  WebPDecoderConfig config;
  if (!WebPInitDecoderConfig(&config)) return false;
  config.output.colorspace = icc_.empty() ? MODE_rgbA : MODE_RGBA;  // a profile applies to straight colour
  if (width != width_ || height != height_) {
    config.options.use_scaling = 1;
    config.options.scaled_width = int(width);
    config.options.scaled_height = int(height);
  }
  out.width = width;
  out.height = height;
  out.bytes.assign(width * height * 4, 0);
  config.output.is_external_memory = 1;
  config.output.u.RGBA.rgba = out.bytes.data();
  config.output.u.RGBA.stride = int(width * 4);
  config.output.u.RGBA.size = out.bytes.size();
  const bool ok = WebPDecode(bytes_->data(), bytes_->size(), &config) == VP8_STATUS_OK;
  WebPFreeDecBuffer(&config.output);
  if (!ok) return false;
  if (!icc_.empty()) {
    convertProfiledPixelsToSRGB(out.bytes.data(), width * height, ProfiledLayout::RGBA, icc_);
    premultiplyRGBA(out.bytes);
  }
  return true;
}

MCRasterImageRef WebPImageSource::newImage() {
  std::size_t w = 0, h = 0;
  const uint64_t factor = options_.subsampleFactor;
  if (factor == 2 || factor == 4 || factor == 8) {
    w = std::max<std::size_t>(1, (width_ + factor - 1) / factor);
    h = std::max<std::size_t>(1, (height_ + factor - 1) / factor);
  }
  RGBAPixels pixels;
  if (!decode(w, h, options_.decodePixelLimit(), pixels)) return nullptr;
  return MCRasterImage::createRGBA8(pixels.width, pixels.height, std::move(pixels.bytes));
}

MCRasterImageRef WebPImageSource::newThumbnailWithOptions(const MCThumbnailReadingOptions& options) {
  if (!options.createThumbnailFromImageAlways && !options.createThumbnailFromImageIfAbsent) return nullptr;
  std::size_t w = 0, h = 0;
  fitWithin(width_, height_, options.thumbnailMaxPixelSize, w, h);
  const uint64_t limit = options.maxDecodePixelCount ? options.maxDecodePixelCount : options_.decodePixelLimit();
  RGBAPixels pixels;
  if (!decode(w, h, limit, pixels)) return nullptr;
  if (options.createThumbnailWithTransform) {
    const unsigned orientation = options.orientation ? unsigned(options.orientation) : (exif_ ? exif_->orientation() : 0);
    pixels = applyOrientation(std::move(pixels), orientation);
  }
  return MCRasterImage::createRGBA8(pixels.width, pixels.height, std::move(pixels.bytes));
}

std::optional<MCDictionary> WebPImageSource::metadataWithOptions(const std::optional<MCMetadataReadingOptions>&) {
  MCDictionary properties = exif_ ? exif_->properties() : MCDictionary();
  properties[kCGImagePropertyPixelWidth] = MCValue(int64_t(width_));
  properties[kCGImagePropertyPixelHeight] = MCValue(int64_t(height_));
  properties[kCGImagePropertyDepth] = MCValue(int64_t(8));
  properties[kCGImagePropertyHasAlpha] = MCValue(hasAlpha_);
  properties[kCGImagePropertyColorModel] = MCValue(std::string(kCGImagePropertyColorModelRGB));
  properties[kMCImagePropertyImageCount] = MCValue(int64_t(frameCount_));
  return properties;
}

}  // namespace mc_detail
