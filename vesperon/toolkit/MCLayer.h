#pragma once
// MCLayer: a rectangle that draws its own content — background, an image with a gravity, a border,
// rounded corners, a shadow — and carries sublayers. A view that wants a layer (MCView::
// setWantsLayer) is drawn by rendering its layer tree instead of its drawRect; the view sets the
// layers' properties in updateLayer. Layers draw in the view's coordinates, y down.

#include <vesperon/core/MCGeometry.h>
#include <vesperon/platform/MCRasterImage.h>
#include <vesperon/toolkit/MCColor.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

class MCGraphicsContext;

/// Where a layer's image goes in its bounds.
enum class MCLayerContentsGravity { Resize, ResizeAspect, ResizeAspectFill, Center };

class MCLayer : public std::enable_shared_from_this<MCLayer> {
 public:
  MCLayer() = default;

  /// The layer's rectangle in its superlayer (its view's bounds for a view's layer).
  MCRect frame{};
  /// The fill behind the contents; none leaves it clear.
  std::optional<MCColor> backgroundColor;
  /// The radius of the rounded corners of background, border and mask.
  double cornerRadius = 0;
  /// The width of the border drawn inside the edges.
  double borderWidth = 0;
  /// The border's colour.
  MCColor borderColor = MCColor::blackColor();
  /// Whether the contents and sublayers are clipped to the rounded rectangle.
  bool masksToBounds = false;
  /// The image shown.
  MCRasterImageRef contents;
  /// Where the image goes in the frame.
  MCLayerContentsGravity contentsGravity = MCLayerContentsGravity::Resize;
  /// The shadow's colour; none casts no shadow.
  std::optional<MCColor> shadowColor;
  /// The shadow's opacity, 0 to 1.
  double shadowOpacity = 0;
  /// The shadow's offset (y up, as the platform's).
  MCSize shadowOffset{0, -3};
  /// The shadow's blur radius.
  double shadowRadius = 3;

  /// The sublayers, back to front.
  const std::vector<std::shared_ptr<MCLayer>>& sublayers() const { return sublayers_; }
  /// The layer that holds this one; none at the root.
  MCLayer* superlayer() const { return superlayer_; }
  /// Adds `layer` on top (it leaves its old superlayer first).
  void addSublayer(const std::shared_ptr<MCLayer>& layer);
  /// Leaves the superlayer.
  void removeFromSuperlayer();

  /// Draws the layer and its sublayers into the context, in the superlayer's coordinates.
  void renderInContext(MCGraphicsContext& context) const;
  /// Where the contents image goes within the frame, by the gravity.
  MCRect contentsRect() const;

 private:
  MCLayer* superlayer_ = nullptr;
  std::vector<std::shared_ptr<MCLayer>> sublayers_;
};

using MCLayerRef = std::shared_ptr<MCLayer>;
