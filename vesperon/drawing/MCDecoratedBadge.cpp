#include <vesperon/drawing/MCDecoratedBadge.h>

#include <cairo.h>

#include <algorithm>
#include <cmath>
#include <vector>

namespace {

/// Three box blurs of one channel make a close Gaussian; `radius` in pixels.
void blurAlpha(std::vector<float>& alpha, int width, int height, double radius) {
  const int r = std::max(1, int(std::lround(radius / 2)));
  std::vector<float> line(std::size_t(std::max(width, height)));
  auto pass = [&](int count, int length, auto at) {
    for (int i = 0; i < count; ++i) {
      for (int j = 0; j < length; ++j) line[std::size_t(j)] = at(i, j);
      double sum = 0;
      for (int j = -r; j <= r; ++j) sum += (j >= 0 && j < length) ? line[std::size_t(j)] : 0;
      for (int j = 0; j < length; ++j) {
        at(i, j) = float(sum / (2 * r + 1));
        const int out = j - r, in = j + r + 1;
        if (out >= 0) sum -= line[std::size_t(out)];
        if (in < length) sum += line[std::size_t(in)];
      }
    }
  };
  for (int round = 0; round < 3; ++round) {
    pass(height, width, [&](int y, int x) -> float& { return alpha[std::size_t(y) * std::size_t(width) + std::size_t(x)]; });
    pass(width, height, [&](int x, int y) -> float& { return alpha[std::size_t(y) * std::size_t(width) + std::size_t(x)]; });
  }
}

}  // namespace

MCSize MCDecoratedBadge::contentSize() const { return badge_ ? badge_->size() : MCSize{0, 0}; }

MCSize MCDecoratedBadge::size() const {
  const MCSize inner = contentSize();
  const MCEdgeInsets in = contentInsets();
  double width = inner.width + in.left + in.right, height = inner.height + in.top + in.bottom;
  if (shadow_) {
    width += 2 * shadow_->marginX();
    height += 2 * shadow_->marginY();
  }
  return {std::max(width, minimumSize().width), std::max(height, minimumSize().height)};
}

MCImageRef MCDecoratedBadge::cachedImage() {
  if (cachedImage_) return cachedImage_;
  const MCSize total = size();
  // Composed at the pixel density of the context it is first drawn into, so that later draws
  // copy pixels one for one instead of resampling them.
  double kScale = MCDecoratedBadge::kScale;
  if (MCGraphicsContext* context = MCGraphicsContext::currentContext()) {
    double dx = 1, dy = 0;
    cairo_user_to_device_distance(context->cairoContext(), &dx, &dy);
    kScale = std::clamp(std::round(std::hypot(dx, dy)), 1.0, 4.0);
  }
  // The plate without its shadow first, so that the shadow can be made from its shape.
  auto drawPlate = [this, total](MCGraphicsContext& context) {
    MCRect plate = MCMakeRect(0, 0, total.width, total.height);
    if (shadow_) plate = MCInsetRect(plate, shadow_->marginX(), shadow_->marginY());
    if (backgroundColor_) {
      context.beginPath();
      CGContextAddRoundedRectangle(context, plate, cornerRadius_, cornerRadius_);
      backgroundColor_->setFill(context);
      context.fillPath();
    }
    if (badge_) {
      const MCRect inner = MCInsetRectWithEdgeInsets(plate, contentInsets());
      const MCSize s = badge_->size();
      badge_->drawInRect(MCMakeRect(MCMidX(inner) - s.width / 2, MCMidY(inner) - s.height / 2, s.width, s.height));
    }
  };
  MCImageRef plate = MCImageWithSize(total, kScale, drawPlate);
  if (!plate || !shadow_) return cachedImage_ = plate;

  // The shadow: the plate's alpha, blurred, in the shadow's colour, moved by the offset (y up).
  const MCRasterImage& bitmap = *plate->CGImage();
  const int width = int(bitmap.width()), height = int(bitmap.height());
  std::vector<float> alpha(std::size_t(width) * std::size_t(height));
  for (int y = 0; y < height; ++y)
    for (int x = 0; x < width; ++x) alpha[std::size_t(y) * std::size_t(width) + std::size_t(x)] = bitmap.row(std::size_t(y))[x * 4 + 3] / 255.0f;
  if (shadow_->shadowBlurRadius > 0) blurAlpha(alpha, width, height, shadow_->shadowBlurRadius * kScale);
  const MCColor color = shadow_->shadowColor;
  std::vector<uint8_t> pixels(std::size_t(width) * std::size_t(height) * 4);
  for (std::size_t i = 0; i < alpha.size(); ++i) {
    const double a = std::clamp(double(alpha[i]) * color.alphaComponent(), 0.0, 1.0);
    pixels[i * 4 + 0] = uint8_t(std::lround(color.blueComponent() * a * 255));
    pixels[i * 4 + 1] = uint8_t(std::lround(color.greenComponent() * a * 255));
    pixels[i * 4 + 2] = uint8_t(std::lround(color.redComponent() * a * 255));
    pixels[i * 4 + 3] = uint8_t(std::lround(a * 255));
  }
  auto shadowBitmap = MCRasterImage::create(std::size_t(width), std::size_t(height), 8, 32, std::size_t(width) * 4,
                                            bitmap.colorSpace(), MCImageAlphaPremultipliedFirst | MCBitmapByteOrder32Little,
                                            std::move(pixels));
  auto shadowImage = MCImage::create(shadowBitmap, kScale);
  const MCSize offset = shadow_->shadowOffset;
  cachedImage_ = MCImageWithSize(total, kScale, [&](MCGraphicsContext&) {
    if (shadowImage)
      MCImageDrawInRect(*shadowImage, MCMakeRect(offset.width, -offset.height, total.width, total.height));
    MCImageDrawInRect(*plate, MCMakeRect(0, 0, total.width, total.height));
  });
  return cachedImage_;
}

void MCDecoratedBadge::drawInRect(const MCRect& rect) {
  if (MCImageRef image = cachedImage()) MCImageDrawInRect(*image, rect);
}
