#include "BrowseCells.h"

#include <vesperon/platform/MCGraphicsContext.h>
#include <vesperon/toolkit/MCAttributedString.h>
#include <vesperon/toolkit/MCColor.h>

#include <cmath>


// MARK: BrowseHeaderCell

void BrowseHeaderCell::configure(std::string day, std::size_t count) {
  day_ = std::move(day);
  count_ = count;
}

MCSize BrowseHeaderCell::cellSizeForBounds(const MCRect& bounds, double) {
  const double width = bounds.size.width > 1e300 ? 240 : bounds.size.width;
  return {width, kHeight};
}

void BrowseHeaderCell::drawWithFrame(const MCRect& frame, MCView*) {
  MCGraphicsContext* context = MCGraphicsContext::currentContext();
  if (!context) return;
  MCAttributedString title(day_, {MCFont::boldSystemFontOfSize(14), textColor, {}, {}, {}});
  title.appendString("   " + std::to_string(count_) + (count_ == 1 ? " photo" : " photos"),
                     {MCFont::systemFontOfSize(12), secondaryColor, {}, {}, {}});
  title.setLineBreakMode(MCLineBreakMode::TruncatingTail);
  const double height = title.size().height;
  title.drawInRect(MCMakeRect(frame.origin.x + 12, MCMidY(frame) - height / 2, frame.size.width - 24, height), *context);
  separatorColor.setFill(*context);
  context->fillRect(MCMakeRect(frame.origin.x + 12, MCMaxY(frame) - 1, frame.size.width - 24, 1));
}

std::shared_ptr<MCBrowserViewCell> BrowseHeaderCell::copy() const { return std::make_shared<BrowseHeaderCell>(*this); }
