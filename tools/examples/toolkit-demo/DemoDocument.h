#pragma once
// The demo's document: a large sheet of labelled squares with a marker that follows clicks,
// drags and the arrow keys; a right click opens a menu whose row of colour labels paints the
// marker. Every change it makes is told to `report`, one line each, so that a test can follow it
// from outside.

#include <vesperon/controls/MCColorLabelControl.h>
#include <vesperon/toolkit/MCColor.h>
#include <vesperon/toolkit/MCTimer.h>
#include <vesperon/toolkit/MCView.h>

#include <functional>
#include <memory>
#include <string>

class DemoDocument : public MCView {
 public:
  static constexpr double kSide = 2400;
  static constexpr double kSquare = 100;

  explicit DemoDocument(std::function<void(const std::string&)> report);

  MCPoint marker() const { return marker_; }
  void setMarker(MCPoint point);

  bool isFlipped() const override { return true; }
  bool acceptsFirstResponder() const override { return true; }
  bool isOpaque() const override { return true; }
  void drawRect(const MCRect& dirtyRect) override;
  void mouseDown(const MCEvent& event) override;
  void rightMouseDown(const MCEvent& event) override;
  void keyDown(const MCEvent& event) override;

 private:
  MCRect markerRect(MCPoint point) const;
  void moveMarkerBy(double dx, double dy, const char* command);

  std::function<void(const std::string&)> report_;
  MCPoint marker_{150, 150};
  MCColor markerColor_;
  std::shared_ptr<MCColorLabelControl> colorLabels_;
  /// Watches the open menu, to say when it closed.
  std::shared_ptr<MCTimer> menuWatch_;
};
