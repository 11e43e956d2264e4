#include <vesperon/platform/MCRasterImage.h>

std::shared_ptr<const MCRasterImage> MCRasterImage::create(std::size_t width, std::size_t height,
                                                           std::size_t bitsPerComponent, std::size_t bitsPerPixel,
                                                           std::size_t bytesPerRow,
                                                           std::shared_ptr<const MCColorSpace> colorSpace,
                                                           uint32_t bitmapInfo, std::vector<uint8_t> pixels) {
  if (width == 0 || height == 0) return nullptr;
  if (bitsPerComponent != 8 && bitsPerComponent != 16) return nullptr;
  if (bitsPerPixel < bitsPerComponent || bitsPerPixel % bitsPerComponent != 0) return nullptr;
  if (bytesPerRow < (width * bitsPerPixel + 7) / 8) return nullptr;
  if (height > pixels.size() / bytesPerRow) return nullptr;
  auto image = std::shared_ptr<MCRasterImage>(new MCRasterImage());
  image->width_ = width;
  image->height_ = height;
  image->bitsPerComponent_ = bitsPerComponent;
  image->bitsPerPixel_ = bitsPerPixel;
  image->bytesPerRow_ = bytesPerRow;
  image->colorSpace_ = std::move(colorSpace);
  image->bitmapInfo_ = bitmapInfo;
  image->pixels_ = std::move(pixels);
  return image;
}

std::shared_ptr<const MCRasterImage> MCRasterImage::createRGBA8(std::size_t width, std::size_t height,
                                                                std::vector<uint8_t> pixels) {
  return create(width, height, 8, 32, width * 4, MCColorSpace::sRGB(), MCImageAlphaPremultipliedLast,
                std::move(pixels));
}
