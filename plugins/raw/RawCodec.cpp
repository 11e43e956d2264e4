// The camera raw codec plug-in: sources of the camera raw types on LibRaw.

#include "RawImageSource.h"

#include <vesperon/codecs/MCImageCodec.h>

namespace {

class RawCodec : public MCImageCodec {
 public:
  std::shared_ptr<MCImageSource> imageSourceWithURL(const std::filesystem::path& url,
                                                    const MCImageSourceOptions& options) override {
    return mc_detail::RawImageSource::createWithURL(url, options);
  }
  std::shared_ptr<MCImageSource> imageSourceWithData(std::shared_ptr<const MCData> data,
                                                     const MCImageSourceOptions& options) override {
    return mc_detail::RawImageSource::create(mc_detail::SourceBytes::share(std::move(data)), options);
  }
  std::shared_ptr<MCImageDestination> imageDestinationAtURL(const std::filesystem::path&,
                                                            const MCImageDestinationOptions&) override {
    return nullptr;
  }
  std::string extensionIdentifier() const override { return "org.vesperon.codec.raw"; }
  std::string extensionDisplayName() const override { return "Camera raw"; }
  std::string extensionDescription() const override {
    return "Camera raw files: embedded previews, demosaicing and the camera's tags, through LibRaw";
  }
  // Ahead of a generic reader of the same files (a TIFF reader would take a DNG as a TIFF).
  double defaultPriority() const override { return 150; }
  std::vector<std::string> sourceImageTypes() const override {
    return {"com.adobe.raw-image",         "com.canon.crw-raw-image",     "com.canon.cr2-raw-image",
            "com.canon.cr3-raw-image",     "com.nikon.raw-image",         "com.nikon.nrw-raw-image",
            "com.sony.raw-image",          "com.sony.arw-raw-image",      "com.sony.sr2-raw-image",
            "com.fuji.raw-image",          "com.olympus.raw-image",       "com.olympus.or-raw-image",
            "com.panasonic.raw-image",     "com.panasonic.rw2-raw-image", "com.pentax.raw-image",
            "com.samsung.raw-image",       "com.leica.raw-image",         "com.hasselblad.3fr-raw-image",
            "com.hasselblad.fff-raw-image", "com.phaseone.raw-image",     "com.konicaminolta.raw-image",
            "com.kodak.raw-image",         "com.epson.raw-image",         "com.sigma.raw-image"};
  }
  bool isAlwaysAvailableAsSource() const override { return true; }
};

}  // namespace

MC_IMAGE_CODEC_PLUGIN(RawCodec)
