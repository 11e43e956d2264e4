#pragma once
// MCWindowHost: the one interface a window needs from outside — a place to show its pixels and
// a source of events. Two hosts exist: MCOffscreenHost (tests, snapshots) and the GTK 4 host in
// hosts/gtk/, which puts a window on screen.
//
// A host feeds events with MCWindow::postEvent and then MCWindow::processQueuedEvents. The GTK
// host maps its input as follows (the one table of the mapping):
//
//   GTK / X11                 MCEvent
//   Shift                     MCEventModifierFlagShift
//   Ctrl                      MCEventModifierFlagCommand
//   Alt (Mod1)                MCEventModifierFlagOption
//   Super (logo key)          MCEventModifierFlagControl
//   Caps Lock                 MCEventModifierFlagCapsLock
//   button 1 / 3 / others     left / right / other mouse down, up, dragged
//   arrows, Home, End, Page Up/Down, Delete, F1…   the function-key characters of MCEvent.h
//   BackSpace, Return, Tab, Escape               0x7F, 0x0D, 0x09, 0x1B
//   wheel notch               scroll event of ±1 line, not precise
//   touchpad scroll           scroll event in points, precise
//   pinch                     magnify event with the change of scale

#include <vesperon/core/MCGeometry.h>
#include <vesperon/toolkit/MCEvent.h>

#include <vesperon/toolkit/MCMenu.h>

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>

class MCView;
class MCWindow;
class MCDraggingSession;
class MCPasteboardBackend;

enum class MCCursor {
  Arrow,
  PointingHand,
  OpenHand,
  ClosedHand,
  Crosshair,
  IBeam,
  ResizeLeftRight,
  ResizeUpDown,
  NotAllowed,
};

class MCWindowHost {
 public:
  /// When waitForEvents gives up; none waits for ever.
  using Deadline = std::optional<std::chrono::steady_clock::time_point>;

  virtual ~MCWindowHost() = default;

  /// Part of the window (base coordinates) needs drawing; the host asks the window to display
  /// soon and then shows the window's backing image.
  virtual void invalidateRect(const MCRect& rect) = 0;

  /// Where the pointer is now, in the window's base coordinates.
  virtual MCPoint mouseLocation() const = 0;

  /// Waits until at least one more event may have been posted to the window, or the deadline has
  /// passed. Answers false when no event can come any more (the window closed, or an offscreen
  /// script ran out) so that nested event loops end instead of waiting for ever.
  virtual bool waitForEvents(Deadline deadline) = 0;

  /// Pixels per point of the window's backing image.
  virtual double backingScaleFactor() const { return 1.0; }

  /// The window's origin (bottom left) on the screen, for converting to screen coordinates.
  virtual MCPoint windowOriginOnScreen() const { return {0, 0}; }

  /// Shows the cursor; nothing by default.
  virtual void setCursor(MCCursor) {}

  /// Starts a drag of the session's items; false when the host cannot drag.
  virtual bool beginDraggingSession(const std::shared_ptr<MCDraggingSession>&) { return false; }

  /// The clipboard behind the general pasteboard while this host runs, or none for the
  /// library's own in-memory one.
  virtual std::shared_ptr<MCPasteboardBackend> pasteboardBackend() { return nullptr; }

  /// The window asks to be closed.
  virtual void closeWindow() {}
  /// The window's title changed; a host that shows it shows the new one.
  virtual void windowTitleDidChange() {}
  /// A view's accessibility label or value changed; a host that speaks to assistive technologies
  /// reads them again.
  virtual void accessibilityDidChange(MCView& view) { (void)view; }
  /// Shows the window over the whole screen, or as it was; false when the host cannot.
  virtual bool setFullScreen(bool fullScreen) {
    (void)fullScreen;
    return false;
  }
  /// Whether the window fills the screen; not by default.
  virtual bool isFullScreen() const { return false; }

  /// Shows `menu` as a context menu at the point (base coordinates) and returns at once; `chosen`
  /// hears the item the user picks, later, if any. False when the host shows no menus.
  virtual bool popUpContextMenu(const MCMenu&, MCPoint, std::function<void(const MCMenuItem&)>) { return false; }
};
