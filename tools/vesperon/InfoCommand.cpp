// vesperon info FILE… [--merge-mask N]: the metadata of each file as one JSON object keyed by path.
// The file's own Exif block (JPEG, or a bare Exif/TIFF block) is parsed into an MCExif record and
// presented as its nested property dictionary; a file without one gives what its codec plug-in
// reads (a PNG's pixel size, a clip's date, place, duration and codec …). The XMP sidecar beside
// the file (same name, extension "xmp"), when there is one, is read and merged into it by the
// metadata reader's merge.
// Where both have the "{Exif}", "{GPS}" or "{IPTC}" sub-dictionary, the file's wins unless the mask
// has bit 1, 2 or 4 set, which lets the sidecar's keys win in that sub-dictionary; a sub-dictionary
// only one side has is always taken. The mask defaults to 0.
// A file that no plug-in reads, without Exif or sidecar, prints an empty object. An argument that cannot be read (missing,
// a folder, anything but a regular file, or one whose reading fails) prints null, a line on stderr,
// and makes the exit status 1; the other files still print.
// JSON holds UTF-8 text only. A path that is not valid UTF-8 is printed as its key with each byte
// outside a valid UTF-8 sequence, and each backslash, written as \xHH (two lowercase hex digits):
// the name "caf\xe9.jpg" in Latin-1 prints as "caf\\xe9.jpg" in the JSON text. Text values of the
// metadata that are not valid UTF-8 have those bytes replaced by U+FFFD.

#include "CommandFiles.h"
#include "MediaFiles.h"
#include "VesperonCommand.h"

#include <filesystem>
#include <memory>

namespace {

struct InfoSettings {
  std::vector<std::string> paths;
  uint64_t mask = 0;
};

// The length of the valid UTF-8 sequence at `at`, or 0 when the byte there starts none.
std::size_t utf8SequenceLength(const std::string& text, std::size_t at) {
  const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
  const unsigned char lead = byte(at);
  if (lead < 0x80) return 1;
  std::size_t length;
  unsigned char low = 0x80, high = 0xBF;  // bounds of the second byte: no overlongs, surrogates or > U+10FFFF
  if (lead >= 0xC2 && lead <= 0xDF) length = 2;
  else if (lead >= 0xE0 && lead <= 0xEF) {
    length = 3;
    if (lead == 0xE0) low = 0xA0;
    if (lead == 0xED) high = 0x9F;
  } else if (lead >= 0xF0 && lead <= 0xF4) {
    length = 4;
    if (lead == 0xF0) low = 0x90;
    if (lead == 0xF4) high = 0x8F;
  } else return 0;
  if (at + length > text.size() || byte(at + 1) < low || byte(at + 1) > high) return 0;
  for (std::size_t i = 2; i < length; ++i)
    if (byte(at + i) < 0x80 || byte(at + i) > 0xBF) return 0;
  return length;
}

// The path as it is when it is UTF-8; otherwise with stray bytes and backslashes as \xHH.
std::string printablePath(const std::string& path) {
  bool valid = true;
  for (std::size_t at = 0; valid && at < path.size();) {
    const std::size_t length = utf8SequenceLength(path, at);
    valid = length > 0;
    at += length;
  }
  if (valid) return path;
  std::string out;
  char escape[5];
  for (std::size_t at = 0; at < path.size();) {
    const std::size_t length = utf8SequenceLength(path, at);
    if (length == 0 || path[at] == '\\') {
      std::snprintf(escape, sizeof escape, "\\x%02x", static_cast<unsigned char>(path[at]));
      out += escape;
      ++at;
    } else {
      out.append(path, at, length);
      at += length;
    }
  }
  return out;
}

// The file's own Exif merged with its sidecar; none, with a line on stderr, when it cannot be read.
std::optional<nlohmann::json> fileInfo(const std::string& path, uint64_t mask) {
  std::error_code error;
  if (!std::filesystem::is_regular_file(path, error)) {
    std::fprintf(stderr, "vesperon info: %s: %s\n", path.c_str(),
                 std::filesystem::exists(path, error) ? "not a regular file" : "no such file");
    return std::nullopt;
  }
  auto properties = mediaPropertiesOfFile(path, mask);
  if (!properties) {
    std::fprintf(stderr, "vesperon info: cannot read %s\n", path.c_str());
    return std::nullopt;
  }
  return MCValueToJSON(MCValue(std::move(*properties)));
}

int runInfo(const InfoSettings& settings) {
  const std::vector<std::string>& paths = settings.paths;
  const uint64_t mask = settings.mask;
  int status = 0;
  nlohmann::json out = nlohmann::json::object();
  for (const std::string& path : paths) {
    auto info = fileInfo(path, mask);
    if (!info) status = 1;
    out[printablePath(path)] = info ? std::move(*info) : nlohmann::json();
  }
  std::printf("%s\n", out.dump(2, ' ', false, nlohmann::json::error_handler_t::replace).c_str());
  return status;
}

std::function<int()> defineInfo(CLI::App& command) {
  auto settings = std::make_shared<InfoSettings>();
  command.add_option("FILE", settings->paths,
                     "image files (JPEG, or a bare Exif block); one that cannot be read prints null. A name that "
                     "is not UTF-8 prints with each stray byte, and each backslash, as \\xHH")
      ->required();
  command.add_option("--merge-mask", settings->mask,
                     "where both have a sub-dictionary, the sidecar's keys win in it: 1 {Exif}, 2 {GPS}, 4 {IPTC}")
      ->check(vesperon_options::kUnsignedNumber)
      ->default_val(0);
  return [settings] { return runInfo(*settings); };
}

}  // namespace

VESPERON_COMMAND("info", "print the Exif metadata of image files, merged with their XMP sidecars, as JSON",
                 defineInfo)
