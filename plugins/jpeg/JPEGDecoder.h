#pragma once
// JPEGDecoder: one JPEG stream (a file or bytes in memory) read with libjpeg-turbo.
//
// libjpeg's fatal errors are caught per decoder and turn into a failed call; they never end the
// process.
//
// A stream that ends early (a half-downloaded or cut file) gives what was decoded before the end,
// with the rest grey as libjpeg fills it — provided at least the first row of blocks arrived; a
// stream that ends before any row of the image, or inside the header, gives nothing. That is what
// the other readers of the desktop show: vipsthumbnail and ImageMagick print libjpeg's warning and
// give the partial image, and gdk-pixbuf (eog, the file manager's thumbnails) shows the top of the
// photo over grey. A user who sees the top half of a photo recognises it and sees that the file is
// damaged; a missing thumbnail says neither. `wasTruncated` tells a caller that wants to know.
//
// The decode budget: `decode` refuses, before it allocates, what would hold more pixels than the
// limit it is given: the output, measured after DCT scaling, and for an image in several scans
// (progressive, or components in scans of their own) libjpeg's whole-image coefficient buffers,
// which DCT scaling does not shrink: 128 bytes per block of each component, counted as pixels of
// four bytes. It says so through `refusedWidth`, `refusedHeight` and `refusedWorkingPixels`.
// libjpeg's own memory is capped at the budget too (`max_memory_to_use`), so that nothing it
// allocates on its own can pass it.
//
// Pixels come out in sRGB: an embedded ICC profile (APP2 "ICC_PROFILE" segments) of the file's
// model is applied through Little CMS; without one, RGB is taken as sRGB and CMYK is converted by
// the plain ink formula.

#include "PixelResampler.h"

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace mc_detail {

class JPEGDecoder {
 public:
  enum class ColorModel { Gray, RGB, CMYK };

  /// Reads the header of the file (and keeps its Exif segment); none when it is not a JPEG.
  static std::unique_ptr<JPEGDecoder> openFile(const std::filesystem::path& path);
  /// The same for bytes in memory, which must outlive the decoder.
  static std::unique_ptr<JPEGDecoder> openMemory(const uint8_t* data, std::size_t size);
  ~JPEGDecoder();
  JPEGDecoder(const JPEGDecoder&) = delete;
  JPEGDecoder& operator=(const JPEGDecoder&) = delete;

  std::size_t width() const { return width_; }
  std::size_t height() const { return height_; }
  ColorModel colorModel() const { return colorModel_; }
  /// The payload of the first APP1 Exif segment, starting with "Exif\0\0"; empty if none.
  const std::vector<uint8_t>& exifSegment() const { return exif_; }
  /// The embedded ICC profile, reassembled from its segments; empty if none.
  const std::vector<uint8_t>& iccProfile() const { return icc_; }

  /// The smallest scale n/8 (n from 1 to 8) whose output still has a larger side of at least
  /// `pixelSize`; 8 when `pixelSize` is 0 or beyond the full size.
  unsigned scaleNumeratorCovering(std::size_t pixelSize) const;
  /// Decodes the image at scale n/8 into RGBA; false on any error, on data that ends before the
  /// first row of blocks, and on an output of more than `maxPixelCount` pixels. Call once per decoder.
  bool decode(unsigned scaleNumerator, uint64_t maxPixelCount, RGBAPixels& out);
  /// Decodes only the pixels of the full-size image inside the rectangle (x, y, width, height),
  /// cut to the image: rows above it are skipped without being turned into pixels and columns
  /// beside it are not transformed (libjpeg-turbo's skip and crop), so the centre of a
  /// 100-megapixel photo costs a fraction of the whole. The same pixels as the whole decode's: a
  /// margin around the region is decoded for the neighbours its chroma is upsampled from. False
  /// as `decode` is, and for a rectangle outside the image or empty; the budget counts the region
  /// with its margin and, for an image in several scans, the coefficient buffers.
  bool decodeRegion(std::size_t x, std::size_t y, std::size_t width, std::size_t height, uint64_t maxPixelCount,
                    RGBAPixels& out);
  /// After a decode refused by the budget: the output size it would have had; 0 × 0 otherwise.
  std::size_t refusedWidth() const { return refusedWidth_; }
  std::size_t refusedHeight() const { return refusedHeight_; }
  /// ... and the pixels' worth of coefficient buffers it would have needed beside the output.
  uint64_t refusedWorkingPixels() const { return refusedWorkingPixels_; }
  /// The pixels' worth of whole-image coefficient buffers a decode needs: 0 for an image in one scan.
  uint64_t coefficientBufferPixels() const;
  /// After a decode: whether the data ended early and the image is partial.
  bool wasTruncated() const;

 private:
  struct State;
  explicit JPEGDecoder(std::unique_ptr<State> state);
  bool readHeader();
  /// Turns decoded rows (RGBA or CMYK as libjpeg gave them) into sRGB RGBA.
  void finishPixels(RGBAPixels& out) const;

  std::unique_ptr<State> state_;
  std::size_t width_ = 0, height_ = 0;
  std::size_t refusedWidth_ = 0, refusedHeight_ = 0;
  uint64_t refusedWorkingPixels_ = 0;
  ColorModel colorModel_ = ColorModel::RGB;
  std::vector<uint8_t> exif_;
  std::vector<uint8_t> icc_;
};

}  // namespace mc_detail
