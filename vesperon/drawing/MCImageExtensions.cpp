#include <vesperon/drawing/MCImageExtensions.h>

#include <vesperon/platform/MCColorSpace.h>

#include <cairo.h>

#include <algorithm>
#include <cmath>

MCSize MCImagePointSize(const MCImage& image) {
  const double scale = image.scale() > 0 ? image.scale() : 1.0;
  return {image.size().width / scale, image.size().height / scale};
}

MCImageRef MCImageSafeImageWithCGImage(const MCRasterImageRef& bitmap) { return MCImage::create(bitmap, 1.0); }

MCImageRef MCImageWithSize(MCSize size, double scale, const std::function<void(MCGraphicsContext&)>& draw) {
  if (!(size.width > 0) || !(size.height > 0) || !(scale > 0)) return nullptr;
  const auto width = std::size_t(std::ceil(size.width * scale)), height = std::size_t(std::ceil(size.height * scale));
  auto context = MCGraphicsContext::create(width, height, 8, 0, MCColorSpace::sRGB(),
                                           MCImageAlphaPremultipliedFirst | MCBitmapByteOrder32Little);
  if (!context) return nullptr;
  context->scaleCTM(scale, scale);
  context->translateCTM(0, size.height);
  context->scaleCTM(1, -1);
  context->setFlipped(true);
  MCGraphicsContext* outer = MCGraphicsContext::currentContext();
  MCGraphicsContext::setCurrentContext(context.get());
  if (draw) draw(*context);
  MCGraphicsContext::setCurrentContext(outer);
  return MCImage::create(context->createImage(), scale);
}

MCImageRef MCImageFromRect(const MCImage& image, const MCRect& rect) {
  const double s = image.scale() > 0 ? image.scale() : 1.0;
  const MCRect pixels = MCMakeRect(rect.origin.x * s, rect.origin.y * s, rect.size.width * s, rect.size.height * s);
  return MCImage::create(MCRasterImage::createWithImageInRect(image.CGImage(), pixels), s);
}

MCImageRef MCImageTintedWithColor(const MCImage& image, const MCColor& color) {
  const MCSize size = MCImagePointSize(image);
  return MCImageWithSize(size, image.scale(), [&](MCGraphicsContext& context) {
    const MCRect all = MCMakeRect(0, 0, size.width, size.height);
    MCImageDrawInRect(image, all);
    context.saveGState();
    context.setBlendMode(MCBlendMode::SourceAtop);
    color.setFill(context);
    context.fillRect(all);
    context.restoreGState();
  });
}

void MCImageDrawInRect(const MCImage& image, const MCRect& rect, MCBlendMode operation, double fraction,
                       bool respectFlipped) {
  MCGraphicsContext* context = MCGraphicsContext::currentContext();
  if (!context || MCIsEmptyRect(rect) || fraction <= 0) return;
  context->saveGState();
  context->setBlendMode(operation);
  context->setAlpha(std::min(1.0, fraction));
  if (respectFlipped && context->isFlipped()) {
    context->translateCTM(0, MCMinY(rect) + MCMaxY(rect));
    context->scaleCTM(1, -1);
  }
  context->drawImage(rect, image.CGImage());
  context->restoreGState();
}

void MCImageDrawInRectWithTint(const MCImage& image, const MCRect& rect, const MCColor& color) {
  MCGraphicsContext* context = MCGraphicsContext::currentContext();
  if (!context || !image.CGImage() || MCIsEmptyRect(rect)) return;
  // The image's alpha as a mask: tint the image in its own bitmap, then draw that.
  auto tinted = MCImageTintedWithColor(image, color);
  if (tinted) MCImageDrawInRect(*tinted, rect);
}

void CGContextAddRoundedRectangle(MCGraphicsContext& context, const MCRect& rect, double ovalWidth, double ovalHeight) {
  if (ovalWidth == 0 || ovalHeight == 0) {
    context.addRect(rect);
    return;
  }
  cairo_t* cr = context.cairoContext();
  // The path survives the restore: only the transform is undone.
  cairo_save(cr);
  cairo_translate(cr, MCMinX(rect), MCMinY(rect));
  cairo_scale(cr, ovalWidth, ovalHeight);
  const double w = rect.size.width / ovalWidth, h = rect.size.height / ovalHeight;
  cairo_move_to(cr, w, h / 2);
  cairo_arc(cr, w - 1, h - 1, 1, 0, M_PI / 2);
  cairo_arc(cr, 1, h - 1, 1, M_PI / 2, M_PI);
  cairo_arc(cr, 1, 1, 1, M_PI, 3 * M_PI / 2);
  cairo_arc(cr, w - 1, 1, 1, 3 * M_PI / 2, 2 * M_PI);
  cairo_close_path(cr);
  cairo_restore(cr);
}
