#include <vesperon/controls/MCImageView.h>

#include <vesperon/toolkit/MCWindow.h>

#include <cmath>

MCImageView::MCImageView(MCRect frame) : MCView(frame) {
  setImageScaling(MCImageScaleProportionallyUpOrDown);
  setWantsLayer(true);
}

std::shared_ptr<MCLayer> MCImageView::makeBackingLayer() {
  auto base = MCView::makeBackingLayer();
  imageLayer_ = std::make_shared<MCLayer>();
  imageLayer_->masksToBounds = true;
  base->addSublayer(imageLayer_);
  return base;
}

void MCImageView::setImage(MCImageRef image) {
  if (image == image_) return;
  image_ = std::move(image);
  setNeedsDisplay(true);
}

void MCImageView::setImageScaling(uint64_t scaling) {
  if (scaling == imageScaling_) return;
  imageScaling_ = scaling;
  setNeedsDisplay(true);
}

void MCImageView::setShouldDrawBorder(bool flag) {
  if (flag == shouldDrawBorder_) return;
  shouldDrawBorder_ = flag;
  setNeedsLayout(true);
}

void MCImageView::setShouldDrawShadow(bool flag) {
  if (flag == shouldDrawShadow_) return;
  shouldDrawShadow_ = flag;
  setNeedsDisplay(true);
}

void MCImageView::setShouldFrameImage(bool flag) {
  if (flag == shouldFrameImage_) return;
  shouldFrameImage_ = flag;
  setNeedsDisplay(true);
}

void MCImageView::setBackgroundColor(std::optional<MCColor> color) {
  if (color == backgroundColor_) return;
  backgroundColor_ = color;
  setNeedsDisplay(true);
}

void MCImageView::setCornerRadius(double radius) {
  if (radius == cornerRadius_) return;
  cornerRadius_ = radius;
  setNeedsDisplay(true);
}

MCRect MCImageView::imageFitRect() const {
  const MCRect b = bounds();
  if (!shouldDrawShadow_) return b;
  return MCMakeRect(b.origin.x + 3, b.origin.y + 5, b.size.width - 6, b.size.height - 6);
}

MCSize MCImageView::intrinsicContentSize() const {
  return image_ ? MCImagePointSize(*image_) : MCSize{0, 0};
}

MCRect MCImageView::imageRect() const {
  const MCRect fit = imageFitRect();
  if (!image_) return fit;
  const MCSize size = MCImagePointSize(*image_);
  MCRect r = fit;
  const bool smaller = size.width <= fit.size.width && size.height <= fit.size.height;
  if (imageScaling_ == MCImageScaleProportionallyDown && smaller) {
    r = MCMakeRect(fit.origin.x + (fit.size.width - size.width) / 2, fit.origin.y + (fit.size.height - size.height) / 2,
                   size.width, size.height);
  } else if ((imageScaling_ == MCImageScaleProportionallyUpOrDown || imageScaling_ == MCImageScaleProportionallyDown) &&
             size.width > 0 && size.height > 0) {
    const double a = size.width / size.height;
    if (fit.size.width < fit.size.height * a) {
      r.size.height = fit.size.width / a;
      r.origin.y += (fit.size.height - r.size.height) / 2;
    } else {
      r.size.width = fit.size.height * a;
      r.origin.x += (fit.size.width - r.size.width) / 2;
    }
  }
  // Edges to the nearest whole pixel of the window's backing.
  const double scale = window() ? window()->backingScaleFactor() : 1.0;
  const double x0 = std::round(MCMinX(r) * scale) / scale, y0 = std::round(MCMinY(r) * scale) / scale;
  const double x1 = std::round(MCMaxX(r) * scale) / scale, y1 = std::round(MCMaxY(r) * scale) / scale;
  return MCMakeRect(x0, y0, x1 - x0, y1 - y0);
}

void MCImageView::updateLayer() {
  const MCLayerRef& base = layer();
  if (!base || !imageLayer_) return;
  base->backgroundColor = backgroundColor_;
  if (shouldDrawBorder_) {
    base->borderWidth = 1.0;
    base->borderColor = MCColor::colorWithWhite(0.15, 1.0);
  }
  if (shouldDrawShadow_) {
    imageLayer_->shadowColor = MCColor::blackColor();
    imageLayer_->shadowOpacity = 0.5;
  }
  if (shouldFrameImage_) {
    imageLayer_->borderWidth = 1.0;
    imageLayer_->borderColor = MCColor::colorWithWhite(1.0, 0.17);
  }
  imageLayer_->cornerRadius = cornerRadius_;
  imageLayer_->contents = image_ ? image_->CGImage() : nullptr;
  imageLayer_->frame = imageRect();
}
