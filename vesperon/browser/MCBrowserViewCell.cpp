#include <vesperon/browser/MCBrowserViewCell.h>

#include <vesperon/drawing/MCImageExtensions.h>
#include <vesperon/platform/MCGraphicsContext.h>
#include <vesperon/toolkit/MCWindow.h>

#include <cmath>
#include <stdexcept>
#include <string>

namespace {
[[noreturn]] void unrecognized(const char* operation) {
  throw std::logic_error(std::string("*** -[MCBrowserViewCell ") + operation + "]: unrecognized selector");
}
}  // namespace

std::shared_ptr<MCBrowserViewCell> MCBrowserViewCell::copy() const {
  return std::shared_ptr<MCBrowserViewCell>(new MCBrowserViewCell(*this));
}

MCSize MCBrowserViewCell::cellSizeForBounds(const MCRect&, double) { unrecognized("cellSizeForBounds:scale:"); }
std::shared_ptr<const MCImage> MCBrowserViewCell::previewImage() { unrecognized("previewImage"); }
MCRect MCBrowserViewCell::previewSourceRectForCellFrame(const MCRect&) {
  unrecognized("previewSourceRectForCellFrame:");
}
void MCBrowserViewCell::drawWithFrame(const MCRect&, MCView*) { unrecognized("drawWithFrame:inView:"); }

std::shared_ptr<const MCImage> MCBrowserViewCell::dragImageWithSize(MCSize size, MCPoint* offset) {
  if (offset) *offset = {0, 0};
  std::shared_ptr<MCBrowserViewCell> cell = copy();
  cell->setSelected(false);
  double scale = 1;
  if (auto view = controlView(); view && view->window()) scale = view->window()->backingScaleFactor();
  // Flipped, y down from the image's top, as the browser draws its cells.
  return MCImageWithSize(size, scale, [&](MCGraphicsContext&) {
    cell->drawWithFrame(MCMakeRect(0, 0, size.width, size.height), nullptr);
  });
}

bool MCBrowserViewCell::containsPoint(MCPoint point, const MCRect& frame) { return MCPointInRect(point, frame); }

bool MCBrowserViewCell::intersectsRect(const MCRect& rect, const MCRect& frame) { return MCIntersectsRect(rect, frame); }
