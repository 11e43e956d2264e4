#include <vesperon/toolkit/MCColor.h>

#include <vesperon/platform/MCGraphicsContext.h>

void MCColor::setFill(MCGraphicsContext& context) const {
  context.setRGBFillColor(red_, green_, blue_, alpha_);
}

void MCColor::setStroke(MCGraphicsContext& context) const {
  context.setRGBStrokeColor(red_, green_, blue_, alpha_);
}
