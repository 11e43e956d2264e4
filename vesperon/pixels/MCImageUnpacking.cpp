#include <vesperon/pixels/MCBitmapCounting.h>
#include <vesperon/pixels/MCImageUnpacking.h>
#include <vesperon/platform/MCGraphicsContext.h>
#include <vesperon/platform/MCPixelConversion.h>

#include <cstring>

namespace {

std::shared_ptr<MCFastData> unpack(const MCRasterImageRef& image, std::size_t width, std::size_t height,
                                   const MCColorSpaceRef& space, std::size_t bytesPerPixel, uint32_t bitmapInfo) {
  if (!image) return nullptr;
  auto context = MCGraphicsContext::create(width, height, 8, width * bytesPerPixel, space, bitmapInfo);
  if (!context) return nullptr;
  context->drawImage(MCMakeRect(0, 0, double(width), double(height)), image);
  const std::size_t length = width * bytesPerPixel * height;
  auto data = std::make_shared<MCFastData>(length);
  std::memcpy(data->bytes(), context->data(), length);
  return data;
}

}  // namespace

std::shared_ptr<MCFastData> MCCopyGrayscaleDataFromImage(const MCRasterImageRef& image) {
  if (!image) return nullptr;
  const auto space = image->colorModel() == MCColorSpace::Model::Gray ? MCColorSpaceOfImage(*image)
                                                                       : MCColorSpace::genericGrayGamma2_2();
  return unpack(image, image->width(), image->height(), space, 1, MCImageAlphaNone);
}

std::shared_ptr<MCFastData> MCCopyRGBADataFromImage(const MCRasterImageRef& image) {
  if (!image) return nullptr;
  const auto space = image->colorModel() == MCColorSpace::Model::RGB ? MCColorSpaceOfImage(*image) : MCColorSpace::sRGB();
  return unpack(image, image->width(), image->height(), space, 4, MCImageAlphaPremultipliedLast);
}

std::shared_ptr<MCFastData> MCCopyLinearDataFromAnyImage_1C_8(const MCRasterImageRef& image, double width, double height) {
  return unpack(image, mc_detail::truncatedDimension(width), mc_detail::truncatedDimension(height),
                MCColorSpace::linearGray(), 1, MCImageAlphaNone);
}

std::shared_ptr<MCFastData> MCCopyLinearDataFromAnyImage_RGBA8(const MCRasterImageRef& image, double width, double height) {
  return unpack(image, mc_detail::truncatedDimension(width), mc_detail::truncatedDimension(height),
                MCColorSpace::linearSRGB(), 4, MCImageAlphaNoneSkipLast);
}
