#pragma once
// MCExifEntry and MCExifGPSEntry: one tag on its way into an Exif block, with the wire type its
// tag table fixes, the value as given, the bytes it encodes to and the TIFF component count.
// Entries are always encoded big-endian (0x4D4D). MCExifEntry is for IFD 0 and the Exif IFD,
// MCExifGPSEntry for the GPS IFD.

#include <vesperon/core/MCValue.h>

#include <cstdint>
#include <optional>

namespace mc_detail {
/// The fields both entry kinds share.
class MCExifEntryFields {
 public:
  uint16_t tag() const { return tag_; }
  uint16_t type() const { return type_; }
  uint16_t byteOrder() const { return 0x4D4D; }
  const MCValue& value() const { return value_; }
  /// None when the encoder refused the value.
  const std::optional<MCData>& encodedData() const { return encodedData_; }
  uint64_t numberOfComponents() const { return numberOfComponents_; }

 protected:
  MCExifEntryFields(uint16_t tag, uint16_t type, MCValue value);

 private:
  uint16_t tag_;
  uint16_t type_;
  MCValue value_;
  std::optional<MCData> encodedData_;
  uint64_t numberOfComponents_;
};
}  // namespace mc_detail

/// An entry of the Exif IFD: a tag and its value, typed by the tag.
class MCExifEntry : public mc_detail::MCExifEntryFields {
 public:
  /// The entry of `tag`, of the tag's TIFF type.
  MCExifEntry(uint16_t tag, MCValue value) : MCExifEntryFields(tag, typeForExifTag(tag), std::move(value)) {}

  /// The TIFF type of a tag of IFD 0 or the Exif IFD; ASCII (2) for every tag not in the table.
  /// Two differ from the standard on purpose: 8832 is SHORT, 9206 SRATIONAL.
  static uint16_t typeForExifTag(uint16_t tag);
};

/// An entry of the GPS IFD.
class MCExifGPSEntry : public mc_detail::MCExifEntryFields {
 public:
  /// The entry of `tag`, of the GPS tag's TIFF type.
  MCExifGPSEntry(uint16_t tag, MCValue value) : MCExifEntryFields(tag, typeForExifGPSTag(tag), std::move(value)) {}

  /// The TIFF type of GPS tags 1 to 31; BYTE (1) for every other tag, tag 0 among them.
  static uint16_t typeForExifGPSTag(uint16_t tag);
};
