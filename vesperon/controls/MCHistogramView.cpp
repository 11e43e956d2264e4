#include <vesperon/controls/MCHistogramView.h>

#include <vesperon/core/MCLocalizedString.h>
#include <vesperon/drawing/MCImageExtensions.h>
#include <vesperon/pixels/MCBitmapHistograms.h>
#include <vesperon/pixels/MCImageUnpacking.h>
#include <vesperon/platform/MCColorSpace.h>
#include <vesperon/platform/MCGraphicsContext.h>
#include <vesperon/toolkit/MCColor.h>

#include <cairo.h>

#include <algorithm>
#include <cmath>

void MCHistogramView::setImage(MCRasterImageRef image) {
  if (image == image_) return;
  image_ = std::move(image);
  std::lock_guard<std::mutex> guard(lock_);
  histograms_.reset();
  histogramPaths_.reset();
  setNeedsDisplay(true);
}

const std::optional<std::vector<MCHistogramView::Histogram>>& MCHistogramView::histograms() {
  if (histograms_ || !image_) return histograms_;
  const MCSize size = {double(image_->width()), double(image_->height())};
  if (image_->colorModel() == MCColorSpace::Model::Gray) {
    auto gray = MCCopyGrayscaleDataFromImage(image_);
    auto result = gray ? MCBitmapCalculateHistograms_1C_8(gray->bytes(), size) : std::nullopt;
    histograms_ = result ? *result : std::vector<Histogram>{};
  } else {
    // Tightly packed 8-bit RGBA in sRGB is what the histogram reads: count those pixels where they
    // lie instead of copying them through a conversion.
    const bool direct = image_->bitsPerComponent() == 8 && image_->bitsPerPixel() == 32 &&
                        image_->bytesPerRow() == image_->width() * 4 &&
                        (image_->bitmapInfo() == MCImageAlphaPremultipliedLast ||
                         image_->bitmapInfo() == MCImageAlphaLast || image_->bitmapInfo() == MCImageAlphaNoneSkipLast) &&
                        (!image_->colorSpace() || image_->colorSpace() == MCColorSpace::sRGB());
    std::shared_ptr<MCFastData> rgba = direct ? nullptr : MCCopyRGBADataFromImage(image_);
    const uint8_t* bytes = direct ? image_->pixels().data() : (rgba ? rgba->bytes() : nullptr);
    auto result = bytes ? MCBitmapCalculateHistograms_4C_8(bytes, size) : std::nullopt;
    if (result && result->size() >= 3) histograms_ = std::vector<Histogram>(result->begin(), result->begin() + 3);
    else histograms_ = std::vector<Histogram>{};
  }
  return histograms_;
}

float MCHistogramView::peak() {
  const auto& all = histograms();
  if (!all) return 0;
  float m = 0;
  for (const Histogram& channel : *all)
    for (std::size_t i = 1; i < 255 && i < channel.size(); ++i) m = std::max(m, channel[i]);
  return m;
}

void MCHistogramView::reloadHistogramPaths() {
  const auto& all = histograms();
  if (!all) return;
  const float m = peak();
  std::vector<Path> paths;
  if (m > 0) {
    for (const Histogram& channel : *all) {
      Path path;
      path.reserve(2 * 254 + 2);
      path.push_back({0, 0});
      for (std::size_t i = 1; i <= 254 && i < channel.size(); ++i) {
        const double v = channel[i] / m;
        path.push_back({double(i - 1) / 254, v});
        path.push_back({double(i) / 254, v});
      }
      path.push_back({1, 0});
      paths.push_back(std::move(path));
    }
  }
  histogramPaths_ = std::move(paths);
}

std::vector<MCHistogramView::Path> MCHistogramView::histogramPaths() {
  std::lock_guard<std::mutex> guard(lock_);
  if (!histogramPaths_) reloadHistogramPaths();
  return histogramPaths_.value_or(std::vector<Path>{});
}

void MCHistogramView::drawRect(const MCRect& dirtyRect) {
  MCGraphicsContext* context = MCGraphicsContext::currentContext();
  if (!context) return;
  const MCRect b = bounds();
  const double W = b.size.width, H = b.size.height;
  context->saveGState();
  context->beginPath();
  CGContextAddRoundedRectangle(*context, b, 5.0, 5.0);
  context->clip();
  MCColor::blackColor().colorWithAlphaComponent(0.15).setFill(*context);
  context->fillRect(MCIntersectionRect(dirtyRect, b));
  context->translateCTM(b.origin.x, b.origin.y);
  context->scaleCTM(W, H);
  const std::vector<Path> paths = histogramPaths();
  std::vector<MCColor> colors;
  if (paths.size() == 1) colors = {MCColor::colorWithHex(0x8E8E93)};
  else if (paths.size() == 3) colors = {MCColor::colorWithHex(0xE01B24), MCColor::colorWithHex(0x2EC27E), MCColor::colorWithHex(0x3584E4)};
  for (std::size_t i = 0; i < colors.size(); ++i) {
    context->beginPath();
    const Path& path = paths[i];
    context->moveToPoint(path.front().x, path.front().y);
    for (std::size_t k = 1; k < path.size(); ++k) context->addLineToPoint(path[k].x, path[k].y);
    context->closePath();
    colors[i].colorWithAlphaComponent(0.5).setFill(*context);
    context->fillPath();
  }
  context->restoreGState();

  // The grid: cells of about 32 points, at least two each way.
  const int n = int(std::max(W / 32, 2.0)), m = int(std::max(H / 32, 2.0));
  context->saveGState();
  context->beginPath();
  for (int i = 1; i < n; ++i) {
    const double x = b.origin.x + std::ceil(i * W / n) - 0.5;
    context->moveToPoint(x, b.origin.y + 1);
    context->addLineToPoint(x, b.origin.y + H - 1);
  }
  for (int j = 1; j < m; ++j) {
    const double y = b.origin.y + std::ceil(j * H / m) - 0.5;
    context->moveToPoint(b.origin.x + 1, y);
    context->addLineToPoint(b.origin.x + W - 1, y);
  }
  MCColor::whiteColor().colorWithAlphaComponent(0.15).setStroke(*context);
  context->setLineWidth(1);
  const double dash[] = {3, 3};
  cairo_set_dash(context->cairoContext(), dash, 2, 0);
  context->strokePath();
  context->restoreGState();
}

std::vector<MCAccessibilityElement> MCHistogramView::accessibilityElements() const {
  MCAccessibilityElement picture;
  picture.role = MCAccessibilityRole::Image;
  picture.label = MCLocalizedString("histogram_accessibility_label", "Histogram");
  picture.frame = bounds();
  return {picture};
}
