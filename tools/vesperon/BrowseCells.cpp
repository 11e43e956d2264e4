#include "BrowseCells.h"

#include <vesperon/platform/MCGraphicsContext.h>
#include <vesperon/toolkit/MCAttributedString.h>
#include <vesperon/toolkit/MCColor.h>
#include <vesperon/toolkit/MCImageDrawing.h>

#include <cmath>

namespace {

void addRoundedRect(MCGraphicsContext& context, const MCRect& r, double radius) {
  radius = std::min({radius, r.size.width / 2, r.size.height / 2});
  context.beginPath();
  context.addArc(MCMinX(r) + radius, MCMinY(r) + radius, radius, M_PI, 1.5 * M_PI, false);
  context.addArc(MCMaxX(r) - radius, MCMinY(r) + radius, radius, 1.5 * M_PI, 2 * M_PI, false);
  context.addArc(MCMaxX(r) - radius, MCMaxY(r) - radius, radius, 0, 0.5 * M_PI, false);
  context.addArc(MCMinX(r) + radius, MCMaxY(r) - radius, radius, 0.5 * M_PI, M_PI, false);
  context.closePath();
}

}  // namespace

// MARK: BrowsePlainCell

void BrowsePlainCell::configure(MCRasterImageRef thumbnail, std::string title, State state, bool selected,
                                bool alternate) {
  thumbnail_ = std::move(thumbnail);
  title_ = std::move(title);
  state_ = state;
  alternate_ = alternate;
  setSelected(selected);
}

MCSize BrowsePlainCell::cellSizeForBounds(const MCRect&, double scale) {
  const double side = std::max(32.0, std::round(kSideAtScaleOne * scale));
  return {side, side + kLabelHeight};
}

MCRect BrowsePlainCell::imageSquare(const MCRect& frame) {
  return MCInsetRect(MCMakeRect(frame.origin.x, frame.origin.y, frame.size.width, frame.size.width), kInset, kInset);
}

std::shared_ptr<const MCImage> BrowsePlainCell::previewImage() { return MCImage::create(thumbnail_); }

MCRect BrowsePlainCell::previewSourceRectForCellFrame(const MCRect& frame) {
  if (!thumbnail_) return imageSquare(frame);
  return MCAspectFitRect({double(thumbnail_->width()), double(thumbnail_->height())}, imageSquare(frame));
}

bool BrowsePlainCell::containsPoint(MCPoint point, const MCRect& frame) {
  return MCPointInRect(point, MCInsetRect(frame, kInset / 2, 0));
}

void BrowsePlainCell::drawWithFrame(const MCRect& frame, MCView*) {
  MCGraphicsContext* context = MCGraphicsContext::currentContext();
  if (!context) return;
  if (isSelected() || alternate_) {
    const MCColor tint = isSelected() ? MCColor::controlAccentColor() : MCColor::colorWithWhite(0.5, 1);
    addRoundedRect(*context, MCInsetRect(frame, 1, 1), 8);
    tint.colorWithAlphaComponent(0.22).setFill(*context);
    context->fillPath();
    addRoundedRect(*context, MCInsetRect(frame, 1.5, 1.5), 8);
    tint.setStroke(*context);
    context->setLineWidth(2);
    context->strokePath();
  }
  const MCRect square = imageSquare(frame);
  if (state_ == State::Loaded && thumbnail_) {
    MCDrawImageInRect(*context, thumbnail_,
                      MCAspectFitRect({double(thumbnail_->width()), double(thumbnail_->height())}, square));
  } else {
    // Loading: a quiet square. Failed: the square crossed out.
    addRoundedRect(*context, MCInsetRect(square, square.size.width * 0.08, square.size.height * 0.08), 6);
    MCColor::colorWithWhite(0.5, state_ == State::Failed ? 0.25 : 0.12).setFill(*context);
    context->fillPath();
    if (state_ == State::Failed) {
      const MCRect mark = MCInsetRect(square, square.size.width * 0.35, square.size.height * 0.35);
      MCColor::colorWithWhite(0.3, 0.8).setStroke(*context);
      context->setLineWidth(3);
      context->beginPath();
      context->moveToPoint(MCMinX(mark), MCMinY(mark));
      context->addLineToPoint(MCMaxX(mark), MCMaxY(mark));
      context->moveToPoint(MCMaxX(mark), MCMinY(mark));
      context->addLineToPoint(MCMinX(mark), MCMaxY(mark));
      context->strokePath();
    }
  }
  MCAttributedString label(title_, {MCFont::systemFontOfSize(11), MCColor::labelColor(), {}, {}, {}});
  label.setAlignment(MCTextAlignment::Center);
  label.setLineBreakMode(MCLineBreakMode::TruncatingMiddle);
  label.drawInRect(MCMakeRect(frame.origin.x + 4, MCMaxY(frame) - kLabelHeight + 3, frame.size.width - 8, kLabelHeight - 3),
                   *context);
}

std::shared_ptr<MCBrowserViewCell> BrowsePlainCell::copy() const { return std::make_shared<BrowsePlainCell>(*this); }

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
  MCAttributedString title(day_, {MCFont::boldSystemFontOfSize(14), MCColor::labelColor(), {}, {}, {}});
  title.appendString("   " + std::to_string(count_) + (count_ == 1 ? " photo" : " photos"),
                     {MCFont::systemFontOfSize(12), MCColor::secondaryLabelColor(), {}, {}, {}});
  title.setLineBreakMode(MCLineBreakMode::TruncatingTail);
  const double height = title.size().height;
  title.drawInRect(MCMakeRect(frame.origin.x + 12, MCMidY(frame) - height / 2, frame.size.width - 24, height), *context);
  MCColor::separatorColor().setFill(*context);
  context->fillRect(MCMakeRect(frame.origin.x + 12, MCMaxY(frame) - 1, frame.size.width - 24, 1));
}

std::shared_ptr<MCBrowserViewCell> BrowseHeaderCell::copy() const { return std::make_shared<BrowseHeaderCell>(*this); }
