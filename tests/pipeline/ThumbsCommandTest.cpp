// `vesperon thumbs --cache`, run as a program: a second run answers from the persistent image
// cache, a cache file replaced by garbage is made again, and a broken image is counted as a
// failure without leaving an output file.

#include "PipelineTestFiles.h"

#include "../support/ClaimedSizeFiles.h"

#include <vesperon/pixels/MCImageFiles.h>

#include <gtest/gtest.h>

#include <fcntl.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <random>
#include <thread>
#include <fstream>
#include <string>

namespace fs = std::filesystem;

namespace {

// The summary line the program prints on standard output.
std::string thumbs(const PipelineTestFolder& folder, const std::string& out) {
  const std::string command = "'" VESPERON_TOOL "' thumbs '" + (folder.path() / "photos").string() + "' --size 32 --out '" +
                              (folder.path() / out).string() + "' --cache --cache-dir '" +
                              (folder.path() / "cache").string() + "' 2>/dev/null";
  std::string text;
  if (FILE* pipe = popen(command.c_str(), "r")) {
    char buffer[512];
    while (std::fgets(buffer, sizeof buffer, pipe)) text += buffer;
    // Not 0 also when a sanitizer reported in the program.
    if (pclose(pipe) != 0) ADD_FAILURE() << "vesperon thumbs did not exit with 0: " << command;
  }
  return text;
}

}  // namespace

TEST(VesperonThumbs, SecondRunComesFromTheImageCacheAndGarbageIsMadeAgain) {
  PipelineTestFolder folder("thumbs-command");
  fs::create_directories(folder.path() / "photos");
  folder.jpeg("photos/wide.jpg", 200, 100, {200, 30, 30});
  folder.jpeg("photos/tall.jpg", 60, 120, {30, 200, 30});
  folder.jpeg("photos/square.jpg", 80, 80, {30, 30, 200});
  std::ofstream(folder.path() / "photos" / "empty.jpg");  // zero bytes

  const std::string first = thumbs(folder, "first");
  EXPECT_NE(first.find("4 files, 1 failures"), std::string::npos) << first;
  EXPECT_NE(first.find(", 0 from the image cache"), std::string::npos) << first;
  EXPECT_FALSE(fs::exists(folder.path() / "first" / "empty.jpg")) << "no partial output for a broken image";

  const std::string second = thumbs(folder, "second");
  EXPECT_NE(second.find("4 files, 1 failures"), std::string::npos) << second;
  EXPECT_NE(second.find(", 3 from the image cache"), std::string::npos) << second;
  for (const char* name : {"wide.jpg", "tall.jpg", "square.jpg"}) {
    MCRasterImageRef cached = MCCreateImageWithURL(folder.path() / "second" / name);
    MCRasterImageRef made = MCCreateImageWithURL(folder.path() / "first" / name);
    ASSERT_TRUE(cached && made) << name;
    EXPECT_EQ(cached->width(), made->width()) << name;
    EXPECT_EQ(cached->height(), made->height()) << name;
    EXPECT_LE(std::max(cached->width(), cached->height()), 32u) << name;
  }

  // Every cached thumbnail replaced by garbage: none is served, each is made and stored again.
  for (const auto& entry : fs::recursive_directory_iterator(folder.path() / "cache"))
    if (entry.is_regular_file()) std::ofstream(entry.path(), std::ios::trunc) << "not a JPEG";
  const std::string third = thumbs(folder, "third");
  EXPECT_NE(third.find(", 0 from the image cache"), std::string::npos) << third;
  EXPECT_TRUE(MCCreateImageWithURL(folder.path() / "third" / "wide.jpg"));
  EXPECT_NE(thumbs(folder, "fourth").find(", 3 from the image cache"), std::string::npos);
}

// Files that claim huge sizes, empty and garbage files among good ones: the run finishes, counts
// them as failures and thumbnails the rest.
TEST(VesperonThumbs, HugeClaimsAndGarbageAreFailuresAndTheRestIsMade) {
  PipelineTestFolder folder("thumbs-huge");
  fs::create_directories(folder.path() / "photos");
  auto good = folder.jpeg("photos/good.jpg", 120, 90, {200, 30, 30});
  folder.jpeg("photos/also-good.jpg", 90, 120, {30, 200, 30});
  claimed_size::writePNG(folder.path() / "photos" / "huge.png", 100000, 100000);
  ASSERT_TRUE(claimed_size::writeJPEGClaiming(good, folder.path() / "photos" / "huge.jpg", 65500, 65500));
  std::ofstream(folder.path() / "photos" / "empty.png");
  std::ofstream(folder.path() / "photos" / "garbage.jpg") << "not a JPEG at all";
  const std::string summary = thumbs(folder, "out");
  EXPECT_NE(summary.find("6 files, 4 failures"), std::string::npos) << summary;
  EXPECT_TRUE(MCCreateImageWithURL(folder.path() / "out" / "good.jpg"));
  EXPECT_TRUE(MCCreateImageWithURL(folder.path() / "out" / "also-good.jpg"));
  EXPECT_FALSE(fs::exists(folder.path() / "out" / "huge.png.jpg"));
}

// An animation whose canvas claims 11000 × 11000 pixels (121 million, within the budget) over
// frames of 320 × 240: its thumbnail is made holding the canvas once, 484 MB, where the animation
// decoder would keep two canvases of its own and hand out a third (1.45 GB at the peak).
TEST(VesperonThumbs, AnAnimationOnAHugeCanvasHoldsTheCanvasOnce) {
  PipelineTestFolder folder("thumbs-canvas");
  fs::create_directories(folder.path() / "photos");
  const fs::path red = folder.jpeg("red.jpg", 320, 240, {200, 30, 30});
  const fs::path green = folder.jpeg("green.jpg", 320, 240, {30, 200, 30});
  const fs::path animation = folder.path() / "animation.webp";
  ASSERT_EQ(std::system(("img2webp -loop 0 -d 100 '" + red.string() + "' '" + green.string() + "' -o '" +
                         animation.string() + "' >/dev/null 2>&1")
                            .c_str()),
            0)
      << "img2webp comes with the webp package (scripts/setup.sh)";
  ASSERT_TRUE(claimed_size::writeWebPClaimingCanvas(animation, folder.path() / "photos" / "canvas.webp", 11000, 11000));
  const std::string summary = thumbs(folder, "out");
  EXPECT_NE(summary.find("1 files, 0 failures"), std::string::npos) << summary;
  EXPECT_TRUE(MCCreateImageWithURL(folder.path() / "out" / "canvas.webp.jpg"));
  // A sanitizer's shadow memory multiplies what the program itself holds: the bound speaks of the
  // program alone.
#if defined(__SANITIZE_THREAD__) || defined(__SANITIZE_ADDRESS__)
  GTEST_SKIP() << "the peak of a sanitized build says nothing of the decoder's own memory";
#else
  rusage usage{};
  ASSERT_EQ(getrusage(RUSAGE_CHILDREN, &usage), 0);
  EXPECT_LT(usage.ru_maxrss, 900L * 1024) << "the peak in KB of `vesperon thumbs`";
#endif
}

// `kill -9` of a run at random moments: after the next run, the cache holds only whole files and
// no temporary, and the output folder holds only whole thumbnails.
TEST(VesperonThumbs, KilledRunsLeaveNoTornFileAndTheirTemporariesAreSwept) {
  PipelineTestFolder folder("thumbs-killed");
  fs::create_directories(folder.path() / "photos");
  for (int i = 0; i < 24; ++i)
    folder.jpeg("photos/p" + std::to_string(i) + ".jpg", 160 + i, 120, {uint8_t(10 * i), 90, 160});
  std::mt19937 random{std::random_device{}()};
  for (int round = 0; round < 6; ++round) {
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
      const int devnull = open("/dev/null", O_WRONLY);
      dup2(devnull, 1);
      dup2(devnull, 2);
      execl(VESPERON_TOOL, VESPERON_TOOL, "thumbs", (folder.path() / "photos").c_str(), "--size", "32", "--out",
            (folder.path() / "out").c_str(), "--cache-dir", (folder.path() / "cache").c_str(), nullptr);
      _exit(127);
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(random() % 60));
    kill(child, SIGKILL);
    waitpid(child, nullptr, 0);
  }
  // Two runs side by side on the one cache, then the sweep of the next.
  std::thread other([&] { thumbs(folder, "out-other"); });
  const std::string side = thumbs(folder, "out");
  other.join();
  EXPECT_NE(side.find("24 files, 0 failures"), std::string::npos) << side;
  const std::string last = thumbs(folder, "out");
  EXPECT_NE(last.find(", 24 from the image cache"), std::string::npos) << last;
  for (const auto& entry : fs::recursive_directory_iterator(folder.path() / "cache")) {
    if (!entry.is_regular_file()) continue;
    EXPECT_EQ(entry.path().extension(), ".JPG") << "left behind: " << entry.path();
    EXPECT_TRUE(MCCreateImageWithURL(entry.path())) << "torn: " << entry.path();
  }
  for (const auto& entry : fs::recursive_directory_iterator(folder.path() / "out"))
    if (entry.is_regular_file() && entry.path().extension() == ".jpg") {
      EXPECT_TRUE(MCCreateImageWithURL(entry.path())) << "torn: " << entry.path();
    }
}
