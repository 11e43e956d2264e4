#include "PNGImageSource.h"

#include "ProfileConversion.h"

#include <vesperon/core/MCLog.h>
#include <vesperon/metadata/MCImagePropertyKeys.h>

#include <fmt/format.h>

#include <png.h>

#include <array>
#include <csetjmp>
#include <cstring>
#include <optional>
#include <cstdio>
#include <memory>

namespace mc_detail {

namespace {

void errorExit(png_structp png, png_const_charp) { png_longjmp(png, 1); }
void warning(png_structp, png_const_charp) {}

// libpng reads an ancillary chunk whole into memory, sized by the length the file states, before it
// finds the data missing: a 300-byte file claiming a 1.7 GB tEXt chunk made it allocate and clear
// 1.7 GB. So the chunks the source does not use (text, time, histogram …) are skipped unread, and
// one it uses (eXIf, iCCP) whose stated length runs past the end of the file is skipped too: it is
// broken, and what follows it lies inside it anyway.
const png_byte kUnusedChunks[] = "tEXt\0zTXt\0iTXt\0tIME\0hIST\0sPLT\0pCAL\0sCAL\0sBIT\0bKGD\0pHYs\0oFFs\0gAMA\0cHRM\0sRGB";

// The first chunk before the image data whose stated length runs past the end of the file, read
// from the chunk headers; the file is left just past its signature.
std::optional<std::array<png_byte, 5>> overlongChunk(FILE* file) {
  std::optional<std::array<png_byte, 5>> found;
  if (std::fseek(file, 0, SEEK_END) != 0) return found;
  const long size = std::ftell(file);
  long at = 8;
  unsigned char header[8];
  while (size >= 0 && at + 8 <= size && std::fseek(file, at, SEEK_SET) == 0 && std::fread(header, 1, 8, file) == 8) {
    const uint64_t length = (uint64_t(header[0]) << 24) | (uint64_t(header[1]) << 16) | (uint64_t(header[2]) << 8) | header[3];
    if (std::memcmp(header + 4, "IDAT", 4) == 0) break;
    if (uint64_t(at) + 12 + length > uint64_t(size)) {
      found = std::array<png_byte, 5>{header[4], header[5], header[6], header[7], 0};
      break;
    }
    at += long(12 + length);
  }
  std::fseek(file, 8, SEEK_SET);
  return found;
}

// A read struct over one open file (or bytes in memory, read as a file through fmemopen),
// destroyed with it.
struct Reader {
  FILE* file = nullptr;
  png_structp png = nullptr;
  png_infop info = nullptr;

  Reader(const std::filesystem::path& path, const MCData* data) {
    file = data ? (data->empty() ? nullptr : fmemopen(const_cast<uint8_t*>(data->data()), data->size(), "rb"))
                : std::fopen(path.c_str(), "rb");
    if (!file) return;
    unsigned char signature[8];
    if (std::fread(signature, 1, 8, file) != 8 || png_sig_cmp(signature, 0, 8) != 0) return;
    png = png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, errorExit, warning);
    if (!png) return;
    png_set_keep_unknown_chunks(png, PNG_HANDLE_CHUNK_NEVER, nullptr, 0);
    png_set_keep_unknown_chunks(png, PNG_HANDLE_CHUNK_NEVER, kUnusedChunks, int(sizeof kUnusedChunks / 5));
    // Critical chunks cannot be skipped; libpng itself refuses an overlong one of those.
    if (auto chunk = overlongChunk(file); chunk && ((*chunk)[0] & 0x20))
      png_set_keep_unknown_chunks(png, PNG_HANDLE_CHUNK_NEVER, chunk->data(), 1);
    info = png_create_info_struct(png);
  }
  ~Reader() {
    if (png) png_destroy_read_struct(&png, info ? &info : nullptr, nullptr);
    if (file) std::fclose(file);
  }
  bool ready() const { return png && info; }
};

// Reads up to the image data; false when the header is damaged.
bool readInfo(Reader& reader, PNGImageSource::Header& header) {
  if (setjmp(png_jmpbuf(reader.png))) return false;
  png_init_io(reader.png, reader.file);
  png_set_sig_bytes(reader.png, 8);
  png_read_info(reader.png, reader.info);
  png_uint_32 width = 0, height = 0;
  int bitDepth = 0, colorType = 0;
  png_get_IHDR(reader.png, reader.info, &width, &height, &bitDepth, &colorType, nullptr, nullptr, nullptr);
  header.width = width;
  header.height = height;
  header.bitDepth = bitDepth;
  header.colorType = colorType;
  header.hasTransparency = (colorType & PNG_COLOR_MASK_ALPHA) || png_get_valid(reader.png, reader.info, PNG_INFO_tRNS);
#ifdef PNG_eXIf_SUPPORTED
  png_uint_32 exifSize = 0;
  png_bytep exif = nullptr;
  if (png_get_eXIf_1(reader.png, reader.info, &exifSize, &exif) && exif && exifSize > 0)
    header.exif.assign(exif, exif + exifSize);
#endif
  png_charp iccName = nullptr;
  png_bytep icc = nullptr;
  png_uint_32 iccSize = 0;
  int compression = 0;
  if (png_get_iCCP(reader.png, reader.info, &iccName, &compression, &icc, &iccSize) && icc && iccSize > 0)
    header.icc.assign(icc, icc + iccSize);
  return width > 0 && height > 0;
}

}  // namespace

std::shared_ptr<PNGImageSource> PNGImageSource::create(const std::filesystem::path& url, const MCImageSourceOptions& options) {
  Reader reader(url, nullptr);
  if (!reader.ready()) return nullptr;
  Header header;
  if (!readInfo(reader, header)) return nullptr;
  return std::shared_ptr<PNGImageSource>(new PNGImageSource(url, options, std::move(header)));
}

std::shared_ptr<PNGImageSource> PNGImageSource::create(std::shared_ptr<const MCData> data,
                                                       const MCImageSourceOptions& options) {
  if (!data) return nullptr;
  Reader reader({}, data.get());
  if (!reader.ready()) return nullptr;
  Header header;
  if (!readInfo(reader, header)) return nullptr;
  std::shared_ptr<PNGImageSource> source(new PNGImageSource("(in memory)", options, std::move(header)));
  source->data_ = std::move(data);
  return source;
}

PNGImageSource::PNGImageSource(std::filesystem::path url, MCImageSourceOptions options, Header header)
    : url_(std::move(url)), options_(std::move(options)), header_(std::move(header)) {
  if (!header_.exif.empty()) exif_ = EmbeddedExif::create(header_.exif.data(), header_.exif.size());
}

// PNG has no reduced decode: what is decoded is the whole image, so the budget is its size. Kept
// out of line, away from decode's jump point.
[[gnu::noinline]] bool PNGImageSource::withinBudget(const Header& header) const {
  const uint64_t limit = options_.decodePixelLimit();
  if (uint64_t(header.width) * header.height <= limit) return true;
  MCLog::sdkGraphics()->logError(fmt::format("Refused to decode the image of {}: {} x {} pixels is beyond the limit of {}",
                                             url_.string(), header.width, header.height, limit));
  return false;
}

bool PNGImageSource::decode(RGBAPixels& out) const {
  Reader reader(url_, data_.get());
  if (!reader.ready()) return false;
  Header header;
  if (!readInfo(reader, header)) return false;
  if (!withinBudget(header)) return false;
  // The buffer is sized before the jump point, so nothing is allocated between it and a longjmp.
  out.width = header.width;
  out.height = header.height;
  out.bytes.assign(out.width * out.height * 4, 0);
  std::vector<png_bytep> rows(out.height);
  for (std::size_t y = 0; y < out.height; ++y) rows[y] = out.bytes.data() + y * out.width * 4;
  if (setjmp(png_jmpbuf(reader.png))) return false;
  png_set_expand(reader.png);  // palette to RGB, low gray depths to 8 bits, tRNS to alpha
  png_set_strip_16(reader.png);
  png_set_gray_to_rgb(reader.png);
  png_set_add_alpha(reader.png, 0xFF, PNG_FILLER_AFTER);
  png_set_interlace_handling(reader.png);
  png_read_update_info(reader.png, reader.info);
  if (png_get_rowbytes(reader.png, reader.info) != out.width * 4) return false;
  png_read_image(reader.png, rows.data());
  png_read_end(reader.png, nullptr);
  convertProfiledPixelsToSRGB(out.bytes.data(), out.width * out.height, ProfiledLayout::RGBA, header.icc);

  // The library's RGBA images are premultiplied.
  if (header.hasTransparency) premultiplyRGBA(out.bytes);
  return true;
}

MCRasterImageRef PNGImageSource::newImage() {
  RGBAPixels pixels;
  if (!decode(pixels)) return nullptr;
  // PNG has no DCT scaling; a subsampled read is a resampled full read.
  pixels = subsampled(std::move(pixels), options_.subsampleFactor);
  return MCRasterImage::createRGBA8(pixels.width, pixels.height, std::move(pixels.bytes));
}

MCRasterImageRef PNGImageSource::newThumbnailWithOptions(const MCThumbnailReadingOptions& options) {
  // No embedded thumbnail: without a flag to make one from the image there is none.
  if (!options.createThumbnailFromImageAlways && !options.createThumbnailFromImageIfAbsent) return nullptr;
  RGBAPixels pixels;
  if (!decode(pixels)) return nullptr;
  pixels = fittedThumbnail(std::move(pixels), std::size_t(options.thumbnailMaxPixelSize), options.createThumbnailWithTransform,
                           options.orientation ? unsigned(options.orientation) : (exif_ ? exif_->orientation() : 0));
  return MCRasterImage::createRGBA8(pixels.width, pixels.height, std::move(pixels.bytes));
}

std::optional<MCDictionary> PNGImageSource::metadataWithOptions(const std::optional<MCMetadataReadingOptions>&) {
  MCDictionary properties = exif_ ? exif_->properties() : MCDictionary();
  properties[kCGImagePropertyPixelWidth] = MCValue(int64_t(header_.width));
  properties[kCGImagePropertyPixelHeight] = MCValue(int64_t(header_.height));
  properties[kCGImagePropertyDepth] = MCValue(int64_t(header_.bitDepth));
  properties[kCGImagePropertyHasAlpha] = MCValue(header_.hasTransparency);
  const bool gray = (header_.colorType & PNG_COLOR_MASK_COLOR) == 0;
  properties[kCGImagePropertyColorModel] = gray ? kCGImagePropertyColorModelGray : kCGImagePropertyColorModelRGB;
  return properties;
}

}  // namespace mc_detail
