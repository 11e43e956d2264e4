#include <vesperon/drawing/MCTextBadge.h>

#include <vesperon/platform/MCGraphicsContext.h>

void MCTextBadge::drawInRect(const MCRect& rect) {
  MCGraphicsContext* context = MCGraphicsContext::currentContext();
  if (!context) return;
  const MCRect inner = MCInsetRectWithEdgeInsets(rect, contentInsets());
  text_.drawInRect(MCMakeRect(inner.origin.x, inner.origin.y, std::max(inner.size.width, text_.size().width),
                              std::max(inner.size.height, text_.size().height)),
                   *context);
}
