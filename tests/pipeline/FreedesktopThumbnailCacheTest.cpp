// The desktop's shared thumbnail cache: entries as the freedesktop standard names and checks them,
// written so that no reader sees half a file, and taken by the thumbnail strategy before a decode.

#include "PipelineTestFiles.h"

#include <vesperon/pipeline/MCFreedesktopThumbnailCache.h>
#include <vesperon/pipeline/MCThumbnailLoadOptions.h>
#include <vesperon/pixels/MCImageFiles.h>
#include <vesperon/pixels/MCPNGChunks.h>

#include <fcntl.h>
#include <glib.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utime.h>

#include <chrono>
#include <fstream>
#include <future>
#include <iterator>

namespace fs = std::filesystem;

namespace {

// This program's own $XDG_CACHE_HOME, set before anything reads it: the strategy uses the default
// cache, which must never be the user's.
const fs::path& testCacheHome() {
  static const fs::path home = [] {
    fs::path path = fs::path(VESPERON_TEST_BINARY_DIR) / ("xdg-cache-" + std::to_string(::getpid()));
    setenv("XDG_CACHE_HOME", path.c_str(), 1);
    return path;
  }();
  return home;
}
[[maybe_unused]] const fs::path& kTestCacheHome = testCacheHome();

MCRasterImageRef solid(std::size_t width, std::size_t height, std::array<uint8_t, 3> rgb) {
  std::vector<uint8_t> pixels;
  for (std::size_t i = 0; i < width * height; ++i) pixels.insert(pixels.end(), {rgb[0], rgb[1], rgb[2], 255});
  return MCRasterImage::createRGBA8(width, height, std::move(pixels));
}

std::string md5(const std::string& text) {
  gchar* sum = g_compute_checksum_for_string(G_CHECKSUM_MD5, text.c_str(), -1);
  std::string out = sum;
  g_free(sum);
  return out;
}

void setModificationTime(const fs::path& file, time_t seconds) {
  struct utimbuf times {seconds, seconds};
  ::utime(file.c_str(), &times);
}

}  // namespace

TEST(FreedesktopThumbnailCache, EntriesAreNamedAndCheckedAsTheStandardSays) {
  PipelineTestFolder folder("shared-entries");
  const fs::path photo = folder.jpeg("my photo.jpg", 64, 48, kRed);
  setModificationTime(photo, 1700000000);
  MCFreedesktopThumbnailCache cache(folder.path() / "thumbnails");

  const std::string uri = MCFreedesktopThumbnailCache::uriOfFile(photo);
  EXPECT_EQ(uri, "file://" + folder.path().string() + "/my%20photo.jpg");
  EXPECT_STREQ(MCFreedesktopThumbnailCache::folderForPixelSize(128), "normal");
  EXPECT_STREQ(MCFreedesktopThumbnailCache::folderForPixelSize(129), "large");
  EXPECT_STREQ(MCFreedesktopThumbnailCache::folderForPixelSize(512), "x-large");
  EXPECT_STREQ(MCFreedesktopThumbnailCache::folderForPixelSize(5000), "xx-large");

  ASSERT_TRUE(cache.writeThumbnailForFile(photo, solid(200, 150, kBlue)));
  const fs::path entry = folder.path() / "thumbnails" / "large" / (md5(uri) + ".png");
  ASSERT_TRUE(fs::exists(entry));
  struct stat st {};
  ASSERT_EQ(::stat(entry.c_str(), &st), 0);
  EXPECT_EQ(st.st_mode & 0777, 0600u);
  ASSERT_EQ(::stat(entry.parent_path().c_str(), &st), 0);
  EXPECT_EQ(st.st_mode & 0777, 0700u);
  for (const auto& item : fs::directory_iterator(entry.parent_path())) EXPECT_EQ(item.path().extension(), ".png");
  std::ifstream in(entry, std::ios::binary);
  const MCData bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
  auto chunks = mc_detail::MCPNGChunks(bytes.data(), bytes.size());
  ASSERT_TRUE(chunks);
  const auto texts = mc_detail::MCPNGTextEntries(*chunks);
  EXPECT_NE(std::find(texts.begin(), texts.end(), std::pair<std::string, std::string>{"Thumb::URI", uri}), texts.end());
  EXPECT_NE(std::find(texts.begin(), texts.end(), std::pair<std::string, std::string>{"Thumb::MTime", "1700000000"}),
            texts.end());

  // Read back for any size its folder holds; a larger entry is fitted; a smaller one is not enough.
  auto back = cache.thumbnailForFile(photo, 256);
  ASSERT_TRUE(back);
  EXPECT_EQ(back->width(), 200u);
  EXPECT_TRUE(centreIs(back, kBlue));
  auto fitted = cache.thumbnailForFile(photo, 100);
  ASSERT_TRUE(fitted);
  EXPECT_EQ(fitted->width(), 100u);
  EXPECT_FALSE(cache.thumbnailForFile(photo, 400)) << "no x-large entry";

  // A thumbnail in another pixel layout (premultiplied alpha first, stored little-endian, as
  // Cairo and GTK keep theirs) keeps its colours in the entry.
  std::vector<uint8_t> bgra;
  for (int i = 0; i < 200 * 150; ++i) bgra.insert(bgra.end(), {kBlue[2], kBlue[1], kBlue[0], 255});
  auto native = MCRasterImage::create(200, 150, 8, 32, 800, MCColorSpace::sRGB(),
                                      MCImageAlphaPremultipliedFirst | MCBitmapByteOrder32Little, std::move(bgra));
  ASSERT_TRUE(cache.writeThumbnailForFile(photo, native));
  EXPECT_TRUE(centreIs(cache.thumbnailForFile(photo, 256), kBlue));

  // The file changed since: the entry is stale. Another file never takes it.
  setModificationTime(photo, 1700000001);
  EXPECT_FALSE(cache.thumbnailForFile(photo, 256));
  setModificationTime(photo, 1700000000);
  const fs::path other = folder.jpeg("other.jpg", 64, 48, kGreen);
  fs::copy_file(entry, folder.path() / "thumbnails" / "large" / (md5(MCFreedesktopThumbnailCache::uriOfFile(other)) + ".png"));
  EXPECT_FALSE(cache.thumbnailForFile(other, 256)) << "its URI is the first file's";
  EXPECT_TRUE(cache.thumbnailForFile(photo, 256));

  // Failures: recorded, and stale as soon as the file changes.
  EXPECT_FALSE(cache.hasFailedForFile(other));
  ASSERT_TRUE(cache.writeFailureForFile(other));
  EXPECT_TRUE(fs::exists(folder.path() / "thumbnails" / "fail" / MCFreedesktopThumbnailCache::kProgramName /
                         (md5(MCFreedesktopThumbnailCache::uriOfFile(other)) + ".png")));
  EXPECT_TRUE(cache.hasFailedForFile(other));
  setModificationTime(other, 1600000000);
  EXPECT_FALSE(cache.hasFailedForFile(other));
  // A damaged entry is no entry.
  std::ofstream(entry, std::ios::binary | std::ios::trunc) << "\x89PNG\r\n\x1a\n broken";
  EXPECT_FALSE(cache.thumbnailForFile(photo, 256));
}

// An entry keeps every pixel of the thumbnail: an opaque one exactly, a translucent one with its
// alpha exact and its colours as far as premultiplying keeps them, read back by the PNG decoder.
TEST(FreedesktopThumbnailCache, EntriesKeepEveryPixelAndTheirTransparency) {
  PipelineTestFolder folder("shared-pixels");
  const fs::path photo = folder.jpeg("pixels.jpg", 64, 48, kRed);
  MCFreedesktopThumbnailCache cache(folder.path() / "thumbnails");
  const fs::path entry =
      folder.path() / "thumbnails" / "large" / (md5(MCFreedesktopThumbnailCache::uriOfFile(photo)) + ".png");
  for (const bool translucent : {false, true}) {
    SCOPED_TRACE(translucent ? "translucent" : "opaque");
    const std::size_t width = 181, height = 137;  // odd sizes: no row lines up by chance
    // Straight colours and their alpha; the image holds them premultiplied.
    std::vector<uint8_t> pixels, premultiplied;
    for (std::size_t y = 0; y < height; ++y)
      for (std::size_t x = 0; x < width; ++x) {
        const uint8_t a = uint8_t(translucent ? 64 + (x + y) % 192 : 255);
        const uint8_t straight[3] = {uint8_t(x * 7 + y), uint8_t(y * 3), uint8_t((x * y) % 251)};
        pixels.insert(pixels.end(), {straight[0], straight[1], straight[2], a});
        for (uint8_t c : straight) premultiplied.push_back(uint8_t((c * a + 127) / 255));
        premultiplied.push_back(a);
      }
    const auto image = MCRasterImage::createRGBA8(width, height, premultiplied);
    ASSERT_TRUE(cache.writeThumbnailForFile(photo, image));
    auto read = MCCreateImageWithURL(entry);
    ASSERT_TRUE(read);
    ASSERT_EQ(read->width(), width);
    ASSERT_EQ(read->height(), height);
    const std::size_t step = read->bitsPerPixel() / 8;
    // The decoder may hand the pixels back premultiplied or not; compared in the same form.
    const bool readPremultiplied = read->alphaInfo() == MCImageAlphaPremultipliedLast;
    int worst = 0;
    for (std::size_t y = 0; y < height; ++y)
      for (std::size_t x = 0; x < width; ++x) {
        const uint8_t* want = (readPremultiplied ? premultiplied : pixels).data() + (y * width + x) * 4;
        const uint8_t* got = read->row(y) + x * step;
        if (step == 4) {
          EXPECT_EQ(got[3], want[3]) << x << "," << y;
        }
        for (int c = 0; c < 3; ++c) worst = std::max(worst, std::abs(int(got[c]) - int(want[c])));
      }
    // Premultiplied by an alpha of 64 or more, a straight channel comes back within 255 / 64 / 2.
    EXPECT_LE(worst, translucent ? 2 : 0) << (readPremultiplied ? "premultiplied" : "straight");
  }
}

TEST(FreedesktopThumbnailCache, TextAfterTheImageDataCountsAndOnlyRegularFilesAreRead) {
  PipelineTestFolder folder("shared-layouts");
  const fs::path photo = folder.jpeg("photo.jpg", 64, 48, kRed);
  setModificationTime(photo, 1700000000);
  MCFreedesktopThumbnailCache cache(folder.path() / "thumbnails");
  const std::string uri = MCFreedesktopThumbnailCache::uriOfFile(photo);
  const fs::path entry = folder.path() / "thumbnails" / "normal" / (md5(uri) + ".png");
  ASSERT_TRUE(cache.writeThumbnailForFile(photo, solid(100, 75, kBlue)));

  // The entry laid out as ImageMagick writes it: the text chunks between the last IDAT and IEND.
  std::ifstream in(entry, std::ios::binary);
  const MCData bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
  in.close();
  auto chunks = mc_detail::MCPNGChunks(bytes.data(), bytes.size());
  ASSERT_TRUE(chunks);
  MCData texts, images, end;
  MCData moved(bytes.begin(), bytes.begin() + 8);
  for (const auto& chunk : *chunks) {
    MCData& to = chunk.type == "tEXt" ? texts : chunk.type == "IEND" ? end : moved;
    to.insert(to.end(), bytes.begin() + std::ptrdiff_t(chunk.offset),
              bytes.begin() + std::ptrdiff_t(chunk.offset + chunk.wholeSize()));
  }
  ASSERT_FALSE(texts.empty());
  moved.insert(moved.end(), texts.begin(), texts.end());
  moved.insert(moved.end(), end.begin(), end.end());
  std::ofstream(entry, std::ios::binary | std::ios::trunc).write(reinterpret_cast<const char*>(moved.data()),
                                                                  std::streamsize(moved.size()));
  auto reordered = mc_detail::MCPNGChunks(moved.data(), moved.size());
  ASSERT_TRUE(reordered);
  std::vector<std::string> order;
  for (const auto& chunk : *reordered) order.push_back(chunk.type);
  ASSERT_LT(std::find(order.begin(), order.end(), "IDAT"), std::find(order.begin(), order.end(), "tEXt"));
  EXPECT_TRUE(centreIs(cache.thumbnailForFile(photo, 128), kBlue)) << "the entry with its text after the image";
  // Still checked: the same layout for a changed file is stale.
  setModificationTime(photo, 1700000005);
  EXPECT_FALSE(cache.thumbnailForFile(photo, 128));
  setModificationTime(photo, 1700000000);

  // A FIFO or a folder at the entry's name is no entry; the FIFO must not block the reader. Should
  // it block, a writer is opened after a while to let the reader go, and the test fails.
  fs::remove(entry);
  ASSERT_EQ(::mkfifo(entry.c_str(), 0600), 0);
  const fs::path failure = folder.path() / "thumbnails" / "fail" / MCFreedesktopThumbnailCache::kProgramName /
                           (md5(uri) + ".png");
  fs::create_directories(failure.parent_path());
  ASSERT_EQ(::mkfifo(failure.c_str(), 0600), 0);
  auto read = std::async(std::launch::async, [&] {
    return std::make_pair(cache.thumbnailForFile(photo, 128) != nullptr, cache.hasFailedForFile(photo));
  });
  if (read.wait_for(std::chrono::seconds(5)) != std::future_status::ready) {
    ADD_FAILURE() << "reading a FIFO in the shared cache blocked";
    while (read.wait_for(std::chrono::milliseconds(100)) != std::future_status::ready)
      for (const fs::path& fifo : {entry, failure}) {
        const int fd = ::open(fifo.c_str(), O_WRONLY | O_NONBLOCK);
        if (fd >= 0) ::close(fd);
      }
  }
  EXPECT_EQ(read.get(), std::make_pair(false, false));
  fs::remove(entry);
  fs::create_directories(entry);
  EXPECT_FALSE(cache.thumbnailForFile(photo, 128));
}

TEST(FreedesktopThumbnailCache, TheStrategyTakesASharedEntryBeforeDecoding) {
  PipelineTestFolder folder("shared-strategy");
  const fs::path photo = folder.jpeg("photo.jpg", 400, 300, kRed);
  MCFreedesktopThumbnailCache shared;  // the default cache: this program's own $XDG_CACHE_HOME
  EXPECT_EQ(shared.root(), testCacheHome() / "thumbnails");
  ASSERT_TRUE(shared.writeThumbnailForFile(photo, solid(256, 192, kBlue)));

  MCThumbnailLoadStrategy strategy;
  MCImageDescriptor descriptor(photo);
  descriptor.typeIdentifier = "public.jpeg";
  MCThumbnailLoadOptions options;
  options.setThumbnailMaxPixelSize(200);
  EXPECT_TRUE(centreIs(strategy.newThumbnailForImageDescriptor(descriptor, options), kBlue)) << "the shared entry";
  options.setReadsSharedThumbnails(false);
  EXPECT_TRUE(centreIs(strategy.newThumbnailForImageDescriptor(descriptor, options), kRed)) << "the file itself";
  options.setReadsSharedThumbnails(true);
  options.setCreateThumbnailFromImageAlways(true);
  EXPECT_TRUE(centreIs(strategy.newThumbnailForImageDescriptor(descriptor, options), kRed)) << "from the image, always";
  options.setCreateThumbnailFromImageAlways(false);
  options.setThumbnailMaxPixelSize(300);
  EXPECT_TRUE(centreIs(strategy.newThumbnailForImageDescriptor(descriptor, options), kRed))
      << "a 256 entry does not reach 300";

  // A file this library failed on, unchanged since: nothing is made, nothing decoded.
  const fs::path failed = folder.jpeg("failed.jpg", 64, 48, kGreen);
  ASSERT_TRUE(shared.writeFailureForFile(failed));
  MCImageDescriptor failedDescriptor(failed);
  options.setThumbnailMaxPixelSize(64);
  EXPECT_FALSE(strategy.newThumbnailForImageDescriptor(failedDescriptor, options));
  options.setReadsSharedThumbnails(false);
  EXPECT_TRUE(centreIs(strategy.newThumbnailForImageDescriptor(failedDescriptor, options), kGreen));
  fs::remove_all(testCacheHome());
}
