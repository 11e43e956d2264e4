#include <vesperon/pixels/MCImageCreation.h>
#include <vesperon/pixels/MCImageFiles.h>
#include <vesperon/platform/MCUniformTypeIdentifiers.h>

#include <gtest/gtest.h>

#include "../support/LogCapture.h"

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <unistd.h>

namespace {

std::filesystem::path scratch(const std::string& name) {
  const auto folder = std::filesystem::temp_directory_path() / ("vesperon-files-" + std::to_string(::getpid()));
  return folder / name;
}

// Left half red, right half blue, 16 × 8, opaque.
MCRasterImageRef halves() {
  std::vector<uint8_t> pixels;
  for (std::size_t i = 0; i < 16 * 8; ++i)
    pixels.insert(pixels.end(), {uint8_t(i % 16 < 8 ? 220 : 10), 20, uint8_t(i % 16 < 8 ? 30 : 230), 255});
  return MCRasterImage::createRGBA8(16, 8, std::move(pixels));
}

MCData bytesOf(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  return MCData(std::istreambuf_iterator<char>(file), {});
}

// The first channel at (x, y), whatever the layout's first colour byte is.
int redAt(const MCRasterImage& image, std::size_t x, std::size_t y) {
  const std::size_t pixelBytes = image.bitsPerPixel() / 8;
  const bool first = image.alphaInfo() == MCImageAlphaNoneSkipFirst || image.alphaInfo() == MCImageAlphaPremultipliedFirst ||
                     image.alphaInfo() == MCImageAlphaFirst;
  return image.row(y)[x * pixelBytes + (first ? 1 : 0)];
}

class ImageFiles : public ::testing::Test {
 protected:
  void TearDown() override { std::filesystem::remove_all(scratch("")); }
};

}  // namespace

TEST_F(ImageFiles, SavesJPEGAndReadsItBack) {
  const auto url = scratch("a/b/c/picture.jpg");
  ASSERT_TRUE(MCSaveImageToURL(halves(), url)) << "the parent folders are made";
  const MCData bytes = bytesOf(url);
  ASSERT_GT(bytes.size(), 4u);
  EXPECT_EQ(MCTypeIdentifierForBytes(bytes.data(), bytes.size()), "public.jpeg");

  auto image = MCCreateImageWithURL(url);
  ASSERT_TRUE(image);
  EXPECT_EQ(image->width(), 16u);
  EXPECT_EQ(image->height(), 8u);
  EXPECT_NEAR(redAt(*image, 2, 4), 220, 12);
  EXPECT_NEAR(redAt(*image, 13, 4), 10, 12);

  auto fromData = MCCreateImageWithData(&bytes);
  ASSERT_TRUE(fromData);
  EXPECT_EQ(fromData->pixels(), image->pixels());

  // A 16-bit image is written through an 8-bit copy.
  auto wide = MCCreateImageFromImage(halves(), 16, 8, 16, MCColorSpace::sRGB(), MCImageAlphaPremultipliedLast);
  ASSERT_TRUE(wide);
  ASSERT_TRUE(MCSaveImageToURL(wide, scratch("wide.jpg")));
  auto wideBack = MCCreateImageWithURL(scratch("wide.jpg"));
  ASSERT_TRUE(wideBack);
  EXPECT_NEAR(redAt(*wideBack, 2, 4), 220, 12);
}

TEST_F(ImageFiles, BadInputGivesNoneAndAReport) {
  LogCapture log;
  ASSERT_TRUE(log.available()) << "no log file";
  std::filesystem::create_directories(scratch(""));
  std::ofstream(scratch("text.jpg")) << "plain text, not an image";
  std::ofstream(scratch("notes.vesperon-unknown")) << "plain text, not an image";
  std::ofstream(scratch("nothing.jpg")).close();
  const MCData empty, garbage(64, 0x42);
  EXPECT_FALSE(MCCreateImageWithURL(""));
  EXPECT_FALSE(MCCreateImageWithURL(scratch("text.jpg")));
  EXPECT_FALSE(MCCreateImageWithURL(scratch("notes.vesperon-unknown")));
  EXPECT_FALSE(MCCreateImageWithURL(scratch("nothing.jpg")));
  EXPECT_FALSE(MCCreateImageWithURL(scratch("missing.jpg")));
  EXPECT_FALSE(MCCreateImageWithData(nullptr));
  EXPECT_FALSE(MCCreateImageWithData(&empty));
  EXPECT_FALSE(MCCreateImageWithData(&garbage));
  const std::string text = log.text();
  const std::string prefix = "[com.quillary.vesperon, Graphics] : CGImageSource: ";
  EXPECT_NE(text.find(prefix + "URL cannot be nil\n"), std::string::npos) << text;
  // Named a JPEG, and the JPEG source cannot open it: invalid data. Nothing reads its type at all:
  // unknown type. The platform's numbers.
  EXPECT_NE(text.find(prefix + "bad status -4 at URL: " + scratch("text.jpg").string() + "\n"), std::string::npos);
  EXPECT_NE(text.find(prefix + "bad status -3 at URL: " + scratch("notes.vesperon-unknown").string() + "\n"),
            std::string::npos)
      << text;
  EXPECT_NE(text.find(prefix + "zero count at URL: " + scratch("nothing.jpg").string() + "\n"), std::string::npos);
  EXPECT_EQ(text.find("missing.jpg"), std::string::npos) << "an unreadable file is not reported";
  EXPECT_NE(text.find(prefix + "data cannot be nil\n"), std::string::npos);
  EXPECT_NE(text.find(prefix + "zero count.\n"), std::string::npos);
  EXPECT_NE(text.find(prefix + "bad status -3.\n"), std::string::npos);
  // Bytes that show a JPEG but are not one: invalid data.
  MCData fakeJPEG = {0xFF, 0xD8, 0xFF, 0xE0, 0x00, 0x02, 0x42, 0x42};
  EXPECT_FALSE(MCCreateImageWithData(&fakeJPEG));
  EXPECT_NE(log.text().find(prefix + "bad status -4.\n"), std::string::npos) << log.text();
}

TEST_F(ImageFiles, TheNameGivesTheTypeAndTheContentComesSecond) {
  ASSERT_TRUE(MCSaveImageToURL(halves(), scratch("halves.jpg")));
  const MCData jpeg = bytesOf(scratch("halves.jpg"));
  // A JPEG saved under a PNG name opens: the PNG source refuses it, and the content's type comes next.
  std::ofstream(scratch("really-a-jpeg.png"), std::ios::binary)
      .write(reinterpret_cast<const char*>(jpeg.data()), std::streamsize(jpeg.size()));
  auto misnamed = MCCreateImageWithURL(scratch("really-a-jpeg.png"));
  ASSERT_TRUE(misnamed);
  EXPECT_EQ(misnamed->width(), 16u);
  // First bytes of raw formats that have a signature of their own, and of the ISO brands.
  auto typeOf = [](const std::string& bytes) {
    return MCTypeIdentifierForBytes(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size()).value_or("");
  };
  EXPECT_EQ(typeOf(std::string("II*\0\x10\0\0\0CR\x02\0", 12)), "com.canon.cr2-raw-image");
  EXPECT_EQ(typeOf(std::string("II*\0\x08\0\0\0\0\0\0\0", 12)), "public.tiff");
  EXPECT_EQ(typeOf("FUJIFILMCCD-RAW 0201"), "com.fuji.raw-image");
  EXPECT_EQ(typeOf("IIRO\x08\0\0\0"), "com.olympus.raw-image");
  EXPECT_EQ(typeOf(std::string("IIU\0\x08\0\0\0", 8)), "com.panasonic.rw2-raw-image");
  EXPECT_EQ(typeOf(std::string("\0\0\0\x18" "ftypcrx \0\0\0\x01", 16)), "com.canon.cr3-raw-image");
  EXPECT_EQ(typeOf(std::string("\0\0\0\x20" "ftypisom\0\0\x02\0", 16)), "public.mpeg-4");
  EXPECT_EQ(typeOf(std::string("\0\0\0\x14" "ftypqt  \0\0\0\0", 16)), "com.apple.quicktime-movie");
  EXPECT_EQ(typeOf(std::string("\0\0\0\x1c" "ftypavif\0\0\0\0", 16)), "public.avif");
  EXPECT_EQ(typeOf("IIxx"), "");
}

TEST_F(ImageFiles, BytesInMemoryAreReadWhereTheyAre) {
  ASSERT_TRUE(MCSaveImageToURL(halves(), scratch("memory.jpg")));
  const MCData jpeg = bytesOf(scratch("memory.jpg"));
  // With the temporary folder gone, nothing could be written on the way: the image still comes.
  const char* saved = std::getenv("TMPDIR");
  const std::string savedValue = saved ? saved : "";
  setenv("TMPDIR", scratch("no-such-folder").c_str(), 1);
  auto image = MCCreateImageWithData(&jpeg);
  if (saved) setenv("TMPDIR", savedValue.c_str(), 1);
  else unsetenv("TMPDIR");
  ASSERT_TRUE(image);
  EXPECT_EQ(image->width(), 16u);
  EXPECT_FALSE(std::filesystem::exists(scratch("no-such-folder")));
}

TEST_F(ImageFiles, CutFilesAndUnwritablePlaces) {
  // A JPEG cut short after its header.
  ASSERT_TRUE(MCSaveImageToURL(halves(), scratch("whole.jpg")));
  MCData cut = bytesOf(scratch("whole.jpg"));
  cut.resize(cut.size() / 3);
  std::ofstream(scratch("cut.jpg"), std::ios::binary).write(reinterpret_cast<const char*>(cut.data()), std::streamsize(cut.size()));
  (void)MCCreateImageWithURL(scratch("cut.jpg"));  // none or a partial image, but no crash
  EXPECT_FALSE(MCCreateImageWithData(&cut) && MCCreateImageWithData(&cut)->width() != 16);

  EXPECT_FALSE(MCSaveImageToURL(nullptr, scratch("x.jpg")));
  EXPECT_FALSE(MCSaveImageToURL(halves(), ""));
  std::ofstream(scratch("blocker")) << "a file where a folder should be";
  std::error_code error;
  EXPECT_FALSE(MCSaveImageToURL(halves(), scratch("blocker/inside/x.jpg"), &error));
  EXPECT_TRUE(error);
}
