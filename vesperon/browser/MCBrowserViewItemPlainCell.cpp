#include <vesperon/browser/MCBrowserViewItemPlainCell.h>

#include <vesperon/browser/MCItemCellDrawing.h>
#include <vesperon/platform/MCGraphicsContext.h>
#include <vesperon/toolkit/MCView.h>

#include <algorithm>
#include <cmath>

namespace {


MCSize badgeSize(const MCBadgeRef& badge) { return badge ? badge->size() : MCSize{0, 0}; }

bool needs(MCView* view, const MCRect& rect) { return !view || view->needsToDrawRect(rect); }

/// Edges to the nearest whole point (NSIntegralRectWithOptions, all edges nearest).
MCRect nearestEdges(const MCRect& r) {
  const double x0 = std::round(MCMinX(r)), y0 = std::round(MCMinY(r));
  const double x1 = std::round(MCMaxX(r)), y1 = std::round(MCMaxY(r));
  return MCMakeRect(x0, y0, x1 - x0, y1 - y0);
}

}  // namespace

double MCBrowserViewItemPlainCell::defaultTitleHeight() const { return mc_detail::itemCellLineHeight(titleAttributes.font.value_or(MCFont::systemFontOfSize(13))); }
double MCBrowserViewItemPlainCell::defaultSubtitleHeight() const { return mc_detail::itemCellLineHeight(subtitleAttributes.font.value_or(MCFont::systemFontOfSize(13))); }

std::shared_ptr<MCBrowserViewCell> MCBrowserViewItemPlainCell::copy() const {
  return std::make_shared<MCBrowserViewItemPlainCell>(*this);
}

MCSize MCBrowserViewItemPlainCell::cellSizeForBounds(const MCRect& bounds, double scale) {
  const double hp = frameInsets.left + frameInsets.right;
  double vp = frameInsets.top + frameInsets.bottom;
  if (shouldShowTitle) vp += titleInsets.top + defaultTitleHeight() + titleInsets.bottom;
  if (shouldShowSubtitle) vp += subtitleInsets.top + defaultSubtitleHeight() + subtitleInsets.bottom;
  const double iw = std::ceil(scale * defaultImageWidth()), ih = std::ceil(scale * defaultImageHeight());
  double aw = std::min(iw, bounds.size.width - hp), ah = std::min(ih, bounds.size.height - vp);
  const double a = ih > 0 ? iw / ih : 1;
  if (aw < ah * a) ah = std::trunc(aw / a);
  else aw = std::trunc(ah * a);
  return {aw + hp, ah + vp};
}

MCRect MCBrowserViewItemPlainCell::boundsForCellFrame(const MCRect& frame) const {
  return MCInsetRectWithEdgeInsets(frame, frameInsets);
}

MCSize MCBrowserViewItemPlainCell::titleSizeForBoundsSize(MCSize size) const {
  if (!shouldShowTitle && !shouldShowSubtitle) return {0, 0};
  double height = 0;
  if (shouldShowTitle) height += titleInsets.top + defaultTitleHeight() + titleInsets.bottom;
  if (shouldShowSubtitle) height += subtitleInsets.top + defaultSubtitleHeight() + subtitleInsets.bottom;
  return {size.width, height};
}

MCSize MCBrowserViewItemPlainCell::imageSizeForBoundsSize(MCSize size) const {
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

MCSize MCBrowserViewItemPlainCell::contentSizeForBoundsSize(MCSize size) const {
  const MCSize i = imageSizeForBoundsSize(size), t = titleSizeForBoundsSize(size);
  return {std::max(i.width, t.width), i.height + t.height};
}

MCRect MCBrowserViewItemPlainCell::contentRectForCellFrame(const MCRect& frame) const {
  const MCRect b = boundsForCellFrame(frame);
  const MCSize c = contentSizeForBoundsSize(b.size);
  if (c.width > 0 && c.height > 0)
    return MCMakeRect(b.origin.x + (b.size.width - c.width) / 2, b.origin.y + (b.size.height - c.height) / 2, c.width,
                      c.height);
  return b;
}

MCRect MCBrowserViewItemPlainCell::imageRectForContentRect(const MCRect& c) const {
  const double t = titleSizeForBoundsSize(c.size).height;
  const double h = t > 0 ? c.size.height - t : c.size.height;
  MCRect r = MCMakeRect(c.origin.x, c.origin.y, c.size.width, h);
  if (imageSize.width > 0 && imageSize.height > 0) {
    const double a = imageSize.width / imageSize.height;
    if (c.size.width < h * a) {
      r.size.height = c.size.width / a;
      r.origin.y += (h - r.size.height) / 2;
    } else {
      r.size.width = h * a;
      r.origin.x += (c.size.width - r.size.width) / 2;
    }
  }
  return nearestEdges(r);
}

MCRect MCBrowserViewItemPlainCell::selectionRectForContentRect(const MCRect& content) const {
  return MCInsetRect(imageRectForContentRect(content), selectionPadding, selectionPadding);
}

MCRect MCBrowserViewItemPlainCell::previewSourceRectForCellFrame(const MCRect& frame) {
  return imageRectForContentRect(contentRectForCellFrame(frame));
}

bool MCBrowserViewItemPlainCell::containsPoint(MCPoint point, const MCRect& frame) {
  return MCPointInRect(point, previewSourceRectForCellFrame(frame));
}

bool MCBrowserViewItemPlainCell::intersectsRect(const MCRect& rect, const MCRect& frame) {
  return MCIntersectsRect(rect, previewSourceRectForCellFrame(frame));
}

MCRect MCBrowserViewItemPlainCell::titlePartRectForContentRect(const MCRect& c) const {
  if (!shouldShowTitle && !shouldShowSubtitle) return {};
  const double height = titleSizeForBoundsSize(c.size).height;
  return MCMakeRect(c.origin.x, c.origin.y + c.size.height - height, c.size.width, height);
}

MCRect MCBrowserViewItemPlainCell::titleRectForTitlePartRect(const MCRect& p) const {
  if (!shouldShowTitle) return {};
  return MCMakeRect(p.origin.x + titleInsets.left, p.origin.y + titleInsets.top,
                    p.size.width - (titleInsets.left + titleInsets.right), defaultTitleHeight());
}

MCRect MCBrowserViewItemPlainCell::subtitleRectForTitlePartRect(const MCRect& p) const {
  if (!shouldShowSubtitle) return {};
  double y = p.origin.y + subtitleInsets.top;
  if (shouldShowTitle) y += titleInsets.top + defaultTitleHeight() + titleInsets.bottom;
  return MCMakeRect(p.origin.x + subtitleInsets.left, y, p.size.width - (subtitleInsets.left + subtitleInsets.right),
                    defaultSubtitleHeight());
}

MCRect MCBrowserViewItemPlainCell::badgeStateRectForImageRect(const MCRect& i) const {
  const MCSize s = badgeSize(stateBadge);
  return MCMakeRect(i.origin.x + 4, i.origin.y + i.size.height - s.height - 4, s.width, s.height);
}

MCRect MCBrowserViewItemPlainCell::badgeFlagsRectForImageRect(const MCRect& i) const {
  const MCSize s = badgeSize(flagsBadge);
  return MCMakeRect(i.origin.x + i.size.width - s.width - 4, i.origin.y + 4, s.width, s.height);
}

MCRect MCBrowserViewItemPlainCell::badgeLockedRectForContentRect(const MCRect& r) const {
  const MCSize s = badgeSize(lockedBadge);
  return MCMakeRect(r.origin.x + r.size.width - s.width - 4, r.origin.y + r.size.height - s.height - 3, s.width, s.height);
}

MCRect MCBrowserViewItemPlainCell::badgeMarkedRectForContentRect(const MCRect& r) const {
  const MCSize s = badgeSize(markedBadge);
  return MCMakeRect(r.origin.x + r.size.width - s.width - 4, r.origin.y + r.size.height - s.height - 3, s.width, s.height);
}

MCRect MCBrowserViewItemPlainCell::badgeMediaSourceRectForContentRect(const MCRect& r) const {
  const MCSize s = mediaSourceBadge ? MCImagePointSize(*mediaSourceBadge) : MCSize{0, 0};
  return MCMakeRect(r.origin.x, r.origin.y, s.width, s.height);
}

void MCBrowserViewItemPlainCell::drawWithFrame(const MCRect& frame, MCView* view) {
  if (view && !view->needsToDrawRect(frame)) return;
  const MCRect content = contentRectForCellFrame(frame);
  if (needs(view, content)) drawContentInRect(content, view);
  if (isSelected()) drawSelectionInRect(selectionRectForContentRect(content));
}

void MCBrowserViewItemPlainCell::drawSelectionInRect(const MCRect& rect) {
  MCGraphicsContext* context = MCGraphicsContext::currentContext();
  if (!context) return;
  context->beginPath();
  CGContextAddRoundedRectangle(*context, rect, selectionRadius, selectionRadius);
  if (selectionColor) selectionColor->setStroke(*context);
  context->setLineWidth(selectionThickness);
  context->strokePath();
}

void MCBrowserViewItemPlainCell::drawContentInRect(const MCRect& content, MCView* view) {
  const MCRect imageRect = imageRectForContentRect(content);
  if (needs(view, imageRect)) drawImageWithBadgesInRect(imageRect);
  if (!shouldShowTitle && !shouldShowSubtitle) return;
  const MCRect titlePart = titlePartRectForContentRect(content);
  if (shouldShowTitle && needs(view, titlePart)) drawTitleInRect(titleRectForTitlePartRect(titlePart));
  if (shouldShowSubtitle && needs(view, titlePart)) drawSubtitleInRect(subtitleRectForTitlePartRect(titlePart));
}

void MCBrowserViewItemPlainCell::drawImageWithBadgesInRect(const MCRect& r) {
  if (shouldDrawImagePlaceholder) drawImagePlaceholderInRect(r);
  else drawImageInRect(r);
  if ((shouldShowBadgeFlags || shouldShowBadgeScore) && flagsBadge) drawBadgeFlagsInRect(badgeFlagsRectForImageRect(r));
  if (shouldShowBadgeState && stateBadge) drawBadgeStateInRect(badgeStateRectForImageRect(r));
  if (shouldShowBadgeLocked && lockedBadge) lockedBadge->drawInRect(badgeLockedRectForContentRect(r));
  if (shouldShowBadgeMarked && markedBadge) markedBadge->drawInRect(badgeMarkedRectForContentRect(r));
  if (shouldShowBadgeSource && mediaSourceBadge) drawBadgeMediaSourceInRect(badgeMediaSourceRectForContentRect(r));
}

void MCBrowserViewItemPlainCell::drawBadgeFlagsInRect(const MCRect& rect) {
  if (flagsBadge) flagsBadge->drawInRect(rect);
}

void MCBrowserViewItemPlainCell::drawBadgeStateInRect(const MCRect& rect) {
  if (stateBadge) stateBadge->drawInRect(rect);
}

void MCBrowserViewItemPlainCell::drawBadgeMediaSourceInRect(const MCRect& rect) {
  if (mediaSourceBadge) MCImageDrawInRect(*mediaSourceBadge, rect);
}

void MCBrowserViewItemPlainCell::drawImageInRect(const MCRect& rect) {
  mc_detail::drawItemCellImage(image, rect, imageRadius, shouldDrawImageDimmed);
}

void MCBrowserViewItemPlainCell::drawImagePlaceholderInRect(const MCRect& rect) {
  mc_detail::drawItemCellPlaceholder(rect, imageRadius);
}

void MCBrowserViewItemPlainCell::drawTitleInRect(const MCRect& rect) {
  mc_detail::drawItemCellText(title, titleAttributes, rect);
}

void MCBrowserViewItemPlainCell::drawSubtitleInRect(const MCRect& rect) {
  mc_detail::drawItemCellText(subtitle, subtitleAttributes, rect);
}
