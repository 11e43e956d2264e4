#pragma once
// The status bar along the bottom of `vesperon browse`'s grid: the status line at the left,
// then, while a filter narrows the grid, a "Clear filter" link, and at the right a slider for the
// size of the thumbnails, between the view's smallest and largest scale.

#include "BrowsePalette.h"

#include <vesperon/toolkit/MCView.h>

#include <functional>
#include <string>

class BrowseStatusBar : public MCView {
 public:
  using MCView::MCView;
  static constexpr double kHeight = 26;
  static constexpr double kSliderWidth = 120;

  void setPalette(const BrowsePalette& palette);
  void setText(std::string text);
  const std::string& text() const { return text_; }

  /// Shows the "Clear filter" link after the text; clicking it calls `clearFilter`.
  void setShowsClearFilter(bool shows);
  bool showsClearFilter() const { return showsClearFilter_; }
  std::function<void()> clearFilter;

  /// The slider's range and value; dragging it calls `scaleChanged` with the new value.
  void setScaleRange(double minimum, double maximum);
  void setScale(double scale);
  double scale() const { return scale_; }
  std::function<void(double)> scaleChanged;

  /// Where the slider's track and the link lie, in this view's coordinates (y down).
  MCRect sliderTrackRect() const;
  MCRect clearFilterRect() const;

  bool isFlipped() const override { return true; }
  bool isOpaque() const override { return true; }
  void drawRect(const MCRect& dirty) override;
  void mouseDown(const MCEvent& event) override;
  void mouseDragged(const MCEvent& event) override;
  /// The status line, the link while it shows, and the slider ("Thumbnail size", in percent of
  /// the largest size).
  std::vector<MCAccessibilityElement> accessibilityElements() const override;

 private:
  void slideTo(const MCEvent& event);

  BrowsePalette palette_ = BrowsePalette::light();
  std::string text_;
  bool showsClearFilter_ = false;
  bool sliding_ = false;
  double minimum_ = 0.25, maximum_ = 1.0, scale_ = 0.5;
};
