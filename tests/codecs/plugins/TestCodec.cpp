// A small real codec plug-in for the registry's tests: it reads "test/x-grey" files, whose bytes
// are "GREY", one width byte, one height byte and then the gray pixels.

#include <vesperon/codecs/MCImageCodec.h>

#include <fstream>
#include <iterator>

#ifndef TEST_CODEC_ABI_OFFSET
#define TEST_CODEC_ABI_OFFSET 0
#endif

namespace {

class GreySource : public MCImageSource {
 public:
  explicit GreySource(std::vector<uint8_t> bytes) : bytes_(std::move(bytes)) {}
  MCRasterImageRef newImage() override {
    if (bytes_.size() < 6) return nullptr;
    std::size_t w = bytes_[4], h = bytes_[5];
    if (bytes_.size() < 6 + w * h) return nullptr;
    std::vector<uint8_t> rgba(w * h * 4);
    for (std::size_t i = 0; i < w * h; ++i) {
      rgba[4 * i] = rgba[4 * i + 1] = rgba[4 * i + 2] = bytes_[6 + i];
      rgba[4 * i + 3] = 255;
    }
    return MCRasterImage::createRGBA8(w, h, std::move(rgba));
  }
  MCRasterImageRef newThumbnailWithOptions(const MCThumbnailReadingOptions&) override { return newImage(); }
  std::optional<MCDictionary> metadataWithOptions(const std::optional<MCMetadataReadingOptions>&) override {
    return MCDictionary{{"Codec", TEST_CODEC_ID}};
  }

 private:
  std::vector<uint8_t> bytes_;
};

class TestCodec : public MCImageCodec {
 public:
  std::shared_ptr<MCImageSource> imageSourceWithURL(const std::filesystem::path& url,
                                                    const MCImageSourceOptions&) override {
    std::ifstream in(url, std::ios::binary);
    std::vector<uint8_t> bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    if (bytes.size() < 4 || std::string(bytes.begin(), bytes.begin() + 4) != "GREY") return nullptr;
    return std::make_shared<GreySource>(std::move(bytes));
  }
  std::shared_ptr<MCImageDestination> imageDestinationAtURL(const std::filesystem::path&,
                                                            const MCImageDestinationOptions&) override {
    return nullptr;
  }
  std::string extensionIdentifier() const override { return TEST_CODEC_ID; }
  std::string extensionDisplayName() const override { return "Test codec " TEST_CODEC_ID; }
  std::string extensionDescription() const override { return "Reads GREY test files."; }
  double defaultPriority() const override { return TEST_CODEC_PRIORITY; }
  std::vector<std::string> sourceImageTypes() const override {
#ifdef TEST_CODEC_WRITER
    return {};
#else
    return {"test.grey", "test.shared"};
#endif
  }
  std::vector<std::string> destinationImageTypes() const override {
#ifdef TEST_CODEC_WRITER
    return {"test.grey"};
#else
    return {};
#endif
  }
};

}  // namespace

extern "C" __attribute__((visibility("default"))) const MCImageCodecPlugInInfo* MCImageCodecPlugInEntry() {
  static const MCImageCodecPlugInInfo info{MC_IMAGE_CODEC_ABI_VERSION + TEST_CODEC_ABI_OFFSET,
                                           []() -> MCImageCodec* { return new TestCodec(); }};
  return &info;
}
