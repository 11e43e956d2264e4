#include "DecodeBudget.h"
#include "HEIFImageSource.h"

#include "ProfileConversion.h"

#include <vesperon/core/MCLog.h>
#include <vesperon/metadata/MCImagePropertyKeys.h>

#include <libheif/heif.h>

#include <algorithm>
#include <cstring>
#include <mutex>

namespace mc_detail {

namespace {

struct HandleDeleter {
  void operator()(heif_image_handle* handle) const { heif_image_handle_release(handle); }
};
using Handle = std::unique_ptr<heif_image_handle, HandleDeleter>;

Handle primary(heif_context* context) {
  heif_image_handle* handle = nullptr;
  if (heif_context_get_primary_image_handle(context, &handle).code != heif_error_Ok) return nullptr;
  return Handle(handle);
}

// The largest thumbnail item of the image, or none.
Handle largestThumbnail(heif_image_handle* image) {
  const int count = heif_image_handle_get_number_of_thumbnails(image);
  if (count <= 0) return nullptr;
  std::vector<heif_item_id> ids(static_cast<std::size_t>(count));
  heif_image_handle_get_list_of_thumbnail_IDs(image, ids.data(), count);
  Handle best;
  for (heif_item_id id : ids) {
    heif_image_handle* thumbnail = nullptr;
    if (heif_image_handle_get_thumbnail(image, id, &thumbnail).code != heif_error_Ok) continue;
    Handle candidate(thumbnail);
    if (!best || heif_image_handle_get_width(thumbnail) > heif_image_handle_get_width(best.get()))
      best = std::move(candidate);
  }
  return best;
}


}  // namespace

std::shared_ptr<HEIFImageSource> HEIFImageSource::create(std::shared_ptr<SourceBytes> bytes,
                                                         const MCImageSourceOptions& options) {
  if (!bytes) return nullptr;
  static std::once_flag initialized;
  std::call_once(initialized, [] { heif_init(nullptr); });
  std::shared_ptr<HEIFImageSource> source(new HEIFImageSource(std::move(bytes), options));
  source->context_ = heif_context_alloc();
  if (!source->context_) return nullptr;
  const heif_error read = heif_context_read_from_memory_without_copy(source->context_, source->bytes_->data(),
                                                                     source->bytes_->size(), nullptr);
  if (read.code != heif_error_Ok) return nullptr;
  Handle image = primary(source->context_);
  if (!image) {
    MCLog::sdkGraphics()->logError("Couldn't read " + source->bytes_->name() + ": it has no primary image");
    return nullptr;
  }
  source->width_ = std::size_t(std::max(0, heif_image_handle_get_width(image.get())));
  source->height_ = std::size_t(std::max(0, heif_image_handle_get_height(image.get())));
  if (!source->width_ || !source->height_) return nullptr;
  source->hasAlpha_ = heif_image_handle_has_alpha_channel(image.get());
  source->bitDepth_ = std::max(8, heif_image_handle_get_luma_bits_per_pixel(image.get()));
  if (Handle thumbnail = largestThumbnail(image.get())) {
    source->thumbnailWidth_ = std::size_t(std::max(0, heif_image_handle_get_width(thumbnail.get())));
    source->thumbnailHeight_ = std::size_t(std::max(0, heif_image_handle_get_height(thumbnail.get())));
  }
  // The Exif item starts with the offset of the TIFF header within it.
  heif_item_id exifID = 0;
  if (heif_image_handle_get_list_of_metadata_block_IDs(image.get(), "Exif", &exifID, 1) == 1) {
    std::vector<uint8_t> item(heif_image_handle_get_metadata_size(image.get(), exifID));
    if (item.size() > 4 && heif_image_handle_get_metadata(image.get(), exifID, item.data()).code == heif_error_Ok) {
      const std::size_t offset = (std::size_t(item[0]) << 24 | std::size_t(item[1]) << 16 | std::size_t(item[2]) << 8 | item[3]) + 4;
      if (offset < item.size()) source->exif_ = EmbeddedExif::create(item.data() + offset, item.size() - offset);
    }
  }
  return source;
}

HEIFImageSource::~HEIFImageSource() {
  if (context_) heif_context_free(context_);
}

bool HEIFImageSource::decode(bool thumbnail, uint64_t pixelLimit, RGBAPixels& out) const {
  const std::size_t width = thumbnail ? thumbnailWidth_ : width_, height = thumbnail ? thumbnailHeight_ : height_;
  // libheif's decoded picture counts too: its RGBA copy of the output, and the 4:2:0 planes it
  // converts from (1.5 bytes a pixel), in pixels of four bytes.
  const uint64_t pixels = uint64_t(width) * height;
  if (!withinDecodeBudget(bytes_->name(), width, height, pixelLimit, thumbnail ? "the thumbnail" : "the image",
                          pixels + pixels * 3 / 8))
    return false;
  Handle image = primary(context_);
  if (!image) return false;
  if (thumbnail) {
    image = largestThumbnail(image.get());
    if (!image) return false;
  }
  heif_decoding_options* options = heif_decoding_options_alloc();
  options->ignore_transformations = 0;
  heif_image* decoded = nullptr;
  const heif_error error = heif_decode_image(image.get(), &decoded, heif_colorspace_RGB, heif_chroma_interleaved_RGBA, options);
  heif_decoding_options_free(options);
  if (error.code != heif_error_Ok || !decoded) return false;
  int stride = 0;
  const uint8_t* plane = heif_image_get_plane_readonly(decoded, heif_channel_interleaved, &stride);
  const int w = heif_image_get_width(decoded, heif_channel_interleaved);
  const int h = heif_image_get_height(decoded, heif_channel_interleaved);
  if (!plane || w <= 0 || h <= 0) {
    heif_image_release(decoded);
    return false;
  }
  out.width = std::size_t(w);
  out.height = std::size_t(h);
  out.bytes.resize(out.width * out.height * 4);
  for (std::size_t y = 0; y < out.height; ++y)
    std::memcpy(out.bytes.data() + y * out.width * 4, plane + y * std::size_t(stride), out.width * 4);
  // The profile of the image, raw ICC only (an nclx box describes sRGB or close to it here).
  if (heif_image_handle_get_color_profile_type(image.get()) == heif_color_profile_type_prof ||
      heif_image_handle_get_color_profile_type(image.get()) == heif_color_profile_type_rICC) {
    std::vector<uint8_t> icc(heif_image_handle_get_raw_color_profile_size(image.get()));
    if (!icc.empty() && heif_image_handle_get_raw_color_profile(image.get(), icc.data()).code == heif_error_Ok)
      convertProfiledPixelsToSRGB(out.bytes.data(), out.width * out.height, ProfiledLayout::RGBA, icc);
  }
  if (!heif_image_handle_is_premultiplied_alpha(image.get())) premultiplyRGBA(out.bytes);
  heif_image_release(decoded);
  return true;
}

MCRasterImageRef HEIFImageSource::newImage() {
  RGBAPixels pixels;
  if (!decode(false, options_.decodePixelLimit(), pixels)) return nullptr;
  pixels = subsampled(std::move(pixels), options_.subsampleFactor);
  return MCRasterImage::createRGBA8(pixels.width, pixels.height, std::move(pixels.bytes));
}

MCRasterImageRef HEIFImageSource::newThumbnailWithOptions(const MCThumbnailReadingOptions& options) {
  const uint64_t limit = options.maxDecodePixelCount ? options.maxDecodePixelCount : options_.decodePixelLimit();
  RGBAPixels pixels;
  bool made = false;
  if (!options.createThumbnailFromImageAlways) {
    if (thumbnailWidth_ && std::max(thumbnailWidth_, thumbnailHeight_) >= options.thumbnailMinPixelSize)
      made = decode(true, limit, pixels);
    if (!made && !options.createThumbnailFromImageIfAbsent) return nullptr;
  }
  if (!made && !decode(false, limit, pixels)) return nullptr;
  // The pixels come turned by the file's own transformations; a caller's orientation still applies.
  pixels = fittedThumbnail(std::move(pixels), std::size_t(options.thumbnailMaxPixelSize),
                           options.createThumbnailWithTransform, unsigned(options.orientation));
  return MCRasterImage::createRGBA8(pixels.width, pixels.height, std::move(pixels.bytes));
}

std::optional<MCDictionary> HEIFImageSource::metadataWithOptions(const std::optional<MCMetadataReadingOptions>&) {
  MCDictionary properties = exif_ ? exif_->properties() : MCDictionary();
  properties[kCGImagePropertyPixelWidth] = MCValue(int64_t(width_));
  properties[kCGImagePropertyPixelHeight] = MCValue(int64_t(height_));
  properties[kCGImagePropertyDepth] = MCValue(int64_t(bitDepth_));
  properties[kCGImagePropertyHasAlpha] = MCValue(hasAlpha_);
  properties[kCGImagePropertyColorModel] = MCValue(std::string(kCGImagePropertyColorModelRGB));
  // The image is shown as decoded: an Exif orientation would turn it a second time.
  properties[kCGImagePropertyOrientation] = MCValue(int64_t(1));
  if (auto tiff = properties.find(kCGImagePropertyTIFFDictionary); tiff != properties.end())
    if (MCDictionary* group = tiff->second.dictionary()) group->erase(kCGImagePropertyTIFFOrientation);
  return properties;
}

}  // namespace mc_detail
