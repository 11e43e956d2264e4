#include "DecodeBudget.h"
#include "RawImageSource.h"

#include <vesperon/codecs/MCImageCodecManager.h>
#include <vesperon/core/MCLog.h>
#include <vesperon/metadata/MCImagePropertyKeys.h>

#include <libraw/libraw.h>

#include <algorithm>
#include <cmath>
#include <ctime>
#include <memory>

namespace mc_detail {

namespace {

// LibRaw's own report of damaged data goes to stderr; what fails is logged by the callers instead.
void ignoreDataError(void*, const char*, int) {}

// LibRaw's flip (bit 0 mirrors the columns, bit 1 the rows, bit 2 swaps them, applied last) as the
// Exif orientation that shows the same: the mirrored ones included, which DNG files may carry.
unsigned orientationOfFlip(int flip) {
  static constexpr unsigned kOrientation[8] = {1, 2, 4, 3, 5, 8, 6, 7};
  return flip >= 0 && flip < 8 ? kOrientation[flip] : 1;
}

// An 8-bit RGB bitmap from LibRaw as RGBA.
bool toRGBA(const libraw_processed_image_t* image, RGBAPixels& out) {
  if (!image || image->type != LIBRAW_IMAGE_BITMAP || image->bits != 8 || (image->colors != 3 && image->colors != 1))
    return false;
  out.width = image->width;
  out.height = image->height;
  out.bytes.resize(out.width * out.height * 4);
  const uint8_t* from = image->data;
  for (std::size_t i = 0; i < out.width * out.height; ++i) {
    const uint8_t r = from[0], g = image->colors == 3 ? from[1] : from[0], b = image->colors == 3 ? from[2] : from[0];
    out.bytes[i * 4] = r;
    out.bytes[i * 4 + 1] = g;
    out.bytes[i * 4 + 2] = b;
    out.bytes[i * 4 + 3] = 255;
    from += image->colors;
  }
  return true;
}

}  // namespace

// A file is read by LibRaw itself, which reads only the parts a call needs: a thumbnail from the
// embedded preview touches a small part of a raw file of tens of megabytes. (Buffered reads, not a
// mapping, so a file cut short meanwhile gives a read error, not SIGBUS.)
std::unique_ptr<LibRaw> RawImageSource::openRaw(int* error) const {
  auto raw = std::make_unique<LibRaw>(LIBRAW_OPTIONS_NONE);
  raw->set_dataerror_handler(ignoreDataError, nullptr);
  const int status = bytes_ ? raw->open_buffer(const_cast<uint8_t*>(bytes_->data()), bytes_->size())
                            : raw->open_file(path_.c_str());
  if (error) *error = status;
  if (status != LIBRAW_SUCCESS) return nullptr;
  return raw;
}

std::shared_ptr<RawImageSource> RawImageSource::createWithURL(const std::filesystem::path& url,
                                                              const MCImageSourceOptions& options) {
  std::error_code ec;
  if (!std::filesystem::is_regular_file(url, ec) || std::filesystem::file_size(url, ec) == 0 || ec) return nullptr;
  return open(std::shared_ptr<RawImageSource>(new RawImageSource(nullptr, url, url.string(), options)));
}

std::shared_ptr<RawImageSource> RawImageSource::create(std::shared_ptr<SourceBytes> bytes,
                                                       const MCImageSourceOptions& options) {
  if (!bytes) return nullptr;
  std::string name = bytes->name();
  return open(std::shared_ptr<RawImageSource>(new RawImageSource(std::move(bytes), {}, std::move(name), options)));
}

std::shared_ptr<RawImageSource> RawImageSource::open(std::shared_ptr<RawImageSource> source) {
  int error = 0;
  auto raw = source->openRaw(&error);
  if (!raw) {
    MCLog::sdkGraphics()->logError("Couldn't read the raw file " + source->name_ + ": " + libraw_strerror(error));
    return nullptr;
  }
  const libraw_data_t& data = raw->imgdata;
  source->width_ = data.sizes.width;
  source->height_ = data.sizes.height;
  source->orientation_ = orientationOfFlip(data.sizes.flip);
  MCDictionary& properties = source->properties_;
  properties[kCGImagePropertyPixelWidth] = MCValue(int64_t(source->width_));
  properties[kCGImagePropertyPixelHeight] = MCValue(int64_t(source->height_));
  properties[kCGImagePropertyOrientation] = MCValue(int64_t(source->orientation_));
  properties[kCGImagePropertyColorModel] = MCValue(std::string(kCGImagePropertyColorModelRGB));
  MCDictionary tiff, exif, gps;
  if (data.idata.make[0]) tiff[kCGImagePropertyTIFFMake] = MCValue(std::string(data.idata.make));
  if (data.idata.model[0]) tiff[kCGImagePropertyTIFFModel] = MCValue(std::string(data.idata.model));
  tiff[kCGImagePropertyTIFFOrientation] = MCValue(int64_t(source->orientation_));
  if (data.other.iso_speed > 0) exif[kCGImagePropertyExifISOSpeedRatings] = MCValue(MCArray{MCValue(int64_t(std::lround(data.other.iso_speed)))});
  if (data.other.shutter > 0) exif[kCGImagePropertyExifExposureTime] = MCValue(double(data.other.shutter));
  if (data.other.aperture > 0) exif[kCGImagePropertyExifFNumber] = MCValue(double(data.other.aperture));
  if (data.other.focal_len > 0) exif[kCGImagePropertyExifFocalLength] = MCValue(double(data.other.focal_len));
  if (data.other.timestamp > 0) {
    std::tm local{};
    const std::time_t when = data.other.timestamp;
    localtime_r(&when, &local);
    char text[32];
    std::strftime(text, sizeof text, "%Y:%m:%d %H:%M:%S", &local);
    exif[kCGImagePropertyExifDateTimeOriginal] = MCValue(std::string(text));
  }
  if (data.lens.Lens[0]) exif[kCGImagePropertyExifLensModel] = MCValue(std::string(data.lens.Lens));
  if (data.lens.LensMake[0]) exif[kCGImagePropertyExifLensMake] = MCValue(std::string(data.lens.LensMake));
  const libraw_gps_info_t& where = data.other.parsed_gps;
  if (where.gpsparsed) {
    const double latitude = where.latitude[0] + where.latitude[1] / 60.0 + where.latitude[2] / 3600.0;
    const double longitude = where.longitude[0] + where.longitude[1] / 60.0 + where.longitude[2] / 3600.0;
    gps[kCGImagePropertyGPSLatitude] = MCValue(latitude);
    gps[kCGImagePropertyGPSLatitudeRef] = MCValue(std::string(1, where.latref ? where.latref : 'N'));
    gps[kCGImagePropertyGPSLongitude] = MCValue(longitude);
    gps[kCGImagePropertyGPSLongitudeRef] = MCValue(std::string(1, where.longref ? where.longref : 'E'));
    if (where.altitude != 0) {
      gps[kCGImagePropertyGPSAltitude] = MCValue(std::fabs(double(where.altitude)));
      gps[kCGImagePropertyGPSAltitudeRef] = MCValue(int64_t(where.altref ? 1 : 0));
    }
  }
  properties[kCGImagePropertyTIFFDictionary] = MCValue(std::move(tiff));
  if (!exif.empty()) properties[kCGImagePropertyExifDictionary] = MCValue(std::move(exif));
  if (!gps.empty()) properties[kCGImagePropertyGPSDictionary] = MCValue(std::move(gps));
  return source;
}

bool RawImageSource::demosaic(bool halfSize, uint64_t pixelLimit, RGBAPixels& out) const {
  // LibRaw's own copies count too, in pixels of four bytes: the sensor data (2 bytes a photosite),
  // its working image (four 16-bit channels, at a quarter of the photosites for a half-size
  // decode) and the 8-bit RGB image it hands over (3 bytes a pixel).
  const uint64_t photosites = uint64_t(width_) * height_;
  const uint64_t output = halfSize ? photosites / 4 : photosites;
  const uint64_t working = photosites / 2 + output * 2 + output * 3 / 4;
  if (!withinDecodeBudget(name_, width_, height_, pixelLimit, "the image", working)) return false;
  auto raw = openRaw();
  if (!raw) return false;
  libraw_output_params_t& params = raw->imgdata.params;
  const MCRAWImageSourceOptions& settings = options_.rawOptions();
  const int demosaic = settings.demosaic;
  params.user_qual = (demosaic >= 0 && demosaic <= 4) || demosaic == 11 ? demosaic : 3;
  params.output_color = 1;  // sRGB, the library's one space
  params.output_bps = 8;
  switch (settings.outputGamma) {
    case 1: params.gamm[0] = 1.0; params.gamm[1] = 1.0; break;           // linear
    case 2: params.gamm[0] = 1 / 2.4; params.gamm[1] = 12.92; break;     // sRGB
    default: params.gamm[0] = 0.45; params.gamm[1] = 4.5; break;         // BT.709
  }
  params.threshold = settings.noiseReduction == 1 ? 100.0f : settings.noiseReduction == 2 ? 500.0f : 0.0f;
  params.use_auto_wb = settings.autoWhiteBalance;
  params.use_camera_wb = settings.cameraWhiteBalance;
  params.no_auto_bright = !settings.autoBrightness;
  params.auto_bright_thr = float(settings.autoBrightnessThreshold);
  params.half_size = halfSize;
  params.user_flip = 0;  // the turn is the caller's, from the metadata
  if (raw->unpack() != LIBRAW_SUCCESS || raw->dcraw_process() != LIBRAW_SUCCESS) return false;
  int error = 0;
  libraw_processed_image_t* image = raw->dcraw_make_mem_image(&error);
  const bool ok = image && toRGBA(image, out);
  LibRaw::dcraw_clear_mem(image);
  return ok;
}

// The embedded preview LibRaw picks (the file's largest) when its larger side reaches `leastSize`,
// fitted within `maxPixelSize` but not turned. A JPEG preview goes through the JPEG codec's
// thumbnail path, which scales while it decodes: a camera's preview is often the full size of the
// sensor and a thumbnail needs a fraction of it.
RawImageSource::Preview RawImageSource::embeddedPreview(std::size_t leastSize, std::size_t maxPixelSize, uint64_t pixelLimit,
                                                        RGBAPixels& out) const {
  auto raw = openRaw();
  if (!raw || raw->unpack_thumb() != LIBRAW_SUCCESS) return Preview::None;
  const libraw_thumbnail_t& thumbnail = raw->imgdata.thumbnail;
  if (thumbnail.tformat == LIBRAW_THUMBNAIL_JPEG) {
    const auto* begin = reinterpret_cast<const uint8_t*>(thumbnail.thumb);
    if (!begin || thumbnail.tlength < 4 || begin[0] != 0xFF || begin[1] != 0xD8) return Preview::Broken;
    auto jpeg = std::make_shared<const MCData>(begin, begin + thumbnail.tlength);
    auto extensions = MCImageCodecManager::sharedInstance().sourceExtensionsForUTI("public.jpeg");
    if (!extensions || extensions->empty()) return Preview::Broken;
    auto options = MCImageSourceOptions::create("public.jpeg");
    options->maxDecodePixelCount = pixelLimit;
    auto source = extensions->front()->imageSourceWithData(jpeg, *options);
    if (!source) return Preview::Broken;
    // Its size from the frame header, before any decoding.
    const auto properties = source->metadataWithOptions(std::nullopt);
    const MCValue* width = properties ? MCDictionaryGet(*properties, kCGImagePropertyPixelWidth) : nullptr;
    const MCValue* height = properties ? MCDictionaryGet(*properties, kCGImagePropertyPixelHeight) : nullptr;
    if (!width || !height || !width->integerValue() || !height->integerValue()) return Preview::Broken;
    if (std::size_t(std::max(*width->integerValue(), *height->integerValue())) < leastSize) return Preview::TooSmall;
    MCThumbnailReadingOptions reading;
    reading.createThumbnailFromImageAlways = true;  // the preview's own Exif thumbnail is smaller still
    reading.thumbnailMaxPixelSize = maxPixelSize;
    reading.maxDecodePixelCount = pixelLimit;
    auto image = source->newThumbnailWithOptions(reading);
    if (!image) return Preview::Broken;
    out.width = image->width();
    out.height = image->height();
    out.bytes.resize(out.width * out.height * 4);
    for (std::size_t y = 0; y < out.height; ++y)
      std::copy_n(image->row(y), out.width * 4, out.bytes.data() + y * out.width * 4);
    return Preview::Made;
  }
  if (thumbnail.tformat != LIBRAW_THUMBNAIL_BITMAP) return Preview::Broken;
  if (std::max<std::size_t>(thumbnail.twidth, thumbnail.theight) < leastSize) return Preview::TooSmall;
  if (!withinDecodeBudget(name_, thumbnail.twidth, thumbnail.theight, pixelLimit, "the embedded preview"))
    return Preview::Broken;
  int error = 0;
  libraw_processed_image_t* preview = raw->dcraw_make_mem_thumb(&error);
  const bool ok = preview && toRGBA(preview, out);
  LibRaw::dcraw_clear_mem(preview);
  if (!ok) return Preview::Broken;
  out = fittedThumbnail(std::move(out), maxPixelSize, false, 1);
  return Preview::Made;
}

MCRasterImageRef RawImageSource::newImage() {
  RGBAPixels pixels;
  const uint64_t factor = options_.subsampleFactor;
  if (!demosaic(factor >= 2, options_.decodePixelLimit(), pixels)) return nullptr;
  if (factor == 4 || factor == 8) {
    pixels = resampleRGBA(pixels, std::max<std::size_t>(1, (width_ + factor - 1) / factor),
                          std::max<std::size_t>(1, (height_ + factor - 1) / factor));
  }
  return MCRasterImage::createRGBA8(pixels.width, pixels.height, std::move(pixels.bytes));
}

// The embedded preview when it covers the size asked for — the common case, no demosaic at all;
// else, when the options allow, a demosaic of the sensor data. Without that leave a preview of at
// least the minimum size serves even when smaller than the maximum: it is all the caller accepts.
// A preview that is there but cannot be decoded is logged and counts as absent.
MCRasterImageRef RawImageSource::newThumbnailWithOptions(const MCThumbnailReadingOptions& options) {
  const uint64_t limit = options.maxDecodePixelCount ? options.maxDecodePixelCount : options_.decodePixelLimit();
  const auto maxSize = std::size_t(options.thumbnailMaxPixelSize);
  const auto minSize = std::size_t(options.thumbnailMinPixelSize);
  RGBAPixels pixels;
  bool made = false;
  if (!options.createThumbnailFromImageAlways) {
    const std::size_t least = options.createThumbnailFromImageIfAbsent ? std::max(minSize, maxSize) : minSize;
    const Preview preview = embeddedPreview(least, maxSize, limit, pixels);
    made = preview == Preview::Made;
    if (preview == Preview::Broken)
      MCLog::sdkGraphics()->logError("Couldn't decode the embedded preview of " + name_ +
                                     (options.createThumbnailFromImageIfAbsent ? "; demosaicing instead" : ""));
    if (!made && !options.createThumbnailFromImageIfAbsent) return nullptr;
  }
  // A thumbnail made from the sensor data: half size is enough unless a large one is asked for.
  const bool half = maxSize && maxSize * 2 <= std::max(width_, height_);
  if (!made && !demosaic(half, limit, pixels)) return nullptr;
  // The preview is stored as the sensor is, so the raw's flip turns it as it turns the demosaic.
  pixels = fittedThumbnail(std::move(pixels), maxSize, options.createThumbnailWithTransform,
                           options.orientation ? unsigned(options.orientation) : orientation_);
  return MCRasterImage::createRGBA8(pixels.width, pixels.height, std::move(pixels.bytes));
}

std::optional<MCDictionary> RawImageSource::metadataWithOptions(const std::optional<MCMetadataReadingOptions>&) {
  return properties_;
}

}  // namespace mc_detail
