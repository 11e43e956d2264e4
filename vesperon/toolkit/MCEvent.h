#pragma once
// MCEvent: one input event of a window — a mouse press, a drag, a key, a wheel step, a pinch — in
// the numbering the views' logic is written in (the desktop platform's), whatever host made it.
//
// Locations are in the window's base coordinates: origin at the bottom left of the window's
// content, y growing upward. A host turns its own events into these (see MCWindowHost); the
// offscreen host builds them from a script with the `make…` functions below.

#include <vesperon/core/MCGeometry.h>

#include <cstdint>
#include <string>

/// Event types, with the platform's numbers.
enum class MCEventType : int {
  LeftMouseDown = 1,
  LeftMouseUp = 2,
  RightMouseDown = 3,
  RightMouseUp = 4,
  MouseMoved = 5,
  LeftMouseDragged = 6,
  RightMouseDragged = 7,
  MouseEntered = 8,
  MouseExited = 9,
  KeyDown = 10,
  KeyUp = 11,
  FlagsChanged = 12,
  ApplicationDefined = 15,
  Periodic = 16,
  CursorUpdate = 17,
  ScrollWheel = 22,
  OtherMouseDown = 25,
  OtherMouseUp = 26,
  OtherMouseDragged = 27,
  Magnify = 30,
  SmartMagnify = 32,
};

/// An event mask has bit `1 << type` for each type it lets through.
using MCEventMask = uint64_t;
constexpr MCEventMask MCEventMaskFromType(MCEventType type) { return MCEventMask(1) << int(type); }
inline constexpr MCEventMask MCEventMaskAny = ~MCEventMask(0);

/// Modifier flags, with the platform's bits. On Linux the hosts give Ctrl as command, Alt as
/// option and the Super (logo) key as control; see MCWindowHost.h for the whole table.
enum MCEventModifierFlags : uint64_t {
  MCEventModifierFlagCapsLock = 0x10000,
  MCEventModifierFlagShift = 0x20000,
  MCEventModifierFlagControl = 0x40000,
  MCEventModifierFlagOption = 0x80000,
  MCEventModifierFlagCommand = 0x100000,
  MCEventModifierFlagNumericPad = 0x200000,
  MCEventModifierFlagFunction = 0x800000,
  /// The device-independent part, which key bindings compare.
  MCEventModifierFlagDeviceIndependentFlagsMask = 0xFFFF0000,
};

/// Characters of the function keys, as the platform puts them into `characters`.
enum MCFunctionKey : char32_t {
  MCUpArrowFunctionKey = 0xF700,
  MCDownArrowFunctionKey = 0xF701,
  MCLeftArrowFunctionKey = 0xF702,
  MCRightArrowFunctionKey = 0xF703,
  MCF1FunctionKey = 0xF704,
  MCDeleteFunctionKey = 0xF728,
  MCHomeFunctionKey = 0xF729,
  MCBeginFunctionKey = 0xF72A,
  MCEndFunctionKey = 0xF72B,
  MCPageUpFunctionKey = 0xF72C,
  MCPageDownFunctionKey = 0xF72D,
};

/// Plain characters that keys give.
inline constexpr char32_t MCTabCharacter = 0x09;
inline constexpr char32_t MCBackTabCharacter = 0x19;
inline constexpr char32_t MCCarriageReturnCharacter = 0x0D;
inline constexpr char32_t MCEscapeCharacter = 0x1B;
inline constexpr char32_t MCSpaceCharacter = 0x20;
inline constexpr char32_t MCDeleteCharacter = 0x7F;  // the backspace key

class MCEvent {
 public:
  MCEvent() = default;

  /// A mouse event of `type` at a point of the window.
  static MCEvent mouseEvent(MCEventType type, MCPoint locationInWindow, uint64_t modifierFlags = 0,
                            int clickCount = 1, double timestamp = 0);
  /// `characters` and `charactersIgnoringModifiers` are UTF-32 strings (one key gives one
  /// character, or none for a key that types nothing).
  static MCEvent keyEvent(MCEventType type, std::u32string characters, std::u32string charactersIgnoringModifiers,
                          uint64_t modifierFlags = 0, uint16_t keyCode = 0, bool isARepeat = false,
                          double timestamp = 0);
  /// A wheel or trackpad scroll: `precise` deltas are in points (a trackpad); otherwise in lines
  /// (a wheel that clicks).
  static MCEvent scrollWheelEvent(MCPoint locationInWindow, double deltaX, double deltaY, bool precise,
                                  uint64_t modifierFlags = 0, double timestamp = 0);
  /// A pinch that changes the scale by `magnification`.
  static MCEvent magnifyEvent(MCPoint locationInWindow, double magnification, double timestamp = 0);
  /// A periodic event, as startPeriodicEvents posts.
  static MCEvent periodicEvent(double timestamp = 0);

  /// What kind of event it is.
  MCEventType type() const { return type_; }
  /// Where it happened, in the window's base coordinates.
  MCPoint locationInWindow() const { return location_; }
  /// The modifier keys held (MCEventModifierFlag bits).
  uint64_t modifierFlags() const { return modifierFlags_; }
  /// 1 for a single click, 2 for a double click, and so on.
  int clickCount() const { return clickCount_; }
  /// When it happened, in seconds.
  double timestamp() const { return timestamp_; }

  /// The text a key gives, with its modifiers.
  const std::u32string& characters() const { return characters_; }
  /// The text a key gives without modifiers (function keys as their characters, 0xF700 …).
  const std::u32string& charactersIgnoringModifiers() const { return charactersIgnoringModifiers_; }
  /// The hardware key code.
  uint16_t keyCode() const { return keyCode_; }
  /// Whether the key event repeats a held key.
  bool isARepeat() const { return isARepeat_; }

  /// Movement since the last mouse event, for drags: y grows downward, as on the platform.
  double deltaX() const { return deltaX_; }
  /// The vertical movement.
  double deltaY() const { return deltaY_; }
  /// Sets the movement.
  void setDelta(double dx, double dy) { deltaX_ = dx; deltaY_ = dy; }

  /// Scroll amounts: positive y moves the content down (the finger or wheel goes up).
  double scrollingDeltaX() const { return scrollingDeltaX_; }
  /// The vertical scroll amount.
  double scrollingDeltaY() const { return scrollingDeltaY_; }
  /// Whether the amounts are in points (a touchpad) rather than lines (a wheel).
  bool hasPreciseScrollingDeltas() const { return preciseScrolling_; }
  /// Whether natural scrolling inverted the amounts.
  bool isDirectionInvertedFromDevice() const { return directionInverted_; }
  /// Sets whether the amounts are inverted.
  void setDirectionInvertedFromDevice(bool inverted) { directionInverted_ = inverted; }

  /// The pinch: the change of scale since the last magnify event (0.1 is 10% larger).
  double magnification() const { return magnification_; }

  /// The window number the event belongs to; hosts with one window leave 0.
  int windowNumber() const { return windowNumber_; }
  /// Sets the window number.
  void setWindowNumber(int number) { windowNumber_ = number; }

  /// Whether it is a press, release, drag, move, enter or exit of any button.
  bool isMouseEvent() const;
  /// Whether it is a key down or up.
  bool isKeyEvent() const { return type_ == MCEventType::KeyDown || type_ == MCEventType::KeyUp; }

 private:
  MCEventType type_ = MCEventType::ApplicationDefined;
  MCPoint location_{};
  uint64_t modifierFlags_ = 0;
  int clickCount_ = 0;
  double timestamp_ = 0;
  std::u32string characters_, charactersIgnoringModifiers_;
  uint16_t keyCode_ = 0;
  bool isARepeat_ = false;
  double deltaX_ = 0, deltaY_ = 0;
  double scrollingDeltaX_ = 0, scrollingDeltaY_ = 0;
  bool preciseScrolling_ = false, directionInverted_ = false;
  double magnification_ = 0;
  int windowNumber_ = 0;
};
