#pragma once
// Image operations the badges and stretchable images build on. An image here is an MCImage: a
// bitmap with a scale, whose size in points is its pixel size divided by the scale.

#include <vesperon/core/MCGeometry.h>
#include <vesperon/pipeline/MCImage.h>
#include <vesperon/platform/MCGraphicsContext.h>
#include <vesperon/toolkit/MCColor.h>

#include <functional>
#include <memory>

/// A shared image.
using MCImageRef = std::shared_ptr<const MCImage>;

/// The image's size in points.
MCSize MCImagePointSize(const MCImage& image);
/// An image of the bitmap at the bitmap's own size (scale 1); none for none.
MCImageRef MCImageSafeImageWithCGImage(const MCRasterImageRef& bitmap);
/// An image `size` points large at `scale` pixels per point, drawn by `draw` into a flipped
/// context (y down from the top left) that is also the current one; none for an empty size.
MCImageRef MCImageWithSize(MCSize size, double scale, const std::function<void(MCGraphicsContext&)>& draw);
/// The part of `image` in `rect` (points, from its top left), cut from its bitmap.
MCImageRef MCImageFromRect(const MCImage& image, const MCRect& rect);
/// A copy whose colour is `color` everywhere the image is not transparent: the colour fills it
/// with the source-atop compositing, so alpha stays and colour changes.
MCImageRef MCImageTintedWithColor(const MCImage& image, const MCColor& color);
/// Draws `image` into `rect` of the current context with the operation and fraction; with
/// `respectFlipped`, upright in a flipped context.
void MCImageDrawInRect(const MCImage& image, const MCRect& rect, MCBlendMode operation = MCBlendMode::Normal,
                       double fraction = 1.0, bool respectFlipped = true);
/// Fills `rect` with `color` through the image's alpha as a mask, in the current context; nothing
/// without a context.
void MCImageDrawInRectWithTint(const MCImage& image, const MCRect& rect, const MCColor& color);

/// Adds a rounded rectangle to the context's path: four quarter ellipses of the two radii, from
/// the right edge's middle through the top, left and bottom edges; with a radius of 0, the plain
/// rectangle.
void CGContextAddRoundedRectangle(MCGraphicsContext& context, const MCRect& rect, double ovalWidth, double ovalHeight);
