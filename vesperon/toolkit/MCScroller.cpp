#include <vesperon/toolkit/MCScroller.h>

#include <vesperon/platform/MCGraphicsContext.h>
#include <vesperon/toolkit/MCColor.h>
#include <vesperon/toolkit/MCScrollView.h>
#include <vesperon/toolkit/MCWindow.h>

#include <algorithm>
#include <cmath>

MCScroller::MCScroller(bool vertical, MCScrollView* scrollView) : vertical_(vertical), scrollView_(scrollView) {}

void MCScroller::setKnobProportion(double proportion, double value) {
  proportion = std::clamp(std::isfinite(proportion) ? proportion : 1.0, 0.0, 1.0);
  value = std::clamp(std::isfinite(value) ? value : 0.0, 0.0, 1.0);
  if (proportion == knobProportion_ && value == doubleValue_) return;
  knobProportion_ = proportion;
  doubleValue_ = value;
  setNeedsDisplay(true);
}

double MCScroller::trackLength() const { return vertical_ ? bounds().size.height : bounds().size.width; }

MCRect MCScroller::knobRect() const {
  if (knobProportion_ >= 1 || isHidden()) return {};
  const double track = trackLength();
  const double length = std::min(track, std::max(kMinimumKnobLength, track * knobProportion_));
  const double start = (track - length) * doubleValue_;
  const double inset = 2, thickness = kThickness - 2 * inset;
  return vertical_ ? MCMakeRect(inset, start, thickness, length) : MCMakeRect(start, inset, length, thickness);
}

void MCScroller::drawRect(const MCRect&) {
  const MCRect knob = knobRect();
  MCGraphicsContext* context = MCGraphicsContext::currentContext();
  if (MCIsEmptyRect(knob) || !context) return;
  const double radius = std::min(knob.size.width, knob.size.height) / 2;
  context->beginPath();
  context->addArc(knob.origin.x + radius, knob.origin.y + radius, radius, M_PI, 1.5 * M_PI, false);
  context->addArc(MCMaxX(knob) - radius, knob.origin.y + radius, radius, 1.5 * M_PI, 2 * M_PI, false);
  context->addArc(MCMaxX(knob) - radius, MCMaxY(knob) - radius, radius, 0, 0.5 * M_PI, false);
  context->addArc(knob.origin.x + radius, MCMaxY(knob) - radius, radius, 0.5 * M_PI, M_PI, false);
  context->closePath();
  MCColor::scrollerKnobColor().setFill(*context);
  context->fillPath();
}

MCView* MCScroller::hitTest(MCPoint point) {
  // Invisible while the document fits: presses go through to the content.
  if (knobProportion_ >= 1) return nullptr;
  return MCView::hitTest(point);
}

void MCScroller::mouseDown(const MCEvent& event) {
  MCWindow* window = this->window();
  if (!window || knobProportion_ >= 1) return;
  const MCRect knob = knobRect();
  const MCPoint start = convertPoint(event.locationInWindow(), nullptr);
  const double along = vertical_ ? start.y : start.x;
  const double knobStart = vertical_ ? knob.origin.y : knob.origin.x;
  const double knobLength = vertical_ ? knob.size.height : knob.size.width;
  const MCClipView& clip = *scrollView_->contentView();
  const MCRect doc = clip.documentRect();
  const double docLength = vertical_ ? doc.size.height : doc.size.width;
  const double visibleLength = vertical_ ? clip.bounds().size.height : clip.bounds().size.width;
  const bool towardStartIsUp = !vertical_ || clip.isFlipped();

  auto scrollToValue = [&](double value) {
    value = std::clamp(value, 0.0, 1.0);
    const double offset = value * (docLength - visibleLength);
    MCPoint origin = clip.bounds().origin;
    if (vertical_) origin.y = towardStartIsUp ? doc.origin.y + offset : MCMaxY(doc) - visibleLength - offset;
    else origin.x = doc.origin.x + offset;
    scrollView_->scrollClipViewToPoint(origin);
  };

  if (along < knobStart || along > knobStart + knobLength) {
    // A press beside the knob pages toward it.
    if (along < knobStart) scrollView_->scrollPageUp();
    else scrollView_->scrollPageDown();
    return;
  }
  const double startValue = doubleValue_;
  const double travel = std::max(1.0, trackLength() - knobLength);
  const std::shared_ptr<MCView> keep = sharedView();
  while (auto next = window->nextEventMatchingMask(MCEventMaskFromType(MCEventType::LeftMouseUp) |
                                                   MCEventMaskFromType(MCEventType::LeftMouseDragged))) {
    if (!this->window()) break;  // removed during the drag
    const MCPoint p = convertPoint(next->locationInWindow(), nullptr);
    const double moved = (vertical_ ? p.y : p.x) - along;
    scrollToValue(startValue + moved / travel);
    if (next->type() == MCEventType::LeftMouseUp) break;
  }
}
