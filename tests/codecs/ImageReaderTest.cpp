#include <vesperon/codecs/MCImageCodecManager.h>
#include <vesperon/codecs/MCImageReader.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <unistd.h>

namespace fs = std::filesystem;

namespace {

// A source extension of the test's own: it opens any file, and answers with an image or nothing
// as it was made to, recording what the reader handed it.
class ScriptedCodec : public MCImageCodec {
 public:
  ScriptedCodec(std::string id, bool givesImage, MCDictionary metadata)
      : id_(std::move(id)), givesImage_(givesImage), metadata_(std::move(metadata)) {}

  std::shared_ptr<MCImageSource> imageSourceWithURL(const fs::path& url, const MCImageSourceOptions& options) override {
    ++opened;
    lastOptions = options;
    if (!fs::exists(url)) return nullptr;
    return std::make_shared<Source>(*this);
  }
  std::shared_ptr<MCImageDestination> imageDestinationAtURL(const fs::path&, const MCImageDestinationOptions&) override {
    return nullptr;
  }
  std::string extensionIdentifier() const override { return id_; }
  std::string extensionDisplayName() const override { return id_; }
  std::string extensionDescription() const override { return id_; }
  double defaultPriority() const override { return 0; }
  std::vector<std::string> sourceImageTypes() const override { return {}; }

  int opened = 0;
  std::optional<MCImageSourceOptions> lastOptions;
  std::optional<MCThumbnailReadingOptions> lastThumbnailOptions;

 private:
  class Source : public MCImageSource {
   public:
    explicit Source(ScriptedCodec& codec) : codec_(codec) {}
    MCRasterImageRef newImage() override { return codec_.image(); }
    MCRasterImageRef newThumbnailWithOptions(const MCThumbnailReadingOptions& options) override {
      codec_.lastThumbnailOptions = options;
      return codec_.image();
    }
    std::optional<MCDictionary> metadataWithOptions(const std::optional<MCMetadataReadingOptions>&) override {
      return codec_.metadata_;
    }

   private:
    ScriptedCodec& codec_;
  };
  MCRasterImageRef image() const {
    return givesImage_ ? MCRasterImage::createRGBA8(2, 1, {1, 2, 3, 255, 4, 5, 6, 255}) : nullptr;
  }
  std::string id_;
  bool givesImage_;
  MCDictionary metadata_;
};

struct Registered {
  std::shared_ptr<ScriptedCodec> empty, giving;
};

// Two extensions for one type of the test's own, the first giving nothing.
Registered registerPair(const std::string& type) {
  Registered r;
  r.empty = std::make_shared<ScriptedCodec>(type + ".empty", false, MCDictionary{{"from", MCValue("empty")}});
  r.giving = std::make_shared<ScriptedCodec>(type + ".giving", true, MCDictionary{{"from", MCValue("giving")}});
  MCImageCodecManager::sharedInstance().registerSourceExtension(r.empty, type);
  MCImageCodecManager::sharedInstance().registerSourceExtension(r.giving, type);
  return r;
}

fs::path scratchFile(const std::string& name) {
  fs::path dir = fs::path(VESPERON_TEST_BINARY_DIR) / ("reader-" + std::to_string(getpid()));
  fs::create_directories(dir);
  std::ofstream(dir / name) << "bytes";
  return dir / name;
}

}  // namespace

TEST(ImageReader, FallsThroughToTheExtensionThatGivesAnImage) {
  auto codecs = registerPair("org.vesperon.test.fallthrough");
  fs::path file = scratchFile("a.bin");
  MCImageReadingOptions options;
  options.scaleFactor = 0.3;
  std::optional<MCDictionary> metadata;
  auto image = MCImageReader::newImageWithURL(file, std::string("org.vesperon.test.fallthrough"), options, &metadata);
  ASSERT_TRUE(image);
  EXPECT_EQ(codecs.empty->opened, 1);
  EXPECT_EQ(codecs.giving->opened, 1);
  ASSERT_TRUE(metadata);
  EXPECT_EQ(*MCDictionaryGet(*metadata, "from"), MCValue("giving"));
  EXPECT_EQ(codecs.giving->lastOptions->subsampleFactor, 2u);
  EXPECT_FALSE(codecs.giving->lastOptions->shouldAutoRotate);
  EXPECT_EQ(codecs.giving->lastOptions->rawOptions().noiseReduction, 0);

  MCThumbnailReadingOptions thumbnail;
  thumbnail.thumbnailMinPixelSize = 10;
  thumbnail.thumbnailMaxPixelSize = 90;
  std::optional<MCDictionary> thumbnailMetadata;
  ASSERT_TRUE(MCImageReader::newThumbnailWithURL(file, std::string("org.vesperon.test.fallthrough"), thumbnail,
                                                 &thumbnailMetadata));
  EXPECT_EQ(*MCDictionaryGet(*thumbnailMetadata, "from"), MCValue("giving"));
  const auto& received = *codecs.giving->lastOptions;
  EXPECT_TRUE(received.shouldAutoRotate);
  EXPECT_EQ(received.minThumbnailPixelSize, 10u);
  EXPECT_EQ(received.maxThumbnailPixelSize, 90u);
  EXPECT_EQ(received.subsampleFactor, 0u);
  EXPECT_EQ(codecs.giving->lastThumbnailOptions, thumbnail);

  // A file nobody opens: none, and the metadata place is left as it was.
  std::optional<MCDictionary> untouched = MCDictionary{{"kept", MCValue(true)}};
  EXPECT_FALSE(MCImageReader::newImageWithURL(file.parent_path() / "missing.bin",
                                              std::string("org.vesperon.test.fallthrough"), options, &untouched));
  EXPECT_TRUE(MCDictionaryGet(*untouched, "kept"));
  fs::remove_all(file.parent_path());
}

TEST(ImageReader, RefusesWithoutTypeOptionsOrExtensions) {
  auto codecs = registerPair("org.vesperon.test.refusal");
  fs::path file = scratchFile("b.bin");
  EXPECT_FALSE(MCImageReader::newImageWithURL(file, std::string("org.vesperon.test.refusal"), std::nullopt, nullptr));
  EXPECT_FALSE(MCImageReader::newImageWithURL({}, std::string("org.vesperon.test.refusal"), MCImageReadingOptions{}, nullptr));
  EXPECT_EQ(codecs.empty->opened, 0);

  // A type no extension serves: nothing is opened.
  EXPECT_FALSE(MCImageReader::newImageWithURL(file, std::string("org.vesperon.test.unserved"), MCImageReadingOptions{}, nullptr));
  EXPECT_FALSE(MCImageReader::newThumbnailWithURL(file, std::string("org.vesperon.test.unserved"),
                                                  MCThumbnailReadingOptions{}, nullptr));
  // Without a type, the file's own (here "public.data", which nothing reads) decides.
  EXPECT_FALSE(MCImageReader::newImageWithURL(file, std::nullopt, MCImageReadingOptions{}, nullptr));
  EXPECT_FALSE(MCImageReader::metadataFromImageAtURL(file, std::nullopt));
  EXPECT_FALSE(MCImageReader::metadataFromImageAtURL(file.parent_path() / "gone.jpg", std::nullopt));
  fs::remove_all(file.parent_path());
}

TEST(ImageReader, MetadataComesFromTheFirstSourceWithEntries) {
  // Typed by extension: register against the type the file system gives ".x3f".
  auto empty = std::make_shared<ScriptedCodec>("md.empty", false, MCDictionary{});
  auto full = std::make_shared<ScriptedCodec>("md.full", false, MCDictionary{{"n", MCValue(1)}});
  MCImageCodecManager::sharedInstance().registerSourceExtension(empty, "com.sigma.raw-image");
  MCImageCodecManager::sharedInstance().registerSourceExtension(full, "com.sigma.raw-image");
  fs::path file = scratchFile("c.x3f");
  auto metadata = MCImageReader::metadataFromImageAtURL(file, std::nullopt);
  ASSERT_TRUE(metadata);
  EXPECT_EQ(*MCDictionaryGet(*metadata, "n"), MCValue(1));
  EXPECT_EQ(full->opened, 1);
  fs::remove_all(file.parent_path());
}

TEST(ImageReader, ScaleFactorsBecomeSubsampleFactors) {
  const std::pair<double, uint64_t> rows[] = {{0.5000001, 1}, {0.5, 2}, {0.25, 4}, {0.125, 8}, {0.01, 8}, {0, 0}, {-1, 0}};
  for (auto [scale, factor] : rows) EXPECT_EQ(MCImageReader::subsampleFactorForScaleFactor(scale), factor) << scale;
}

TEST(ImageReader, RawOptionsTakeOnlyValidValues) {
  // The reader starts from the record's defaults (checked in the options' own test) but with no
  // noise reduction; default reading options then bring demosaic, gamma and threshold to 0.
  MCRAWImageSourceOptions start;
  start.noiseReduction = 0;
  EXPECT_EQ(MCImageReader::rawSourceOptionsForReadingOptions(std::nullopt), start);
  MCRAWImageSourceOptions defaults = start;
  defaults.demosaic = defaults.outputGamma = 0;
  defaults.autoBrightnessThreshold = 0;
  EXPECT_EQ(MCImageReader::rawSourceOptionsForReadingOptions(MCImageReadingOptions{}), defaults);

  MCImageReadingOptions options;
  for (int32_t d : {5, 10, 12, -2}) {
    options.rawDemosaic = d;
    EXPECT_EQ(MCImageReader::rawSourceOptionsForReadingOptions(options).demosaic, -1) << d;
  }
  options.rawDemosaic = 11;
  options.rawOutputColorDepth = 12;
  options.rawOutputColorSpace = 2;
  options.rawOutputGamma = 3;
  options.rawNoiseReduction = 2;
  options.rawAutoWhiteBalance = 1;
  options.rawAutoBrightness = true;
  options.rawAutoBrightnessThresholdInPercent = 5;
  auto raw = MCImageReader::rawSourceOptionsForReadingOptions(options);
  EXPECT_EQ(raw.demosaic, 11);
  EXPECT_EQ(raw.outputColorDepth, 8);
  EXPECT_EQ(raw.outputColorSpace, 2);
  EXPECT_EQ(raw.outputGamma, 2);
  EXPECT_EQ(raw.noiseReduction, 2);
  EXPECT_TRUE(raw.cameraWhiteBalance);
  EXPECT_FALSE(raw.autoWhiteBalance);
  EXPECT_TRUE(raw.autoBrightness);
  EXPECT_DOUBLE_EQ(raw.autoBrightnessThreshold, 0.05);
  options.rawAutoWhiteBalance = 2;
  EXPECT_TRUE(MCImageReader::rawSourceOptionsForReadingOptions(options).autoWhiteBalance);
}
