// Any bytes as an XMP packet: the reader gives a dictionary (maybe empty) and never crashes, and a
// packet it accepted can be read again after the writer has written its IPTC part.

#include <vesperon/metadata/MCCGImageMetadataReader.h>
#include <vesperon/metadata/MCCGImageMetadataWriter.h>

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const MCData bytes(data, data + size);
  const MCDictionary read = MCCGImageMetadataReader::extractMetadataFromXMPData(bytes);
  if (!read.empty()) {
    if (auto packet = MCCGImageMetadataWriter().xmpDataFromCGImageProperties(read)) {
      MCCGImageMetadataReader::extractMetadataFromXMPData(*packet);
    }
    MCCGImageMetadataReader::mergeImageMetadata(read, read, 7);
  }
  return 0;
}
