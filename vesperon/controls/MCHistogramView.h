#pragma once
// MCHistogramView: the brightness histogram of one image — a rounded dark panel with one filled
// curve (grey image) or three overlapping curves (red, green, blue), under a dotted grid.
//
// Histograms and curves are built once per image, on first use, and kept until the image
// changes. Curves are staircases in the unit square (254 steps, bins 1 to 254: black and white
// clipping must not flatten them), scaled to the bounds when drawn, so a resize builds nothing.

#include <vesperon/platform/MCRasterImage.h>
#include <vesperon/toolkit/MCView.h>

#include <mutex>
#include <optional>
#include <vector>

class MCHistogramView : public MCView {
 public:
  /// 256 bins of one channel.
  using Histogram = std::vector<float>;  // 256 bins
  /// A closed polygon in the unit square.
  using Path = std::vector<MCPoint>;     // a closed polygon in the unit square

  /// An empty histogram view of `frame`.
  explicit MCHistogramView(MCRect frame = {}) : MCView(frame) {}

  /// The image whose histogram shows.
  const MCRasterImageRef& image() const { return image_; }
  /// A new image drops the histograms and curves and marks for display; the same one does nothing.
  void setImage(MCRasterImageRef image);

  /// One per channel: one for a grey image, three for any other; empty when the pixels cannot be
  /// read; none without an image.
  const std::optional<std::vector<Histogram>>& histograms();
  /// The curves, built on first use under a lock; empty when every bin looked at is 0.
  std::vector<Path> histogramPaths();
  /// Works out the channels' polygons from the image again, and redraws.
  void reloadHistogramPaths();
  /// The largest bin over all channels, bins 1 to 254; 0 without histograms.
  float peak();

  bool isFlipped() const override { return false; }
  void drawRect(const MCRect& dirtyRect) override;
  /// A picture named "Histogram".
  std::vector<MCAccessibilityElement> accessibilityElements() const override;

 private:
  MCRasterImageRef image_;
  std::optional<std::vector<Histogram>> histograms_;
  std::optional<std::vector<Path>> histogramPaths_;
  std::mutex lock_;
};
