#pragma once
// MCCGImageMetadataReader: XMP into the nested image property dictionary — the shape of
// "{Exif}", "{IPTC}", "{GPS}", "{TIFF}" and "{ExifAux}" that image files give — and the merge of
// such XMP with the properties the image file itself gave.
//
// XMP comes from a packet a codec found, or from the sidecar beside an image (same name, extension
// "xmp"). Nothing here logs; what cannot be read is left out. All operations are class operations
// and may run on any thread.

#include <vesperon/core/MCValue.h>
#include <vesperon/metadata/MCCGImageMetadataPropertyReader.h>
#include <vesperon/metadata/MCImageMetadata.h>

#include <cstdint>
#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

class MCCGImageMetadataReader {
 public:
  /// Readers of XMP properties by sub-dictionary key.
  using Scheme = std::map<std::string, std::vector<MCCGImageMetadataPropertyReader>>;

  /// Mask bits of mergeImageMetadata.
  static constexpr uint64_t kMergeExif = 1;
  /// Merge the GPS sub-dictionaries key by key.
  static constexpr uint64_t kMergeGPS = 2;
  /// Merge the IPTC sub-dictionaries key by key.
  static constexpr uint64_t kMergeIPTC = 4;

  /// Holds `metadata`, which must not be null.
  explicit MCCGImageMetadataReader(std::shared_ptr<MCImageMetadata> metadata);
  /// The XMP metadata read.
  const std::shared_ptr<MCImageMetadata>& metadata() const { return metadata_; }

  /// The five sub-dictionary keys with the rules that fill them, made anew at each call.
  static Scheme metadataScheme();
  /// @name Key tables
  //@{
  /// The readers of each sub-dictionary's properties from XMP: property key, XMP path and how the
  /// value converts.
  static std::vector<MCCGImageMetadataPropertyReader> imagePropertyExifKeys();
  static std::vector<MCCGImageMetadataPropertyReader> imagePropertyIPTCKeys();
  static std::vector<MCCGImageMetadataPropertyReader> imagePropertyGPSKeys();
  static std::vector<MCCGImageMetadataPropertyReader> imagePropertyTIFFKeys();
  static std::vector<MCCGImageMetadataPropertyReader> imagePropertyExifAuxKeys();
  //@}

  /// The nested dictionary of a packet: all five sub-dictionaries, empty ones included, the GPS
  /// one normalised. An empty dictionary when the data is empty or not an XMP packet.
  static MCDictionary extractMetadataFromXMPData(const MCData& data);

  /// Rewrites latitude, longitude and altitude as magnitudes (doubles) with explicit references:
  /// "N"/"S", "E"/"W", and 0/1 for the altitude. A value that does not parse loses both its keys.
  static void normalizeGPSDictionary(MCDictionary& gps);

  /// The dictionary of the sidecar of the image at `imageURL`; none when the sidecar is missing or
  /// not well-formed XML.
  static std::optional<MCDictionary> extractMetadataFromXMPSidecarForImageAtURL(const std::filesystem::path& imageURL);

  /// Joins the image's own properties with XMP ones. A key on one side only keeps its value. For a
  /// key on both sides the image wins, except that with kMergeExif, kMergeGPS or kMergeIPTC set the
  /// Exif, GPS or IPTC sub-dictionaries are merged key by key with the XMP winning.
  static MCDictionary mergeImageMetadata(const MCDictionary& imageMetadata, const MCDictionary& xmpMetadata,
                                         uint64_t options);
  /// Key by key, the XMP value wins; keys only the image has stay.
  static MCDictionary mergeImageEXIF(const MCDictionary& imageEXIF, const MCDictionary& xmpEXIF);
  /// The same for GPS.
  static MCDictionary mergeImageGPS(const MCDictionary& imageGPS, const MCDictionary& xmpGPS);
  /// The same for IPTC.
  static MCDictionary mergeImageIPTC(const MCDictionary& imageIPTC, const MCDictionary& xmpIPTC);

 private:
  std::shared_ptr<MCImageMetadata> metadata_;
};
