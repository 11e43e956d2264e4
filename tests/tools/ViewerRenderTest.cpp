// The viewer of `vesperon browse` drawn offscreen (--open, --zoom, --render): at 1:1 its centre
// shows the photo's own centre pixels, not an enlarged thumbnail; a usage error for --zoom.

#include <vesperon/pixels/MCImageFiles.h>

#include "../support/ProgramOutcome.h"

#include <gtest/gtest.h>

#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <string>

namespace fs = std::filesystem;

namespace {

ProgramOutcome vesperon(const std::string& arguments, const fs::path& home) {
  return ProgramOutcome::run("XDG_CONFIG_HOME='" + (home / "config").string() + "' XDG_CACHE_HOME='" +
                             (home / "cache").string() + "' timeout -k 5 120 '" VESPERON_TOOL "' " + arguments);
}

// The largest difference of any colour channel between a patch of `a` around (ax, ay) and the
// same patch of `b` around (bx, by).
int patchDifference(const MCRasterImage& a, long ax, long ay, const MCRasterImage& b, long bx, long by, long half) {
  const std::size_t sa = a.bitsPerPixel() / 8, sb = b.bitsPerPixel() / 8;
  int worst = 0;
  for (long dy = -half; dy < half; ++dy)
    for (long dx = -half; dx < half; ++dx) {
      const uint8_t* pa = a.row(std::size_t(ay + dy)) + std::size_t(ax + dx) * sa;
      const uint8_t* pb = b.row(std::size_t(by + dy)) + std::size_t(bx + dx) * sb;
      for (int c = 0; c < 3; ++c) worst = std::max(worst, std::abs(int(pa[c]) - int(pb[c])));
    }
  return worst;
}

}  // namespace

TEST(ViewerRender, OneToOneShowsThePhotosOwnPixels) {
  const fs::path home = fs::temp_directory_path() / ("vesperon-viewer-" + std::to_string(::getpid()));
  fs::remove_all(home);
  fs::create_directories(home / "photos");
  // Fine detail that no enlarged thumbnail keeps: noise in every pixel.
  const fs::path photo = home / "photos" / "detail.png";
  ASSERT_EQ(std::system(("/usr/bin/convert -seed 7 -size 1600x1000 xc:gray50 +noise Random -type TrueColor '" +
                         photo.string() + "' 2>/dev/null")
                            .c_str()),
            0)
      << "ImageMagick's convert comes with the imagemagick package (scripts/setup.sh)";
  const fs::path render = home / "viewer.png";
  const ProgramOutcome outcome =
      vesperon("browse '" + (home / "photos").string() + "' --open '" + photo.string() + "' --zoom 1:1 --render '" +
                   render.string() + "' --size 640x480",
               home);
  ASSERT_EQ(outcome.status, 0) << outcome.output;
  EXPECT_NE(outcome.output.find("detail.png, 1600 × 1000 px"), std::string::npos) << outcome.output;
  EXPECT_NE(outcome.output.find(" 100%"), std::string::npos) << outcome.output;

  auto original = MCCreateImageWithURL(photo);
  auto shown = MCCreateImageWithURL(render);
  ASSERT_TRUE(original && shown);
  ASSERT_EQ(shown->width(), 640u);
  // Below the 56-point toolbar, the zoom view's centre shows the photo's centre; edges held to
  // whole pixels may move it by one.
  const long cx = 320, cy = 56 + (480 - 56) / 2;
  int best = 255;
  for (long sy = -1; sy <= 1; ++sy)
    for (long sx = -1; sx <= 1; ++sx)
      best = std::min(best, patchDifference(*shown, cx + sx, cy + sy, *original, 800, 500, 24));
  EXPECT_LE(best, 2) << "the centre at 1:1 is not the photo's own pixels";

  // --zoom without a photo to open is a usage error; a zoom that is no zoom too.
  EXPECT_EQ(vesperon("browse '" + (home / "photos").string() + "' --zoom 1:1 --render '" + render.string() + "'", home)
                .status,
            2);
  EXPECT_EQ(vesperon("browse --zoom half", home).status, 2);
  fs::remove_all(home);
}

// The information panel tells what the library reads of the photo, in the words people use.
TEST(ViewerRender, TheInformationPanelTellsWhatThePhotoIs) {
  const fs::path home = fs::temp_directory_path() / ("vesperon-viewer-info-" + std::to_string(::getpid()));
  fs::remove_all(home);
  fs::create_directories(home / "photos");
  const fs::path photo = home / "photos" / "camera.jpg";
  fs::copy_file(fs::path(VESPERON_SAMPLES_DIR) / "beach.jpg", photo);
  ASSERT_EQ(std::system(("exiftool -q -overwrite_original -Make='NIKON CORPORATION' -Model='NIKON Z 6' "
                         "-LensModel='NIKKOR Z 24-70mm f/4 S' -ExposureTime=1/250 -FNumber=5.6 -ISO=400 "
                         "-FocalLength=35 -EXIF:Flash#=1 -OffsetTimeOriginal=+10:00 '" +
                         photo.string() + "'")
                            .c_str()),
            0)
      << "exiftool comes with libimage-exiftool-perl (scripts/setup.sh)";
  const ProgramOutcome outcome = vesperon("browse '" + (home / "photos").string() + "' --open '" + photo.string() +
                                              "' --render '" + (home / "viewer.png").string() + "' --size 900x600",
                                          home);
  ASSERT_EQ(outcome.status, 0) << outcome.output;
  for (const char* row : {"  Camera: NIKON Z 6\n", "  Lens: NIKKOR Z 24-70mm f/4 S\n", "  Exposure: 1/250 s\n",
                          "  Aperture: f/5.6\n", "  ISO: 400\n", "  Focal length: 35 mm\n", "  Flash: fired\n",
                          "  Taken: 2020-08-14 15:20:05 +10:00\n", "  Position: 33.89080° S, 151.27430° E\n",
                          "  Dimensions: 1024 × 683\n"})
    EXPECT_NE(outcome.output.find(row), std::string::npos) << row << " is not in\n" << outcome.output;
  fs::remove_all(home);
}
