#pragma once
// exif_rational and MCExifRational: the RATIONAL and SRATIONAL values of Exif.

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

/// A signed rational as libexif stores it.
struct exif_signed_rational {
  /// The numerator.
  int32_t numerator;
  /// The denominator.
  int32_t denominator;
};
/// An unsigned rational as libexif stores it.
struct exif_unsigned_rational {
  /// The numerator.
  uint32_t numerator;
  /// The denominator.
  uint32_t denominator;
};
/// Numerator first, denominator second. Where it travels as one 64-bit word, the numerator is the
/// low half and the denominator the high half.
union exif_rational {
  /// The signed reading.
  exif_signed_rational s;
  /// The unsigned reading.
  exif_unsigned_rational u;
  /// Both as one word.
  uint64_t word;
};

/// A rational value that the Exif encoder understands. A zero denominator is refused at creation.
class MCExifRational {
 public:
  /// The object for `value`, or none when the denominator is 0.
  static std::optional<MCExifRational> create(exif_rational value) {
    if (value.u.denominator == 0) return std::nullopt;
    return MCExifRational(value);
  }
  /// The rational numerator/denominator; none when the denominator is 0.
  static std::optional<MCExifRational> create(int32_t numerator, int32_t denominator) {
    exif_rational v;
    v.s = {numerator, denominator};
    return create(v);
  }
  /// Scans "%d/%d"; none when the text does not scan or the denominator is 0.
  static std::optional<MCExifRational> createWithString(const std::string& text);

  /// The value.
  const exif_rational& value() const { return value_; }
  /// Stores without a check.
  void setValue(exif_rational value) { value_ = value; }

  /// Signed numerator over signed denominator.
  double numberValue() const { return double(value_.s.numerator) / double(value_.s.denominator); }
  /// Unsigned numerator over unsigned denominator.
  double unsignedNumberValue() const { return double(value_.u.numerator) / double(value_.u.denominator); }

  /// Numerator then denominator, 4 bytes each; big-endian for 0x4D4D, little-endian otherwise.
  std::vector<uint8_t> dataWithByteOrder(uint16_t order) const;

  friend bool operator==(const MCExifRational& a, const MCExifRational& b) { return a.value_.word == b.value_.word; }

 private:
  explicit MCExifRational(exif_rational value) : value_(value) {}
  exif_rational value_;
};
