#pragma once
// A notice over the bottom of `vesperon browse`'s grid, as GNOME's toasts: a line of text and an
// action ("3 photos moved to the trash   Undo"). It hides by itself after a while, when its
// action is taken, or when another notice takes its place.

#include "BrowsePalette.h"

#include <vesperon/toolkit/MCView.h>

#include <functional>
#include <memory>
#include <string>

class MCTimer;

class BrowseNotice : public MCView {
 public:
  using MCView::MCView;
  ~BrowseNotice() override;
  static constexpr double kHeight = 34;
  static constexpr double kWidth = 460;

  /// Shows the text with the action's title after it; `action` runs when it is clicked.
  void show(std::string text, std::string actionTitle, std::function<void()> action, double seconds = 8);
  void dismiss();
  bool isShown() const { return !isHidden(); }
  const std::string& text() const { return text_; }
  /// Where the action's title lies, in this view's coordinates (y down).
  MCRect actionRect() const;
  /// Draws in the colours of this scheme (light by default).
  void setPalette(const BrowsePalette& palette);
  /// Told when the notice shows or hides, so that its superview can place it.
  std::function<void()> visibilityChanged;

  bool isFlipped() const override { return true; }
  void drawRect(const MCRect& dirty) override;
  void mouseDown(const MCEvent& event) override;

 private:
  std::string text_, actionTitle_;
  std::function<void()> action_;
  std::shared_ptr<MCTimer> timer_;
  BrowsePalette palette_ = BrowsePalette::light();
};
