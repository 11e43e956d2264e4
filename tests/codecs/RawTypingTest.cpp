// A camera raw file starts like a TIFF; its name says what it is, and the name decides which
// source extension reads it.

#include "../support/LogCapture.h"

#include <vesperon/codecs/MCImageCodecManager.h>
#include <vesperon/pixels/MCImageFiles.h>

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
