#include <vesperon/drawing/MCStackBadge.h>

#include <algorithm>

MCSize MCStackBadge::contentSize() const {
  MCSize size{0, 0};
  for (const MCBadgeRef& child : children_) {
    if (!child) continue;
    const MCSize s = child->size();
    size.height = std::max(size.height, s.height);
    if (size.width > 0) size.width += spacing_;
    size.width += s.width;
  }
  return size;
}

void MCStackBadge::drawInRect(const MCRect& rect) {
  const MCEdgeInsets in = contentInsets();
  const double top = rect.origin.y + in.top, height = rect.size.height - in.top - in.bottom;
  double x = rect.origin.x + in.left;
  for (const MCBadgeRef& child : children_) {
    if (!child) continue;
    const MCSize s = child->size();
    child->drawInRect(MCMakeRect(x, top + (height - s.height) / 2, s.width, s.height));
    x += s.width + spacing_;
  }
}
