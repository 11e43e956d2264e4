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

  MCRect frame{};
  std::optional<MCColor> backgroundColor;
  double cornerRadius = 0;
  double borderWidth = 0;
  MCColor borderColor = MCColor::blackColor();
  bool masksToBounds = false;
  MCRasterImageRef contents;
  MCLayerContentsGravity contentsGravity = MCLayerContentsGravity::Resize;
  std::optional<MCColor> shadowColor;
  double shadowOpacity = 0;
  MCSize shadowOffset{0, -3};
  double shadowRadius = 3;

  const std::vector<std::shared_ptr<MCLayer>>& sublayers() const { return sublayers_; }
  MCLayer* superlayer() const { return superlayer_; }
  void addSublayer(const std::shared_ptr<MCLayer>& layer);
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
