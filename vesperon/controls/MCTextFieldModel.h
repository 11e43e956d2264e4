#pragma once
// MCTextFieldModel: an entry field's text, placeholder and, when it has a number formatter, the
// numbers it accepts.

#include <vesperon/controls/MCControlModel.h>

#include <optional>
#include <string>

class MCTextFieldModel : public MCControlModel {
 public:
  /// The numbers a field with a formatter takes: within [minimum, maximum], fractions or not.
  struct NumberFormat {
    /// The smallest number taken.
    double minimum = 0;
    /// The largest number taken.
    double maximum = 0;
    /// Whether fractions are taken.
    bool allowsFloats = true;
  };

  /// The text in the field.
  std::string stringValue;
  /// The grey text of an empty field.
  std::string placeholderString;
  /// How the field reads numbers; none for plain text.
  std::optional<NumberFormat> numberFormat;

  /// Whether the field would take `text`: any text without a formatter; with one, a number in
  /// the C locale, whole unless fractions are allowed, within the bounds, with nothing left over.
  bool isAcceptable(const std::string& text) const;
  /// What a user's edit does: an acceptable text is stored and the action sent (true); any other
  /// is refused and the field keeps its value (false).
  bool enterText(const std::string& text);
  /// The value read as an integer, 0 when it does not begin with one.
  long integerValue() const;
};
