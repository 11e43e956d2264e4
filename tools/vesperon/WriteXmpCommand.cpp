// vesperon write-xmp DICT.json OUT.xmp: the XMP packet of a nested property dictionary, as the
// metadata writer makes it — the "{ExifAux}" and "{IPTC}" sub-dictionaries; the rest stays out.

#include "CommandFiles.h"
#include "VesperonCommand.h"

#include <vesperon/metadata/MCCGImageMetadataWriter.h>

#include <memory>

namespace {

int runWriteXmp(const std::string& dictionaryPath, const std::string& outputPath) {
  const auto properties = readPropertyDictionary("write-xmp", dictionaryPath);
  if (!properties) return 1;
  const auto packet = MCCGImageMetadataWriter().xmpDataFromCGImageProperties(*properties);
  if (!packet) {
    std::fprintf(stderr, "vesperon write-xmp: no XMP packet could be made\n");
    return 1;
  }
  return writeFileBytes("write-xmp", outputPath, *packet) ? 0 : 1;
}

std::function<int()> defineWriteXmp(CLI::App& command) {
  auto paths = std::make_shared<std::pair<std::string, std::string>>();
  command.add_option("DICT.json", paths->first, "a JSON file with one nested property dictionary")->required();
  command.add_option("OUT.xmp", paths->second, "the XMP packet to write")->required();
  return [paths] { return runWriteXmp(paths->first, paths->second); };
}

}  // namespace

VESPERON_COMMAND("write-xmp",
                 "write the XMP packet of a nested property dictionary ({ExifAux} and {IPTC})", defineWriteXmp)
