#pragma once
// MCImageReader: the single front for getting pixels and metadata out of a file.
//
// It holds no state and decodes nothing itself: it works out the file's type (from the file's
// extension when no type is given), builds the MCImageSourceOptions for it, and tries the source
// extensions that MCImageCodecManager lists for that type, in order, until one gives a result. An
// extension that cannot open the file, or opens it and gives nothing, is passed over.
//
// A file whose name lies about its type (a WebP named ".tif") gets a second chance: when no
// extension of the type could open it, the type its first bytes show
// (MCTypeIdentifierForContentsOfURL) is tried, if that brings an extension not yet tried. A file
// that an extension opened is taken to be of its type, and a type with no extension at all still
// leaves the file unopened.
//
// Failures are answered with none, and the reader itself logs nothing, with two exceptions, each
// in sdkGraphics: an extension that throws is passed over like one that gave nothing, and that
// fault of the plug-in is logged once ("Codec <identifier> raised reading <file>: <reason>"); a
// file read by its content's type instead of its name's is logged once per file for the process
// ("The file <file> is named as <type> but its content is <type>; read as <type>").
//
// The decode budget of the reading options (`maxDecodePixelCount`) reaches the plug-ins in
// MCImageSourceOptions; they refuse, and log, what would exceed it. Every operation may run on
// any thread.

#include <vesperon/codecs/MCImageReadingOptions.h>
#include <vesperon/codecs/MCImageSourceOptions.h>
#include <vesperon/codecs/MCMetadataReadingOptions.h>
#include <vesperon/codecs/MCRAWImageSourceOptions.h>
#include <vesperon/codecs/MCThumbnailReadingOptions.h>
#include <vesperon/core/MCValue.h>
#include <vesperon/platform/MCRasterImage.h>

#include <filesystem>
#include <optional>
#include <string>

class MCImageReader {
 public:
  MCImageReader() = delete;

  /// The full image, decoded at the subsample factor that `options.scaleFactor` calls for. When
  /// `metadata` is given and an image came, it receives the same source's property dictionary;
  /// otherwise it is left as it was. None for an empty URL, absent options or an untyped file.
  static MCRasterImageRef newImageWithURL(const std::filesystem::path& url, const std::optional<std::string>& fileType,
                                          const std::optional<MCImageReadingOptions>& options,
                                          std::optional<MCDictionary>* metadata);

  /// The pixels of the full-size image inside the rectangle from (x, y), `width` × `height`, in
  /// the file's stored orientation (the metadata's orientation is not applied) and cut to the
  /// image: decoded alone where the plug-in can (JPEG skips the rows above and the columns
  /// beside), else cut from the whole image. Metadata and failures as for newImageWithURL.
  static MCRasterImageRef newImageInRegionWithURL(const std::filesystem::path& url, const std::optional<std::string>& fileType,
                                                  std::size_t x, std::size_t y, std::size_t width, std::size_t height,
                                                  const std::optional<MCImageReadingOptions>& options,
                                                  std::optional<MCDictionary>* metadata);

  /// A thumbnail as `options` ask (auto-rotation on, no raw settings from the client), with the
  /// metadata as for newImageWithURL.
  static MCRasterImageRef newThumbnailWithURL(const std::filesystem::path& url, const std::optional<std::string>& fileType,
                                              const std::optional<MCThumbnailReadingOptions>& options,
                                              std::optional<MCDictionary>* metadata);

  /// The raw settings for a full read: fixed starting values, then what is valid in `options`.
  static MCRAWImageSourceOptions rawSourceOptionsForReadingOptions(const std::optional<MCImageReadingOptions>& options);

  /// The first non-empty property dictionary the type's extensions give; possibly empty, or none.
  static std::optional<MCDictionary> metadataFromImageAtURL(const std::filesystem::path& url,
                                                            const std::optional<MCMetadataReadingOptions>& options);

  /// 1, 2, 4 or 8 for a scale factor in (0.5, ∞), (0.25, 0.5], (0.125, 0.25], (0, 0.125]; 0 for 0 or below.
  static uint64_t subsampleFactorForScaleFactor(double scaleFactor);
};

/// The twin front for writing. It has no operations: writing goes straight to a codec's destination.
class MCImageWriter {
 public:
  MCImageWriter() = delete;
};
