#pragma once
// MCExifValueReader: a cursor over one raw Exif tag value — its tag, TIFF type, byte order
// (0x4D4D big-endian, 0x4949 little-endian), component count and bytes — and the typed reads of it.
//
// The reader does not own the bytes. It trusts that `ptr` holds `count` components of `type`; every
// read stays within that. A read of a type it does not accept logs "Mapping tag 0x%X (type: %d) to
// … is not allowed." to sdkGraphics at error level and gives none; a rational with a zero
// denominator gives none without a word.
//
// TIFF types: 1 BYTE, 2 ASCII, 3 SHORT, 4 LONG, 5 RATIONAL, 6 SBYTE, 7 UNDEFINED, 8 SSHORT,
// 9 SLONG, 10 SRATIONAL, 11 FLOAT, 12 DOUBLE.

#include <vesperon/core/MCValue.h>
#include <vesperon/metadata/MCExifRational.h>

#include <cstdint>
#include <optional>
#include <string>

class MCExifValueReader {
 public:
  /// Text encodings of stringWithEncoding.
  enum class Encoding { UTF8, ASCII };

  /// @name The entry read
  //@{
  /// The entry being read, as libexif gives it: its tag, TIFF type number (1 to 12), byte order
  /// (0x4D4D or 0x4949), component count and the bytes of its value.
  uint16_t tag() const { return tag_; }
  void setTag(uint16_t tag) { tag_ = tag; }
  uint16_t type() const { return type_; }
  void setType(uint16_t type) { type_ = type; }
  uint16_t order() const { return order_; }
  void setOrder(uint16_t order) { order_ = order; }
  int32_t count() const { return count_; }
  void setCount(int32_t count) { count_ = count; }
  const uint8_t* ptr() const { return ptr_; }
  void setPtr(const void* ptr) { ptr_ = static_cast<const uint8_t*>(ptr); }
  //@}

  /// Types 1, 6 and 7 as UTF-8, type 2 as ASCII: the bytes up to the first NUL, at most `count`.
  /// None when that is empty or not text.
  std::optional<std::string> stringValue() const;
  /// The component at index 0.
  std::optional<MCValue> numberValue() const { return numberAtIndex(0); }
  /// The component at `index` as a number of its type's width (UNDEFINED reads as signed 8-bit,
  /// rationals as doubles). None for ASCII, for an index outside the count, for a zero denominator.
  std::optional<MCValue> numberAtIndex(int32_t index) const;
  /// The numbers at 0 to count - 1; components that give none are left out. None when no
  /// component gives a number — a tag of a refused type (a WhitePoint written as ASCII), or one of
  /// no components. The tag is then absent from the property dictionary rather than shown as an
  /// empty array, which would tell a reader nothing and a writer to write nothing back.
  std::optional<MCArray> arrayValue() const;
  /// The user comment text over `count` bytes, whatever the type.
  std::optional<std::string> userCommentValue() const { return stringFromUserCommentData(); }
  /// "0230" as 2, 3, 0.
  std::optional<MCArray> exifVersionValue() const;
  /// "0100" as 1, 0.
  std::optional<MCArray> flashPixVersionValue() const;
  /// RATIONAL degrees, minutes, seconds … as decimal degrees.
  std::optional<MCValue> GPSLatitudeValue() const;
  /// The same for a longitude.
  std::optional<MCValue> GPSLongitudeValue() const;
  /// Three RATIONALs as "%02.0f:%02.0f:%02.0f" of their single-precision values, so 59.6 seconds
  /// read "60". Fewer than three components or a zero denominator log "… failed. Invalid value.".
  std::optional<std::string> GPSTimeStampValue() const;
  /// The bytes up to the first NUL, at most `count`, in `encoding`; none when that is empty.
  std::optional<std::string> stringWithEncoding(Encoding encoding) const;
  /// The text of a UserComment: the 8-byte character code, then the text in it; none when empty.
  std::optional<std::string> stringFromUserCommentData() const;

  /// The typed reads behind numberAtIndex. The raw forms swap bytes for 0x4D4D; the index must lie
  /// within `count` (callers check).
  uint8_t unsignedInt8AtIndex(int32_t index) const;
  /// @name Typed reads
  //@{
  /// The component at `index` as that type.
  int8_t signedInt8AtIndex(int32_t index) const;
  uint16_t unsignedInt16AtIndex(int32_t index) const;
  int16_t signedInt16AtIndex(int32_t index) const;
  uint32_t unsignedInt32AtIndex(int32_t index) const;
  int32_t signedInt32AtIndex(int32_t index) const;
  exif_rational unsignedRationalAtIndex(int32_t index) const;
  exif_rational signedRationalAtIndex(int32_t index) const;
  float floatAtIndex(int32_t index) const;
  double doubleAtIndex(int32_t index) const;
  //@}

  /// @name Numbers
  //@{
  /// The component at `index` as an integer or double value (a rational as its quotient); none
  /// for a zero denominator or an index past `count`.
  std::optional<MCValue> numberWithUnsignedInt8AtIndex(int32_t index) const;
  std::optional<MCValue> numberWithSignedInt8AtIndex(int32_t index) const;
  std::optional<MCValue> numberWithUnsignedInt16AtIndex(int32_t index) const;
  std::optional<MCValue> numberWithSignedInt16AtIndex(int32_t index) const;
  std::optional<MCValue> numberWithUnsignedInt32AtIndex(int32_t index) const;
  std::optional<MCValue> numberWithSignedInt32AtIndex(int32_t index) const;
  std::optional<MCValue> numberWithUnsignedRationalAtIndex(int32_t index) const;
  std::optional<MCValue> numberWithSignedRationalAtIndex(int32_t index) const;
  std::optional<MCValue> numberWithFloatAtIndex(int32_t index) const;
  std::optional<MCValue> numberWithDoubleAtIndex(int32_t index) const;
  //@}

  /// Decimal degrees of the `count` RATIONALs: the sum of component i over 60 to the power i.
  /// Components with a zero denominator add nothing; no components give 0.
  double numberWithGPSCoordinate() const;

 private:
  bool inRange(int32_t index) const { return index >= 0 && index < count_; }
  void logNotAllowed(const char* what) const;

  uint16_t tag_ = 0;
  uint16_t type_ = 0;
  uint16_t order_ = 0x4949;
  int32_t count_ = 0;
  const uint8_t* ptr_ = nullptr;
};
