#pragma once
// MCImageCodecManifest: what the registry needs to know of a codec plug-in without loading it.
//
// A plug-in module "NAME.vcodec" may lie beside a manifest "NAME.vcodec.json" that the build writes
// from the loaded codec itself (`vesperon-codec-manifest`). With it, MCImageCodecManager registers
// the plug-in's identifier, priority and types at start-up and opens the module, with the heavy
// libraries it links (FFmpeg, LibRaw, libheif …), only when a file of one of its types is read.
//
// A manifest is untrusted input like any file: it is read only when it is a regular file of at most
// `maximumFileSize` bytes with the expected shape; otherwise `read` gives none and the registry
// loads the module at once, as it does for a plug-in with no manifest.

#include <vesperon/codecs/MCImageCodec.h>

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

struct MCImageCodecManifest {
  uint32_t abiVersion = MC_IMAGE_CODEC_ABI_VERSION;
  std::string identifier;
  std::string displayName;
  std::string description;
  double priority = 0;
  std::vector<std::string> sourceImageTypes;
  std::vector<std::string> sourceVideoTypes;
  std::vector<std::string> destinationImageTypes;
  std::vector<std::string> destinationVideoTypes;
  bool alwaysAvailableAsSource = false;

  static constexpr uintmax_t maximumFileSize = 64 * 1024;

  /// The manifest of a loaded codec.
  static MCImageCodecManifest describing(const MCImageCodec& codec);
  /// The manifest's file name beside a plug-in module: the module's name with ".json" appended.
  static std::filesystem::path urlForPlugInAtURL(const std::filesystem::path& plugIn);

  /// Parses a manifest file; none when it is missing, not a regular file, too large or malformed.
  static std::optional<MCImageCodecManifest> read(const std::filesystem::path& url);
  /// The JSON text that `read` parses back.
  std::string json() const;

  bool operator==(const MCImageCodecManifest&) const = default;
};
