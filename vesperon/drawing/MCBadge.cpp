#include <vesperon/drawing/MCBadge.h>

#include <algorithm>

MCSize MCBadge::size() const {
  const MCSize content = contentSize();
  const MCEdgeInsets in = contentInsets_;
  return {std::max(content.width + in.left + in.right, minimumSize_.width),
          std::max(content.height + in.top + in.bottom, minimumSize_.height)};
}

void MCBadge::drawInRect(const MCRect&) {}
