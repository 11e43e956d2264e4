#include "BrowseNotice.h"

#include <vesperon/drawing/MCImageExtensions.h>
#include <vesperon/platform/MCGraphicsContext.h>
#include <vesperon/toolkit/MCAttributedString.h>
#include <vesperon/toolkit/MCColor.h>
#include <vesperon/toolkit/MCEvent.h>
#include <vesperon/toolkit/MCTimer.h>

namespace {
// Light text on a dark toast, as GNOME draws them; the action in a light blue that reads on it.
MCTextAttributes textAttributes(const BrowsePalette& palette) {
  return {MCFont::systemFontOfSize(13), palette.noticeText, {}, {}, {}};
}
MCTextAttributes actionAttributes(const BrowsePalette& palette) {
  return {MCFont::boldSystemFontOfSize(13), palette.noticeAction, {}, {}, {}};
}
}  // namespace

BrowseNotice::~BrowseNotice() {
  if (timer_) timer_->invalidate();
}

void BrowseNotice::show(std::string text, std::string actionTitle, std::function<void()> action, double seconds) {
  text_ = std::move(text);
  actionTitle_ = std::move(actionTitle);
  action_ = std::move(action);
  if (timer_) timer_->invalidate();
  std::weak_ptr<MCView> self = sharedView();
  timer_ = MCTimer::scheduledTimer(seconds, false, [self](MCTimer&) {
    if (auto view = self.lock()) static_cast<BrowseNotice&>(*view).dismiss();
  });
  setHidden(false);
  setNeedsDisplay(true);
  if (visibilityChanged) visibilityChanged();
}

void BrowseNotice::dismiss() {
  if (timer_) timer_->invalidate();
  timer_.reset();
  action_ = nullptr;
  if (isHidden()) return;
  setHidden(true);
  if (visibilityChanged) visibilityChanged();
}

void BrowseNotice::setPalette(const BrowsePalette& palette) {
  palette_ = palette;
  setNeedsDisplay(true);
}

MCRect BrowseNotice::actionRect() const {
  const MCSize size = MCAttributedString(actionTitle_, actionAttributes(palette_)).size();
  return MCMakeRect(bounds().size.width - 16 - size.width, (bounds().size.height - size.height) / 2, size.width, size.height);
}

void BrowseNotice::drawRect(const MCRect&) {
  MCGraphicsContext& context = *MCGraphicsContext::currentContext();
  context.beginPath();
  CGContextAddRoundedRectangle(context, bounds(), 8, 8);
  palette_.noticeBackground.setFill(context);
  context.fillPath();
  MCAttributedString line(text_, textAttributes(palette_));
  line.setLineBreakMode(MCLineBreakMode::TruncatingMiddle);
  const MCRect action = actionRect();
  line.drawInRect(MCMakeRect(16, (bounds().size.height - line.size().height) / 2, MCMinX(action) - 32, line.size().height),
                  context);
  MCAttributedString(actionTitle_, actionAttributes(palette_)).drawAtPoint(action.origin, context);
}

void BrowseNotice::mouseDown(const MCEvent& event) {
  const MCPoint at = convertPoint(event.locationInWindow(), nullptr);
  if (!MCPointInRect(at, MCInsetRect(actionRect(), -8, -8))) return;
  auto action = std::move(action_);
  dismiss();
  if (action) action();
}
