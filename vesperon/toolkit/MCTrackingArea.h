#pragma once
// MCTrackingArea: a rectangle of a view in which the window reports the pointer to an owner —
// entering, leaving, moving — with the platform's option bits.

#include <vesperon/core/MCGeometry.h>

#include <cstdint>
#include <memory>

class MCResponder;

enum MCTrackingAreaOptions : uint64_t {
  MCTrackingMouseEnteredAndExited = 0x01,
  MCTrackingMouseMoved = 0x02,
  MCTrackingCursorUpdate = 0x04,
  MCTrackingActiveWhenFirstResponder = 0x10,
  MCTrackingActiveInKeyWindow = 0x20,
  MCTrackingActiveInActiveApp = 0x40,
  MCTrackingActiveAlways = 0x80,
  MCTrackingAssumeInside = 0x100,
  /// The area follows the view's visible rectangle; `rect` is ignored.
  MCTrackingInVisibleRect = 0x200,
  MCTrackingEnabledDuringMouseDrag = 0x400,
};

class MCTrackingArea {
 public:
  /// The owner is not retained: it is usually the view that holds the area.
  MCTrackingArea(MCRect rect, uint64_t options, MCResponder* owner, long userData = 0)
      : rect_(rect), options_(options), owner_(owner), userData_(userData), inside_(options & MCTrackingAssumeInside) {}

  /// The area, in the owner view's coordinates.
  MCRect rect() const { return rect_; }
  /// What the area reports (the platform's option bits).
  uint64_t options() const { return options_; }
  /// Who hears the events.
  MCResponder* owner() const { return owner_; }
  /// A number for the owner's own use.
  long userData() const { return userData_; }

  /// Whether the window last saw the pointer inside; the window keeps it.
  bool isInside() const { return inside_; }
  /// Set by the window as the pointer enters and leaves.
  void setInside(bool inside) { inside_ = inside; }

 private:
  MCRect rect_;
  uint64_t options_;
  MCResponder* owner_;
  long userData_;
  bool inside_;
};

using MCTrackingAreaRef = std::shared_ptr<MCTrackingArea>;
