#pragma once
// VideoImageSource: one video file (or one in memory), read with FFmpeg.
//
//   newImage                 the representative frame, as 8-bit RGBA at the clip's display size
//   newThumbnailWithOptions  the same frame scaled to fit the asked size in one pass of libswscale,
//                            turned as the clip's display matrix says when a transform is asked
//   metadataWithOptions      pixel size, orientation, {Exif} capture date (the container's
//                            creation time, in UTC), {GPS} from the QuickTime location (ISO 6709),
//                            and {Movie}: duration, codec, frame rate, the representative time
//
// The representative frame lies about a tenth into the clip; black frames there (a fade in) are
// passed over for the first one with picture, within a bounded number of frames. A clip whose
// frames exceed the decode budget, a file with no video stream, or one FFmpeg cannot read gives
// none and one log line in sdkGraphics.

#include "PixelResampler.h"

#include <vesperon/codecs/MCImageCodec.h>

#include <memory>

namespace mc_detail {

class VideoImageSource : public MCImageSource {
 public:
  static std::shared_ptr<VideoImageSource> create(const std::filesystem::path& url, const MCImageSourceOptions& options);
  static std::shared_ptr<VideoImageSource> create(std::shared_ptr<const MCData> data, const MCImageSourceOptions& options);
  ~VideoImageSource() override;

  MCRasterImageRef newImage() override;
  MCRasterImageRef newThumbnailWithOptions(const MCThumbnailReadingOptions& options) override;
  std::optional<MCDictionary> metadataWithOptions(const std::optional<MCMetadataReadingOptions>& options) override;

  struct Clip;

 private:
  VideoImageSource(std::unique_ptr<Clip> clip, MCImageSourceOptions options);
  /// The representative frame scaled to fit `maxPixelSize` (0: display size), or none.
  bool frame(std::size_t maxPixelSize, RGBAPixels& out);

  std::unique_ptr<Clip> clip_;
  MCImageSourceOptions options_;
};

}  // namespace mc_detail
