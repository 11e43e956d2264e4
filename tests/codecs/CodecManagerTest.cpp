#include <vesperon/codecs/MCDeferredImageCodec.h>
#include <vesperon/codecs/MCImageCodecManager.h>
#include <vesperon/codecs/MCImageReader.h>

#include "../support/LogCapture.h"

#include <gtest/gtest.h>

#include <dlfcn.h>
#include <sys/stat.h>

#include <filesystem>
#include <fstream>
#include <sstream>

namespace fs = std::filesystem;

namespace {

std::vector<std::string> ids(const MCImageCodecManager::ExtensionList& list) {
  std::vector<std::string> out;
  for (const auto& e : list) out.push_back(e->extensionIdentifier());
  return out;
}

// A plug-in folder with the fixture modules and the things a listing must pass over.
class CodecManagerTest : public ::testing::Test {
 protected:
  void SetUp() override {
    dir = fs::temp_directory_path() / ("vesperon-plugins-" + std::to_string(::getpid()));
    fs::remove_all(dir);
    fs::create_directories(dir / "nested.vcodec");
    fs::path fixtures = CODEC_FIXTURE_DIR;
    for (const char* name : {"test_low.vcodec", "test_high.vcodec", "test_writer.vcodec", "test_no_entry.vcodec",
                             "test_old_abi.vcodec"})
      fs::copy_file(fixtures / name, dir / name);
    fs::copy_file(fixtures / "test_low.vcodec", dir / ".hidden.vcodec");
    fs::copy_file(fixtures / "test_low.vcodec", dir / "nested.vcodec" / "inner.vcodec");
    fs::copy_file(fixtures / "test_high.vcodec", dir / "wrong-suffix.so");
    std::ofstream(dir / "garbage.vcodec") << "not a shared object";
  }
  void TearDown() override { fs::remove_all(dir); }
  fs::path dir;
};

// Whether the module at `path` is mapped into this process, without loading it.
bool isLoaded(const fs::path& path) {
  void* handle = dlopen(path.c_str(), RTLD_NOW | RTLD_NOLOAD);
  if (handle) dlclose(handle);
  return handle != nullptr;
}

bool mapsMention(const std::string& text) {
  std::ifstream maps("/proc/self/maps");
  std::stringstream all;
  all << maps.rdbuf();
  return all.str().find(text) != std::string::npos;
}

void copyWithManifest(const fs::path& from, const fs::path& to) {
  fs::copy_file(from, to);
  fs::copy_file(MCImageCodecManifest::urlForPlugInAtURL(from), MCImageCodecManifest::urlForPlugInAtURL(to));
}

}  // namespace

TEST_F(CodecManagerTest, DiscoversConformingModulesByPriority) {
  MCImageCodecManager manager;
  manager.registerPlugInsAtURL(dir);
  EXPECT_EQ(ids(manager.allSourceExtensions()), (std::vector<std::string>{"test.high", "test.low"}));
  EXPECT_EQ(ids(manager.allDestinationExtensions()), (std::vector<std::string>{"test.writer"}));
  for (const auto& e : manager.allSourceExtensions()) EXPECT_TRUE(e->isAvailableAsSource());
  EXPECT_EQ(manager.sourceImageTypes(), (std::set<std::string>{"test.grey", "test.shared"}));
  EXPECT_EQ(manager.destinationImageTypes(), (std::set<std::string>{"test.grey"}));
  ASSERT_TRUE(manager.sourceExtensionsForUTI("test.grey"));
  EXPECT_EQ(ids(*manager.sourceExtensionsForUTI("test.grey")), (std::vector<std::string>{"test.high", "test.low"}));
  EXPECT_FALSE(manager.sourceExtensionsForUTI("public.jpeg"));
  EXPECT_EQ(ids(*manager.destinationExtensionsForUTI("test.grey")), (std::vector<std::string>{"test.writer"}));

  // The list answered is a copy: a later reorder does not change it.
  auto before = *manager.sourceExtensionsForUTI("test.grey");
  manager.setPlugInsOrder({"test.low", "test.high"});
  EXPECT_EQ(ids(before), (std::vector<std::string>{"test.high", "test.low"}));
  EXPECT_EQ(ids(*manager.sourceExtensionsForUTI("test.grey")), (std::vector<std::string>{"test.low", "test.high"}));
}

TEST_F(CodecManagerTest, RegisteringTwiceDoublesEveryListAndUnregisterEmpties) {
  MCImageCodecManager manager;
  manager.registerPlugInsAtURL(dir);
  manager.registerPlugInsAtURL(dir);
  EXPECT_EQ(ids(manager.allSourceExtensions()),
            (std::vector<std::string>{"test.high", "test.high", "test.low", "test.low"}));
  EXPECT_EQ(manager.sourceExtensionsForUTI("test.shared")->size(), 4u);
  EXPECT_EQ(manager.allDestinationExtensions().size(), 2u);
  manager.unregisterPlugIns();
  // A folder that is not there, and a file given as a folder, add nothing.
  manager.registerPlugInsAtURL(dir / "does-not-exist");
  manager.registerPlugInsAtURL(dir / "nested.vcodec" / "inner.vcodec");
  EXPECT_TRUE(manager.allSourceExtensions().empty());
  EXPECT_TRUE(manager.allDestinationExtensions().empty());
  EXPECT_TRUE(manager.sourceImageTypes().empty());
  EXPECT_FALSE(manager.sourceExtensionsForUTI("test.grey"));
}

TEST_F(CodecManagerTest, OrderingOperations) {
  MCImageCodecManager manager;
  // Four source extensions from two registrations of the folder.
  manager.registerPlugInsAtURL(dir);
  manager.registerPlugInsAtURL(dir);
  manager.setPlugInsOrder({"test.low"});  // unknown identifiers sort behind
  EXPECT_EQ(ids(manager.allSourceExtensions()),
            (std::vector<std::string>{"test.low", "test.low", "test.high", "test.high"}));

  // Tag the four so moves can be followed by identity.
  auto a = manager.allSourceExtensions()[0], b = manager.allSourceExtensions()[1];
  auto c = manager.allSourceExtensions()[2], d = manager.allSourceExtensions()[3];
  MCIndexSet places = manager.movePlugInsOrderAtIndexes(MCIndexSet{1, 2}, 4);
  EXPECT_EQ(places, MCIndexSet(MCRange{2, 2}));
  EXPECT_EQ(manager.allSourceExtensions(), (MCImageCodecManager::ExtensionList{a, d, b, c}));
  // The map follows the new order.
  EXPECT_EQ(*manager.sourceExtensionsForUTI("test.grey"), (MCImageCodecManager::ExtensionList{a, d, b, c}));

  places = manager.movePlugInsOrderAtIndexes(MCIndexSet{3}, 0);
  EXPECT_EQ(places, MCIndexSet(MCRange{0, 1}));
  EXPECT_EQ(manager.allSourceExtensions(), (MCImageCodecManager::ExtensionList{c, a, d, b}));
}

TEST(MCImageSourceOptions, RawOptionsAreMadeOnFirstReadAndCopiesAreIndependent) {
  EXPECT_FALSE(MCImageSourceOptions::create(""));
  auto options = MCImageSourceOptions::create("public.jpeg");
  ASSERT_TRUE(options);
  EXPECT_EQ(options->rawOptions(), MCRAWImageSourceOptions{});
  EXPECT_EQ(options->rawOptions().demosaic, -1);
  EXPECT_EQ(options->rawOptions().noiseReduction, -1);
  EXPECT_EQ(options->rawOptions().outputGamma, 2);
  EXPECT_EQ(options->rawOptions().autoBrightnessThreshold, 0.01);
  options->rawOptions().outputColorDepth = 16;  // changed in place
  MCImageSourceOptions copy = *options;
  copy.rawOptions().outputColorDepth = 8;
  copy.subsampleFactor = 4;
  EXPECT_EQ(options->rawOptions().outputColorDepth, 16);
  EXPECT_EQ(options->subsampleFactor, 0u);
  EXPECT_EQ(copy.fileType(), "public.jpeg");
}

// A module with a manifest beside it is registered as the manifest says and opened only when a
// source is first asked of it; a manifest that is missing, stale, broken or not a regular file
// leaves the module to be loaded at once, as before.
TEST_F(CodecManagerTest, ManifestDefersLoadingUntilASourceIsAsked) {
  fs::path fixtures = CODEC_FIXTURE_DIR;
  fs::path lazy = dir / "lazy";
  fs::create_directories(lazy);
  copyWithManifest(fixtures / "test_high.vcodec", lazy / "high.vcodec");
  copyWithManifest(fixtures / "test_writer.vcodec", lazy / "writer.vcodec");
  fs::copy_file(fixtures / "test_low.vcodec", lazy / "low.vcodec");  // no manifest

  MCImageCodecManager manager;
  manager.registerPlugInsAtURL(lazy);
  EXPECT_EQ(ids(manager.allSourceExtensions()), (std::vector<std::string>{"test.high", "test.low"}));
  EXPECT_EQ(ids(manager.allDestinationExtensions()), (std::vector<std::string>{"test.writer"}));
  EXPECT_EQ(manager.sourceImageTypes(), (std::set<std::string>{"test.grey", "test.shared"}));
  EXPECT_EQ(manager.allSourceExtensions()[0]->extensionDisplayName(), "Test codec test.high");
  EXPECT_EQ(manager.allSourceExtensions()[0]->defaultPriority(), 20);
  EXPECT_TRUE(manager.allSourceExtensions()[0]->isAvailableAsSource());
  EXPECT_FALSE(isLoaded(lazy / "high.vcodec"));
  EXPECT_FALSE(isLoaded(lazy / "writer.vcodec"));
  EXPECT_TRUE(isLoaded(lazy / "low.vcodec"));

  auto high = std::dynamic_pointer_cast<MCDeferredImageCodec>(manager.allSourceExtensions()[0]);
  ASSERT_TRUE(high);
  EXPECT_FALSE(high->isLoaded());
  auto options = MCImageSourceOptions::create("test.grey");
  EXPECT_FALSE(high->imageSourceWithURL(dir / "any.grey", *options));  // the fixture opens nothing
  EXPECT_TRUE(high->isLoaded());
  EXPECT_TRUE(isLoaded(lazy / "high.vcodec"));
  ASSERT_TRUE(high->loadedCodec());
  EXPECT_EQ(high->loadedCodec()->extensionIdentifier(), "test.high");
  EXPECT_FALSE(isLoaded(lazy / "writer.vcodec"));
  manager.allDestinationExtensions()[0]->imageDestinationAtURL(dir / "out.grey", {});
  EXPECT_TRUE(isLoaded(lazy / "writer.vcodec"));

  // A manifest older than its module, one that does not parse, and a FIFO in a manifest's place.
  fs::path eager = dir / "eager";
  fs::create_directories(eager);
  copyWithManifest(fixtures / "test_high.vcodec", eager / "stale.vcodec");
  fs::last_write_time(eager / "stale.vcodec.json", fs::last_write_time(eager / "stale.vcodec") - std::chrono::hours(1));
  fs::copy_file(fixtures / "test_low.vcodec", eager / "broken.vcodec");
  std::ofstream(eager / "broken.vcodec.json") << "{\"abiVersion\": 3, \"identifier\": [";
  fs::copy_file(fixtures / "test_writer.vcodec", eager / "fifo.vcodec");
  ASSERT_EQ(::mkfifo((eager / "fifo.vcodec.json").c_str(), 0600), 0);
  MCImageCodecManager eagerManager;
  eagerManager.registerPlugInsAtURL(eager);
  EXPECT_EQ(ids(eagerManager.allSourceExtensions()), (std::vector<std::string>{"test.high", "test.low"}));
  EXPECT_EQ(ids(eagerManager.allDestinationExtensions()), (std::vector<std::string>{"test.writer"}));
  for (const char* name : {"stale.vcodec", "broken.vcodec", "fifo.vcodec"}) EXPECT_TRUE(isLoaded(eager / name)) << name;
}

// A manifest whose module then fails to load, or turns out to be another codec, gives no sources
// and says why in the log, once.
TEST_F(CodecManagerTest, DeferredModuleThatFailsToLoadGivesNoSourceAndLogs) {
  LogCapture log;
  ASSERT_TRUE(log.available());
  fs::path fixtures = CODEC_FIXTURE_DIR;
  fs::path bad = dir / "bad";
  fs::create_directories(bad);
  fs::copy_file(dir / "garbage.vcodec", bad / "garbage.vcodec");
  fs::copy_file(fixtures / "test_high.vcodec.json", bad / "garbage.vcodec.json");
  fs::copy_file(fixtures / "test_low.vcodec", bad / "impostor.vcodec");
  fs::copy_file(fixtures / "test_writer.vcodec.json", bad / "impostor.vcodec.json");

  MCImageCodecManager manager;
  manager.registerPlugInsAtURL(bad);
  ASSERT_EQ(ids(manager.allSourceExtensions()), (std::vector<std::string>{"test.high"}));
  ASSERT_EQ(ids(manager.allDestinationExtensions()), (std::vector<std::string>{"test.writer"}));
  auto options = MCImageSourceOptions::create("test.grey");
  EXPECT_FALSE(manager.allSourceExtensions()[0]->imageSourceWithURL(dir / "a.grey", *options));
  EXPECT_FALSE(manager.allSourceExtensions()[0]->imageSourceWithURL(dir / "b.grey", *options));
  EXPECT_FALSE(manager.allDestinationExtensions()[0]->imageDestinationAtURL(dir / "c.grey", {}));
  const std::string text = log.text();
  const std::string garbage = "Codec plug-in " + (bad / "garbage.vcodec").string() + " could not be loaded: ";
  EXPECT_NE(text.find(garbage), std::string::npos) << text;
  EXPECT_EQ(text.find(garbage), text.rfind(garbage)) << "logged more than once: " << text;
  EXPECT_NE(text.find("impostor.vcodec could not be loaded: it is test.low, not test.writer as its manifest says"),
            std::string::npos)
      << text;
}

// The shared registry lists every built-in plug-in, but reading a JPEG maps none of the libraries
// of the video, raw and HEIF plug-ins; reading a HEIC then brings libheif in.
TEST(CodecManagerStartup, SharedInstanceLoadsOnlyThePlugInsItUses) {
  auto& manager = MCImageCodecManager::sharedInstance();
  std::set<std::string> identifiers;
  for (const auto& e : manager.allSourceExtensions()) identifiers.insert(e->extensionIdentifier());
  for (const char* id : {"org.vesperon.codec.jpeg", "org.vesperon.codec.png", "org.vesperon.codec.tiff",
                         "org.vesperon.codec.webp", "org.vesperon.codec.heif", "org.vesperon.codec.raw",
                         "org.vesperon.codec.video"})
    EXPECT_TRUE(identifiers.count(id)) << id;
  fs::path samples = VESPERON_SAMPLES_DIR;
  EXPECT_TRUE(MCImageReader::newImageWithURL(samples / "beach.jpg", std::nullopt, MCImageReadingOptions{}, nullptr));
  for (const char* library : {"libavformat", "libavcodec", "libraw", "libheif", "libtiff", "video.vcodec", "heif.vcodec"})
    EXPECT_FALSE(mapsMention(library)) << library << " is loaded after reading one JPEG";
  EXPECT_TRUE(MCImageReader::newImageWithURL(samples / "market-phone.heic", std::nullopt, MCImageReadingOptions{}, nullptr));
  EXPECT_TRUE(mapsMention("libheif"));
}
