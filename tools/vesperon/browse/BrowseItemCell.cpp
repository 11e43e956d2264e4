#include "BrowseItemCell.h"

#include <vesperon/drawing/MCImageExtensions.h>
#include <vesperon/platform/MCGraphicsContext.h>
#include <vesperon/toolkit/MCColor.h>

#include <utility>
#include <vector>

namespace {

// The byte offsets at which the characters of a UTF-8 text begin, and its length at the end.
std::vector<std::size_t> characterStarts(const std::string& text) {
  std::vector<std::size_t> starts;
  for (std::size_t i = 0; i < text.size(); ++i)
    if ((static_cast<unsigned char>(text[i]) & 0xC0) != 0x80) starts.push_back(i);
  starts.push_back(text.size());
  return starts;
}

double widthOf(const std::string& text, const MCTextAttributes& attributes) {
  return MCAttributedString(text, attributes).size().width;
}

}  // namespace

std::string BrowseItemCell::titleFittingWidth(const std::string& text, double width, const MCTextAttributes& attributes) {
  if (text.empty() || widthOf(text, attributes) <= width) return text;
  const std::vector<std::size_t> starts = characterStarts(text);
  const std::size_t count = starts.size() - 1;
  const auto cut = [&](std::size_t kept) {
    const std::size_t head = kept / 2, tail = kept - head;
    return text.substr(0, starts[head]) + "…" + text.substr(starts[count - tail]);
  };
  // The most characters kept that still fit; at least the ellipsis.
  std::size_t low = 0, high = count - 1;
  while (low < high) {
    const std::size_t middle = (low + high + 1) / 2;
    if (widthOf(cut(middle), attributes) <= width) low = middle;
    else high = middle - 1;
  }
  return cut(low);
}

void BrowseItemCell::drawWithFrame(const MCRect& frame, MCView* view) {
  const MCRect titleRect = titleRectForTitlePartRect(titlePartRectForContentRect(contentRectForBounds(frame)));
  std::string whole = title;
  title = titleFittingWidth(whole, titleRect.size.width, titleAttributes);
  MCBrowserViewItemCardCell::drawWithFrame(frame, view);
  title = std::move(whole);
  if (state == State::Shown || !shouldDrawImagePlaceholder) return;
  MCGraphicsContext* context = MCGraphicsContext::currentContext();
  if (!context) return;
  // A placeholder that shows against the card, and words over it dark enough to read (4.8:1).
  const MCRect image = imageRectForBounds(frame);
  context->beginPath();
  CGContextAddRoundedRectangle(*context, image, imageRadius, imageRadius);
  placeholderColor.setFill(*context);
  context->fillPath();
  MCAttributedString words(state == State::Loading ? "Loading…" : "Cannot be read",
                           {MCFont::systemFontOfSize(11), placeholderTextColor, {}, {}, {}});
  const MCSize size = words.size();
  if (size.width <= image.size.width - 8 && size.height <= image.size.height)
    words.drawAtPoint({MCMidX(image) - size.width / 2, MCMidY(image) - size.height / 2}, *context);
  if (shouldShowBadgeState && stateBadge) drawBadgeStateInRect(badgeStateRectForImageRect(image));
}

std::shared_ptr<MCBrowserViewCell> BrowseItemCell::copy() const { return std::make_shared<BrowseItemCell>(*this); }
