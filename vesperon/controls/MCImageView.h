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
  /// An empty image view of `frame`.
  explicit MCImageView(MCRect frame = {});

  /// The image shown; none shows nothing.
  const MCImageRef& image() const { return image_; }
  /// Shows another image and redraws.
  void setImage(MCImageRef image);
  /// How the image fits the view (the platform's image scaling numbers).
  uint64_t imageScaling() const { return imageScaling_; }
  /// Sets how the image fits, and redraws.
  void setImageScaling(uint64_t scaling);
  /// Whether a border frames the image.
  bool shouldDrawBorder() const { return shouldDrawBorder_; }
  /// Sets whether a border frames the image.
  void setShouldDrawBorder(bool flag);
  /// Whether the image casts a shadow.
  bool shouldDrawShadow() const { return shouldDrawShadow_; }
  /// Sets whether the image casts a shadow.
  void setShouldDrawShadow(bool flag);
  /// Whether the image gets a white photo frame.
  bool shouldFrameImage() const { return shouldFrameImage_; }
  /// Sets whether the image gets a photo frame.
  void setShouldFrameImage(bool flag);
  /// The colour behind the image; none leaves it clear.
  const std::optional<MCColor>& backgroundColor() const { return backgroundColor_; }
  /// Sets the colour behind the image.
  void setBackgroundColor(std::optional<MCColor> color);
  /// The radius the image's corners are rounded to.
  double cornerRadius() const { return cornerRadius_; }
  /// Sets the corner radius.
  void setCornerRadius(double radius);

  /// Where the image lies in the bounds, fitted by the scaling.
  MCRect imageFitRect() const;
  /// The size of imageFitRect.
  MCSize imageFitSize() const { return imageFitRect().size; }
  /// Where the image itself lies, inside its frame and border.
  MCRect imageRect() const;
  MCSize intrinsicContentSize() const override;
  /// The layer that shows the image in a layer-backed view.
  const MCLayerRef& imageLayer() const { return imageLayer_; }
  /// Replaces the image layer.
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
