#pragma once
// MCCGImageMetadataWriter: the nested image property dictionary out again — its TIFF, Exif and GPS
// sub-dictionaries as an Exif block, its Exif auxiliary and IPTC sub-dictionaries as an XMP packet.
// Top-level scalars (orientation, pixel size, DPI) are written by neither.
//
// The tag maps are built once and shared; every call makes its own writer, so one object may be
// used from several threads.

#include <vesperon/core/MCValue.h>

#include <cstdint>
#include <map>
#include <optional>
#include <string>

class MCCGImageMetadataWriter {
 public:
  /// Exif tag numbers by property key.
  using TagMap = std::map<std::string, uint16_t>;

  /// Keys of "{TIFF}" to their tags in IFD 0.
  const TagMap& cgImagePropertyToExifTIFFTagMap() const;
  /// Keys of "{Exif}" to their tags in the Exif IFD.
  const TagMap& cgImagePropertyToExifTagMap() const;
  /// Keys of "{GPS}" to GPS tags 0 to 31.
  const TagMap& cgImagePropertyToExifGPSTagMap() const;

  /// The Exif block of the "{TIFF}", "{Exif}" and "{GPS}" sub-dictionaries, through MCExifWriter:
  /// each key the maps have becomes its tag, the rest is passed over in silence. None when libexif
  /// saves nothing.
  std::optional<MCData> exifDataFromCGImageProperties(const MCDictionary& properties) const;

  /// An XMP packet of the "{ExifAux}" and "{IPTC}" sub-dictionaries, each value in the XMP form of
  /// its property; keys without a property are passed over. None when no packet can be made.
  std::optional<MCData> xmpDataFromCGImageProperties(const MCDictionary& properties) const;
};

/// Exported for symmetry with the reader's rule class; it has no fields and no operations.
class MCCGImageMetadataPropertyWriter {};
