#include <vesperon/toolkit/MCImageDrawing.h>

#include <algorithm>

void MCDrawImageInRect(MCGraphicsContext& context, const MCRasterImageRef& image, const MCRect& rect,
                       MCBlendMode operation, double fraction) {
  if (!image || MCIsEmptyRect(rect) || fraction <= 0) return;
  context.saveGState();
  context.setBlendMode(operation);
  context.setAlpha(std::min(1.0, fraction));
  if (context.isFlipped()) {
    // Turn y around about the rectangle so the image's top row lands at its top.
    context.translateCTM(0, MCMinY(rect) + MCMaxY(rect));
    context.scaleCTM(1, -1);
  }
  context.drawImage(rect, image);
  context.restoreGState();
}

MCRect MCAspectFitRect(MCSize imageSize, const MCRect& bounds) {
  if (!(imageSize.width > 0) || !(imageSize.height > 0) || MCIsEmptyRect(bounds)) return {};
  const double scale = std::min(bounds.size.width / imageSize.width, bounds.size.height / imageSize.height);
  const double w = imageSize.width * scale, h = imageSize.height * scale;
  return MCMakeRect(MCMidX(bounds) - w / 2, MCMidY(bounds) - h / 2, w, h);
}
