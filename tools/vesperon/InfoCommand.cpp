// vesperon info FILE… [--merge-mask N]: the metadata of each file as one JSON object keyed by path.
// The file's own Exif block (JPEG, or a bare Exif/TIFF block) is parsed into an MCExif record and
// presented as its nested property dictionary; the XMP sidecar beside the file (same name,
// extension "xmp"), when there is one, is read and merged into it by the metadata reader's merge.
// Where both have the "{Exif}", "{GPS}" or "{IPTC}" sub-dictionary, the file's wins unless the mask
// has bit 1, 2 or 4 set, which lets the sidecar's keys win in that sub-dictionary; a sub-dictionary
// only one side has is always taken. The mask defaults to 0.
// A file without Exif or sidecar prints an empty object; a file that cannot be read prints null, a
// line on stderr, and makes the exit status 1.

#include "CommandFiles.h"
#include "VesperonCommand.h"

#include <vesperon/metadata/MCCGImageMetadataReader.h>
#include <vesperon/metadata/MCExifReader.h>

#include <memory>

namespace {

struct InfoSettings {
  std::vector<std::string> paths;
  uint64_t mask = 0;
};

int runInfo(const InfoSettings& settings) {
  const std::vector<std::string>& paths = settings.paths;
  const uint64_t mask = settings.mask;
  int status = 0;
  nlohmann::json out = nlohmann::json::object();
  for (const std::string& path : paths) {
    auto bytes = readFileBytes(path);
    if (!bytes) {
      std::fprintf(stderr, "vesperon info: cannot read %s\n", path.c_str());
      out[path] = nullptr;
      status = 1;
      continue;
    }
    MCDictionary properties;
    if (auto reader = MCExifReader::create(*bytes)) {
      if (auto exif = reader->parseExif()) properties = exif->dictionary();
    }
    if (auto sidecar = MCCGImageMetadataReader::extractMetadataFromXMPSidecarForImageAtURL(path)) {
      properties = MCCGImageMetadataReader::mergeImageMetadata(properties, *sidecar, mask);
    }
    out[path] = MCValueToJSON(MCValue(std::move(properties)));
  }
  std::printf("%s\n", out.dump(2).c_str());
  return status;
}

std::function<int()> defineInfo(CLI::App& command) {
  auto settings = std::make_shared<InfoSettings>();
  command.add_option("FILE", settings->paths, "image files (JPEG, or a bare Exif block)")->required();
  command.add_option("--merge-mask", settings->mask,
                     "where both have a sub-dictionary, the sidecar's keys win in it: 1 {Exif}, 2 {GPS}, 4 {IPTC}")
      ->check(vesperon_options::kUnsignedNumber)
      ->default_val(0);
  return [settings] { return runInfo(*settings); };
}

}  // namespace

VESPERON_COMMAND("info", "print the Exif metadata of image files, merged with their XMP sidecars, as JSON",
                 defineInfo)
