// A camera raw file starts like a TIFF; its name says what it is, and the name decides which
// source extension reads it.

#include "../support/LogCapture.h"

#include <vesperon/codecs/MCImageCodecManager.h>
#include <vesperon/pixels/MCImageFiles.h>
#include <vesperon/pixels/MCImageTypes.h>
#include <vesperon/platform/MCUniformTypeIdentifiers.h>

#include <gtest/gtest.h>

#include <fstream>
#include <unistd.h>

namespace fs = std::filesystem;

TEST(RawTyping, RawNamedFilesReachTheExtensionRegisteredForTheirType) {
  MCImageCodecManager::sharedInstance().registerPlugInsAtURL(RAW_PROBE_DIR);
  const fs::path folder = fs::path(VESPERON_TEST_BINARY_DIR) / ("raw-typing-" + std::to_string(::getpid()));
  fs::create_directories(folder);
  // The first bytes of a TIFF-based raw file: a little-endian TIFF header and an empty IFD.
  const std::string tiffStart("II*\0\x08\0\0\0\0\0\0\0\0\0", 14);
  for (const char* name : {"IMG_0001.CR2", "DSC_0002.NEF", "PXL_0003.dng", "plain.tif"})
    std::ofstream(folder / name, std::ios::binary) << tiffStart;

  LogCapture log;
  ASSERT_TRUE(log.available());
  for (const char* name : {"IMG_0001.CR2", "DSC_0002.NEF", "PXL_0003.dng"}) {
    auto image = MCCreateImageWithURL(folder / name);
    ASSERT_TRUE(image) << name;
    EXPECT_EQ(image->width(), 3u) << name << " did not reach the raw probe";
  }
  // The same bytes named as a TIFF are a TIFF: the raw probe is not asked.
  auto tiff = MCCreateImageWithURL(folder / "plain.tif");
  EXPECT_TRUE(!tiff || tiff->width() != 3u);
  // And bytes in memory, with no name, are typed by their content: TIFF, not raw.
  const MCData bytes(tiffStart.begin(), tiffStart.end());
  auto fromData = MCCreateImageWithData(&bytes);
  EXPECT_TRUE(!fromData || fromData->width() != 3u);
  fs::remove_all(folder);
}

// The sets of types: images and movies follow the registry at each call; the raw set is taken
// once, at its first use, and keeps what it saw then.
TEST(RawTyping, TypeSetsFollowTheRegistryExceptTheRawSetTakenOnce) {
  EXPECT_TRUE(MCIsMovieType("public.mpeg-4")) << "the video plug-in of the build";
  EXPECT_FALSE(MCIsMovieType("public.movie")) << "membership, not conformance";
  EXPECT_FALSE(MCIsMovieType(std::nullopt));
  // With no plug-in at all, the raw set is taken at its first use, and empty.
  MCImageCodecManager::sharedInstance().unregisterPlugIns();
  const std::set<std::string> rawAtFirstUse = MCRAWImageTypes();
  EXPECT_TRUE(rawAtFirstUse.empty());
  EXPECT_FALSE(MCIsImageType("com.canon.cr2-raw-image"));
  EXPECT_FALSE(MCIsMovieType("public.mpeg-4")) << "the movie set follows the registry";

  MCImageCodecManager::sharedInstance().registerPlugInsAtURL(RAW_PROBE_DIR);
  EXPECT_TRUE(MCImageTypes().count("com.canon.cr2-raw-image")) << "the image set follows the registry";
  EXPECT_TRUE(MCIsImageType("com.nikon.raw-image"));
  EXPECT_EQ(MCRAWImageTypes(), rawAtFirstUse) << "the raw set was taken once";
  EXPECT_FALSE(MCIsRAWImageType("com.canon.cr2-raw-image"));
  EXPECT_FALSE(MCIsRAWImageType(std::nullopt));
}

TEST(RawTyping, ARawSetTakenAfterTheRawPlugInHoldsItsTypes) {
  MCImageCodecManager::sharedInstance().registerPlugInsAtURL(RAW_PROBE_DIR);
  for (const char* type : {"com.adobe.raw-image", "com.canon.cr2-raw-image", "com.nikon.raw-image"})
    EXPECT_TRUE(MCRAWImageTypes().count(type)) << type;
  for (const std::string& type : MCRAWImageTypes()) EXPECT_TRUE(MCTypeConformsTo(type, "public.camera-raw-image")) << type;
  EXPECT_TRUE(MCIsRAWImageType("com.adobe.raw-image"));
  EXPECT_FALSE(MCIsRAWImageType("public.camera-raw-image")) << "membership, not conformance";
  EXPECT_FALSE(MCIsRAWImageType("public.jpeg"));
}
