// Files whose names lie about their types, read through MCImageReader with the real plug-ins: when
// every codec of the name's type fails, the type the content shows is tried, and the mismatch is
// logged once per file however often the file is read.

#include "PlugInTestSupport.h"

#include "../support/LogCapture.h"

#include <vesperon/codecs/MCImageReader.h>
#include <vesperon/metadata/MCImagePropertyKeys.h>

#include <fstream>

namespace fs = std::filesystem;

namespace {

std::size_t occurrences(const std::string& text, const std::string& part) {
  std::size_t count = 0;
  for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + part.size())) ++count;
  return count;
}

int64_t pixelWidthOf(const std::optional<MCDictionary>& properties) {
  const MCValue* width = properties ? MCDictionaryGet(*properties, kCGImagePropertyPixelWidth) : nullptr;
  return width ? width->integerValue().value_or(-1) : -1;
}

}  // namespace

TEST(MisnamedFiles, AreReadAsTheirContentShowsAndTheMismatchIsLoggedOncePerFile) {
  LogCapture log;
  ASSERT_TRUE(log.available());
  const fs::path dir = scratchDirectory("misnamed");
  struct Case {
    const char* fixture;
    const char* name;
    const char* named;
    const char* content;
  };
  for (const Case& c : {Case{"quadrants.webp", "webp.tif", "public.tiff", "org.webmproject.webp"},
                        Case{"quadrants.heic", "heic.webp", "org.webmproject.webp", "public.heic"},
                        Case{"quadrants.png", "png.jpg", "public.jpeg", "public.png"},
                        Case{"quadrants.jpg", "jpeg.png", "public.png", "public.jpeg"}}) {
    SCOPED_TRACE(c.name);
    const fs::path file = dir / c.name;
    fs::copy_file(fixture(c.fixture), file);
    for (int round = 0; round < 2; ++round) {
      std::optional<MCDictionary> metadata;
      auto image = MCImageReader::newImageWithURL(file, std::nullopt, MCImageReadingOptions(), &metadata);
      ASSERT_TRUE(image);
      // Red, green and blue as in every quadrants fixture (the PNG's white is half transparent).
      EXPECT_TRUE(colourNear(image, 0.25, 0.25, kRed, 24));
      EXPECT_TRUE(colourNear(image, 0.75, 0.25, kGreen, 24));
      EXPECT_TRUE(colourNear(image, 0.25, 0.75, kBlue, 24));
      EXPECT_EQ(pixelWidthOf(metadata), 64) << c.name << ": the metadata of the source that gave the image";
      const auto small = thumbnailOptions(false, true, false, 0, 32);
      auto thumbnail = MCImageReader::newThumbnailWithURL(file, std::nullopt, small, nullptr);
      ASSERT_TRUE(thumbnail) << c.name;
      EXPECT_EQ(thumbnail->width(), 32u) << c.name;
      EXPECT_EQ(pixelWidthOf(MCImageReader::metadataFromImageAtURL(file, std::nullopt)), 64) << c.name;
    }
    const std::string line = std::string("The file ") + file.string() + " is named as " + c.named +
                             " but its content is " + c.content + "; read as " + c.content;
    EXPECT_EQ(occurrences(log.text(), line), 1u) << log.text();
  }

  // Content of no type a codec reads, content of the name's own type that is damaged, and a name
  // of a type no codec reads: none, and no mismatch.
  std::ofstream(dir / "text.jpg") << "not a JPEG at all";
  fs::copy_file(fixture("truncated.webp"), dir / "cut.webp");
  fs::copy_file(fixture("quadrants.jpg"), dir / "photo.txt");
  for (const char* name : {"text.jpg", "cut.webp", "photo.txt"}) {
    EXPECT_FALSE(MCImageReader::newImageWithURL(dir / name, std::nullopt, MCImageReadingOptions(), nullptr)) << name;
    const auto small = thumbnailOptions(false, true, false, 0, 32);
    EXPECT_FALSE(MCImageReader::newThumbnailWithURL(dir / name, std::nullopt, small, nullptr)) << name;
  }
  EXPECT_EQ(occurrences(log.text(), " is named as "), 4u) << log.text();
  fs::remove_all(dir);
}
