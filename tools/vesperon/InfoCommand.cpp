// vesperon info FILE…: the Exif block of each file (JPEG, or a bare Exif/TIFF block), parsed into
// an MCExif record and printed as its nested property dictionary: one JSON object keyed by path.
// A file without Exif prints an empty object; a file that cannot be read prints null, a line on
// stderr, and makes the exit status 1.

#include "VesperonCommand.h"

#include <vesperon/core/MCValueJSON.h>
#include <vesperon/metadata/MCExifReader.h>

#include <cstdio>
#include <fstream>
#include <iterator>

namespace {

std::optional<MCData> readFile(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  if (!in) return std::nullopt;
  MCData bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
  if (in.bad()) return std::nullopt;
  return bytes;
}

int runInfo(const std::vector<std::string>& arguments) {
  if (arguments.empty()) {
    std::fprintf(stderr, "usage: vesperon info FILE...\n");
    return 2;
  }
  int status = 0;
  nlohmann::json out = nlohmann::json::object();
  for (const std::string& path : arguments) {
    auto bytes = readFile(path);
    if (!bytes) {
      std::fprintf(stderr, "vesperon info: cannot read %s\n", path.c_str());
      out[path] = nullptr;
      status = 1;
      continue;
    }
    std::shared_ptr<MCExif> exif;
    if (auto reader = MCExifReader::create(*bytes)) exif = reader->parseExif();
    out[path] = exif ? MCValueToJSON(exif->dictionary()) : nlohmann::json::object();
  }
  std::printf("%s\n", out.dump(2).c_str());
  return status;
}

}  // namespace

VESPERON_COMMAND("info", "FILE...", "print the Exif metadata of image files as JSON", runInfo)
