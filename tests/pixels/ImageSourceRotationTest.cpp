#include <vesperon/pixels/MCImageFiles.h>
#include <vesperon/pixels/MCImageSourceRotation.h>

#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include <unistd.h>

namespace {

// A JPEG skeleton: SOI, a JFIF APP0, optional extra segments, a scan with two bytes, EOI.
MCData skeleton(const MCData& extra = {}) {
  MCData jpeg = {0xFF, 0xD8, 0xFF, 0xE0, 0x00, 0x10, 'J', 'F', 'I', 'F', 0, 1, 1, 0, 0, 1, 0, 1, 0, 0};
  jpeg.insert(jpeg.end(), extra.begin(), extra.end());
  const MCData scan = {0xFF, 0xDA, 0x00, 0x02, 0x12, 0x34, 0xFF, 0xD9};
  jpeg.insert(jpeg.end(), scan.begin(), scan.end());
  return jpeg;
}

// Little-endian Exif with Make ("Acme", stored in the entry) and Software ("Tool 1.0", by offset).
MCData exifWithoutOrientation() {
  MCData tiff = {'I', 'I', 42, 0, 8, 0, 0, 0, 2, 0,
                 0x0F, 0x01, 2, 0, 4, 0, 0, 0, 'A', 'c', 'm', 'e',
                 0x31, 0x01, 2, 0, 9, 0, 0, 0, 38, 0, 0, 0,
                 0, 0, 0, 0,
                 'T', 'o', 'o', 'l', ' ', '1', '.', '0', 0};
  MCData segment = {0xFF, 0xE1, 0, 0, 'E', 'x', 'i', 'f', 0, 0};
  segment.reserve(segment.size() + tiff.size());
  for (uint8_t byte : tiff) segment.push_back(byte);
  const std::size_t length = segment.size() - 2;
  segment[2] = uint8_t(length >> 8);
  segment[3] = uint8_t(length);
  return segment;
}

// Orientation, Make and Software of each file as exiftool, an independent reader, finds them:
// one tab-separated line per file, "-" for a missing tag. One run for all, since it is slow to start.
std::vector<std::string> exiftool(const std::vector<MCData>& files, const std::string& extension = ".jpg") {
  const auto folder = std::filesystem::temp_directory_path() / ("vesperon-rotation-" + std::to_string(::getpid()));
  std::filesystem::create_directories(folder);
  std::string command = "exiftool -n -T -Orientation -Make -Software";
  for (std::size_t i = 0; i < files.size(); ++i) {
    const auto path = folder / (std::to_string(i) + extension);
    std::ofstream(path, std::ios::binary)
        .write(reinterpret_cast<const char*>(files[i].data()), std::streamsize(files[i].size()));
    command += " '" + path.string() + "'";
  }
  command += " 2>/dev/null";
  std::vector<std::string> lines;
  if (FILE* pipe = ::popen(command.c_str(), "r")) {
    char buffer[512];
    while (std::fgets(buffer, sizeof buffer, pipe)) {
      std::string line = buffer;
      while (!line.empty() && (line.back() == '\n' || line.back() == '\r')) line.pop_back();
      lines.push_back(line);
    }
    ::pclose(pipe);
  }
  std::filesystem::remove_all(folder);
  return lines;
}

}  // namespace

TEST(ImageSourceRotation, RefusesBadOrientationsAndBadFiles) {
  const MCData jpeg = skeleton();
  EXPECT_FALSE(MCCopyImageSourceWithRotation(jpeg, 0));
  EXPECT_FALSE(MCCopyImageSourceWithRotation(jpeg, 9));
  EXPECT_FALSE(MCCopyImageSourceWithRotation({0x89, 'P', 'N', 'G', 0, 0}, 3)) << "a PNG cut inside its signature";
  EXPECT_FALSE(MCCopyImageSourceWithRotation({'G', 'I', 'F', '8', '9', 'a', 0, 0}, 3)) << "no writer for GIF";
  MCData truncated(jpeg.begin(), jpeg.begin() + 12);
  EXPECT_FALSE(MCCopyImageSourceWithRotation(truncated, 3)) << "APP0 runs past the end";
  MCData badTiff = skeleton(MCData{0xFF, 0xE1, 0, 16, 'E', 'x', 'i', 'f', 0, 0, 'X', 'X', 42, 0, 8, 0, 0, 0});
  EXPECT_FALSE(MCCopyImageSourceWithRotation(badTiff, 3));
}

TEST(ImageSourceRotation, AddsAndRewritesTheOrientationKeepingTheRest) {
  const MCData plain = skeleton();
  auto rotated = MCCopyImageSourceWithRotation(plain, 6);
  ASSERT_TRUE(rotated);
  EXPECT_EQ(rotated->size(), plain.size() + 36) << "a 34-byte Exif segment and its marker";
  EXPECT_EQ((*rotated)[20], 0xFF);
  EXPECT_EQ((*rotated)[21], 0xE1) << "after the JFIF segment";
  EXPECT_TRUE(std::equal(plain.end() - 8, plain.end(), rotated->end() - 8)) << "the scan is untouched";

  // Once there, the entry is rewritten in place.
  auto again = MCCopyImageSourceWithRotation(*rotated, 3);
  ASSERT_TRUE(again);
  EXPECT_EQ(again->size(), rotated->size());

  // Exif without the entry: IFD0 grows, the other tags survive.
  const MCData tagged = skeleton(exifWithoutOrientation());
  auto added = MCCopyImageSourceWithRotation(tagged, 8);
  ASSERT_TRUE(added);

  const auto found = exiftool({*rotated, *again, tagged, *added});
  ASSERT_EQ(found.size(), 4u);
  EXPECT_EQ(found[0], "6\t-\t-");
  EXPECT_EQ(found[1], "3\t-\t-");
  EXPECT_EQ(found[2], "-\tAcme\tTool 1.0");
  EXPECT_EQ(found[3], "8\tAcme\tTool 1.0");
}

// Corrupted offsets, counts and lengths give none or a file, never a read outside the bytes.
TEST(ImageSourceRotation, SurvivesCorruptedSegments) {
  const MCData tagged = skeleton(exifWithoutOrientation());
  std::size_t answered = 0;
  for (std::size_t at = 2; at < tagged.size(); ++at)
    for (uint8_t value : {uint8_t(0x00), uint8_t(0x7F), uint8_t(0xFF)}) {
      MCData mutated = tagged;
      mutated[at] = value;
      if (auto result = MCCopyImageSourceWithRotation(mutated, 5)) {
        ++answered;
        EXPECT_GE(result->size(), mutated.size());
      }
      for (std::size_t cut : {at, tagged.size() - 1}) {
        MCData truncated(mutated.begin(), mutated.begin() + std::ptrdiff_t(cut));
        (void)MCCopyImageSourceWithRotation(truncated, 5);
      }
    }
  EXPECT_GT(answered, 0u) << "changes to tag values leave a usable file";
}

// A PNG turns through its eXIf chunk: added before the image data, then rewritten; the pixels stay
// as they were, and exiftool and the PNG plug-in both read the new orientation.
TEST(ImageSourceRotation, PNGsTurnThroughTheirExifChunk) {
  std::ifstream file(std::filesystem::path(VESPERON_SAMPLES_DIR) / "diagram.png", std::ios::binary);
  const MCData png((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
  ASSERT_GT(png.size(), 100u);
  auto turned = MCCopyImageSourceWithRotation(png, 6);
  ASSERT_TRUE(turned);
  EXPECT_EQ(turned->size(), png.size() + 12 + 26) << "one eXIf chunk of a 26-byte TIFF block";
  auto again = MCCopyImageSourceWithRotation(*turned, 8);
  ASSERT_TRUE(again);
  EXPECT_EQ(again->size(), turned->size()) << "the chunk is rewritten, not added twice";
  const auto found = exiftool({png, *turned, *again}, ".png");
  ASSERT_EQ(found.size(), 3u);
  EXPECT_EQ(found[0], "-\t-\t-");
  EXPECT_EQ(found[1], "6\t-\t-");
  EXPECT_EQ(found[2], "8\t-\t-");

  auto before = MCCreateImageWithData(&png);
  auto after = MCCreateImageWithData(&*again);
  ASSERT_TRUE(before && after);
  EXPECT_EQ(after->pixels(), before->pixels()) << "the image data is not touched";

  // A damaged chunk length is refused, never read past.
  MCData broken = png;
  broken[8 + 3] = 0x7F;  // IHDR's length
  EXPECT_FALSE(MCCopyImageSourceWithRotation(broken, 3));
  MCData cut(png.begin(), png.end() - 6);  // inside IEND
  EXPECT_FALSE(MCCopyImageSourceWithRotation(cut, 3));
}
