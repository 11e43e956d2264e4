#pragma once
// MCImageView: one image with an optional border, shadow and frame, on a background, with rounded
// corners. It draws through layers: the view's own layer (background, border) holds one sublayer
// with the image, placed by `imageRect` — the image fitted (or, scaled only down, centred) in
// `imageFitRect`, which a shadow narrows (3 at the sides, 5 at the top, 1 at the bottom).
// Property changes are not animated.

#include <vesperon/drawing/MCImageExtensions.h>
#include <vesperon/toolkit/MCColor.h>
#include <vesperon/toolkit/MCLayer.h>
#include <vesperon/toolkit/MCView.h>

#include <optional>

/// The platform's image scaling values that the view knows.
enum MCImageScaling : uint64_t {
  MCImageScaleProportionallyDown = 0,
  MCImageScaleAxesIndependently = 1,
  MCImageScaleNone = 2,
  MCImageScaleProportionallyUpOrDown = 3,
};

class MCImageView : public MCView {
 public:
  explicit MCImageView(MCRect frame = {});

  const MCImageRef& image() const { return image_; }
  void setImage(MCImageRef image);
  uint64_t imageScaling() const { return imageScaling_; }
  void setImageScaling(uint64_t scaling);
  bool shouldDrawBorder() const { return shouldDrawBorder_; }
  void setShouldDrawBorder(bool flag);
  bool shouldDrawShadow() const { return shouldDrawShadow_; }
  void setShouldDrawShadow(bool flag);
  bool shouldFrameImage() const { return shouldFrameImage_; }
  void setShouldFrameImage(bool flag);
  const std::optional<MCColor>& backgroundColor() const { return backgroundColor_; }
  void setBackgroundColor(std::optional<MCColor> color);
  double cornerRadius() const { return cornerRadius_; }
  void setCornerRadius(double radius);

  MCRect imageFitRect() const;
  MCSize imageFitSize() const { return imageFitRect().size; }
  MCRect imageRect() const;
  MCSize intrinsicContentSize() const override;
  const MCLayerRef& imageLayer() const { return imageLayer_; }
  void setImageLayer(MCLayerRef layer) { imageLayer_ = std::move(layer); }

  bool isFlipped() const override { return true; }
  std::shared_ptr<MCLayer> makeBackingLayer() override;
  bool wantsUpdateLayer() const override { return true; }
  void updateLayer() override;

 private:
  MCImageRef image_;
  uint64_t imageScaling_ = MCImageScaleProportionallyUpOrDown;
  bool shouldDrawBorder_ = false, shouldDrawShadow_ = false, shouldFrameImage_ = false;
  std::optional<MCColor> backgroundColor_;
  double cornerRadius_ = 0;
  MCLayerRef imageLayer_;
};
