#include <vesperon/browser/MCBrowserViewCell.h>

#include <vesperon/platform/MCColorSpace.h>
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
  const auto width = std::size_t(std::ceil(size.width * scale)), height = std::size_t(std::ceil(size.height * scale));
  auto context = MCGraphicsContext::create(width, height, 8, 0, MCColorSpace::sRGB(),
                                           MCImageAlphaPremultipliedFirst | MCBitmapByteOrder32Little);
  if (!context) return nullptr;
  // Flipped: y down from the image's top, as the browser draws its cells.
  context->scaleCTM(scale, scale);
  context->translateCTM(0, size.height);
  context->scaleCTM(1, -1);
  context->setFlipped(true);
  MCGraphicsContext* outer = MCGraphicsContext::currentContext();
  MCGraphicsContext::setCurrentContext(context.get());
  cell->drawWithFrame(MCMakeRect(0, 0, size.width, size.height), nullptr);
  MCGraphicsContext::setCurrentContext(outer);
  return MCImage::create(context->createImage(), scale);
}

bool MCBrowserViewCell::containsPoint(MCPoint point, const MCRect& frame) { return MCPointInRect(point, frame); }

bool MCBrowserViewCell::intersectsRect(const MCRect& rect, const MCRect& frame) { return MCIntersectsRect(rect, frame); }
