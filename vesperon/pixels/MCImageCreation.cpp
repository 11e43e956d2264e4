#include <vesperon/pixels/MCBitmapCounting.h>
#include <vesperon/pixels/MCBitmapScaling.h>
#include <vesperon/pixels/MCImageCreation.h>
#include <vesperon/platform/MCGraphicsContext.h>
#include <vesperon/platform/MCPixelConversion.h>

#include <cmath>

using mc_detail::truncatedDimension;

MCRasterImageRef MCCreateImageFromImage(const MCRasterImageRef& image, std::size_t width, std::size_t height,
                                        std::size_t bitsPerComponent, const MCColorSpaceRef& colorSpace,
                                        uint32_t bitmapInfo) {
  if (!image) return nullptr;
  if (image->bitmapInfo() == bitmapInfo && image->bitsPerComponent() == bitsPerComponent &&
      image->colorSpace() == colorSpace && image->height() == height && image->width() == width)
    return image;
  auto context = MCGraphicsContext::create(width, height, bitsPerComponent, 0, colorSpace, bitmapInfo);
  if (!context) return nullptr;
  context->drawImage(MCMakeRect(0, 0, double(width), double(height)), image);
  return context->createImage();
}

MCRasterImageRef MCCreateImageFromImageWithSRGBColorSpace(const MCRasterImageRef& image) {
  if (!image) return nullptr;
  return MCCreateImageFromImage(image, image->width(), image->height(), 8, MCColorSpace::sRGB(),
                                MCImageAlphaPremultipliedLast);
}

MCRasterImageRef MCCopyImageWithRGBColorspace_4C_8(const MCRasterImageRef& image) {
  if (!image || image->width() == 0 || image->height() == 0 || image->bitsPerPixel() == 0 ||
      image->bitsPerComponent() == 0)
    return nullptr;
  const auto info = image->alphaInfo();
  if (image->colorModel() == MCColorSpace::Model::RGB && info >= 1 && info <= 6 && image->bitsPerPixel() == 32 &&
      image->bitsPerComponent() == 8)
    return image;
  auto context = MCGraphicsContext::create(image->width(), image->height(), 8, image->width() * 4,
                                           MCColorSpace::sRGB(), MCImageAlphaPremultipliedLast);
  if (!context) return nullptr;
  context->setBlendMode(MCBlendMode::Copy);
  context->drawImage(MCMakeRect(0, 0, double(image->width()), double(image->height())), image);
  return context->createImage();
}

MCRasterImageRef MCCreateImageWithSize_C4_8(const MCRasterImageRef& image, double width, double height) {
  if (!image) return nullptr;
  const std::size_t w = truncatedDimension(width), h = truncatedDimension(height);
  if (w == 0 && h == 0) return nullptr;
  if (w == image->width() && h == image->height()) return image;
  if (w == 0 || h == 0) return nullptr;
  MCRasterImageRef source = image;
  if (source->bitsPerComponent() != 8 || source->bitsPerPixel() != 32) source = MCCopyImageWithRGBColorspace_4C_8(source);
  if (!source) return nullptr;
  std::vector<uint8_t> pixels(w * h * 4);
  mc_detail::scaleARGB8888(source->pixels().data(), source->width(), source->height(), source->bytesPerRow(),
                           pixels.data(), w, h);
  return MCRasterImage::create(w, h, 8, 32, w * 4, source->colorSpace(), source->bitmapInfo(), std::move(pixels));
}

MCRasterImageRef MCCreateImageWithMaxPixelSize_C4_8(const MCRasterImageRef& image, std::size_t maximum) {
  if (!image) return nullptr;
  if (maximum == 0) return image;
  const double w = double(image->width()), h = double(image->height());
  const double s = std::min(double(maximum) / w, double(maximum) / h);
  const double newWidth = std::ceil(s * w), newHeight = std::ceil(s * h);
  if (newWidth == w && newHeight == h) return image;
  return MCCreateImageWithSize_C4_8(image, newWidth, newHeight);
}

MCRasterImageRef MCImageCreateWithSize(const MCRasterImageRef& image, double width, double height) {
  const std::size_t w = truncatedDimension(width), h = truncatedDimension(height);
  if (!image || w == 0 || h == 0) return nullptr;
  const auto model = image->colorModel();
  MCColorSpaceRef space = model == MCColorSpace::Model::Gray || model == MCColorSpace::Model::RGB
                              ? MCColorSpaceOfImage(*image)
                              : MCColorSpace::sRGB();
  const uint32_t info = space->model() == MCColorSpace::Model::Gray ? MCImageAlphaNone : MCImageAlphaNoneSkipLast;
  return MCCreateImageFromImage(image, w, h, 8, space, info);
}

MCRasterImageRef MCImageCreateWithAspectRatio(const MCRasterImageRef& image, double ratio) {
  if (!image || !(ratio > 0)) return nullptr;
  const double w = double(image->width()), h = double(image->height());
  MCRect rect;
  if (ratio * h > w) {
    const double newHeight = w / ratio;
    rect = MCMakeRect(0, (h - newHeight) / 2, w, newHeight);
  } else {
    const double newWidth = ratio * h;
    rect = MCMakeRect((w - newWidth) / 2, 0, newWidth, h);
  }
  rect = MCIntegralRect(rect);
  if (MCIsEmptyRect(rect)) return nullptr;
  return MCRasterImage::createWithImageInRect(image, rect);
}
