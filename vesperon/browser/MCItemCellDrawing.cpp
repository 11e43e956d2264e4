#include <vesperon/browser/MCItemCellDrawing.h>

#include <vesperon/platform/MCGraphicsContext.h>

#include <algorithm>
#include <cmath>

namespace mc_detail {

double itemCellLineHeight(const MCFont& font) {
  const double ascender = font.ascender(), descender = font.descender();
  const double leading = std::max(0.0, font.lineHeight() - ascender - descender);
  return std::ceil(ascender + descender + leading + 1);
}

void drawItemCellImage(const MCImageRef& image, const MCRect& rect, double radius, bool dimmed) {
  MCGraphicsContext* context = MCGraphicsContext::currentContext();
  if (!context) return;
  context->saveGState();
  context->clipToRoundedRect(rect, radius);
  if (image) MCImageDrawInRect(*image, rect);
  context->restoreGState();
  if (dimmed) {
    context->beginPath();
    CGContextAddRoundedRectangle(*context, rect, radius, radius);
    MCColor::colorWithWhite(1, 0.5).setFill(*context);
    context->fillPath();
  }
}

void drawItemCellPlaceholder(const MCRect& rect, double radius) {
  MCGraphicsContext* context = MCGraphicsContext::currentContext();
  if (!context) return;
  context->beginPath();
  CGContextAddRoundedRectangle(*context, rect, radius, radius);
  MCColor::colorWithWhite(1, 0.1).setFill(*context);
  context->fillPath();
}

void drawItemCellText(const std::string& text, const MCTextAttributes& attributes, const MCRect& rect) {
  MCGraphicsContext* context = MCGraphicsContext::currentContext();
  if (!context || text.empty()) return;
  MCAttributedString string(text, attributes);
  string.setLineBreakMode(MCLineBreakMode::TruncatingTail);
  string.drawInRect(rect, *context);
}

}  // namespace mc_detail
