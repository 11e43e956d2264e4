// The WebP codec plug-in: source of "org.webmproject.webp" on libwebp.

#include "WebPImageSource.h"

#include <vesperon/codecs/MCImageCodec.h>

namespace {

class WebPCodec : public MCImageCodec {
 public:
  std::shared_ptr<MCImageSource> imageSourceWithURL(const std::filesystem::path& url,
                                                    const MCImageSourceOptions& options) override {
    return mc_detail::WebPImageSource::create(mc_detail::SourceBytes::readFile(url), options);
  }
  std::shared_ptr<MCImageSource> imageSourceWithData(std::shared_ptr<const MCData> data,
                                                     const MCImageSourceOptions& options) override {
    return mc_detail::WebPImageSource::create(mc_detail::SourceBytes::share(std::move(data)), options);
  }
  std::shared_ptr<MCImageDestination> imageDestinationAtURL(const std::filesystem::path&,
                                                            const MCImageDestinationOptions&) override {
    return nullptr;
  }
  std::string extensionIdentifier() const override { return "org.vesperon.codec.webp"; }
  std::string extensionDisplayName() const override { return "WebP"; }
  std::string extensionDescription() const override { return "WebP images, still and animated, through libwebp"; }
  double defaultPriority() const override { return 100; }
  std::vector<std::string> sourceImageTypes() const override { return {"org.webmproject.webp"}; }
  bool isAlwaysAvailableAsSource() const override { return true; }
};

}  // namespace

MC_IMAGE_CODEC_PLUGIN(WebPCodec)
