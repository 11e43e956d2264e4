// vesperon write-exif DICT.json OUT.bin: the Exif block of a nested image property dictionary
// (the JSON shape `vesperon info` prints, one file's object), written by the metadata writer's
// exifDataFromCGImageProperties: keys of "{TIFF}", "{Exif}" and "{GPS}" that its tag maps have are
// written through MCExifWriter; everything else is passed over. The block opens with "Exif\0\0",
// as a JPEG's APP1 segment holds it.

#include "CommandFiles.h"
#include "VesperonCommand.h"

#include <vesperon/metadata/MCCGImageMetadataWriter.h>

namespace {

int runWriteExif(const std::vector<std::string>& arguments) {
  if (arguments.size() != 2) {
    std::fprintf(stderr, "usage: vesperon write-exif DICT.json OUT.bin\n");
    return 2;
  }
  const auto properties = readPropertyDictionary("write-exif", arguments[0]);
  if (!properties) return 1;
  const auto block = MCCGImageMetadataWriter().exifDataFromCGImageProperties(*properties);
  if (!block) {
    std::fprintf(stderr, "vesperon write-exif: libexif saved no block\n");
    return 1;
  }
  return writeFileBytes("write-exif", arguments[1], *block) ? 0 : 1;
}

}  // namespace

VESPERON_COMMAND("write-exif", "DICT.json OUT.bin",
                 "write the Exif block of a nested property dictionary ({TIFF}, {Exif} and {GPS})", runWriteExif)
