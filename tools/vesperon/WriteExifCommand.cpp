// vesperon write-exif DICT.json OUT.bin: the Exif block of a nested image property dictionary
// (the JSON shape `vesperon info` prints, one file's object), written by the metadata writer's
// exifDataFromCGImageProperties: keys of "{TIFF}", "{Exif}" and "{GPS}" that its tag maps have are
// written through MCExifWriter; everything else is passed over. The block opens with "Exif\0\0",
// as a JPEG's APP1 segment holds it.

#include "CommandFiles.h"
#include "VesperonCommand.h"

#include <vesperon/metadata/MCCGImageMetadataWriter.h>

#include <memory>

namespace {

int runWriteExif(const std::string& dictionaryPath, const std::string& outputPath) {
  const auto properties = readPropertyDictionary("write-exif", dictionaryPath);
  if (!properties) return 1;
  const auto block = MCCGImageMetadataWriter().exifDataFromCGImageProperties(*properties);
  if (!block) {
    std::fprintf(stderr, "vesperon write-exif: libexif saved no block\n");
    return 1;
  }
  return writeFileBytes("write-exif", outputPath, *block) ? 0 : 1;
}

std::function<int()> defineWriteExif(CLI::App& command) {
  auto paths = std::make_shared<std::pair<std::string, std::string>>();
  command.add_option("DICT.json", paths->first, "a JSON file with one nested property dictionary")->required();
  command.add_option("OUT.bin", paths->second, "the Exif block to write")->required();
  return [paths] { return runWriteExif(paths->first, paths->second); };
}

}  // namespace

VESPERON_COMMAND("write-exif",
                 "write the Exif block of a nested property dictionary ({TIFF}, {Exif} and {GPS})", defineWriteExif)
