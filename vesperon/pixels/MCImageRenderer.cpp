#include <vesperon/pixels/MCImageRenderer.h>
#include <vesperon/pixels/MCBitmapCounting.h>

std::shared_ptr<MCImageRenderer> MCImageRenderer::create(MCSize size, double scale) {
  return create(size, scale, std::make_shared<MCImageRendererFormat>(MCImageAlphaNoneSkipFirst, MCColorSpace::sRGB()));
}

std::shared_ptr<MCImageRenderer> MCImageRenderer::create(MCSize size, double scale,
                                                         std::shared_ptr<MCImageRendererFormat> format) {
  if (!format) return nullptr;
  auto renderer = std::shared_ptr<MCImageRenderer>(new MCImageRenderer());
  renderer->size_ = size;
  renderer->scale_ = scale;
  renderer->format_ = std::move(format);
  renderer->contextBounds_ = MCMakeRect(0, 0, size.width * scale, size.height * scale);
  renderer->context_ = MCGraphicsContext::create(mc_detail::truncatedDimension(size.width),
                                                 mc_detail::truncatedDimension(size.height), 8, 0,
                                                 renderer->format_->colorSpace(), renderer->format_->bitmapInfo());
  if (!renderer->context_) return nullptr;
  renderer->context_->scaleCTM(scale, scale);
  return renderer;
}

MCRasterImageRef MCImageRenderer::drawWithBlock(const DrawingBlock& block) {
  if (!block || !block(*context_, contextBounds_)) return nullptr;
  return context_->createImage();
}
