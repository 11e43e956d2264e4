#include "BrowseStatusBar.h"

#include <vesperon/platform/MCGraphicsContext.h>
#include <vesperon/toolkit/MCAttributedString.h>
#include <vesperon/toolkit/MCColor.h>
#include <vesperon/toolkit/MCEvent.h>

#include <algorithm>
#include <cmath>

namespace {

const char* const kClearFilter = "Clear filter";

MCTextAttributes textAttributes(const BrowsePalette& p) { return {MCFont::systemFontOfSize(12), p.barText, {}, {}, {}}; }
// Not the accent blue, too light for small text on a light bar (3.6:1): the palette's link colour.
MCTextAttributes linkAttributes(const BrowsePalette& p) { return {MCFont::systemFontOfSize(12), p.link, {}, {}, {}}; }

}  // namespace

void BrowseStatusBar::setPalette(const BrowsePalette& palette) {
  palette_ = palette;
  setNeedsDisplay(true);
}

void BrowseStatusBar::setText(std::string text) {
  if (text == text_) return;
  text_ = std::move(text);
  setNeedsDisplay(true);
}

void BrowseStatusBar::setShowsClearFilter(bool shows) {
  if (shows == showsClearFilter_) return;
  showsClearFilter_ = shows;
  setNeedsDisplay(true);
}

void BrowseStatusBar::setScaleRange(double minimum, double maximum) {
  minimum_ = minimum;
  maximum_ = std::max(minimum, maximum);
  setNeedsDisplay(true);
}

void BrowseStatusBar::setScale(double scale) {
  if (scale == scale_) return;
  scale_ = scale;
  setNeedsDisplay(true);
}

MCRect BrowseStatusBar::sliderTrackRect() const {
  const MCRect b = bounds();
  return MCMakeRect(b.size.width - kSliderWidth - 30, b.size.height / 2 - 2, kSliderWidth, 4);
}

MCRect BrowseStatusBar::clearFilterRect() const {
  if (!showsClearFilter_) return MCMakeRect(0, 0, 0, 0);
  const MCSize line = MCAttributedString(text_, textAttributes(palette_)).size();
  const MCSize link = MCAttributedString(kClearFilter, linkAttributes(palette_)).size();
  return MCMakeRect(10 + line.width + 12, (bounds().size.height - link.height) / 2, link.width, link.height);
}

void BrowseStatusBar::drawRect(const MCRect& dirty) {
  MCGraphicsContext& context = *MCGraphicsContext::currentContext();
  palette_.bar.setFill(context);
  context.fillRect(dirty);
  palette_.separator.setFill(context);
  context.fillRect(MCMakeRect(0, 0, bounds().size.width, 1));
  MCAttributedString line(text_, textAttributes(palette_));
  line.drawAtPoint({10, (bounds().size.height - line.size().height) / 2}, context);
  if (showsClearFilter_) {
    const MCRect link = clearFilterRect();
    MCAttributedString(kClearFilter, linkAttributes(palette_)).drawAtPoint(link.origin, context);
    linkAttributes(palette_).foregroundColor->setFill(context);
    context.fillRect(MCMakeRect(link.origin.x, MCMaxY(link) - 1, link.size.width, 1));
  }
  // The slider: the track, the part up to the value in the accent colour, the knob.
  const MCRect track = sliderTrackRect();
  const double fraction = maximum_ > minimum_ ? std::clamp((scale_ - minimum_) / (maximum_ - minimum_), 0.0, 1.0) : 0;
  const double knobX = track.origin.x + fraction * track.size.width;
  MCColor::colorWithWhite(palette_.dark ? 1 : 0, 0.2).setFill(context);
  context.fillRect(track);
  MCColor::controlAccentColor().setFill(context);
  context.fillRect(MCMakeRect(track.origin.x, track.origin.y, knobX - track.origin.x, track.size.height));
  const MCRect knob = MCMakeRect(knobX - 7, MCMidY(track) - 7, 14, 14);
  MCColor::colorWithWhite(0, 0.35).setFill(context);
  context.fillEllipseInRect(knob);
  MCColor::whiteColor().setFill(context);
  context.fillEllipseInRect(MCInsetRect(knob, 1, 1));
  // Small and large thumbnails at the two ends say what the slider does.
  MCColor::colorWithWhite(palette_.dark ? 1 : 0, 0.45).setFill(context);
  context.fillRect(MCMakeRect(track.origin.x - 12, MCMidY(track) - 3, 6, 6));
  context.fillRect(MCMakeRect(MCMaxX(track) + 9, MCMidY(track) - 5, 10, 10));
}

void BrowseStatusBar::slideTo(const MCEvent& event) {
  const MCPoint at = convertPoint(event.locationInWindow(), nullptr);
  const MCRect track = sliderTrackRect();
  const double fraction = std::clamp((at.x - track.origin.x) / track.size.width, 0.0, 1.0);
  const double value = minimum_ + fraction * (maximum_ - minimum_);
  setScale(value);
  if (scaleChanged) scaleChanged(value);
}

void BrowseStatusBar::mouseDown(const MCEvent& event) {
  const MCPoint at = convertPoint(event.locationInWindow(), nullptr);
  sliding_ = false;
  if (showsClearFilter_ && MCPointInRect(at, MCInsetRect(clearFilterRect(), -4, -4))) {
    if (clearFilter) clearFilter();
    return;
  }
  const MCRect track = sliderTrackRect();
  if (MCPointInRect(at, MCMakeRect(track.origin.x - 8, 0, track.size.width + 16, bounds().size.height))) {
    sliding_ = true;
    slideTo(event);
  }
}

void BrowseStatusBar::mouseDragged(const MCEvent& event) {
  if (sliding_) slideTo(event);
}

std::vector<MCAccessibilityElement> BrowseStatusBar::accessibilityElements() const {
  std::vector<MCAccessibilityElement> elements;
  MCAccessibilityElement line;
  line.role = MCAccessibilityRole::StaticText;
  line.label = text_;
  const MCSize size = MCAttributedString(text_, textAttributes(palette_)).size();
  line.frame = MCMakeRect(10, (bounds().size.height - size.height) / 2, size.width, size.height);
  elements.push_back(line);
  if (showsClearFilter_) {
    MCAccessibilityElement link;
    link.role = MCAccessibilityRole::Link;
    link.label = kClearFilter;
    link.frame = clearFilterRect();
    elements.push_back(link);
  }
  MCAccessibilityElement slider;
  slider.role = MCAccessibilityRole::Slider;
  slider.label = "Thumbnail size";
  slider.minimum = minimum_;
  slider.maximum = maximum_;
  slider.current = scale_;
  slider.value = std::to_string(int(std::lround(100 * scale_ / maximum_))) + "%";
  slider.frame = MCInsetRect(sliderTrackRect(), 0, -8);
  elements.push_back(slider);
  return elements;
}
