#pragma once
// JPEGImageDestination: writes one image as a baseline JPEG with libjpeg-turbo.
//
// The default quality is 0.85 (libjpeg quality 85), used when the options' quality is 0; chroma is
// subsampled 4:2:0. The file is written under a temporary name beside the target and renamed
// into place by `finalize`, so a failed or interrupted write never leaves a partial file.
// Accepted images: 8 bits per component, gray or RGB, with or without an alpha or padding byte in
// any of the platform's layouts; alpha is dropped. With `embedColorProfile` the image's colour
// space goes into the file as an ICC profile. Properties given with the image are written as an
// Exif segment: the orientation and the TIFF, Exif and GPS sub-dictionaries, through the
// metadata writer.

#include <vesperon/codecs/MCImageCodec.h>

namespace mc_detail {

class JPEGImageDestination : public MCImageDestination {
 public:
  static constexpr double kDefaultQuality = 0.85;

  JPEGImageDestination(std::filesystem::path url, MCImageDestinationOptions options)
      : url_(std::move(url)), options_(std::move(options)) {}

  bool addImage(const MCRasterImageRef& image, const MCDictionary* properties) override;
  bool finalize() override;

 private:
  std::filesystem::path url_;
  MCImageDestinationOptions options_;
  MCRasterImageRef image_;
  MCDictionary properties_;
};

}  // namespace mc_detail
