#include "JPEGImageDestination.h"

#include <csetjmp>
#include <cerrno>
#include <cstdio>
#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include <vesperon/metadata/MCCGImageMetadataWriter.h>
#include <vesperon/metadata/MCImagePropertyKeys.h>

#include <fcntl.h>
#include <jpeglib.h>
#include <unistd.h>

namespace mc_detail {

namespace {

struct ErrorManager {
  jpeg_error_mgr base;
  std::jmp_buf jump;
};

[[noreturn]] void errorExit(j_common_ptr cinfo) { std::longjmp(reinterpret_cast<ErrorManager*>(cinfo->err)->jump, 1); }
void outputMessage(j_common_ptr) {}

// Creates a new file beside `target` to write into before renaming it into place. Unlike mkstemp,
// it creates with mode 0666, so the process's umask gives the image the usual permissions without
// reading the umask, which can only be done by changing it under every other thread's feet.
int createTemporaryBeside(const std::string& target, std::string& temporary) {
  static constexpr char kLetters[] = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789";
  thread_local std::mt19937_64 random{std::random_device{}()};
  for (int attempt = 0; attempt < 64; ++attempt) {
    temporary = target + ".";
    for (int i = 0; i < 6; ++i) temporary += kLetters[random() % (sizeof(kLetters) - 1)];
    const int fd = open(temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    if (fd >= 0 || errno != EEXIST) return fd;
  }
  return -1;
}

// The libjpeg input layout of an image, or JCS_UNKNOWN when it cannot be written.
J_COLOR_SPACE inputLayout(const MCRasterImage& image, int& components) {
  if (image.bitsPerComponent() != 8) return JCS_UNKNOWN;
  const auto model = image.colorModel();
  const auto alpha = image.alphaInfo();
  const bool little = (image.bitmapInfo() & MCBitmapByteOrderMask) == MCBitmapByteOrder32Little;
  if (model == MCColorSpace::Model::Gray) {
    components = 1;
    return image.bitsPerPixel() == 8 ? JCS_GRAYSCALE : JCS_UNKNOWN;
  }
  if (model != MCColorSpace::Model::RGB) return JCS_UNKNOWN;
  if (image.bitsPerPixel() == 24) {
    components = 3;
    return JCS_RGB;
  }
  if (image.bitsPerPixel() != 32) return JCS_UNKNOWN;
  components = 4;
  const bool last = alpha == MCImageAlphaPremultipliedLast || alpha == MCImageAlphaLast || alpha == MCImageAlphaNoneSkipLast;
  const bool first = alpha == MCImageAlphaPremultipliedFirst || alpha == MCImageAlphaFirst || alpha == MCImageAlphaNoneSkipFirst;
  if (last) return little ? JCS_EXT_XBGR : JCS_EXT_RGBX;
  if (first) return little ? JCS_EXT_BGRX : JCS_EXT_XRGB;
  return JCS_UNKNOWN;
}

// The APP1 payload for a nested property dictionary: its TIFF, Exif and GPS sub-dictionaries as
// an Exif block. The top-level orientation goes in as the TIFF orientation, and the pixel
// dimensions are those of the image written, as the platform does; none without any of the three.
std::optional<MCData> exifSegment(const MCDictionary& properties, const MCRasterImage& image) {
  MCDictionary exifProperties;
  for (const char* key : {kCGImagePropertyTIFFDictionary, kCGImagePropertyExifDictionary, kCGImagePropertyGPSDictionary})
    if (const MCDictionary* sub = MCDictionaryGetDictionary(properties, key)) exifProperties[key] = *sub;
  const MCValue* orientation = MCDictionaryGet(properties, kCGImagePropertyOrientation);
  if (exifProperties.empty() && !orientation) return std::nullopt;
  if (orientation) {
    MCValue& tiff = exifProperties[kCGImagePropertyTIFFDictionary];
    if (!tiff.dictionary()) tiff = MCValue(MCDictionary());
    (*tiff.dictionary())[kCGImagePropertyTIFFOrientation] = *orientation;
  }
  if (auto exif = exifProperties.find(kCGImagePropertyExifDictionary); exif != exifProperties.end()) {
    MCDictionary& dictionary = *exif->second.dictionary();
    dictionary[kCGImagePropertyExifPixelXDimension] = MCValue(int64_t(image.width()));
    dictionary[kCGImagePropertyExifPixelYDimension] = MCValue(int64_t(image.height()));
  }
  auto block = MCCGImageMetadataWriter().exifDataFromCGImageProperties(exifProperties);
  // A JPEG segment holds at most 65533 bytes of payload.
  if (!block || block->empty() || block->size() > 65533) return std::nullopt;
  return block;
}

// Compresses `image` into `file`, with an Exif segment and an ICC profile when given; false on
// any libjpeg error.
bool compress(const MCRasterImage& image, J_COLOR_SPACE layout, int components, int quality,
              const std::optional<MCData>& exif, const std::vector<uint8_t>& icc, FILE* file) {
  jpeg_compress_struct cinfo{};
  ErrorManager error;
  cinfo.err = jpeg_std_error(&error.base);
  error.base.error_exit = errorExit;
  error.base.output_message = outputMessage;
  if (setjmp(error.jump)) {
    jpeg_destroy_compress(&cinfo);
    return false;
  }
  jpeg_create_compress(&cinfo);
  jpeg_stdio_dest(&cinfo, file);
  cinfo.image_width = JDIMENSION(image.width());
  cinfo.image_height = JDIMENSION(image.height());
  cinfo.input_components = components;
  cinfo.in_color_space = layout;
  jpeg_set_defaults(&cinfo);
  jpeg_set_quality(&cinfo, quality, TRUE);
  jpeg_start_compress(&cinfo, TRUE);
  if (exif) jpeg_write_marker(&cinfo, JPEG_APP0 + 1, exif->data(), unsigned(exif->size()));
  if (!icc.empty()) jpeg_write_icc_profile(&cinfo, icc.data(), unsigned(icc.size()));
  while (cinfo.next_scanline < cinfo.image_height) {
    JSAMPROW row = const_cast<JSAMPROW>(image.row(cinfo.next_scanline));
    jpeg_write_scanlines(&cinfo, &row, 1);
  }
  jpeg_finish_compress(&cinfo);
  jpeg_destroy_compress(&cinfo);
  return true;
}

}  // namespace

bool JPEGImageDestination::addImage(const MCRasterImageRef& image, const MCDictionary* properties) {
  int components = 0;
  if (!image || image_ || inputLayout(*image, components) == JCS_UNKNOWN) return false;
  image_ = image;
  if (properties) properties_ = *properties;
  return true;
}

bool JPEGImageDestination::finalize() {
  if (!image_) return false;
  int components = 0;
  const J_COLOR_SPACE layout = inputLayout(*image_, components);
  const double q = options_.quality > 0 ? std::min(options_.quality, 1.0) : kDefaultQuality;
  const int quality = std::max(1, int(q * 100 + 0.5));

  std::string temporary;
  const int fd = createTemporaryBeside(url_.string(), temporary);
  if (fd < 0) return false;
  FILE* file = fdopen(fd, "wb");
  if (!file) {
    close(fd);
    unlink(temporary.c_str());
    return false;
  }
  // The pixels stay as they are; with the profile a reader knows what they mean.
  std::vector<uint8_t> icc;
  if (options_.embedColorProfile && image_->colorSpace()) icc = image_->colorSpace()->iccData();
  bool ok = compress(*image_, layout, components, quality, exifSegment(properties_, *image_), icc, file);
  ok = std::fflush(file) == 0 && ok;
  ok = std::fclose(file) == 0 && ok;
  if (ok) ok = std::rename(temporary.c_str(), url_.c_str()) == 0;
  if (!ok) unlink(temporary.c_str());
  return ok;
}

}  // namespace mc_detail
