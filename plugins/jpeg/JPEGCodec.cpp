// The JPEG codec plug-in: source and destination of "public.jpeg" on libjpeg-turbo.

#include "JPEGImageDestination.h"
#include "JPEGImageSource.h"

#include <vesperon/codecs/MCImageCodec.h>

namespace {

class JPEGCodec : public MCImageCodec {
 public:
  std::shared_ptr<MCImageSource> imageSourceWithURL(const std::filesystem::path& url,
                                                    const MCImageSourceOptions& options) override {
    return mc_detail::JPEGImageSource::create(url, options);
  }
  std::shared_ptr<MCImageSource> imageSourceWithData(std::shared_ptr<const MCData> data,
                                                     const MCImageSourceOptions& options) override {
    return mc_detail::JPEGImageSource::create(std::move(data), options);
  }
  std::shared_ptr<MCImageDestination> imageDestinationAtURL(const std::filesystem::path& url,
                                                            const MCImageDestinationOptions& options) override {
    if (url.empty()) return nullptr;
    return std::make_shared<mc_detail::JPEGImageDestination>(url, options);
  }
  std::string extensionIdentifier() const override { return "org.vesperon.codec.jpeg"; }
  std::string extensionDisplayName() const override { return "JPEG"; }
  std::string extensionDescription() const override { return "JPEG images through libjpeg-turbo"; }
  double defaultPriority() const override { return 100; }
  std::vector<std::string> sourceImageTypes() const override { return {"public.jpeg"}; }
  std::vector<std::string> destinationImageTypes() const override { return {"public.jpeg"}; }
  bool isAlwaysAvailableAsSource() const override { return true; }
};

}  // namespace

MC_IMAGE_CODEC_PLUGIN(JPEGCodec)
