#include "DecodeBudget.h"
#include "TIFFImageSource.h"

#include "ProfileConversion.h"

#include <vesperon/codecs/MCImageSourceProperties.h>
#include <vesperon/core/MCLog.h>
#include <vesperon/metadata/MCImagePropertyKeys.h>

#include <tiffio.h>

#include <algorithm>
#include <bit>
#include <cstring>

namespace mc_detail {

namespace {

// libtiff over bytes in memory, through its client procedures.
struct Cursor {
  const SourceBytes* bytes;
  toff_t at = 0;
};

tsize_t readProc(thandle_t handle, tdata_t buffer, tsize_t size) {
  auto* cursor = static_cast<Cursor*>(handle);
  const toff_t left = cursor->bytes->size() - std::min<toff_t>(cursor->at, cursor->bytes->size());
  const tsize_t n = tsize_t(std::min<toff_t>(left, toff_t(size)));
  std::memcpy(buffer, cursor->bytes->data() + cursor->at, std::size_t(n));
  cursor->at += toff_t(n);
  return n;
}
tsize_t writeProc(thandle_t, tdata_t, tsize_t) { return -1; }
toff_t seekProc(thandle_t handle, toff_t offset, int whence) {
  auto* cursor = static_cast<Cursor*>(handle);
  toff_t base = whence == SEEK_CUR ? cursor->at : whence == SEEK_END ? toff_t(cursor->bytes->size()) : 0;
  cursor->at = base + offset;
  return cursor->at;
}
int closeProc(thandle_t) { return 0; }
toff_t sizeProc(thandle_t handle) { return toff_t(static_cast<Cursor*>(handle)->bytes->size()); }
int mapProc(thandle_t handle, tdata_t* base, toff_t* size) {
  auto* cursor = static_cast<Cursor*>(handle);
  *base = const_cast<uint8_t*>(cursor->bytes->data());
  *size = toff_t(cursor->bytes->size());
  return 1;
}
void unmapProc(thandle_t, tdata_t, toff_t) {}

// libtiff's messages go nowhere: a damaged file is reported by the source's result.
int quietError(TIFF*, void*, const char*, const char*, va_list) { return 1; }

// One open TIFF over the bytes, closed with it.
struct Handle {
  Cursor cursor;
  TIFF* tif = nullptr;
  explicit Handle(const SourceBytes& bytes) : cursor{&bytes} {
    TIFFOpenOptions* options = TIFFOpenOptionsAlloc();
    TIFFOpenOptionsSetErrorHandlerExtR(options, quietError, nullptr);
    TIFFOpenOptionsSetWarningHandlerExtR(options, quietError, nullptr);
    tif = TIFFClientOpenExt("vesperon", "rm", &cursor, readProc, writeProc, seekProc, closeProc, sizeProc, mapProc,
                            unmapProc, options);
    TIFFOpenOptionsFree(options);
  }
  ~Handle() {
    if (tif) TIFFClose(tif);
  }
};

bool dimensions(TIFF* tif, std::size_t& width, std::size_t& height) {
  uint32_t w = 0, h = 0;
  if (!TIFFGetField(tif, TIFFTAG_IMAGEWIDTH, &w) || !TIFFGetField(tif, TIFFTAG_IMAGELENGTH, &h) || !w || !h) return false;
  width = w;
  height = h;
  return true;
}

bool isReduced(TIFF* tif) {
  uint32_t type = 0;
  return TIFFGetField(tif, TIFFTAG_SUBFILETYPE, &type) && (type & FILETYPE_REDUCEDIMAGE);
}

}  // namespace

std::shared_ptr<TIFFImageSource> TIFFImageSource::create(std::shared_ptr<SourceBytes> bytes,
                                                         const MCImageSourceOptions& options) {
  if (!bytes) return nullptr;
  std::shared_ptr<TIFFImageSource> source(new TIFFImageSource(std::move(bytes), options));
  Handle handle(*source->bytes_);
  TIFF* tif = handle.tif;
  if (!tif) return nullptr;
  if (!dimensions(tif, source->first_.width, source->first_.height)) return nullptr;
  source->first_.directoryOffset = TIFFCurrentDirOffset(tif);
  uint16_t bits = 0, samples = 0, photometric = 0;
  TIFFGetFieldDefaulted(tif, TIFFTAG_BITSPERSAMPLE, &bits);
  TIFFGetFieldDefaulted(tif, TIFFTAG_SAMPLESPERPIXEL, &samples);
  TIFFGetField(tif, TIFFTAG_PHOTOMETRIC, &photometric);
  uint16_t orientation = 1;
  TIFFGetFieldDefaulted(tif, TIFFTAG_ORIENTATION, &orientation);
  source->orientation_ = orientation >= 1 && orientation <= 8 ? orientation : 0;
  source->bitsPerSample_ = bits;
  source->samplesPerPixel_ = samples;
  source->photometric_ = photometric;
  uint16_t extraCount = 0;
  uint16_t* extra = nullptr;
  source->hasAlpha_ = TIFFGetField(tif, TIFFTAG_EXTRASAMPLES, &extraCount, &extra) && extraCount > 0;
  uint32_t iccSize = 0;
  void* icc = nullptr;
  if (TIFFGetField(tif, TIFFTAG_ICCPROFILE, &iccSize, &icc) && icc && iccSize)
    source->icc_.assign(static_cast<uint8_t*>(icc), static_cast<uint8_t*>(icc) + iccSize);
  // SubIFDs of the first page (where DNG and some scanners put previews).
  uint16_t subCount = 0;
  uint64_t* subOffsets = nullptr;
  std::vector<uint64_t> subIFDs;
  if (TIFFGetField(tif, TIFFTAG_SUBIFD, &subCount, &subOffsets) && subOffsets)
    subIFDs.assign(subOffsets, subOffsets + subCount);
  // The pages: the main chain, counting those that are not reduced images of another.
  std::size_t pages = 1;
  for (int guard = 0; guard < 4096 && TIFFReadDirectory(tif); ++guard) {
    Page page{TIFFCurrentDirOffset(tif), false, 0, 0};
    if (!dimensions(tif, page.width, page.height)) continue;
    if (isReduced(tif)) source->reduced_.push_back(page);
    else ++pages;
  }
  for (uint64_t offset : subIFDs) {
    if (!TIFFSetSubDirectory(tif, offset)) continue;
    Page page{offset, true, 0, 0};
    if (dimensions(tif, page.width, page.height) && page.width * page.height < source->first_.width * source->first_.height)
      source->reduced_.push_back(page);
  }
  source->pageCount_ = pages;
  std::sort(source->reduced_.begin(), source->reduced_.end(),
            [](const Page& a, const Page& b) { return a.width * a.height < b.width * b.height; });
  return source;
}

TIFFImageSource::TIFFImageSource(std::shared_ptr<SourceBytes> bytes, MCImageSourceOptions options)
    : bytes_(std::move(bytes)), options_(std::move(options)) {}

bool TIFFImageSource::decode(const Page& page, uint64_t pixelLimit, RGBAPixels& out) const {
  if (!withinDecodeBudget(bytes_->name(), page.width, page.height, pixelLimit)) return false;
  Handle handle(*bytes_);
  TIFF* tif = handle.tif;
  if (!tif || !TIFFSetSubDirectory(tif, page.directoryOffset)) return false;
  char message[1024] = {};
  if (!TIFFRGBAImageOK(tif, message)) return false;
  TIFFRGBAImage image;
  if (!TIFFRGBAImageBegin(&image, tif, 0, message)) return false;
  // Rows as the file stores them: the orientation tag is the caller's to apply.
  image.req_orientation = image.orientation;
  out.width = image.width;
  out.height = image.height;
  const std::size_t count = std::size_t(image.width) * image.height;
  // libtiff packs R in the low byte and A in the high one: on a little-endian machine its raster
  // already is RGBA in memory, so it is decoded straight into the image's bytes.
  out.bytes.resize(count * 4);
  bool ok = false;
  if constexpr (std::endian::native == std::endian::little) {
    ok = TIFFRGBAImageGet(&image, reinterpret_cast<uint32_t*>(out.bytes.data()), image.width, image.height);
  } else {
    std::vector<uint32_t> raster(count);
    ok = TIFFRGBAImageGet(&image, raster.data(), image.width, image.height);
    for (std::size_t i = 0; ok && i < count; ++i) {
      const uint32_t p = raster[i];
      out.bytes[i * 4 + 0] = uint8_t(TIFFGetR(p));
      out.bytes[i * 4 + 1] = uint8_t(TIFFGetG(p));
      out.bytes[i * 4 + 2] = uint8_t(TIFFGetB(p));
      out.bytes[i * 4 + 3] = uint8_t(TIFFGetA(p));
    }
  }
  TIFFRGBAImageEnd(&image);
  if (!ok) return false;
  // libtiff gives associated alpha as it is and unassociated alpha unmultiplied; the profile
  // applies to colour, so it is converted before the product.
  if (!icc_.empty() && photometric_ != PHOTOMETRIC_SEPARATED)
    convertProfiledPixelsToSRGB(out.bytes.data(), count, ProfiledLayout::RGBA, icc_);
  if (hasAlpha_) {
    uint16_t extraCount = 0;
    uint16_t* extra = nullptr;
    const bool associated = TIFFGetField(tif, TIFFTAG_EXTRASAMPLES, &extraCount, &extra) && extraCount &&
                            extra[0] == EXTRASAMPLE_ASSOCALPHA;
    if (!associated) premultiplyRGBA(out.bytes);
  }
  return true;
}

MCRasterImageRef TIFFImageSource::newImage() {
  RGBAPixels pixels;
  if (!decode(first_, options_.decodePixelLimit(), pixels)) return nullptr;
  pixels = subsampled(std::move(pixels), options_.subsampleFactor);
  return MCRasterImage::createRGBA8(pixels.width, pixels.height, std::move(pixels.bytes));
}

MCRasterImageRef TIFFImageSource::newThumbnailWithOptions(const MCThumbnailReadingOptions& options) {
  const uint64_t limit = options.maxDecodePixelCount ? options.maxDecodePixelCount : options_.decodePixelLimit();
  RGBAPixels pixels;
  bool made = false;
  if (!options.createThumbnailFromImageAlways) {
    // The smallest reduced image that still reaches the least size asked for.
    for (const Page& page : reduced_) {
      if (std::max(page.width, page.height) < options.thumbnailMinPixelSize) continue;
      made = decode(page, limit, pixels);
      break;
    }
    if (!made && !options.createThumbnailFromImageIfAbsent) return nullptr;
  }
  if (!made && !decode(first_, limit, pixels)) return nullptr;
  pixels = fittedThumbnail(std::move(pixels), std::size_t(options.thumbnailMaxPixelSize), options.createThumbnailWithTransform,
                           options.orientation ? unsigned(options.orientation) : orientation_);
  return MCRasterImage::createRGBA8(pixels.width, pixels.height, std::move(pixels.bytes));
}

std::optional<MCDictionary> TIFFImageSource::metadataWithOptions(const std::optional<MCMetadataReadingOptions>&) {
  // The file is itself a TIFF block: its tags come through the Exif road as they are. Read when
  // asked for, since it copies the file.
  if (!exif_) exif_ = EmbeddedExif::create(bytes_->data(), bytes_->size());
  MCDictionary properties = exif_ ? exif_->properties() : MCDictionary();
  properties[kCGImagePropertyPixelWidth] = MCValue(int64_t(first_.width));
  properties[kCGImagePropertyPixelHeight] = MCValue(int64_t(first_.height));
  properties[kCGImagePropertyDepth] = MCValue(int64_t(bitsPerSample_));
  properties[kCGImagePropertyHasAlpha] = MCValue(hasAlpha_);
  const char* model = photometric_ == PHOTOMETRIC_MINISBLACK || photometric_ == PHOTOMETRIC_MINISWHITE
                          ? kCGImagePropertyColorModelGray
                      : photometric_ == PHOTOMETRIC_SEPARATED ? kCGImagePropertyColorModelCMYK
                                                              : kCGImagePropertyColorModelRGB;
  properties[kCGImagePropertyColorModel] = MCValue(std::string(model));
  properties[kMCImagePropertyImageCount] = MCValue(int64_t(pageCount_));
  return properties;
}

}  // namespace mc_detail
