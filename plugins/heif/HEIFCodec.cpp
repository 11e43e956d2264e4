// The HEIF codec plug-in: sources of "public.heic", "public.heif" and "public.avif" on libheif.

#include "HEIFImageSource.h"

#include <vesperon/codecs/MCImageCodec.h>

namespace {

class HEIFCodec : public MCImageCodec {
 public:
  std::shared_ptr<MCImageSource> imageSourceWithURL(const std::filesystem::path& url,
                                                    const MCImageSourceOptions& options) override {
    return mc_detail::HEIFImageSource::create(mc_detail::SourceBytes::readFile(url), options);
  }
  std::shared_ptr<MCImageSource> imageSourceWithData(std::shared_ptr<const MCData> data,
                                                     const MCImageSourceOptions& options) override {
    return mc_detail::HEIFImageSource::create(mc_detail::SourceBytes::share(std::move(data)), options);
  }
  std::shared_ptr<MCImageDestination> imageDestinationAtURL(const std::filesystem::path&,
                                                            const MCImageDestinationOptions&) override {
    return nullptr;
  }
  std::string extensionIdentifier() const override { return "org.vesperon.codec.heif"; }
  std::string extensionDisplayName() const override { return "HEIF"; }
  std::string extensionDescription() const override { return "HEIC and AVIF images through libheif"; }
  double defaultPriority() const override { return 100; }
  std::vector<std::string> sourceImageTypes() const override { return {"public.heic", "public.heif", "public.avif"}; }
  bool isAlwaysAvailableAsSource() const override { return true; }
};

}  // namespace

MC_IMAGE_CODEC_PLUGIN(HEIFCodec)
