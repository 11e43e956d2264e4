#pragma once
// MCFont: a font as text is set in — family, size in points, weight and slant — resolved by
// Pango and fontconfig. The system font is the desktop's user-interface sans ("Cantarell" on
// GNOME, falling back to "Sans"); sizes are points, one point per unit of a view's coordinates.

#include <string>

struct MCFont {
  std::string family = "Cantarell, Sans";
  double pointSize = 13;
  int weight = 400;  // 100 thin … 400 regular … 700 bold … 900 black
  bool italic = false;
  /// Figures all of one width (tabular), for numbers that change in place.
  bool monospacedDigits = false;

  static MCFont systemFontOfSize(double size) { return {"Cantarell, Sans", size, 400, false, false}; }
  static MCFont boldSystemFontOfSize(double size) { return {"Cantarell, Sans", size, 700, false, false}; }
  static MCFont systemFontOfSizeWeight(double size, int weight) { return {"Cantarell, Sans", size, weight, false, false}; }
  static MCFont monospacedDigitSystemFontOfSize(double size, int weight) {
    return {"Cantarell, Sans", size, weight, false, true};
  }
  static MCFont monospacedSystemFontOfSize(double size, int weight) { return {"Monospace", size, weight, false, false}; }
  MCFont withSize(double size) const {
    MCFont font = *this;
    font.pointSize = size;
    return font;
  }

  /// The distances above and below the baseline, and the line height, in points.
  double ascender() const;
  double descender() const;  // positive
  double lineHeight() const;

  bool operator==(const MCFont&) const = default;
};
