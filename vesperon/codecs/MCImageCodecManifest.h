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
  /// The plug-in ABI the module was built for.
  uint32_t abiVersion = MC_IMAGE_CODEC_ABI_VERSION;
  /// The codec's extensionIdentifier.
  std::string identifier;
  /// The codec's display name.
  std::string displayName;
  /// The codec's description.
  std::string description;
  /// The codec's priority among codecs of the same type.
  double priority = 0;
  /// The image types it reads.
  std::vector<std::string> sourceImageTypes;
  /// The video types it reads.
  std::vector<std::string> sourceVideoTypes;
  /// The image types it writes.
  std::vector<std::string> destinationImageTypes;
  /// The video types it writes.
  std::vector<std::string> destinationVideoTypes;
  /// Whether it cannot be turned off as a source.
  bool alwaysAvailableAsSource = false;

  /// The largest manifest file read.
  static constexpr uintmax_t maximumFileSize = 64 * 1024;

  /// The manifest of a loaded codec.
  static MCImageCodecManifest describing(const MCImageCodec& codec);
  /// The manifest's file name beside a plug-in module: the module's name with ".json" appended.
  static std::filesystem::path urlForPlugInAtURL(const std::filesystem::path& plugIn);

  /// Parses a manifest file; none when it is missing, not a regular file, too large or malformed.
  static std::optional<MCImageCodecManifest> read(const std::filesystem::path& url);
  /// The JSON text that `read` parses back.
  std::string json() const;

  /// Whether every field is equal.
  bool operator==(const MCImageCodecManifest&) const = default;
};
