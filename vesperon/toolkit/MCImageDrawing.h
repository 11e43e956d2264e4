#pragma once
// Drawing images as views do: upright whichever way the context is flipped, with a fraction of
// opacity and a blend mode, and fitted into a rectangle keeping the image's proportions.

#include <vesperon/core/MCGeometry.h>
#include <vesperon/platform/MCGraphicsContext.h>
#include <vesperon/platform/MCRasterImage.h>

/// Draws `image` into `rect` upright: in a flipped context (MCGraphicsContext::isFlipped) the
/// image's top row goes to the rectangle's minimum y, otherwise to its maximum y.
void MCDrawImageInRect(MCGraphicsContext& context, const MCRasterImageRef& image, const MCRect& rect,
                       MCBlendMode operation = MCBlendMode::Normal, double fraction = 1.0);

/// The largest rectangle of the image's proportions that fits in `bounds`, centred; zero for an
/// image or bounds without area.
MCRect MCAspectFitRect(MCSize imageSize, const MCRect& bounds);
