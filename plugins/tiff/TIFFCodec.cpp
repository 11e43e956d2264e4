// The TIFF codec plug-in: source of "public.tiff" on libtiff.

#include "TIFFImageSource.h"

#include <vesperon/codecs/MCImageCodec.h>

namespace {

class TIFFCodec : public MCImageCodec {
 public:
  std::shared_ptr<MCImageSource> imageSourceWithURL(const std::filesystem::path& url,
                                                    const MCImageSourceOptions& options) override {
    return mc_detail::TIFFImageSource::create(mc_detail::SourceBytes::openFile(url), options);
  }
  std::shared_ptr<MCImageSource> imageSourceWithData(std::shared_ptr<const MCData> data,
                                                     const MCImageSourceOptions& options) override {
    return mc_detail::TIFFImageSource::create(mc_detail::SourceBytes::share(std::move(data)), options);
  }
  std::shared_ptr<MCImageDestination> imageDestinationAtURL(const std::filesystem::path&,
                                                            const MCImageDestinationOptions&) override {
    return nullptr;
  }
  std::string extensionIdentifier() const override { return "org.vesperon.codec.tiff"; }
  std::string extensionDisplayName() const override { return "TIFF"; }
  std::string extensionDescription() const override { return "TIFF images, every page count and layout, through libtiff"; }
  double defaultPriority() const override { return 100; }
  std::vector<std::string> sourceImageTypes() const override { return {"public.tiff"}; }
  bool isAlwaysAvailableAsSource() const override { return true; }
};

}  // namespace

MC_IMAGE_CODEC_PLUGIN(TIFFCodec)
