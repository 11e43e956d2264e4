#pragma once
// RawImageSource: one camera raw file (or one in memory), read with LibRaw.
//
//   newImage                 a demosaic of the sensor data as 8-bit RGBA in sRGB, rows as the
//                            sensor gives them (the camera's turn is metadata), honouring the raw
//                            settings: demosaic 0 linear, 1 VNG, 2 PPG, 3 AHD, 4 DCB, 11 DHT
//                            (-1: AHD); gamma 0 BT.709, 1 linear, 2 sRGB; noise reduction 0 none,
//                            1 light, 2 strong; the white balance and brightness flags. An output
//                            colour space other than sRGB is still given in sRGB, the library's
//                            one space; the depth is always 8 bits.
//   newThumbnailWithOptions  the largest embedded preview (JPEG or bitmap) when it covers the size
//                            asked (the maximum, or the minimum when no demosaic is allowed) — the
//                            common case, no demosaic at all; else, when asked, a demosaic, at
//                            half size (four times cheaper) unless a large thumbnail is asked for.
//                            Either is turned by the raw's flip when a transform is asked; a
//                            preview that cannot be decoded is logged and the demosaic serves
//   metadataWithOptions      pixel size, orientation from the raw's own flip, {TIFF} Make and
//                            Model, {Exif} ISO, exposure, aperture, focal length, date and lens,
//                            {GPS} where LibRaw parsed it
//
// A file LibRaw cannot open gives none and one log line in sdkGraphics; every decode keeps to the
// options' decode budget. LibRaw is used by one call at a time per source (it is not reentrant
// per handle), each call with a handle of its own.

#include "PixelResampler.h"
#include "SourceBytes.h"

#include <vesperon/codecs/MCImageCodec.h>

#include <filesystem>
#include <memory>
#include <string>

class LibRaw;

namespace mc_detail {

class RawImageSource : public MCImageSource {
 public:
  /// A file, read by LibRaw as it needs it; none for a missing, empty or irregular file.
  static std::shared_ptr<RawImageSource> createWithURL(const std::filesystem::path& url, const MCImageSourceOptions& options);
  /// Bytes in memory.
  static std::shared_ptr<RawImageSource> create(std::shared_ptr<SourceBytes> bytes, const MCImageSourceOptions& options);

  MCRasterImageRef newImage() override;
  MCRasterImageRef newThumbnailWithOptions(const MCThumbnailReadingOptions& options) override;
  std::optional<MCDictionary> metadataWithOptions(const std::optional<MCMetadataReadingOptions>& options) override;

 private:
  RawImageSource(std::shared_ptr<SourceBytes> bytes, std::filesystem::path path, std::string name, MCImageSourceOptions options)
      : bytes_(std::move(bytes)), path_(std::move(path)), name_(std::move(name)), options_(std::move(options)) {}
  static std::shared_ptr<RawImageSource> open(std::shared_ptr<RawImageSource> source);
  std::unique_ptr<LibRaw> openRaw(int* error = nullptr) const;
  bool demosaic(bool halfSize, uint64_t pixelLimit, RGBAPixels& out) const;
  enum class Preview { None, TooSmall, Broken, Made };
  Preview embeddedPreview(std::size_t leastSize, std::size_t maxPixelSize, uint64_t pixelLimit, RGBAPixels& out) const;

  std::shared_ptr<SourceBytes> bytes_;  // the bytes in memory, or none when
  std::filesystem::path path_;          // the file is read where it lies
  std::string name_;                    // for log lines
  MCImageSourceOptions options_;
  std::size_t width_ = 0, height_ = 0;
  unsigned orientation_ = 1;
  MCDictionary properties_;
};

}  // namespace mc_detail
