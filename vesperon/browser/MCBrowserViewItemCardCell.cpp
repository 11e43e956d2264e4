#include <vesperon/browser/MCBrowserViewItemCardCell.h>

#include <vesperon/browser/MCItemCellDrawing.h>
#include <vesperon/platform/MCGraphicsContext.h>
#include <vesperon/toolkit/MCView.h>

#include <algorithm>
#include <cmath>

namespace {


MCSize badgeSize(const MCBadgeRef& badge) { return badge ? badge->size() : MCSize{0, 0}; }

}  // namespace

double MCBrowserViewItemCardCell::defaultTitleHeight() {
  static const double height = mc_detail::itemCellLineHeight(MCFont::systemFontOfSize(13));
  return height;
}

double MCBrowserViewItemCardCell::defaultSubtitleHeight() {
  static const double height = mc_detail::itemCellLineHeight(MCFont::systemFontOfSize(11));
  return height;
}

bool MCBrowserViewItemCardCell::needs(MCView* view, const MCRect& rect) { return !view || view->needsToDrawRect(rect); }

std::shared_ptr<MCBrowserViewCell> MCBrowserViewItemCardCell::copy() const {
  return std::make_shared<MCBrowserViewItemCardCell>(*this);
}

// MARK: Geometry

MCSize MCBrowserViewItemCardCell::cellSizeForBounds(const MCRect& bounds, double scale) {
  const double hp = frameInsets.left + frameInsets.right + imageInsets.left + imageInsets.right;
  double vp = frameInsets.top + frameInsets.bottom + imageInsets.top + imageInsets.bottom;
  if (shouldShowTitle) vp += titleInsets.top + defaultTitleHeight() + titleInsets.bottom;
  if (shouldShowSubtitle) vp += subtitleInsets.top + defaultSubtitleHeight() + subtitleInsets.bottom;
  const double iw = std::ceil(scale * defaultImageWidth()), ih = std::ceil(scale * defaultImageHeight());
  const double aw = std::min(iw, bounds.size.width - hp), ah = std::min(ih, bounds.size.height - vp);
  const double a = iw / ih;
  MCSize image;
  if (aw < ah * a) image = {aw, aw / a};
  else image = {ah * a, ah};
  return {std::trunc(hp + image.width), std::trunc(vp + image.height)};
}

MCRect MCBrowserViewItemCardCell::contentRectForBounds(const MCRect& bounds) const {
  return MCInsetRectWithEdgeInsets(bounds, frameInsets);
}

MCSize MCBrowserViewItemCardCell::titleSizeForBoundsSize(MCSize size) const {
  if (!shouldShowTitle && !shouldShowSubtitle) return {0, 0};
  double height = 0;
  if (shouldShowTitle) height += titleInsets.top + defaultTitleHeight() + titleInsets.bottom;
  if (shouldShowSubtitle) height += subtitleInsets.top + defaultSubtitleHeight() + subtitleInsets.bottom;
  return {size.width, height};
}

MCSize MCBrowserViewItemCardCell::imageSizeForBoundsSize(MCSize size) const {
  double w = size.width, h = size.height;
  const double t = titleSizeForBoundsSize(size).height;
  if (t > 0) h -= t;
  if (imageSize.width > 0 && imageSize.height > 0) {
    const double a = imageSize.width / imageSize.height;
    if (w < h * a) h = w / a;
    else w = h * a;
  }
  return {std::ceil(w), std::ceil(h)};
}

MCRect MCBrowserViewItemCardCell::imagePartRectForContentRect(const MCRect& c) const {
  const double x = c.origin.x + imageInsets.left, y = c.origin.y + imageInsets.top;
  const double w = c.size.width - (imageInsets.left + imageInsets.right);
  const double h0 = c.size.height - (imageInsets.top + imageInsets.bottom);
  return MCMakeRect(x, y, w, h0 - titleSizeForBoundsSize({w, h0}).height);
}

MCRect MCBrowserViewItemCardCell::imageRectForImagePartRect(const MCRect& p) const {
  MCRect r = p;
  if (imageSize.width > 0 && imageSize.height > 0) {
    const double a = imageSize.width / imageSize.height;
    if (p.size.width < p.size.height * a) {
      r.size.height = p.size.width / a;
      r.origin.y += (p.size.height - r.size.height) / 2;
    } else {
      r.size.width = p.size.height * a;
      r.origin.x += (p.size.width - r.size.width) / 2;
    }
  }
  return MCIntegralRect(r);
}

MCRect MCBrowserViewItemCardCell::imageRectForBounds(const MCRect& bounds) const {
  return imageRectForImagePartRect(imagePartRectForContentRect(contentRectForBounds(bounds)));
}

MCRect MCBrowserViewItemCardCell::selectionRectForContentRect(const MCRect& content) const {
  return imageRectForImagePartRect(imagePartRectForContentRect(content));
}

MCRect MCBrowserViewItemCardCell::titlePartRectForContentRect(const MCRect& c) const {
  if (!shouldShowTitle && !shouldShowSubtitle) return {};
  const double height = titleSizeForBoundsSize(c.size).height;
  return MCMakeRect(c.origin.x, c.origin.y + c.size.height - height, c.size.width, height);
}

MCRect MCBrowserViewItemCardCell::titleRectForTitlePartRect(const MCRect& p) const {
  if (!shouldShowTitle) return {};
  return MCIntegralRect(MCMakeRect(p.origin.x + titleInsets.left, p.origin.y + titleInsets.top,
                                   p.size.width - (titleInsets.left + titleInsets.right), defaultTitleHeight()));
}

MCRect MCBrowserViewItemCardCell::subtitleRectForTitlePartRect(const MCRect& p) const {
  if (!shouldShowSubtitle) return {};
  const double leftLimit = p.origin.x + subtitleInsets.left;
  double rightLimit = p.origin.x + p.size.width - subtitleInsets.right;
  double y = p.origin.y + subtitleInsets.top;
  if (shouldShowTitle) y += titleInsets.top + defaultTitleHeight() + titleInsets.bottom;
  if (shouldShowBadgeLocked || shouldShowBadgeMarked) {
    const MCRect b = shouldShowBadgeLocked ? badgeLockedRectForContentRect(p) : badgeMarkedRectForContentRect(p);
    rightLimit = std::min(rightLimit, b.origin.x - subtitleInsets.right);
  }
  const MCSize text = MCAttributedString(subtitle, subtitleAttributes).size();
  const double c = p.origin.x + p.size.width / 2, a = c - text.width / 2, e = c + text.width / 2;
  const double shift = std::max(e - rightLimit, 0.0);
  const double left = std::max(leftLimit, a - shift), right = std::min(rightLimit, e);
  return MCIntegralRect(MCMakeRect(left, y, right - left, text.height));
}

MCRect MCBrowserViewItemCardCell::badgeStateRectForImageRect(const MCRect& i) const {
  const MCSize s = badgeSize(stateBadge);
  return MCMakeRect(i.origin.x + 4, i.origin.y + i.size.height - s.height - 4, s.width, s.height);
}

MCRect MCBrowserViewItemCardCell::badgeFlagsRectForImageRect(const MCRect& i) const {
  const MCSize s = badgeSize(flagsBadge);
  return MCMakeRect(i.origin.x + i.size.width - s.width - 4, i.origin.y + 4, s.width, s.height);
}

MCRect MCBrowserViewItemCardCell::badgeLockedRectForContentRect(const MCRect& c) const {
  const MCSize s = badgeSize(lockedBadge);
  return MCMakeRect(c.origin.x + c.size.width - s.width - 2, c.origin.y + c.size.height - s.height - 2, s.width, s.height);
}

MCRect MCBrowserViewItemCardCell::badgeMarkedRectForContentRect(const MCRect& c) const {
  const MCSize s = badgeSize(markedBadge);
  return MCMakeRect(c.origin.x + c.size.width - s.width - 2, c.origin.y + c.size.height - s.height - 2, s.width, s.height);
}

MCRect MCBrowserViewItemCardCell::badgeMediaSourceRectForContentRect(const MCRect& c) const {
  const MCSize s = mediaSourceBadge ? MCImagePointSize(*mediaSourceBadge) : MCSize{0, 0};
  return MCMakeRect(c.origin.x, c.origin.y, s.width, s.height);
}

// MARK: Drawing

void MCBrowserViewItemCardCell::drawWithFrame(const MCRect& frame, MCView* view) {
  if (view && !view->needsToDrawRect(frame)) return;
  const MCRect content = contentRectForBounds(frame);
  drawBackgroundInRect(content);
  drawContentInRect(content, view);
  if (isSelected()) drawSelectionInRect(frame);
}

void MCBrowserViewItemCardCell::drawBackgroundInRect(const MCRect& rect) {
  MCGraphicsContext* context = MCGraphicsContext::currentContext();
  if (!context) return;
  context->beginPath();
  CGContextAddRoundedRectangle(*context, rect, backgroundRadius, backgroundRadius);
  if (backgroundColor) backgroundColor->setFill(*context);
  context->fillPath();
}

void MCBrowserViewItemCardCell::drawSelectionInRect(const MCRect& rect) {
  MCGraphicsContext* context = MCGraphicsContext::currentContext();
  if (!context) return;
  context->beginPath();
  CGContextAddRoundedRectangle(*context, MCInsetRect(rect, 1.5, 1.5), 8.5, 8.5);
  if (selectionColor) selectionColor->setStroke(*context);
  context->setLineWidth(3.0);
  context->strokePath();
}

void MCBrowserViewItemCardCell::drawContentInRect(const MCRect& content, MCView* view) {
  const MCRect imagePart = imagePartRectForContentRect(content);
  if (needs(view, imagePart)) drawImagePartInRect(imagePart, view);
  if (shouldShowTitle || shouldShowSubtitle) {
    const MCRect titlePart = titlePartRectForContentRect(content);
    if (needs(view, titlePart)) drawTitlePartInRect(titlePart);
  }
  if (!shouldDrawMarkedBadgeOverImage) {
    if (shouldShowBadgeLocked && lockedBadge) lockedBadge->drawInRect(badgeLockedRectForContentRect(content));
    if (shouldShowBadgeMarked && markedBadge) markedBadge->drawInRect(badgeMarkedRectForContentRect(content));
  }
  if (shouldShowBadgeSource && mediaSourceBadge) drawBadgeMediaSourceInRect(badgeMediaSourceRectForContentRect(content));
}

void MCBrowserViewItemCardCell::drawImagePartInRect(const MCRect& part, MCView*) {
  const MCRect r = imageRectForImagePartRect(part);
  if (shouldDrawImagePlaceholder) drawImagePlaceholderInRect(r);
  else drawImageInRect(r);
  if ((shouldShowBadgeFlags || shouldShowBadgeScore) && flagsBadge) drawBadgeFlagsInRect(badgeFlagsRectForImageRect(r));
  if (shouldShowBadgeState && stateBadge) drawBadgeStateInRect(badgeStateRectForImageRect(r));
  if (shouldDrawMarkedBadgeOverImage) {
    if (shouldShowBadgeMarked && markedBadge) markedBadge->drawInRect(badgeMarkedRectForContentRect(r));
    if (shouldShowBadgeLocked && lockedBadge) lockedBadge->drawInRect(badgeLockedRectForContentRect(r));
  }
}

void MCBrowserViewItemCardCell::drawImageInRect(const MCRect& rect) {
  mc_detail::drawItemCellImage(image, rect, imageRadius, shouldDrawImageDimmed);
}

void MCBrowserViewItemCardCell::drawImagePlaceholderInRect(const MCRect& rect) {
  mc_detail::drawItemCellPlaceholder(rect, imageRadius);
}

void MCBrowserViewItemCardCell::drawBadgeFlagsInRect(const MCRect& rect) {
  if (flagsBadge) flagsBadge->drawInRect(rect);
}

void MCBrowserViewItemCardCell::drawBadgeStateInRect(const MCRect& rect) {
  if (stateBadge) stateBadge->drawInRect(rect);
}

void MCBrowserViewItemCardCell::drawBadgeMediaSourceInRect(const MCRect& rect) {
  if (mediaSourceBadge) MCImageDrawInRect(*mediaSourceBadge, rect);
}

void MCBrowserViewItemCardCell::drawTitlePartInRect(const MCRect& part) {
  if (shouldShowTitle) drawTitleInRect(titleRectForTitlePartRect(part));
  if (shouldShowSubtitle) drawSubtitleInRect(subtitleRectForTitlePartRect(part));
}

void MCBrowserViewItemCardCell::drawTitleInRect(const MCRect& rect) {
  mc_detail::drawItemCellText(title, titleAttributes, rect);
}

void MCBrowserViewItemCardCell::drawSubtitleInRect(const MCRect& rect) {
  mc_detail::drawItemCellText(subtitle, subtitleAttributes, rect);
}
