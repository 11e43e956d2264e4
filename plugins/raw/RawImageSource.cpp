#include "DecodeBudget.h"
#include "RawImageSource.h"

#include <vesperon/core/MCLog.h>
#include <vesperon/metadata/MCImagePropertyKeys.h>
#include <vesperon/pixels/MCImageFiles.h>

#include <libraw/libraw.h>

#include <algorithm>
#include <cmath>
#include <ctime>
#include <memory>

namespace mc_detail {

namespace {

std::unique_ptr<LibRaw> openRaw(const SourceBytes& bytes, int* error = nullptr) {
  auto raw = std::make_unique<LibRaw>(LIBRAW_OPTIONS_NONE);
  const int status = raw->open_buffer(const_cast<uint8_t*>(bytes.data()), bytes.size());
  if (error) *error = status;
  if (status != LIBRAW_SUCCESS) return nullptr;
  return raw;
}

unsigned orientationOfFlip(int flip) {
  switch (flip) {
    case 3: return 3;
    case 5: return 8;
    case 6: return 6;
    default: return 1;
  }
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

std::shared_ptr<RawImageSource> RawImageSource::create(std::shared_ptr<SourceBytes> bytes,
                                                       const MCImageSourceOptions& options) {
  if (!bytes) return nullptr;
  int error = 0;
  auto raw = openRaw(*bytes, &error);
  if (!raw) {
    MCLog::sdkGraphics()->logError("Couldn't read the raw file " + bytes->name() + ": " + libraw_strerror(error));
    return nullptr;
  }
  std::shared_ptr<RawImageSource> source(new RawImageSource(std::move(bytes), options));
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
  if (!withinDecodeBudget(bytes_->name(), width_, height_, pixelLimit)) return false;
  auto raw = openRaw(*bytes_);
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

bool RawImageSource::embeddedPreview(std::size_t minPixelSize, RGBAPixels& out) const {
  auto raw = openRaw(*bytes_);
  if (!raw || raw->unpack_thumb() != LIBRAW_SUCCESS) return false;
  int error = 0;
  libraw_processed_image_t* preview = raw->dcraw_make_mem_thumb(&error);
  if (!preview) return false;
  bool ok = false;
  if (preview->type == LIBRAW_IMAGE_JPEG) {
    const MCData jpeg(preview->data, preview->data + preview->data_size);
    if (auto image = MCCreateImageWithData(&jpeg)) {
      out.width = image->width();
      out.height = image->height();
      out.bytes.resize(out.width * out.height * 4);
      for (std::size_t y = 0; y < out.height; ++y)
        std::copy_n(image->row(y), out.width * 4, out.bytes.data() + y * out.width * 4);
      ok = true;
    }
  } else {
    ok = toRGBA(preview, out);
  }
  LibRaw::dcraw_clear_mem(preview);
  return ok && std::max(out.width, out.height) >= minPixelSize;
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

MCRasterImageRef RawImageSource::newThumbnailWithOptions(const MCThumbnailReadingOptions& options) {
  const uint64_t limit = options.maxDecodePixelCount ? options.maxDecodePixelCount : options_.decodePixelLimit();
  RGBAPixels pixels;
  bool made = false;
  if (!options.createThumbnailFromImageAlways) {
    made = embeddedPreview(std::size_t(options.thumbnailMinPixelSize), pixels);
    if (!made && !options.createThumbnailFromImageIfAbsent) return nullptr;
  }
  // A thumbnail made from the sensor data: half size is enough unless a large one is asked for.
  const bool half = options.thumbnailMaxPixelSize && options.thumbnailMaxPixelSize * 2 <= std::max(width_, height_);
  if (!made && !demosaic(half, limit, pixels)) return nullptr;
  pixels = fittedThumbnail(std::move(pixels), std::size_t(options.thumbnailMaxPixelSize), options.createThumbnailWithTransform,
                           options.orientation ? unsigned(options.orientation) : orientation_);
  return MCRasterImage::createRGBA8(pixels.width, pixels.height, std::move(pixels.bytes));
}

std::optional<MCDictionary> RawImageSource::metadataWithOptions(const std::optional<MCMetadataReadingOptions>&) {
  return properties_;
}

}  // namespace mc_detail
