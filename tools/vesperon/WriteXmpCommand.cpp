// vesperon write-xmp DICT.json OUT.xmp: the XMP packet of a nested property dictionary, as the
// metadata writer makes it — the "{ExifAux}" and "{IPTC}" sub-dictionaries; the rest stays out.

#include "VesperonCommand.h"

#include <vesperon/core/MCValueJSON.h>
#include <vesperon/metadata/MCCGImageMetadataWriter.h>

#include <cstdio>
#include <fstream>

namespace {

int runWriteXmp(const std::vector<std::string>& arguments) {
  if (arguments.size() != 2) {
    std::fprintf(stderr, "usage: vesperon write-xmp DICT.json OUT.xmp\n");
    return 2;
  }
  std::ifstream input(arguments[0]);
  if (!input) {
    std::fprintf(stderr, "vesperon write-xmp: cannot read %s\n", arguments[0].c_str());
    return 1;
  }
  const nlohmann::json json = nlohmann::json::parse(input, nullptr, false);
  const MCValue properties = json.is_discarded() ? MCValue() : MCValueFromJSON(json);
  if (!properties.isDictionary()) {
    std::fprintf(stderr, "vesperon write-xmp: %s does not hold a JSON object\n", arguments[0].c_str());
    return 1;
  }
  const auto packet = MCCGImageMetadataWriter().xmpDataFromCGImageProperties(*properties.dictionary());
  if (!packet) {
    std::fprintf(stderr, "vesperon write-xmp: no XMP packet could be made\n");
    return 1;
  }
  std::ofstream output(arguments[1], std::ios::binary | std::ios::trunc);
  output.write(reinterpret_cast<const char*>(packet->data()), static_cast<std::streamsize>(packet->size()));
  if (!output.flush()) {
    std::fprintf(stderr, "vesperon write-xmp: cannot write %s\n", arguments[1].c_str());
    return 1;
  }
  return 0;
}

}  // namespace

VESPERON_COMMAND("write-xmp", "DICT.json OUT.xmp",
                 "write the XMP packet of a nested property dictionary ({ExifAux} and {IPTC})", runWriteXmp)
