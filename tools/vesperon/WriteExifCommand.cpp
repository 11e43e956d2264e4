// vesperon write-exif DICT.json OUT.bin: the Exif block of a nested image property dictionary
// (the JSON shape `vesperon info` prints, one file's object), written through MCExifWriter.
// Keys of "{TIFF}", "{Exif}" and "{GPS}" that the metadata writer's tag maps have are written;
// everything else is passed over. The block opens with "Exif\0\0", as a JPEG's APP1 segment holds it.

#include "VesperonCommand.h"

#include <vesperon/core/MCValueJSON.h>
#include <vesperon/metadata/MCCGImageMetadataWriter.h>
#include <vesperon/metadata/MCExifWriter.h>
#include <vesperon/metadata/MCImagePropertyKeys.h>

#include <cstdio>
#include <fstream>
#include <string>

namespace {

int runWriteExif(const std::vector<std::string>& arguments) {
  if (arguments.size() != 2) {
    std::fprintf(stderr, "usage: vesperon write-exif DICT.json OUT.bin\n");
    return 2;
  }
  std::ifstream in(arguments[0]);
  nlohmann::json json = nlohmann::json::parse(in, nullptr, false);
  if (!in || json.is_discarded() || !json.is_object()) {
    std::fprintf(stderr, "vesperon write-exif: %s is not a JSON object\n", arguments[0].c_str());
    return 1;
  }
  MCValue properties = MCValueFromJSON(json);
  MCCGImageMetadataWriter maps;
  MCExifWriter writer;
  auto each = [&](const char* dictionaryKey, const MCCGImageMetadataWriter::TagMap& tags, bool gps) {
    const MCDictionary* sub = MCDictionaryGetDictionary(*properties.dictionary(), dictionaryKey);
    if (!sub) return;
    for (const auto& [key, value] : *sub) {
      auto it = tags.find(key);
      if (it == tags.end()) continue;
      if (gps) {
        writer.writeGPSValue(value, it->second);
      } else {
        writer.writeEXIFValue(value, it->second);
      }
    }
  };
  each(kCGImagePropertyTIFFDictionary, maps.cgImagePropertyToExifTIFFTagMap(), false);
  each(kCGImagePropertyExifDictionary, maps.cgImagePropertyToExifTagMap(), false);
  each(kCGImagePropertyGPSDictionary, maps.cgImagePropertyToExifGPSTagMap(), true);
  auto block = writer.exifData();
  if (!block) {
    std::fprintf(stderr, "vesperon write-exif: libexif saved no block\n");
    return 1;
  }
  std::ofstream out(arguments[1], std::ios::binary);
  out.write(reinterpret_cast<const char*>(block->data()), static_cast<std::streamsize>(block->size()));
  if (!out) {
    std::fprintf(stderr, "vesperon write-exif: cannot write %s\n", arguments[1].c_str());
    return 1;
  }
  return 0;
}

}  // namespace

VESPERON_COMMAND("write-exif", "DICT.json OUT.bin", "write the Exif block of a property dictionary", runWriteExif)
