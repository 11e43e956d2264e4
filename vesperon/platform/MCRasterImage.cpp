#include <vesperon/platform/MCRasterImage.h>

#include <cstring>

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

std::shared_ptr<const MCRasterImage> MCRasterImage::createWithImageInRect(const std::shared_ptr<const MCRasterImage>& image,
                                                                          const MCRect& rect) {
  if (!image) return nullptr;
  const MCRect bounds = MCMakeRect(0, 0, double(image->width()), double(image->height()));
  const MCRect cut = MCIntersectionRect(MCIntegralRect(rect), bounds);
  if (MCIsEmptyRect(cut)) return nullptr;
  if (cut == bounds) return image;
  const auto x0 = std::size_t(cut.origin.x), y0 = std::size_t(cut.origin.y);
  const auto w = std::size_t(cut.size.width), h = std::size_t(cut.size.height);
  const std::size_t pixelBytes = image->bitsPerPixel() / 8;
  const std::size_t rowBytes = w * pixelBytes;
  std::vector<uint8_t> pixels(rowBytes * h);
  for (std::size_t y = 0; y < h; ++y)
    std::memcpy(pixels.data() + y * rowBytes, image->row(y0 + y) + x0 * pixelBytes, rowBytes);
  return create(w, h, image->bitsPerComponent(), image->bitsPerPixel(), rowBytes, image->colorSpace(),
                image->bitmapInfo(), std::move(pixels));
}

MCColorSpace::Model MCRasterImage::colorModel() const {
  if (colorSpace_) return colorSpace_->model();
  const std::size_t components = bitsPerPixel_ / bitsPerComponent_;
  return components <= 2 ? MCColorSpace::Model::Gray : MCColorSpace::Model::RGB;
}
