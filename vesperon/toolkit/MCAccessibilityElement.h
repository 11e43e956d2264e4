#pragma once
// MCAccessibilityElement: one thing on screen that assistive technologies should know of — a
// button, a slider, a link, a line of text — as a view that draws it describes it. A view may draw
// several (a row of colour dots is a row of choices); the window's host turns each into an object
// a screen reader can name, place and read the state of.
//
//   std::vector<MCAccessibilityElement> MyControl::accessibilityElements() const {
//     return {{MCAccessibilityRole::Button, "Rotate", "Turns the photo a quarter to the left", bounds()}};
//   }

#include <vesperon/core/MCGeometry.h>

#include <optional>
#include <string>
#include <vector>

class MCView;
class MCWindow;

/// What kind of thing an element is, as assistive technologies class them.
enum class MCAccessibilityRole {
  /// A push button (a toolbar item); `checked` says whether it stays pressed, when it can.
  Button,
  /// A check box; `checked` says whether it is ticked.
  CheckBox,
  /// One of a set of exclusive choices; `checked` says whether it is the chosen one.
  RadioButton,
  /// A value in a range: `minimum`, `maximum`, `current`; `value` says it in words.
  Slider,
  /// A link that acts when clicked.
  Link,
  /// A line of text that only informs (a status line).
  StaticText,
  /// A picture (a histogram, a photo).
  Image,
  /// Elements that belong together (the dots of a colour label control).
  Group,
  /// An item among many (a thumbnail in a browser's grid); `checked` says whether it is selected.
  Cell,
};

struct MCAccessibilityElement {
  /// What kind of thing it is.
  MCAccessibilityRole role = MCAccessibilityRole::StaticText;
  /// Its name ("Info", "Thumbnail size", "Red").
  std::string label;
  /// What it says beyond its name: a tool tip's longer text, a slider's value in words.
  std::string value;
  /// Where it lies: in the describing view's coordinates from `accessibilityElements`, in the
  /// window's base coordinates from `elementsOfWindow`.
  MCRect frame;
  /// Whether it takes input now.
  bool enabled = true;
  /// On or off, for the roles that can be (a selected toolbar button, the chosen colour); none
  /// for those that cannot.
  std::optional<bool> checked;
  /// A slider's smallest value.
  double minimum = 0;
  /// A slider's largest value.
  double maximum = 0;
  /// A slider's value now.
  double current = 0;

  /// Elements are equal when every field is.
  bool operator==(const MCAccessibilityElement&) const = default;

  /// Every element the window's views describe, in the order the views are drawn (a superview's
  /// before its subviews'), with frames in the window's base coordinates. Hidden views, and
  /// elements wholly outside what their view shows (scrolled away, clipped), are left out; an
  /// element partly shown keeps its whole frame.
  static std::vector<MCAccessibilityElement> elementsOfWindow(const MCWindow& window);
};
