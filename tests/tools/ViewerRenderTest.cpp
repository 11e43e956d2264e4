// The viewer of `vesperon browse` drawn offscreen (--open, --zoom, --render): at 1:1 its centre
// shows the photo's own centre pixels, not an enlarged thumbnail; a usage error for --zoom.

#include <vesperon/pixels/MCImageFiles.h>

#include "../support/ProgramOutcome.h"

#include <gtest/gtest.h>

#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
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

// A photo smaller than the view shows at fit at its own size, not enlarged: its pixels one to one,
// centred, "100%"; a larger one still fills the view at fit.
TEST(ViewerRender, ASmallPhotoIsNotEnlargedAtFit) {
  const fs::path home = fs::temp_directory_path() / ("vesperon-viewer-small-" + std::to_string(::getpid()));
  fs::remove_all(home);
  fs::create_directories(home / "photos");
  const fs::path small = home / "photos" / "small.png", large = home / "photos" / "large.png";
  ASSERT_EQ(std::system(("/usr/bin/convert -seed 3 -size 200x120 xc:gray50 +noise Random -type TrueColor '" +
                         small.string() + "' 2>/dev/null && /usr/bin/convert -size 1600x1000 xc:red '" + large.string() +
                         "' 2>/dev/null")
                            .c_str()),
            0);
  const fs::path render = home / "viewer.png";
  ProgramOutcome outcome = vesperon("browse '" + (home / "photos").string() + "' --open '" + small.string() +
                                        "' --render '" + render.string() + "' --size 640x480",
                                    home);
  ASSERT_EQ(outcome.status, 0) << outcome.output;
  EXPECT_NE(outcome.output.find("small.png, 200 × 120 px"), std::string::npos) << outcome.output;
  EXPECT_NE(outcome.output.find(" 100%"), std::string::npos) << outcome.output;
  auto original = MCCreateImageWithURL(small);
  auto shown = MCCreateImageWithURL(render);
  ASSERT_TRUE(original && shown);
  // The zoom view's centre (below the 56-point toolbar) is the photo's centre, pixel for pixel,
  // and the view's background lies just outside the photo's 200-pixel width.
  const long cx = 320, cy = 56 + (480 - 56) / 2;
  int best = 255;
  for (long sy = -1; sy <= 1; ++sy)
    for (long sx = -1; sx <= 1; ++sx)
      best = std::min(best, patchDifference(*shown, cx + sx, cy + sy, *original, 100, 60, 20));
  EXPECT_LE(best, 2) << "the small photo is not shown at its own pixels";
  const uint8_t* outside = shown->row(std::size_t(cy)) + std::size_t(cx + 104) * (shown->bitsPerPixel() / 8);
  EXPECT_LE(std::abs(int(outside[0]) - 0x24), 2) << "the photo is wider than its own pixels";

  outcome = vesperon("browse '" + (home / "photos").string() + "' --open '" + large.string() + "' --render '" +
                         render.string() + "' --size 640x480",
                     home);
  ASSERT_EQ(outcome.status, 0) << outcome.output;
  EXPECT_NE(outcome.output.find(" 40%"), std::string::npos) << outcome.output;  // 640 of 1600 pixels
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
                          "  Dimensions: 1024 × 683\n", "  Map: geo:-33.89080,151.27430\n"})
    EXPECT_NE(outcome.output.find(row), std::string::npos) << row << " is not in\n" << outcome.output;
  fs::remove_all(home);
}

namespace {

// The peak signal-to-noise ratio in dB of the colour channels of `a` over the rectangle (x, y, w, h)
// against `b` over the same size from (bx, by).
double psnr(const MCRasterImage& a, long x, long y, const MCRasterImage& b, long bx, long by, long w, long h) {
  const std::size_t sa = a.bitsPerPixel() / 8, sb = b.bitsPerPixel() / 8;
  double squares = 0;
  for (long j = 0; j < h; ++j)
    for (long i = 0; i < w; ++i) {
      const uint8_t* pa = a.row(std::size_t(y + j)) + std::size_t(x + i) * sa;
      const uint8_t* pb = b.row(std::size_t(by + j)) + std::size_t(bx + i) * sb;
      for (int c = 0; c < 3; ++c) squares += double(pa[c] - pb[c]) * double(pa[c] - pb[c]);
    }
  const double mean = squares / double(w * h * 3);
  return mean > 0 ? 10 * std::log10(255.0 * 255.0 / mean) : 99;
}

}  // namespace

// At fit the viewer shows the photo decoded at the size of the screen, as sharp as libvips scales
// it; at 1:1 a photo stored turned (Exif orientation 6) shows its own pixels upright.
TEST(ViewerRender, FitIsAsSharpAsAReferenceScalingAndOneToOneIsUpright) {
  const fs::path home = fs::temp_directory_path() / ("vesperon-viewer-fit-" + std::to_string(::getpid()));
  fs::remove_all(home);
  fs::create_directories(home / "photos");
  // Detail at every scale, as in a photo of foliage or fine print.
  const fs::path photo = home / "photos" / "detail.png";
  ASSERT_EQ(std::system(("/usr/bin/convert -seed 3 -size 750x500 plasma:fractal -resize 3000x2000! -seed 5 "
                         "-attenuate 0.6 +noise Gaussian -type TrueColor '" + photo.string() + "' 2>/dev/null")
                            .c_str()),
            0);
  // The view is 900 × 544 under the toolbar: the photo fits as 816 × 544 from x = 42.
  const fs::path render = home / "fit.png", reference = home / "reference.png";
  const ProgramOutcome fit = vesperon("browse '" + (home / "photos").string() + "' --open '" + photo.string() +
                                          "' --zoom fit --render '" + render.string() + "' --size 900x600",
                                      home);
  ASSERT_EQ(fit.status, 0) << fit.output;
  ASSERT_EQ(std::system(("vips resize '" + photo.string() + "' '" + reference.string() + "' 0.272 2>/dev/null").c_str()), 0);
  auto shown = MCCreateImageWithURL(render);
  auto expected = MCCreateImageWithURL(reference);
  ASSERT_TRUE(shown && expected);
  ASSERT_EQ(expected->width(), 816u);
  // The left half of the photo, clear of the histogram in the bottom right corner.
  const double sharpness = psnr(*shown, 42 + 4, 56 + 4, *expected, 4, 4, 400, 536);
  EXPECT_GE(sharpness, 38) << "the fit view is blurrier than a reference scaling";
  // What an enlarged thumbnail would give, for scale: far below.
  const fs::path blurred = home / "blurred.png";
  ASSERT_EQ(std::system(("/usr/bin/convert '" + reference.string() + "' -resize 256x -resize 816x544! '" +
                         blurred.string() + "'").c_str()),
            0);
  const double thumbnailSharpness = psnr(*MCCreateImageWithURL(blurred), 4, 4, *expected, 4, 4, 400, 536);
  std::printf("fit against libvips: %.1f dB; an enlarged thumbnail: %.1f dB\n", sharpness, thumbnailSharpness);
  EXPECT_LT(thumbnailSharpness, sharpness - 6);

  // Stored a quarter turn counter-clockwise, with orientation 6 to turn it back.
  const fs::path turned = home / "photos" / "turned.jpg";
  ASSERT_EQ(std::system(("/usr/bin/convert '" + photo.string() + "' -rotate -90 -quality 95 '" + turned.string() +
                         "' && exiftool -q -overwrite_original -Orientation#=6 '" + turned.string() + "'")
                            .c_str()),
            0);
  const ProgramOutcome one = vesperon("browse '" + (home / "photos").string() + "' --open '" + turned.string() +
                                          "' --zoom 1:1 --render '" + render.string() + "' --size 900x600",
                                      home);
  ASSERT_EQ(one.status, 0) << one.output;
  EXPECT_NE(one.output.find("turned.jpg, 3000 × 2000 px"), std::string::npos) << one.output;
  auto stored = MCCreateImageWithURL(turned);  // as stored: 2000 × 3000
  shown = MCCreateImageWithURL(render);
  ASSERT_TRUE(stored && shown);
  ASSERT_EQ(stored->width(), 2000u);
  // Upright (u, v) was stored at (v, 2999 - u); the view's centre shows the upright centre.
  const long cx = 450, cy = 56 + 544 / 2;
  int best = 255;
  for (long sy = -1; sy <= 1; ++sy)
    for (long sx = -1; sx <= 1; ++sx) {
      int worst = 0;
      for (long dy = -16; dy < 16; ++dy)
        for (long dx = -16; dx < 16; ++dx) {
          const long u = 1500 + dx, v = 1000 + dy;
          const uint8_t* a = shown->row(std::size_t(cy + sy + dy)) + std::size_t(cx + sx + dx) * (shown->bitsPerPixel() / 8);
          const uint8_t* b = stored->row(std::size_t(2999 - u)) + std::size_t(v) * (stored->bitsPerPixel() / 8);
          for (int c = 0; c < 3; ++c) worst = std::max(worst, std::abs(int(a[c]) - int(b[c])));
        }
      best = std::min(best, worst);
    }
  EXPECT_LE(best, 2) << "the centre at 1:1 is not the photo's own pixels, upright";
  fs::remove_all(home);
}

// With the information panel, the histogram sits at the panel's foot and leaves the whole photo
// to be seen: a red photo is red into its bottom right corner.
TEST(ViewerRender, TheHistogramLeavesThePhotoBesideThePanel) {
  const fs::path home = fs::temp_directory_path() / ("vesperon-viewer-histogram-" + std::to_string(::getpid()));
  fs::remove_all(home);
  fs::create_directories(home / "photos");
  fs::create_directories(home / "config" / "vesperon");
  {
    std::ofstream settings(home / "config" / "vesperon" / "settings.json");
    settings << "{\"ViewerShowsInfo\": true}\n";
  }
  const fs::path photo = home / "photos" / "red.png";
  ASSERT_EQ(std::system(("/usr/bin/convert -size 3000x2000 xc:red '" + photo.string() + "'").c_str()), 0);
  const fs::path render = home / "panel.png";
  const ProgramOutcome outcome = vesperon("browse '" + (home / "photos").string() + "' --open '" + photo.string() +
                                              "' --render '" + render.string() + "' --size 900x600",
                                          home);
  ASSERT_EQ(outcome.status, 0) << outcome.output;
  auto shown = MCCreateImageWithURL(render);
  ASSERT_TRUE(shown);
  // The view beside the 280-point panel is 620 × 544 under the toolbar: the photo fits as
  // 620 × 413 from y = 121. Its bottom right corner, a few pixels in:
  const std::size_t bpp = shown->bitsPerPixel() / 8;
  for (const auto& [x, y] : {std::pair{610, 525}, std::pair{560, 500}, std::pair{10, 130}}) {
    const uint8_t* p = shown->row(std::size_t(y)) + std::size_t(x) * bpp;
    EXPECT_TRUE(p[0] > 240 && p[1] < 16 && p[2] < 16)
        << "(" << x << ", " << y << ") is " << int(p[0]) << "," << int(p[1]) << "," << int(p[2]);
  }
  fs::remove_all(home);
}
