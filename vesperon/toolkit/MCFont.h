#pragma once
// MCFont: a font as text is set in — family, size in points, weight and slant — resolved by
// Pango and fontconfig. The system font is the desktop's user-interface sans ("Cantarell" on
// GNOME, falling back to "Sans"); sizes are points, one point per unit of a view's coordinates.

#include <string>

struct MCFont {
  /// The family, or a comma-separated list Pango picks from.
  std::string family = "Cantarell, Sans";
  /// The size in points.
  double pointSize = 13;
  /// The weight: 100 thin, 400 regular, 700 bold, 900 black.
  int weight = 400;  // 100 thin … 400 regular … 700 bold … 900 black
  /// Whether it is italic.
  bool italic = false;
  /// Figures all of one width (tabular), for numbers that change in place.
  bool monospacedDigits = false;

  /// The desktop's system font at `size`.
  static MCFont systemFontOfSize(double size) { return {"Cantarell, Sans", size, 400, false, false}; }
  /// The bold system font at `size`.
  static MCFont boldSystemFontOfSize(double size) { return {"Cantarell, Sans", size, 700, false, false}; }
  /// The system font at `size` and `weight`.
  static MCFont systemFontOfSizeWeight(double size, int weight) { return {"Cantarell, Sans", size, weight, false, false}; }
  /// The system font with digits of equal width.
  static MCFont monospacedDigitSystemFontOfSize(double size, int weight) {
    return {"Cantarell, Sans", size, weight, false, true};
  }
  /// A monospaced font.
  static MCFont monospacedSystemFontOfSize(double size, int weight) { return {"Monospace", size, weight, false, false}; }
  /// The same font at another size.
  MCFont withSize(double size) const {
    MCFont font = *this;
    font.pointSize = size;
    return font;
  }

  /// The distances above and below the baseline, and the line height, in points.
  double ascender() const;
  /// How far the font reaches below the baseline (positive).
  double descender() const;  // positive
  /// The distance from one baseline to the next.
  double lineHeight() const;

  /// Whether every attribute is equal.
  bool operator==(const MCFont&) const = default;
};
