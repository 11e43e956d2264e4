#include <vesperon/toolkit/MCLayer.h>

#include <vesperon/platform/MCGraphicsContext.h>
#include <vesperon/toolkit/MCImageDrawing.h>

#include <cairo.h>

#include <algorithm>
#include <cmath>

namespace {
void roundedPath(cairo_t* cr, const MCRect& r, double radius) {
  radius = std::min({radius, r.size.width / 2, r.size.height / 2});
  cairo_new_path(cr);
  if (radius <= 0) {
    cairo_rectangle(cr, r.origin.x, r.origin.y, r.size.width, r.size.height);
    return;
  }
  cairo_arc(cr, MCMaxX(r) - radius, MCMinY(r) + radius, radius, -M_PI / 2, 0);
  cairo_arc(cr, MCMaxX(r) - radius, MCMaxY(r) - radius, radius, 0, M_PI / 2);
  cairo_arc(cr, MCMinX(r) + radius, MCMaxY(r) - radius, radius, M_PI / 2, M_PI);
  cairo_arc(cr, MCMinX(r) + radius, MCMinY(r) + radius, radius, M_PI, 3 * M_PI / 2);
  cairo_close_path(cr);
}
}  // namespace

void MCLayer::addSublayer(const std::shared_ptr<MCLayer>& layer) {
  if (!layer || layer.get() == this) return;
  layer->removeFromSuperlayer();
  layer->superlayer_ = this;
  sublayers_.push_back(layer);
}

void MCLayer::removeFromSuperlayer() {
  if (!superlayer_) return;
  auto& siblings = superlayer_->sublayers_;
  std::shared_ptr<MCLayer> keep = shared_from_this();
  std::erase_if(siblings, [this](const auto& l) { return l.get() == this; });
  superlayer_ = nullptr;
}

MCRect MCLayer::contentsRect() const {
  const MCRect b = MCMakeRect(0, 0, frame.size.width, frame.size.height);
  if (!contents) return b;
  const double iw = double(contents->width()), ih = double(contents->height());
  switch (contentsGravity) {
    case MCLayerContentsGravity::Resize:
      return b;
    case MCLayerContentsGravity::Center:
      return MCMakeRect((b.size.width - iw) / 2, (b.size.height - ih) / 2, iw, ih);
    case MCLayerContentsGravity::ResizeAspect:
    case MCLayerContentsGravity::ResizeAspectFill: {
      const double sx = b.size.width / iw, sy = b.size.height / ih;
      const double s = contentsGravity == MCLayerContentsGravity::ResizeAspect ? std::min(sx, sy) : std::max(sx, sy);
      return MCMakeRect((b.size.width - iw * s) / 2, (b.size.height - ih * s) / 2, iw * s, ih * s);
    }
  }
  return b;
}

void MCLayer::renderInContext(MCGraphicsContext& context) const {
  cairo_t* cr = context.cairoContext();
  const MCRect local = MCMakeRect(0, 0, frame.size.width, frame.size.height);
  context.saveGState();
  context.translateCTM(frame.origin.x, frame.origin.y);
  if (shadowColor && shadowOpacity > 0 && (backgroundColor || contents)) {
    // A soft shadow of the layer's shape: a few widening, fading copies under it.
    const int steps = std::max(1, int(std::ceil(shadowRadius)));
    for (int i = steps; i >= 1; --i) {
      const double grow = double(i);
      roundedPath(cr, MCInsetRect(MCOffsetRect(local, shadowOffset.width, -shadowOffset.height), -grow, -grow),
                  cornerRadius + grow);
      const MCColor c = shadowColor->colorWithAlphaComponent(shadowColor->alphaComponent() * shadowOpacity / (steps + 1));
      cairo_set_source_rgba(cr, c.redComponent(), c.greenComponent(), c.blueComponent(), c.alphaComponent());
      cairo_fill(cr);
    }
  }
  context.saveGState();
  if (masksToBounds || cornerRadius > 0) {
    roundedPath(cr, local, cornerRadius);
    cairo_clip(cr);
  }
  if (backgroundColor) {
    backgroundColor->setFill(context);
    context.fillRect(local);
  }
  if (contents) MCDrawImageInRect(context, contents, contentsRect());
  for (const auto& sublayer : sublayers_) sublayer->renderInContext(context);
  context.restoreGState();
  if (borderWidth > 0) {
    roundedPath(cr, MCInsetRect(local, borderWidth / 2, borderWidth / 2), std::max(0.0, cornerRadius - borderWidth / 2));
    cairo_set_line_width(cr, borderWidth);
    cairo_set_source_rgba(cr, borderColor.redComponent(), borderColor.greenComponent(), borderColor.blueComponent(),
                          borderColor.alphaComponent());
    cairo_stroke(cr);
  }
  context.restoreGState();
}
