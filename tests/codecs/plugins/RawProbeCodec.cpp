// A codec plug-in of the tests registered for three camera raw types. It opens any file and gives
// a 3 × 2 magenta image, so that a test can see that a file reached it by its type.

#include <vesperon/codecs/MCImageCodec.h>

namespace {

class RawProbeSource : public MCImageSource {
 public:
  MCRasterImageRef newImage() override {
    std::vector<uint8_t> pixels;
    for (int i = 0; i < 6; ++i) pixels.insert(pixels.end(), {255, 0, 255, 255});
    return MCRasterImage::createRGBA8(3, 2, std::move(pixels));
  }
  MCRasterImageRef newThumbnailWithOptions(const MCThumbnailReadingOptions&) override { return newImage(); }
  std::optional<MCDictionary> metadataWithOptions(const std::optional<MCMetadataReadingOptions>&) override {
    return MCDictionary{};
  }
};

class RawProbeCodec : public MCImageCodec {
 public:
  std::shared_ptr<MCImageSource> imageSourceWithURL(const std::filesystem::path&, const MCImageSourceOptions&) override {
    return std::make_shared<RawProbeSource>();
  }
  std::shared_ptr<MCImageDestination> imageDestinationAtURL(const std::filesystem::path&,
                                                            const MCImageDestinationOptions&) override {
    return nullptr;
  }
  std::string extensionIdentifier() const override { return "test.raw-probe"; }
  std::string extensionDisplayName() const override { return "Raw probe"; }
  std::string extensionDescription() const override { return "Opens Canon, Nikon and DNG raw files as magenta."; }
  double defaultPriority() const override { return 5; }
  std::vector<std::string> sourceImageTypes() const override {
    return {"com.canon.cr2-raw-image", "com.nikon.raw-image", "com.adobe.raw-image"};
  }
};

}  // namespace

MC_IMAGE_CODEC_PLUGIN(RawProbeCodec)
