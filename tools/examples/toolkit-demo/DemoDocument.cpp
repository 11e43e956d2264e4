#include "DemoDocument.h"

#include <vesperon/platform/MCGraphicsContext.h>
#include <vesperon/toolkit/MCAttributedString.h>
#include <vesperon/toolkit/MCMenu.h>
#include <vesperon/toolkit/MCWindow.h>

#include <algorithm>
#include <cmath>
#include <string>

namespace {

constexpr double kMarkerRadius = 14;
const MCColor kMarkerColor = MCColor::colorWithHex(0xE01B24);

std::string describe(MCPoint p) {
  return std::to_string(long(std::lround(p.x))) + " " + std::to_string(long(std::lround(p.y)));
}

}  // namespace

DemoDocument::DemoDocument(std::function<void(const std::string&)> report)
    : MCView(MCMakeRect(0, 0, kSide, kSide)), report_(std::move(report)), markerColor_(kMarkerColor) {
  const struct {
    const char* command;
    double dx, dy;
  } moves[] = {
      {"moveLeft:", -10, 0}, {"moveRight:", 10, 0}, {"moveUp:", 0, -10}, {"moveDown:", 0, 10},
      {"moveLeftAndModifySelection:", -50, 0}, {"moveRightAndModifySelection:", 50, 0},
      {"moveUpAndModifySelection:", 0, -50}, {"moveDownAndModifySelection:", 0, 50},
  };
  for (const auto& move : moves)
    registerCommand(move.command, [this, move] { moveMarkerBy(move.dx, move.dy, move.command); });
  registerCommand("cancelOperation:", [this] {
    report_("quit");
    if (window()) window()->close();
  });
}

MCRect DemoDocument::markerRect(MCPoint point) const {
  return MCMakeRect(point.x - kMarkerRadius - 1, point.y - kMarkerRadius - 1, 2 * kMarkerRadius + 2,
                    2 * kMarkerRadius + 2);
}

void DemoDocument::setMarker(MCPoint point) {
  point.x = std::clamp(point.x, 0.0, kSide);
  point.y = std::clamp(point.y, 0.0, kSide);
  if (MCEqualPoints(point, marker_)) return;
  setNeedsDisplayInRect(markerRect(marker_));
  marker_ = point;
  setNeedsDisplayInRect(markerRect(marker_));
}

void DemoDocument::moveMarkerBy(double dx, double dy, const char* command) {
  setMarker({marker_.x + dx, marker_.y + dy});
  scrollRectToVisible(markerRect(marker_));
  report_(std::string("command ") + command + " " + describe(marker_));
}

void DemoDocument::drawRect(const MCRect& dirtyRect) {
  MCGraphicsContext& context = *MCGraphicsContext::currentContext();
  // Only the squares the dirty area meets, and of those only what needs drawing.
  const int firstColumn = int(std::floor(dirtyRect.origin.x / kSquare));
  const int lastColumn = int(std::floor((MCMaxX(dirtyRect) - 0.001) / kSquare));
  const int firstRow = int(std::floor(dirtyRect.origin.y / kSquare));
  const int lastRow = int(std::floor((MCMaxY(dirtyRect) - 0.001) / kSquare));
  const MCTextAttributes label{MCFont::systemFontOfSize(11), MCColor::secondaryLabelColor(), {}, {}, {}};
  for (int row = std::max(0, firstRow); row <= lastRow; ++row) {
    for (int column = std::max(0, firstColumn); column <= lastColumn; ++column) {
      const MCRect square = MCMakeRect(column * kSquare, row * kSquare, kSquare, kSquare);
      if (!needsToDrawRect(square)) continue;
      ((row + column) % 2 ? MCColor::colorWithHex(0xF6F5F4) : MCColor::colorWithHex(0xDEDDDA)).setFill(context);
      context.fillRect(square);
      MCAttributedString(std::to_string(column) + "," + std::to_string(row), label)
          .drawAtPoint({square.origin.x + 6, square.origin.y + 4}, context);
    }
  }
  if (needsToDrawRect(markerRect(marker_))) {
    markerColor_.setFill(context);
    context.fillEllipseInRect(MCMakeRect(marker_.x - kMarkerRadius, marker_.y - kMarkerRadius, 2 * kMarkerRadius,
                                         2 * kMarkerRadius));
  }
}

void DemoDocument::mouseDown(const MCEvent& event) {
  MCWindow* window = this->window();
  if (!window) return;
  const MCPoint start = convertPoint(event.locationInWindow(), nullptr);
  if (event.clickCount() == 2) {
    report_("double-click " + describe(start));
    return;
  }
  if (event.clickCount() != 1) return;
  setMarker(start);
  report_("click " + describe(marker_));
  // Follow the pointer until the button comes up, scrolling when it leaves the view.
  const std::shared_ptr<MCView> keep = sharedView();
  window->startPeriodicEventsAfterDelay(0.1, 0.05);
  bool moved = false;
  const MCEventMask mask = MCEventMaskFromType(MCEventType::LeftMouseUp) |
                           MCEventMaskFromType(MCEventType::LeftMouseDragged) |
                           MCEventMaskFromType(MCEventType::Periodic);
  while (auto next = window->nextEventMatchingMask(mask)) {
    if (next->type() == MCEventType::Periodic) autoscroll(*next);
    setMarker(convertPoint(window->mouseLocationOutsideOfEventStream(), nullptr));
    if (next->type() == MCEventType::LeftMouseDragged) moved = true;
    if (next->type() == MCEventType::LeftMouseUp) break;
  }
  if (this->window()) this->window()->stopPeriodicEvents();
  if (moved) report_("drag-end " + describe(marker_));
}

void DemoDocument::rightMouseDown(const MCEvent& event) {
  MCWindow* window = this->window();
  if (!window) return;
  if (!colorLabels_) {
    colorLabels_ = std::make_shared<MCColorLabelControl>();
    colorLabels_->action = [this](MCColorLabelControl& control) {
      const auto& colours = MCColorLabelControl::labelMap();
      const auto colour = colours.find(control.tag());
      markerColor_ = colour != colours.end() ? colour->second : kMarkerColor;
      setNeedsDisplayInRect(markerRect(marker_));
      report_("label " + std::to_string(control.tag()));
    };
  }
  MCMenu menu;
  menu.addItem(MCMenuItem("Marker colour", "", 0, false));
  MCMenuItem row;
  row.view = colorLabels_;
  menu.addItem(row);
  const MCPoint at = convertPoint(event.locationInWindow(), nullptr);
  if (!window->popUpContextMenu(menu, at, this)) return;
  report_("menu " + describe(at));
  menuWatch_ = MCTimer::scheduledTimer(0.05, true, [this](MCTimer& timer) {
    if (colorLabels_->enclosingMenu()) return;
    timer.invalidate();
    report_("menu closed");
  });
}

void DemoDocument::keyDown(const MCEvent& event) { interpretKeyEvents({event}); }
