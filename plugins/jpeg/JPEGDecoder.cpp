#include "JPEGDecoder.h"

#include "ProfileConversion.h"

#include <algorithm>
#include <climits>
#include <csetjmp>
#include <cstdlib>
#include <cstring>

#include <jerror.h>
#include <jpeglib.h>

namespace mc_detail {

namespace {

struct ErrorManager {
  jpeg_error_mgr base;
  std::jmp_buf jump;
  bool truncated = false;  // the data ended before the image did
  bool usable = false;     // ... after at least one row of blocks had arrived
};

[[noreturn]] void errorExit(j_common_ptr cinfo) {
  auto* manager = reinterpret_cast<ErrorManager*>(cinfo->err);
  std::longjmp(manager->jump, 1);
}

void emitMessage(j_common_ptr cinfo, int level) {
  auto* manager = reinterpret_cast<ErrorManager*>(cinfo->err);
  // Warnings only (level -1). Running out of data (the file ends, or a marker comes where entropy
  // data should) is the one the caller must know of; the others (extraneous bytes, a corrupt
  // Huffman code) leave a usable image, as other readers treat them.
  if (level >= 0 || manager->truncated) return;
  const int code = cinfo->err->msg_code;
  if (code != JWRN_JPEG_EOF && code != JWRN_HIT_MARKER) return;
  manager->truncated = true;
  if (cinfo->is_decompressor) {
    auto* d = reinterpret_cast<j_decompress_ptr>(cinfo);
    // A later scan of a progressive file, or a later row of the first scan: something to show.
    manager->usable = d->global_state >= 203 /* reading entropy data: DSTATE_PRELOAD and on */ &&
                      (d->input_scan_number > 1 || d->input_iMCU_row > 0);
  }
}

void outputMessage(j_common_ptr) {}  // the library's messages are not ours to print

bool isExifSegment(const jpeg_saved_marker_ptr marker) {
  return marker->marker == JPEG_APP0 + 1 && marker->data_length >= 6 &&
         std::memcmp(marker->data, "Exif\0\0", 6) == 0;
}

}  // namespace

struct JPEGDecoder::State {
  jpeg_decompress_struct cinfo{};
  ErrorManager error;
  FILE* file = nullptr;
  bool created = false;
  bool used = false;

  ~State() {
    if (created) jpeg_destroy_decompress(&cinfo);
    if (file) std::fclose(file);
  }
};

JPEGDecoder::JPEGDecoder(std::unique_ptr<State> state) : state_(std::move(state)) {}
JPEGDecoder::~JPEGDecoder() = default;

std::unique_ptr<JPEGDecoder> JPEGDecoder::openFile(const std::filesystem::path& path) {
  auto state = std::make_unique<State>();
  state->file = std::fopen(path.c_str(), "rb");
  if (!state->file) return nullptr;
  std::unique_ptr<JPEGDecoder> decoder(new JPEGDecoder(std::move(state)));
  if (!decoder->readHeader()) return nullptr;
  return decoder;
}

std::unique_ptr<JPEGDecoder> JPEGDecoder::openMemory(const uint8_t* data, std::size_t size) {
  if (!data || size == 0) return nullptr;
  std::unique_ptr<JPEGDecoder> decoder(new JPEGDecoder(std::make_unique<State>()));
  State& s = *decoder->state_;
  s.cinfo.err = jpeg_std_error(&s.error.base);
  s.error.base.error_exit = errorExit;
  s.error.base.emit_message = emitMessage;
  s.error.base.output_message = outputMessage;
  if (setjmp(s.error.jump)) return nullptr;
  jpeg_create_decompress(&s.cinfo);
  s.created = true;
  jpeg_mem_src(&s.cinfo, data, static_cast<unsigned long>(size));
  if (!decoder->readHeader()) return nullptr;
  return decoder;
}

bool JPEGDecoder::readHeader() {
  State& s = *state_;
  if (!s.created) {
    s.cinfo.err = jpeg_std_error(&s.error.base);
    s.error.base.error_exit = errorExit;
    s.error.base.emit_message = emitMessage;
    s.error.base.output_message = outputMessage;
  }
  // Nothing with a destructor lives between here and a longjmp back.
  if (setjmp(s.error.jump)) return false;
  if (!s.created) {
    jpeg_create_decompress(&s.cinfo);
    s.created = true;
    jpeg_stdio_src(&s.cinfo, s.file);
  }
  jpeg_save_markers(&s.cinfo, JPEG_APP0 + 1, 0xFFFF);
  jpeg_save_markers(&s.cinfo, JPEG_APP0 + 2, 0xFFFF);
  if (jpeg_read_header(&s.cinfo, TRUE) != JPEG_HEADER_OK) return false;
  if (s.error.truncated) return false;
  width_ = s.cinfo.image_width;
  height_ = s.cinfo.image_height;
  if (width_ == 0 || height_ == 0) return false;
  switch (s.cinfo.jpeg_color_space) {
    case JCS_GRAYSCALE: colorModel_ = ColorModel::Gray; break;
    case JCS_CMYK:
    case JCS_YCCK: colorModel_ = ColorModel::CMYK; break;
    case JCS_RGB:
    case JCS_YCbCr: colorModel_ = ColorModel::RGB; break;
    default: return false;
  }
  for (jpeg_saved_marker_ptr marker = s.cinfo.marker_list; marker; marker = marker->next) {
    if (isExifSegment(marker)) {
      exif_.assign(marker->data, marker->data + marker->data_length);
      break;
    }
  }
  JOCTET* icc = nullptr;
  unsigned int iccLength = 0;
  // A profile whose segments do not add up is ignored, as if there were none.
  if (jpeg_read_icc_profile(&s.cinfo, &icc, &iccLength) && icc) {
    icc_.assign(icc, icc + iccLength);
    std::free(icc);
  }
  return true;
}

unsigned JPEGDecoder::scaleNumeratorCovering(std::size_t pixelSize) const {
  const std::size_t larger = std::max(width_, height_);
  if (pixelSize == 0 || pixelSize >= larger) return 8;
  for (unsigned n = 1; n < 8; ++n) {
    // libjpeg rounds a scaled dimension up.
    const std::size_t scaled = (larger * n + 7) / 8;
    if (scaled >= pixelSize) return n;
  }
  return 8;
}

bool JPEGDecoder::wasTruncated() const { return state_->error.truncated; }

uint64_t JPEGDecoder::coefficientBufferPixels() const {
  // After the header, libjpeg knows the scan layout and each component's size in blocks; an image
  // in several scans keeps every block's coefficients from the first scan to the last, rounded up
  // to whole sampling units as libjpeg's coefficient controller asks for them.
  auto& cinfo = state_->cinfo;
  if (cinfo.global_state != 202 /* DSTATE_READY: header read, not started */ || !jpeg_has_multiple_scans(&cinfo))
    return 0;
  uint64_t bytes = 0;
  for (int i = 0; i < cinfo.num_components; ++i) {
    const jpeg_component_info& component = cinfo.comp_info[i];
    const auto roundUp = [](uint64_t value, int unit) { return unit > 0 ? (value + unit - 1) / unit * unit : value; };
    bytes += roundUp(component.width_in_blocks, component.h_samp_factor) *
             roundUp(component.height_in_blocks, component.v_samp_factor) * sizeof(JBLOCK);
  }
  return (bytes + 3) / 4;
}

bool JPEGDecoder::decode(unsigned scaleNumerator, uint64_t maxPixelCount, RGBAPixels& out) {
  State& s = *state_;
  if (s.used) return false;
  s.used = true;
  const bool cmyk = colorModel_ == ColorModel::CMYK;
  // Rows land straight in `out`, whose buffer is sized before any decoding call.
  if (setjmp(s.error.jump)) return false;
  s.cinfo.scale_num = scaleNumerator == 0 || scaleNumerator > 8 ? 8 : scaleNumerator;
  s.cinfo.scale_denom = 8;
  s.cinfo.out_color_space = cmyk ? JCS_CMYK : JCS_EXT_RGBA;
  s.cinfo.dct_method = JDCT_ISLOW;
  const uint64_t working = coefficientBufferPixels();
  jpeg_calc_output_dimensions(&s.cinfo);
  const uint64_t outputPixels = uint64_t(s.cinfo.output_width) * s.cinfo.output_height;
  if (outputPixels > maxPixelCount || working > maxPixelCount - outputPixels) {
    refusedWidth_ = s.cinfo.output_width;
    refusedHeight_ = s.cinfo.output_height;
    refusedWorkingPixels_ = working;
    return false;
  }
  // What libjpeg allocates itself stays within the budget too, with room for its tables and row
  // buffers: past it, it fails rather than grows.
  constexpr uint64_t kTablesAndRows = 16u << 20;
  s.cinfo.mem->max_memory_to_use =
      long(std::min<uint64_t>(maxPixelCount, (uint64_t(LONG_MAX) - kTablesAndRows) / 4) * 4 + kTablesAndRows);
  out.width = s.cinfo.output_width;
  out.height = s.cinfo.output_height;
  out.bytes.resize(out.width * out.height * 4);
  jpeg_start_decompress(&s.cinfo);  // a progressive file's scans are all read here
  while (s.cinfo.output_scanline < s.cinfo.output_height) {
    if (s.error.truncated && !s.error.usable) return false;
    JSAMPROW row = out.bytes.data() + std::size_t(s.cinfo.output_scanline) * out.width * 4;
    if (jpeg_read_scanlines(&s.cinfo, &row, 1) != 1) return false;
  }
  if (s.error.truncated && !s.error.usable) return false;
  // The rest of the stream (trailing markers) is not needed.
  jpeg_abort_decompress(&s.cinfo);
  finishPixels(out);
  return true;
}

bool JPEGDecoder::decodeRegion(std::size_t x, std::size_t y, std::size_t width, std::size_t height,
                               uint64_t maxPixelCount, RGBAPixels& out) {
  State& s = *state_;
  if (s.used || x >= width_ || y >= height_ || width == 0 || height == 0) return false;
  width = std::min(width, width_ - x);
  height = std::min(height, height_ - y);
  s.used = true;
  const bool cmyk = colorModel_ == ColorModel::CMYK;
  if (setjmp(s.error.jump)) return false;
  s.cinfo.scale_num = 8;
  s.cinfo.scale_denom = 8;
  s.cinfo.out_color_space = cmyk ? JCS_CMYK : JCS_EXT_RGBA;
  s.cinfo.dct_method = JDCT_ISLOW;
  const uint64_t working = coefficientBufferPixels();
  jpeg_calc_output_dimensions(&s.cinfo);
  // Crop widens the columns to whole blocks of the sampling unit; the budget counts what it decodes.
  const uint64_t decodedPixels = uint64_t(std::min<std::size_t>(width + 64, width_)) * (height + 32);
  if (decodedPixels > maxPixelCount || working > maxPixelCount - decodedPixels) {
    refusedWidth_ = width;
    refusedHeight_ = height;
    refusedWorkingPixels_ = working;
    return false;
  }
  constexpr uint64_t kTablesAndRows = 16u << 20;
  s.cinfo.mem->max_memory_to_use =
      long(std::min<uint64_t>(maxPixelCount, (uint64_t(LONG_MAX) - kTablesAndRows) / 4) * 4 + kTablesAndRows);
  jpeg_start_decompress(&s.cinfo);
  // Chroma is upsampled from its neighbours, which a cut would drop: a margin of whole sampling
  // units around the region is decoded too, so its pixels are the whole decode's.
  constexpr std::size_t kMargin = 16;
  const std::size_t top = y > kMargin ? y - kMargin : 0, bottom = std::min(height_, y + height + kMargin);
  const std::size_t left = x > kMargin ? x - kMargin : 0, right = std::min(width_, x + width + kMargin);
  JDIMENSION cropX = JDIMENSION(left), cropWidth = JDIMENSION(right - left);
  jpeg_crop_scanline(&s.cinfo, &cropX, &cropWidth);  // widened to block edges: cropX <= left
  const std::size_t inset = x - cropX;
  if (top > 0 && jpeg_skip_scanlines(&s.cinfo, JDIMENSION(top)) != JDIMENSION(top)) return false;
  std::vector<uint8_t> row(std::size_t(cropWidth) * 4);
  out.width = width;
  out.height = height;
  out.bytes.resize(width * height * 4);
  for (std::size_t r = top; r < bottom; ++r) {
    if (s.error.truncated && !s.error.usable) return false;
    JSAMPROW rows = row.data();
    if (jpeg_read_scanlines(&s.cinfo, &rows, 1) != 1) return false;
    if (r >= y && r < y + height) std::memcpy(out.bytes.data() + (r - y) * width * 4, row.data() + inset * 4, width * 4);
  }
  if (s.error.truncated && !s.error.usable) return false;
  jpeg_abort_decompress(&s.cinfo);
  finishPixels(out);
  return true;
}

void JPEGDecoder::finishPixels(RGBAPixels& out) const {
  const State& s = *state_;
  const bool cmyk = colorModel_ == ColorModel::CMYK;
  const bool inverted = cmyk && s.cinfo.saw_Adobe_marker;
  if (!icc_.empty()) {
    const ProfiledLayout layout = !cmyk ? ProfiledLayout::RGBA : inverted ? ProfiledLayout::InvertedCMYK : ProfiledLayout::CMYK;
    if (convertProfiledPixelsToSRGB(out.bytes.data(), out.width * out.height, layout, icc_)) return;
  }
  if (cmyk) {
    // Photoshop writes CMYK inverted (its Adobe segment says so); others store plain ink values.
    uint8_t* p = out.bytes.data();
    for (std::size_t i = 0, n = out.width * out.height; i < n; ++i, p += 4) {
      unsigned c = p[0], m = p[1], y = p[2], k = p[3];
      if (!inverted) {
        c = 255 - c;
        m = 255 - m;
        y = 255 - y;
        k = 255 - k;
      }
      p[0] = uint8_t((c * k + 127) / 255);
      p[1] = uint8_t((m * k + 127) / 255);
      p[2] = uint8_t((y * k + 127) / 255);
      p[3] = 255;
    }
  }
}

}  // namespace mc_detail
