// A codec plug-in with faults, for the pipeline's tests: it claims JPEG and PNG ahead of the real
// plug-ins and throws for files whose names ask it to; for any other file it opens nothing, so the
// real plug-ins read it.
//
//   name contains "throws-open"    imageSourceWithURL throws std::runtime_error("opening is broken")
//   name contains "throws-decode"  the source's image and thumbnail throw std::runtime_error("decoding is broken")
//   name contains "bad-alloc"      the source's image and thumbnail throw std::bad_alloc

#include <vesperon/codecs/MCImageCodec.h>

#include <new>
#include <stdexcept>

namespace {

class ThrowingSource : public MCImageSource {
 public:
  explicit ThrowingSource(bool badAlloc) : badAlloc_(badAlloc) {}
  MCRasterImageRef newImage() override { fail(); }
  MCRasterImageRef newThumbnailWithOptions(const MCThumbnailReadingOptions&) override { fail(); }
  std::optional<MCDictionary> metadataWithOptions(const std::optional<MCMetadataReadingOptions>&) override { fail(); }

 private:
  [[noreturn]] void fail() const {
    if (badAlloc_) throw std::bad_alloc();
    throw std::runtime_error("decoding is broken");
  }
  bool badAlloc_;
};

class ThrowingCodec : public MCImageCodec {
 public:
  std::shared_ptr<MCImageSource> imageSourceWithURL(const std::filesystem::path& url, const MCImageSourceOptions&) override {
    const std::string name = url.filename().string();
    if (name.find("throws-open") != std::string::npos) throw std::runtime_error("opening is broken");
    if (name.find("throws-decode") != std::string::npos) return std::make_shared<ThrowingSource>(false);
    if (name.find("bad-alloc") != std::string::npos) return std::make_shared<ThrowingSource>(true);
    return nullptr;
  }
  std::shared_ptr<MCImageDestination> imageDestinationAtURL(const std::filesystem::path&,
                                                            const MCImageDestinationOptions&) override {
    return nullptr;
  }
  std::string extensionIdentifier() const override { return "test.throwing"; }
  std::string extensionDisplayName() const override { return "Throwing test codec"; }
  std::string extensionDescription() const override { return "Throws for files that ask it to."; }
  double defaultPriority() const override { return 1000; }
  std::vector<std::string> sourceImageTypes() const override { return {"public.jpeg", "public.png"}; }
};

}  // namespace

MC_IMAGE_CODEC_PLUGIN(ThrowingCodec)
