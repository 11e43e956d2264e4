// A small real codec plug-in for the registry's tests: what it claims to read and write, and its
// priority, come from the build; it opens nothing (the registry never asks it to).

#include <vesperon/codecs/MCImageCodec.h>

#ifndef TEST_CODEC_ABI_OFFSET
#define TEST_CODEC_ABI_OFFSET 0
#endif

namespace {

class TestCodec : public MCImageCodec {
 public:
  std::shared_ptr<MCImageSource> imageSourceWithURL(const std::filesystem::path&, const MCImageSourceOptions&) override {
    return nullptr;
  }
  std::shared_ptr<MCImageDestination> imageDestinationAtURL(const std::filesystem::path&,
                                                            const MCImageDestinationOptions&) override {
    return nullptr;
  }
  std::string extensionIdentifier() const override { return TEST_CODEC_ID; }
  std::string extensionDisplayName() const override { return "Test codec " TEST_CODEC_ID; }
  std::string extensionDescription() const override { return "Claims test types."; }
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
