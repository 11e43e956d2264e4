// vesperon write-xmp DICT.json OUT.xmp: the XMP packet of a nested property dictionary, as the
// metadata writer makes it — the "{ExifAux}" and "{IPTC}" sub-dictionaries; the rest stays out.

#include "CommandFiles.h"
#include "VesperonCommand.h"

#include <vesperon/metadata/MCCGImageMetadataWriter.h>

namespace {

int runWriteXmp(const std::vector<std::string>& arguments) {
  if (arguments.size() != 2) {
    std::fprintf(stderr, "usage: vesperon write-xmp DICT.json OUT.xmp\n");
    return 2;
  }
  const auto properties = readPropertyDictionary("write-xmp", arguments[0]);
  if (!properties) return 1;
  const auto packet = MCCGImageMetadataWriter().xmpDataFromCGImageProperties(*properties);
  if (!packet) {
    std::fprintf(stderr, "vesperon write-xmp: no XMP packet could be made\n");
    return 1;
  }
  return writeFileBytes("write-xmp", arguments[1], *packet) ? 0 : 1;
}

}  // namespace

VESPERON_COMMAND("write-xmp", "DICT.json OUT.xmp",
                 "write the XMP packet of a nested property dictionary ({ExifAux} and {IPTC})", runWriteXmp)
