#pragma once
// MCExifEncoder: a value and a TIFF type in, the bytes an IFD entry holds out, and the entry's
// component count. Stateless; every operation is a class operation.
//
// Single BYTEs, SHORTs and LONGs (signed or not) encode as the 4 bytes of an IFD entry's value
// field, the value left-justified: a SHORT 6 in big-endian order is 00 06 00 00, one component.
// Refusals give none and log to sdkGraphics at error level: "Unexpected element type in array: …",
// "Cannot encode … to EXIF data type: …" and "Failed to encode … to EXIF data type: …".

#include <vesperon/core/MCValue.h>
#include <vesperon/metadata/MCExifComment.h>
#include <vesperon/metadata/MCExifRational.h>

#include <cstdint>
#include <optional>
#include <string>

/// The shapes of an IFD entry's 4-byte value field, each left-justified.
union exif_four_bytes_value {
  struct {
    uint8_t value;
    uint8_t filler[3];
  } UByte;  ///< An unsigned byte.
  struct {
    int8_t value;
    uint8_t filler[3];
  } SByte;  ///< A signed byte.
  struct {
    uint16_t value;
    uint8_t filler[2];
  } UShort;  ///< An unsigned 16-bit number.
  struct {
    int16_t value;
    uint8_t filler[2];
  } SShort;  ///< A signed 16-bit number.
  uint32_t ULong;  ///< An unsigned 32-bit number.
  int32_t SLong;  ///< A signed 32-bit number.
  float SFloat;  ///< A single-precision float.
};

class MCExifEncoder {
 public:
  /// Dispatches by kind, in this order: array, bytes, number, string, comment, rational. Anything
  /// else gives none.
  static std::optional<MCData> encodeValue(const MCValue& value, uint16_t type, uint16_t byteOrder);
  /// Numbers (and rationals, for types 5 and 10) one after the other; other elements are reported
  /// and left out. ASCII and UNDEFINED refuse arrays. A number that no rational can hold gives no
  /// bytes, so the result may be shorter than the count says.
  static std::optional<MCData> encodeArray(const MCArray& array, uint16_t type, uint16_t byteOrder);
  /// UNDEFINED only: a copy.
  static std::optional<MCData> encodeData(const MCData& data, uint16_t type, uint16_t byteOrder);
  /// Integers as the 4-byte value field; rationals through exifRationalFromDoubleValue; FLOAT 4 and
  /// DOUBLE 8 bytes. ASCII and UNDEFINED refuse numbers.
  static std::optional<MCData> encodeNumber(const MCValue& number, uint16_t type, uint16_t byteOrder);
  /// BYTE and SBYTE as UTF-8, ASCII only when lossless; a NUL appended.
  static std::optional<MCData> encodeString(const std::string& string, uint16_t type, uint16_t byteOrder);
  /// RATIONAL and SRATIONAL only.
  static std::optional<MCData> encodeRational(const MCExifRational& rational, uint16_t type, uint16_t byteOrder);
  /// The user comment bytes, whatever the type.
  static MCData encodeComment(const MCExifComment& comment, uint16_t type, uint16_t byteOrder);

  /// Zero, then the number's value in the shape of its type: BYTE/SBYTE as 8 bits, SHORT/SSHORT as
  /// 16, LONG/SLONG as 32, FLOAT as a float; swapped for 0x4D4D, as it is for 0x4949, left zero
  /// (except the 8-bit shapes) for any other order.
  static exif_four_bytes_value fourBytesValueFromNumber(const MCValue& number, uint16_t type, uint16_t byteOrder);

  /// An array's element count; the encoded length for bytes, strings and comments; 1 for a number
  /// or a rational; 0 otherwise.
  static uint64_t numberOfComponentsInValue(const MCValue& value, const std::optional<MCData>& encodedData);
};
