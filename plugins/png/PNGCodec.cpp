// The PNG codec plug-in: source of "public.png" on libpng.

#include "PNGImageSource.h"

#include <vesperon/codecs/MCImageCodec.h>

namespace {

class PNGCodec : public MCImageCodec {
 public:
  std::shared_ptr<MCImageSource> imageSourceWithURL(const std::filesystem::path& url,
                                                    const MCImageSourceOptions& options) override {
    return mc_detail::PNGImageSource::create(url, options);
  }
  std::shared_ptr<MCImageSource> imageSourceWithData(std::shared_ptr<const MCData> data,
                                                     const MCImageSourceOptions& options) override {
    return mc_detail::PNGImageSource::create(std::move(data), options);
  }
  std::shared_ptr<MCImageDestination> imageDestinationAtURL(const std::filesystem::path&,
                                                            const MCImageDestinationOptions&) override {
    return nullptr;
  }
  std::string extensionIdentifier() const override { return "org.vesperon.codec.png"; }
  std::string extensionDisplayName() const override { return "PNG"; }
  std::string extensionDescription() const override { return "PNG images through libpng"; }
  double defaultPriority() const override { return 100; }
  std::vector<std::string> sourceImageTypes() const override { return {"public.png"}; }
  bool isAlwaysAvailableAsSource() const override { return true; }
};

}  // namespace

MC_IMAGE_CODEC_PLUGIN(PNGCodec)
