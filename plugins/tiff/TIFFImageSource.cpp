#include "DecodeBudget.h"
#include "TIFFImageSource.h"

#include "ProfileConversion.h"
#include "TIFFStructure.h"

#include <vesperon/codecs/MCImageSourceProperties.h>
#include <vesperon/core/MCLog.h>
#include <vesperon/metadata/MCExifReader.h>
#include <vesperon/metadata/MCImagePropertyKeys.h>

#include <tiffio.h>

#include <algorithm>
#include <bit>
#include <cstring>
#include <numeric>

namespace mc_detail {

namespace {

// libtiff over the source's bytes (in memory, or read from the open file where asked), through
// its client procedures.
struct Cursor {
  const SourceBytes* bytes;
  toff_t at = 0;
};

tsize_t readProc(thandle_t handle, tdata_t buffer, tsize_t size) {
  auto* cursor = static_cast<Cursor*>(handle);
  if (size <= 0 || cursor->at >= cursor->bytes->size()) return 0;
  const std::size_t n = cursor->bytes->readAt(std::size_t(cursor->at), buffer, std::size_t(size));
  cursor->at += toff_t(n);
  return tsize_t(n);
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
  if (!cursor->bytes->data()) return 0;  // an open file is read, not mapped
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
  return decodeRect(page, 0, 0, page.width, page.height, pixelLimit, out);
}

namespace {

// The rows of a strip or tile: where a read of rows may start (libtiff's tile reader misplaces
// rows read from elsewhere).
std::size_t rowsPerUnit(TIFF* tif) {
  uint32_t unit = 1;
  if (TIFFIsTiled(tif) ? !TIFFGetField(tif, TIFFTAG_TILELENGTH, &unit) : !TIFFGetFieldDefaulted(tif, TIFFTAG_ROWSPERSTRIP, &unit))
    unit = 1;
  return std::max<std::size_t>(unit, 1);
}

}  // namespace

bool TIFFImageSource::readRows(TIFF* tif, _TIFFRGBAImage& image, std::size_t top, std::size_t rows, std::size_t width,
                               RGBAPixels& out) const {
  // Rows as the file stores them: the orientation tag is the caller's to apply.
  image.req_orientation = image.orientation;
  image.row_offset = int(top);
  out.width = width;
  out.height = rows;
  const std::size_t count = width * rows;
  // libtiff packs R in the low byte and A in the high one: on a little-endian machine its raster
  // already is RGBA in memory, so it is decoded straight into the image's bytes.
  out.bytes.resize(count * 4);
  bool ok = false;
  if constexpr (std::endian::native == std::endian::little) {
    ok = TIFFRGBAImageGet(&image, reinterpret_cast<uint32_t*>(out.bytes.data()), uint32_t(width), uint32_t(rows));
  } else {
    std::vector<uint32_t> raster(count);
    ok = TIFFRGBAImageGet(&image, raster.data(), uint32_t(width), uint32_t(rows));
    for (std::size_t i = 0; ok && i < count; ++i) {
      const uint32_t p = raster[i];
      out.bytes[i * 4 + 0] = uint8_t(TIFFGetR(p));
      out.bytes[i * 4 + 1] = uint8_t(TIFFGetG(p));
      out.bytes[i * 4 + 2] = uint8_t(TIFFGetB(p));
      out.bytes[i * 4 + 3] = uint8_t(TIFFGetA(p));
    }
  }
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

bool TIFFImageSource::decodeRect(const Page& page, std::size_t x, std::size_t y, std::size_t width, std::size_t height,
                                 uint64_t pixelLimit, RGBAPixels& out) const {
  if (x >= page.width || y >= page.height || width == 0 || height == 0) return false;
  width = std::min(width, page.width - x);
  height = std::min(height, page.height - y);
  Handle handle(*bytes_);
  TIFF* tif = handle.tif;
  if (!tif || !TIFFSetSubDirectory(tif, page.directoryOffset)) return false;
  // Only the strips or tiles under the rectangle's rows are read, across the page's whole width:
  // libtiff's column offset steps wrongly through samples of more than a byte, so the columns are
  // cut here.
  const std::size_t unit = rowsPerUnit(tif);
  const std::size_t top = y - y % unit, skipped = y - top, rows = height + skipped;
  if (!withinDecodeBudget(bytes_->name(), page.width, rows, pixelLimit)) return false;
  char message[1024] = {};
  if (!TIFFRGBAImageOK(tif, message)) return false;
  TIFFRGBAImage image;
  if (!TIFFRGBAImageBegin(&image, tif, 0, message)) return false;
  const bool ok = readRows(tif, image, top, rows, page.width, out);
  TIFFRGBAImageEnd(&image);
  if (!ok) return false;
  if (width < page.width || skipped > 0) {
    for (std::size_t row = 0; row < height; ++row)
      std::memmove(out.bytes.data() + row * width * 4, out.bytes.data() + ((row + skipped) * page.width + x) * 4,
                   width * 4);
    out.bytes.resize(width * height * 4);
    out.width = width;
    out.height = height;
  }
  return true;
}

bool TIFFImageSource::decodeReduced(const Page& page, std::size_t maxPixelSize, uint64_t pixelLimit,
                                    RGBAPixels& out) const {
  // Shrunk by a whole factor while it is read, a band of rows at a time, so a large page's
  // thumbnail never holds the page: what libvips's shrink-on-load does for formats without one.
  const std::size_t larger = std::max(page.width, page.height);
  const std::size_t factor = maxPixelSize ? larger / maxPixelSize : 1;
  if (factor < 2 || page.width * page.height < (16u << 20)) return decode(page, pixelLimit, out);
  Handle handle(*bytes_);
  TIFF* tif = handle.tif;
  if (!tif || !TIFFSetSubDirectory(tif, page.directoryOffset)) return false;
  // A band is whole strips (or rows of tiles) and whole blocks of the factor; pages in a few huge
  // strips, which every band would decode again, are read whole.
  const std::size_t unit = rowsPerUnit(tif);
  std::size_t band = std::lcm(unit, factor);
  if (band > 4096) return decode(page, pixelLimit, out);
  band *= (255 + band) / band;
  if (!withinDecodeBudget(bytes_->name(), page.width, band, pixelLimit)) return false;
  char message[1024] = {};
  if (!TIFFRGBAImageOK(tif, message)) return false;
  TIFFRGBAImage image;
  if (!TIFFRGBAImageBegin(&image, tif, 0, message)) return false;
  out.width = (page.width + factor - 1) / factor;
  out.height = (page.height + factor - 1) / factor;
  out.bytes.assign(out.width * out.height * 4, 0);
  std::vector<uint32_t> sums(out.width * 4);
  RGBAPixels rows;
  bool ok = true;
  for (std::size_t top = 0; ok && top < page.height; top += band) {
    if (!(ok = readRows(tif, image, top, std::min(band, page.height - top), page.width, rows))) break;
    for (std::size_t first = 0; first < rows.height; first += factor) {
      std::fill(sums.begin(), sums.end(), 0);
      const std::size_t last = std::min(rows.height, first + factor);
      for (std::size_t y = first; y < last; ++y) {
        const uint8_t* p = rows.bytes.data() + y * rows.width * 4;
        uint32_t* sum = sums.data();
        // A block's run of a row at a time, so that no pixel pays for finding its block.
        for (std::size_t x0 = 0; x0 < page.width; x0 += factor, sum += 4) {
          const std::size_t x1 = std::min(page.width, x0 + factor);
          uint32_t r = 0, g = 0, b = 0, a = 0;
          for (std::size_t x = x0; x < x1; ++x, p += 4) r += p[0], g += p[1], b += p[2], a += p[3];
          sum[0] += r, sum[1] += g, sum[2] += b, sum[3] += a;
        }
      }
      uint8_t* o = out.bytes.data() + ((top + first) / factor) * out.width * 4;
      for (std::size_t x = 0; x < out.width; ++x) {
        const std::size_t count = (last - first) * (std::min(page.width, (x + 1) * factor) - x * factor);
        for (int c = 0; c < 4; ++c) o[x * 4 + c] = uint8_t((sums[x * 4 + c] + count / 2) / count);
      }
    }
  }
  TIFFRGBAImageEnd(&image);
  return ok;
}

MCRasterImageRef TIFFImageSource::newImageInRegion(std::size_t x, std::size_t y, std::size_t width, std::size_t height) {
  RGBAPixels pixels;
  if (!decodeRect(first_, x, y, width, height, options_.decodePixelLimit(), pixels)) return nullptr;
  return MCRasterImage::createRGBA8(pixels.width, pixels.height, std::move(pixels.bytes));
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
  if (!made && !decodeReduced(first_, std::size_t(options.thumbnailMaxPixelSize), limit, pixels)) return nullptr;
  pixels = fittedThumbnail(std::move(pixels), std::size_t(options.thumbnailMaxPixelSize), options.createThumbnailWithTransform,
                           options.orientation ? unsigned(options.orientation) : orientation_);
  return MCRasterImage::createRGBA8(pixels.width, pixels.height, std::move(pixels.bytes));
}

std::optional<MCDictionary> TIFFImageSource::metadataWithOptions(const std::optional<MCMetadataReadingOptions>&) {
  // The file is itself a TIFF block: its tags come through the Exif road as they are, from the
  // file's structure alone. Read when first asked for.
  if (!exifProperties_) {
    exifProperties_ = MCDictionary();
    if (auto structure = TIFFStructure::read(*bytes_))
      if (auto reader = MCExifReader::create(structure->data(), structure->size()))
        if (auto exif = reader->parseExif()) exifProperties_ = exif->dictionary();
  }
  MCDictionary properties = *exifProperties_;
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
