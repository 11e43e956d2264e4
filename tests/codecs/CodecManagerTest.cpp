#include <vesperon/codecs/MCImageCodecManager.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

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
