#pragma once
// MCExifUtils: the hand-written text and number forms of Exif — rationals from doubles, the two
// version tags, the GPS coordinate and time stamp, and the user comment. Every operation is pure;
// each direction stands on its own.
//
// Failures give none. The four parsing operations also log to sdkGraphics at error level:
// "Failed to parse GPS Time Stamp from string: …", "Failed to validate GPS Time Stamp parsed from
// string: …", "Failed to parse Exif Version from string: …" and "Failed to parse FlashPix Version
// from string: …".

#include <vesperon/core/MCValue.h>
#include <vesperon/metadata/MCExifRational.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

class MCExifUtils {
 public:
  /// The rational nearest `value` with the denominator its magnitude allows: up to 2147 over
  /// 1000000, up to 214748 over 10000, up to 21474836 over 100, up to 2147483647 over 1; reduced.
  /// None beyond that and for NaN. 0.1 gives 1/10, 2148.5 gives 4297/2.
  static std::optional<MCExifRational> exifRationalFromDoubleValue(double value);

  /// One byte per element, the element's unsigned 8-bit value. None when an element is not a number.
  static std::optional<MCData> dataWithUnsignedByteArray(const MCArray& array);
  /// One byte; none when `number` is not a number.
  static std::optional<MCData> dataWithUnsignedByte(const MCValue& number);
  /// "%02u%01u%01u" of exactly three components (first up to 99, the others up to 9), no
  /// terminator: 2, 3, 1 give "0231". None otherwise.
  static std::optional<MCData> dataWithExifVersionComponents(const MCArray& components);
  /// "%02u%02u" of exactly two components, each up to 99: 1, 0 give "0100". None otherwise.
  static std::optional<MCData> dataWithFlashPixVersionComponents(const MCArray& components);
  /// The UTF-8 bytes of `text`, no terminator.
  static MCData dataWithUTF8String(const std::string& text);

  /// Degrees and minutes truncated, seconds with their fraction, each through
  /// exifRationalFromDoubleValue. The caller passes the magnitude; the sign belongs in the
  /// reference tag. None when `number` is not a number or a component is out of range.
  static std::optional<MCArray> exifValueFromGPSCoordinateNumber(const MCValue& number);
  /// "%d:%d:%d", validated, as three rationals; none (and a log line) otherwise.
  static std::optional<MCArray> exifValueFromGPSTimeStampString(const std::string& text);

  /// Scans "%02u%01u%01u" within the data ("0230" gives 2, 3, 0); none and a log line otherwise.
  static std::optional<MCArray> arrayFromExifVersionData(const uint8_t* bytes, std::size_t length);
  /// The ExifVersion bytes as an array of numbers; none when empty.
  static std::optional<MCArray> arrayFromExifVersionData(const MCData& data) {
    return arrayFromExifVersionData(data.data(), data.size());
  }
  /// Scans "%02u%02u" within the data ("0100" gives 1, 0); none and a log line otherwise.
  static std::optional<MCArray> arrayFromFlashPixVersionData(const uint8_t* bytes, std::size_t length);
  /// The FlashPixVersion bytes as an array of numbers; none when empty.
  static std::optional<MCArray> arrayFromFlashPixVersionData(const MCData& data) {
    return arrayFromFlashPixVersionData(data.data(), data.size());
  }

  /// The text of an Exif user comment: an 8-byte character code, then the text. "ASCII" (or any
  /// prefix of it, eight NULs included) reads up to the first NUL; "UNICODE" reads UTF-16
  /// big-endian up to the first 0 unit. Anything else, and data under 8 bytes, gives none.
  static std::optional<std::string> stringWithUserCommentData(const uint8_t* bytes, std::size_t length);
  /// The text of UserComment bytes; none when empty.
  static std::optional<std::string> stringWithUserCommentData(const MCData& data) {
    return stringWithUserCommentData(data.data(), data.size());
  }

  /// Hours 0 to 23, minutes 0 to 59, seconds 0 to 60 (a leap second).
  static bool validateHours(int32_t hours, int32_t minutes, int32_t seconds);
};

namespace mc_detail {
/// Text of bytes that Exif calls ASCII. Real files carry UTF-8 and Latin-1 there as well: valid
/// UTF-8 is kept as it is, other bytes above 0x7F are read as Latin-1.
std::string stringFromExifASCII(const uint8_t* bytes, std::size_t length);
/// True when `bytes` are well-formed UTF-8.
bool isValidUTF8(const uint8_t* bytes, std::size_t length);
/// UTF-8 to UTF-16 big-endian bytes; none for ill-formed input.
std::optional<MCData> utf16BigEndianFromUTF8(const std::string& text);
/// UTF-16 big-endian units to UTF-8; unpaired surrogates become U+FFFD.
std::string utf8FromUTF16BigEndian(const uint8_t* bytes, std::size_t unitCount);
}  // namespace mc_detail
