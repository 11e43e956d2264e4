// The video codec plug-in: a representative frame of a clip, as image and thumbnail, and what the
// container tells of it, through FFmpeg. Sources only; the library writes no video.

#include "VideoImageSource.h"

#include <vesperon/codecs/MCImageCodec.h>

extern "C" {
#include <libavutil/log.h>
}

namespace {

class VideoCodec : public MCImageCodec {
 public:
  VideoCodec() {
    // FFmpeg would print its own complaints about damaged files on the host's stderr; the
    // library reports failures through its log instead.
    av_log_set_level(AV_LOG_QUIET);
  }
  std::shared_ptr<MCImageSource> imageSourceWithURL(const std::filesystem::path& url,
                                                    const MCImageSourceOptions& options) override {
    return mc_detail::VideoImageSource::create(url, options);
  }
  std::shared_ptr<MCImageSource> imageSourceWithData(std::shared_ptr<const MCData> data,
                                                     const MCImageSourceOptions& options) override {
    return mc_detail::VideoImageSource::create(std::move(data), options);
  }
  std::shared_ptr<MCImageDestination> imageDestinationAtURL(const std::filesystem::path&,
                                                            const MCImageDestinationOptions&) override {
    return nullptr;
  }
  std::string extensionIdentifier() const override { return "org.vesperon.codec.video"; }
  std::string extensionDisplayName() const override { return "Video"; }
  std::string extensionDescription() const override {
    return "A representative frame of a video clip, and its length, codec, date and place, through FFmpeg";
  }
  double defaultPriority() const override { return 50; }
  std::vector<std::string> sourceImageTypes() const override { return {}; }
  std::vector<std::string> sourceVideoTypes() const override {
    return {"com.apple.quicktime-movie", "public.mpeg-4", "com.apple.m4v-video", "public.mpeg",
            "public.mpeg-2-transport-stream", "public.avi", "public.3gpp", "public.3gpp2",
            "org.matroska.mkv", "org.webmproject.webm"};
  }
  bool isAlwaysAvailableAsSource() const override { return true; }
};

}  // namespace

MC_IMAGE_CODEC_PLUGIN(VideoCodec)
