#include <vesperon/pixels/MCCachableImage.h>

#include <cmath>

MCCachableImage::MCCachableImage(MCRasterImageRef image) : cachedImage_(image), image_(std::move(image)) {
  if (image_) cachedSize_ = MCMakeSize(double(image_->width()), double(image_->height()));
}

void MCCachableImage::drawInRect(MCGraphicsContext& context, const MCRect& rect) {
  if (!image_) return;
  if (!MCEqualSizes(rect.size, cachedSize_)) {
    cachedSize_ = rect.size;
    cachedImage_ = nullptr;
    if (rect.size.width > 0 && rect.size.height > 0 && rect.size.width < 32768 && rect.size.height < 32768) {
      const auto w = std::size_t(std::ceil(rect.size.width)), h = std::size_t(std::ceil(rect.size.height));
      auto bitmap = MCGraphicsContext::create(w, h, 8, 0, MCColorSpace::sRGB(), MCImageAlphaPremultipliedLast);
      if (bitmap) {
        bitmap->drawImage(MCMakeRect(0, 0, rect.size.width, rect.size.height), image_);
        cachedImage_ = bitmap->createImage();
      }
    }
  }
  // The cached copy has whole pixels; draw only its part that the rectangle covers.
  if (!cachedImage_) {
    context.drawImage(rect, image_);
    return;
  }
  const double cw = double(cachedImage_->width()), ch = double(cachedImage_->height());
  if (cw == rect.size.width && ch == rect.size.height) {
    context.drawImage(rect, cachedImage_);
    return;
  }
  context.saveGState();
  context.clipToRect(rect);
  // The image fills the copy from its bottom left (the origin of the y-up space) on.
  context.drawImage(MCMakeRect(rect.origin.x, rect.origin.y, cw, ch), cachedImage_);
  context.restoreGState();
}
