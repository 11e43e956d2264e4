// Any bytes into libexif's load and the walk into MCExif, then its dictionary: never a crash, a
// read outside the buffer or a hang.

#include <vesperon/metadata/MCExifReader.h>

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
  auto reader = MCExifReader::create(data, size);
  if (!reader) return 0;
  if (auto exif = reader->parseExif()) (void)exif->dictionary();
  return 0;
}
