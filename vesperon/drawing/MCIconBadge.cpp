#include <vesperon/drawing/MCIconBadge.h>

MCImageRef MCIconBadge::tintedIcon() const {
  if (!icon_ || !tintColor_) return icon_;
  return MCImageTintedWithColor(*icon_, *tintColor_);
}

MCSize MCIconBadge::contentSize() const { return icon_ ? MCImagePointSize(*icon_) : MCSize{0, 0}; }

void MCIconBadge::drawInRect(const MCRect& rect) {
  const MCImageRef icon = tintedIcon();
  if (!icon) return;
  const MCRect inner = MCInsetRectWithEdgeInsets(rect, contentInsets());
  const MCSize size = MCImagePointSize(*icon);
  MCImageDrawInRect(*icon, MCMakeRect(MCMidX(inner) - size.width / 2, MCMidY(inner) - size.height / 2, size.width,
                                      size.height));
}
