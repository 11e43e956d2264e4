#pragma once
// MCExifParser: maps raw Exif tags, one call per tag, onto the properties of an MCExif record.
//
// MCExifReader feeds it from libexif; a codec with its own TIFF reading may feed it directly
// through the checked entry. A tag that is not in the tables is ignored; a value that does not
// read (wrong type, zero denominator, empty text) sets its property to none — so when two tags
// fill one property, the later one wins even if it reads as none. The parser never resets.
//
// IFD numbers are libexif's: 0 IFD 0, 1 IFD 1 (thumbnail), 2 Exif, 3 GPS, 4 interoperability.

#include <vesperon/metadata/MCExif.h>
#include <vesperon/metadata/MCExifValueReader.h>

#include <cstdint>
#include <memory>

class MCExifParser {
 public:
  MCExifParser();

  /// The record filled so far.
  const std::shared_ptr<MCExif>& exif() const { return exif_; }

  /// The main entry. A count of 0 or no value does nothing; IFD 0, 1 and 2 go to the Exif table,
  /// IFD 3 to the GPS table, others are ignored. `value` must hold `count` components of `type`.
  void parse(uint8_t ifd, uint16_t tag, uint16_t type, uint16_t order, uint32_t count, const void* value);

  /// The checked entry for callers without libexif. Ignored unless `type` is 1 to 12, `count` at
  /// least 1, `value` present and `order` 0x4D4D or 0x4949. `combinedTag` up to 0xFFFF names a tag
  /// of IFD 0 or the Exif IFD; 0x5xxxx names GPS tag xxxx; anything else is ignored.
  void parse(int32_t combinedTag, int32_t type, uint32_t order, int32_t count, const void* value);

  /// The two tables, over a value reader already set up.
  void parseExifWithValueReader(const MCExifValueReader& reader);
  /// Reads one GPS entry into the record.
  void parseGPSWithValueReader(const MCExifValueReader& reader);

 private:
  std::shared_ptr<MCExif> exif_;
  MCExifValueReader reader_;
};
