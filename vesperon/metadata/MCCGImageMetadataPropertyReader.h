#pragma once
// MCCGImageMetadataPropertyReader: the rule for one image property read from XMP — which
// sub-dictionary and key it fills, and as which element type its text is read.
//
// Reading never fails loudly: a missing tag, a tag of the wrong form or a text that does not scan
// gives none (an MCValue that isNone), and the caller leaves the key out.

#include <vesperon/core/MCValue.h>
#include <vesperon/metadata/MCImageMetadata.h>

#include <cstdint>
#include <string>

class MCCGImageMetadataPropertyReader {
 public:
  /// Element types: how a text becomes a value.
  static constexpr int64_t kElementTypeString = 1;   ///< the text as it is
  /// "%lld", trailing text ignored ("50/1" is 50); XMP's boolean texts "True" and "False" are 1 and 0.
  static constexpr int64_t kElementTypeInteger = 2;
  static constexpr int64_t kElementTypeReal = 3;     ///< "n/d" as a rational, else "%lf"
  static constexpr int64_t kElementTypeDate = 4;     ///< Exif date text, from Exif or XMP form

  /// A reader of `propertyName` of the sub-dictionary `dictionaryName`, converting as `type` says.
  MCCGImageMetadataPropertyReader(std::string dictionaryName, std::string propertyName, int64_t type)
      : dictionaryName_(std::move(dictionaryName)), propertyName_(std::move(propertyName)), type_(type) {}

  /// The same as a value.
  static MCCGImageMetadataPropertyReader readerWithDictionaryName(std::string dictionaryName, std::string propertyName,
                                                                  int64_t type) {
    return MCCGImageMetadataPropertyReader(std::move(dictionaryName), std::move(propertyName), type);
  }
  /// @name Readers by sub-dictionary
  //@{
  /// A reader of a property of the Exif, IPTC, GPS, TIFF or ExifAux sub-dictionary.
  static MCCGImageMetadataPropertyReader exifWithName(std::string name, int64_t type);
  static MCCGImageMetadataPropertyReader iptcWithName(std::string name, int64_t type);
  static MCCGImageMetadataPropertyReader gpsWithName(std::string name, int64_t type);
  static MCCGImageMetadataPropertyReader tiffWithName(std::string name, int64_t type);
  static MCCGImageMetadataPropertyReader exifAuxWithName(std::string name, int64_t type);
  //@}

  /// The sub-dictionary's key ("{Exif}").
  const std::string& dictionaryName() const { return dictionaryName_; }
  /// The property's key.
  const std::string& propertyName() const { return propertyName_; }
  /// How the XMP value converts (the reader's type code).
  int64_t type() const { return type_; }

  /// Finds the tag of this property (with a second try by path for FlashPixVersion,
  /// FocalLenIn35mmFilm and SubjectDistRange), reads it by `type`, then converts: the flash
  /// structure to the Exif Flash number, the version texts to arrays of numbers, ISO speed
  /// ratings to an array of numbers.
  MCValue readValueFromMetadata(const MCImageMetadata& metadata) const;

  /// A text by element type; an array (ordered or not) as the array of its items' values without
  /// the nones; alternatives as the first value that is not none; a structure as a dictionary of
  /// its fields' values without the nones, read with the same element type.
  MCValue readValueFromTag(const MCImageMetadataTag& tag, int64_t elementType) const;

  /// The Exif Flash number of the members of the XMP flash structure: Fired bit 0, Return 2 or 3 in
  /// bits 1-2, Mode 1 to 3 in bits 3-4, Function bit 5, RedEyeMode bit 6. A boolean member counts
  /// when it is a non-zero number. 0 for anything but a dictionary.
  static int64_t exifFlashValueFromXMPFlashStruct(const MCValue& flash);

  friend bool operator==(const MCCGImageMetadataPropertyReader&, const MCCGImageMetadataPropertyReader&) = default;

 private:
  std::string dictionaryName_;
  std::string propertyName_;
  int64_t type_;
};
