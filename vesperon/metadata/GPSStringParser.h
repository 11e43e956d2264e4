#pragma once
// GPSStringParser: turns the forms in which GPS values arrive — a number, a decimal text, a
// rational text such as "1234/100", or XMP's coordinate text such as "51,30.5N" — into one signed
// decimal number. South, west and "below sea level" come out negative; the metadata reader splits
// the result back into a magnitude and a reference.
//
// The parser has no state; every operation may be called from any thread.

#include <vesperon/core/MCValue.h>

#include <optional>
#include <string>

/// Reads coordinates written as text ("48°51'24\"N 2°21'3\"E", decimals …).
class GPSStringParser {
 public:
  /// The altitude, negated when `altitudeRef` is "1" (below sea level). None when `value` gives no
  /// number.
  std::optional<double> parseAltitude(const MCValue& value, const std::optional<std::string>& altitudeRef) const;

  /// Signed degrees. A number or numeric text is negated when `latitudeRef` is "S"; any other
  /// string is read as an XMP coordinate ("DDD,MM.mmN" / "…S"), whose own letter decides the sign.
  std::optional<double> parseLatitude(const MCValue& value, const std::optional<std::string>& latitudeRef) const;

  /// As parseLatitude, with the reference "W" and the letters "E" and "W".
  std::optional<double> parseLongitude(const MCValue& value, const std::optional<std::string>& longitudeRef) const;

  /// An XMP longitude text, "DDD,MM.mmE" or "…W"; none for none or a text that does not fit.
  std::optional<double> parseXMPLongitude(const std::optional<std::string>& value) const;

  /// The whole of `text` as a C-locale decimal number: no leading blank, nothing left behind.
  static std::optional<double> strictDecimal(const std::string& text);
};
