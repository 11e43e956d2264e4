// The searchable properties that find, the filter bar and the catalogue share: a JPEG is read only
// as far as its Exif block can reach, so where that block lies must not change what is found.

#include <vesperon/catalogue/MCSearchableProperties.h>

#include <gtest/gtest.h>

#include <unistd.h>

#include <fstream>

namespace fs = std::filesystem;

namespace {

std::vector<uint8_t> bytesOf(const fs::path& file) {
  std::ifstream in(file, std::ios::binary);
  return std::vector<uint8_t>(std::istreambuf_iterator<char>(in), {});
}

void write(const fs::path& file, const std::vector<uint8_t>& bytes) {
  std::ofstream(file, std::ios::binary).write(reinterpret_cast<const char*>(bytes.data()), std::streamsize(bytes.size()));
}

// `count` APP2 segments of nearly 64 KiB each, as a large colour profile is stored.
std::vector<uint8_t> largeSegments(int count) {
  std::vector<uint8_t> out;
  for (int i = 0; i < count; ++i) {
    out.insert(out.end(), {0xFF, 0xE2, 0xFF, 0xF0});
    out.insert(out.end(), 0xFFF0 - 2, uint8_t(0x41 + i));
  }
  return out;
}

}  // namespace

TEST(SearchableProperties, ExifFoundWhereverItLies) {
  char name[] = "/tmp/vesperon-properties-XXXXXX";
  const fs::path folder = ::mkdtemp(name);
  const fs::path original = fs::path(VESPERON_SAMPLES_DIR) / "beach.jpg";
  const auto bytes = bytesOf(original);
  ASSERT_GT(bytes.size(), 4u);
  const auto expected = MCMediaPropertiesOfFile(original);
  ASSERT_TRUE(expected);
  ASSERT_TRUE(expected->count("{Exif}"));

  // Behind 320 KiB of other segments, past the head that is read first.
  std::vector<uint8_t> late(bytes.begin(), bytes.begin() + 2);
  const auto segments = largeSegments(5);
  late.insert(late.end(), segments.begin(), segments.end());
  late.insert(late.end(), bytes.begin() + 2, bytes.end());
  write(folder / "late.jpg", late);
  EXPECT_EQ(MCMediaPropertiesOfFile(folder / "late.jpg"), expected);

  // A large file whose Exif comes first: its head is enough, the answer the same.
  std::vector<uint8_t> large = bytes;
  large.insert(large.end() - 2, 600 * 1024, uint8_t(0x55));
  write(folder / "large.jpg", large);
  EXPECT_EQ(MCMediaPropertiesOfFile(folder / "large.jpg"), expected);

  // Cut short inside its segments: no Exif from a head that ends early, and no crash.
  std::vector<uint8_t> cut(late.begin(), late.begin() + 300 * 1024);
  write(folder / "cut.jpg", cut);
  const auto fromCut = MCMediaPropertiesOfFile(folder / "cut.jpg");
  EXPECT_TRUE(!fromCut || !fromCut->count("{Exif}"));

  const MCDictionary searchable = MCSearchablePropertiesOfFile(folder / "late.jpg");
  EXPECT_EQ(searchable.at("name"), MCValue("late.jpg"));
  EXPECT_EQ(searchable.at("size"), MCValue(int64_t(late.size())));
  EXPECT_EQ(searchable.at("type"), MCValue("public.jpeg"));
  EXPECT_TRUE(searchable.count("modificationDate"));
  EXPECT_TRUE(MCSearchablePropertiesOfFile(folder / "missing.jpg").count("name"));
  fs::remove_all(folder);
}
