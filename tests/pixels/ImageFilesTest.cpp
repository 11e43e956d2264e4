#include <vesperon/pixels/MCImageCreation.h>
#include <vesperon/pixels/MCImageFiles.h>

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
  EXPECT_EQ(MCImageTypeOfBytes(bytes.data(), bytes.size()), "public.jpeg");

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
  std::ofstream(scratch("nothing.jpg")).close();
  const MCData empty, garbage(64, 0x42);
  EXPECT_FALSE(MCCreateImageWithURL(""));
  EXPECT_FALSE(MCCreateImageWithURL(scratch("text.jpg")));
  EXPECT_FALSE(MCCreateImageWithURL(scratch("nothing.jpg")));
  EXPECT_FALSE(MCCreateImageWithURL(scratch("missing.jpg")));
  EXPECT_FALSE(MCCreateImageWithData(nullptr));
  EXPECT_FALSE(MCCreateImageWithData(&empty));
  EXPECT_FALSE(MCCreateImageWithData(&garbage));
  const std::string text = log.text();
  const std::string prefix = "[com.quillary.vesperon, Graphics] : CGImageSource: ";
  EXPECT_NE(text.find(prefix + "URL cannot be nil\n"), std::string::npos) << text;
  EXPECT_NE(text.find(prefix + "bad status -2 at URL: " + scratch("text.jpg").string() + "\n"), std::string::npos);
  EXPECT_NE(text.find(prefix + "zero count at URL: " + scratch("nothing.jpg").string() + "\n"), std::string::npos);
  EXPECT_EQ(text.find("missing.jpg"), std::string::npos) << "an unreadable file is not reported";
  EXPECT_NE(text.find(prefix + "data cannot be nil\n"), std::string::npos);
  EXPECT_NE(text.find(prefix + "zero count.\n"), std::string::npos);
  EXPECT_NE(text.find(prefix + "bad status -2.\n"), std::string::npos);
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
