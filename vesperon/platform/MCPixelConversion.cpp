#include <vesperon/platform/MCPixelConversion.h>
#include <vesperon/platform/MCRasterImage.h>

#include <lcms2.h>

#include <algorithm>
#include <cstring>
#include <vector>

namespace {

int componentsOf(MCColorSpace::Model model) {
  return model == MCColorSpace::Model::Gray ? 1 : model == MCColorSpace::Model::RGB ? 3 : 4;
}

cmsUInt32Number colorSpaceType(MCColorSpace::Model model) {
  switch (model) {
    case MCColorSpace::Model::Gray: return PT_GRAY;
    case MCColorSpace::Model::RGB: return PT_RGB;
    case MCColorSpace::Model::CMYK: return PT_CMYK;
  }
  return PT_RGB;
}

// Sets the extra component of every pixel to its maximum.
void fillExtra(const MCPixelLayout& layout, uint8_t* data, std::size_t bytesPerRow, std::size_t width,
               std::size_t height) {
  const std::size_t bytes = layout.bitsPerComponent / 8;
  const std::size_t pixelBytes = layout.bytesPerPixel();
  const uint32_t info = layout.bitmapInfo & MCBitmapAlphaInfoMask;
  bool first = info == MCImageAlphaPremultipliedFirst || info == MCImageAlphaFirst || info == MCImageAlphaNoneSkipFirst;
  if (bytes == 1 && (layout.bitmapInfo & MCBitmapByteOrderMask) == MCBitmapByteOrder32Little) first = !first;
  const std::size_t offset = first ? 0 : pixelBytes - bytes;
  for (std::size_t y = 0; y < height; ++y) {
    uint8_t* p = data + y * bytesPerRow + offset;
    for (std::size_t x = 0; x < width; ++x, p += pixelBytes) std::memset(p, 0xFF, bytes);
  }
}

bool isPremultiplied(const MCPixelLayout& layout) {
  const uint32_t info = layout.bitmapInfo & MCBitmapAlphaInfoMask;
  return info == MCImageAlphaPremultipliedLast || info == MCImageAlphaPremultipliedFirst;
}

// Byte offsets of the colour components and of the extra component (last) within an 8-bit pixel.
void offsetsOf8Bit(const MCPixelLayout& layout, int channels, int offsets[5]) {
  const uint32_t info = layout.bitmapInfo & MCBitmapAlphaInfoMask;
  const bool first = info == MCImageAlphaPremultipliedFirst || info == MCImageAlphaFirst || info == MCImageAlphaNoneSkipFirst;
  const int extra = info == MCImageAlphaNone ? 0 : 1;
  const int pixelBytes = channels + extra;
  for (int c = 0; c < channels; ++c) offsets[c] = first ? c + 1 : c;
  offsets[channels] = extra ? (first ? 0 : channels) : -1;
  if ((layout.bitmapInfo & MCBitmapByteOrderMask) == MCBitmapByteOrder32Little)
    for (int c = 0; c <= channels; ++c)
      if (offsets[c] >= 0) offsets[c] = pixelBytes - 1 - offsets[c];
}

// Same space, 8 bits on both sides and nothing to (un)premultiply: the bytes only move.
bool permute8Bit(const MCPixelLayout& in, const uint8_t* source, std::size_t sourceBytesPerRow,
                 const MCPixelLayout& out, uint8_t* destination, std::size_t destinationBytesPerRow,
                 std::size_t width, std::size_t height) {
  const int channels = componentsOf(in.model);
  int inOffsets[5], outOffsets[5];
  offsetsOf8Bit(in, channels, inOffsets);
  offsetsOf8Bit(out, channels, outOffsets);
  const bool copyAlpha = in.hasAlpha() && out.hasAlpha();
  const int outExtra = outOffsets[channels];
  const std::size_t inBytes = in.bytesPerPixel(), outBytes = out.bytesPerPixel();
  for (std::size_t y = 0; y < height; ++y) {
    const uint8_t* s = source + y * sourceBytesPerRow;
    uint8_t* d = destination + y * destinationBytesPerRow;
    for (std::size_t x = 0; x < width; ++x, s += inBytes, d += outBytes) {
      for (int c = 0; c < channels; ++c) d[outOffsets[c]] = s[inOffsets[c]];
      if (outExtra >= 0) d[outExtra] = copyAlpha ? s[inOffsets[channels]] : 0xFF;
    }
  }
  return true;
}

MCPixelLayout withoutPremultiplication(MCPixelLayout layout) {
  const uint32_t info = layout.bitmapInfo & MCBitmapAlphaInfoMask;
  const uint32_t straight = info == MCImageAlphaPremultipliedLast ? MCImageAlphaLast
                            : info == MCImageAlphaPremultipliedFirst ? MCImageAlphaFirst : info;
  layout.bitmapInfo = (layout.bitmapInfo & ~MCBitmapAlphaInfoMask) | straight;
  return layout;
}

// Native 16-bit components with alpha last: the working layout for (un)premultiplying.
MCPixelLayout workingLayout(MCColorSpace::Model model) {
  static_assert(__BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__, "the working layout is little-endian");
  return {model, 16, std::size_t(componentsOf(model) + 1) * 16, MCImageAlphaLast | MCBitmapByteOrder16Little};
}

void unpremultiply(std::vector<uint16_t>& pixels, int channels) {
  const std::size_t stride = std::size_t(channels) + 1;
  for (std::size_t i = 0; i + stride <= pixels.size(); i += stride) {
    const uint32_t a = pixels[i + channels];
    for (int c = 0; c < channels; ++c)
      pixels[i + c] = a == 0 ? 0 : uint16_t(std::min<uint32_t>(65535, (pixels[i + c] * 65535u + a / 2) / a));
  }
}

void premultiply(std::vector<uint16_t>& pixels, int channels) {
  const std::size_t stride = std::size_t(channels) + 1;
  for (std::size_t i = 0; i + stride <= pixels.size(); i += stride) {
    const uint32_t a = pixels[i + channels];
    for (int c = 0; c < channels; ++c) pixels[i + c] = uint16_t((pixels[i + c] * a + 32767u) / 65535u);
  }
}

}  // namespace

bool MCPixelLayout::hasExtraComponent() const { return (bitmapInfo & MCBitmapAlphaInfoMask) != MCImageAlphaNone; }

bool MCPixelLayout::hasAlpha() const {
  const uint32_t info = bitmapInfo & MCBitmapAlphaInfoMask;
  return info != MCImageAlphaNone && info != MCImageAlphaNoneSkipLast && info != MCImageAlphaNoneSkipFirst;
}

uint32_t MCPixelLayout::littleCMSFormat() const {
  const uint32_t info = bitmapInfo & MCBitmapAlphaInfoMask;
  const uint32_t order = bitmapInfo & MCBitmapByteOrderMask;
  if (info > MCImageAlphaNoneSkipFirst) return 0;
  if (bitsPerComponent != 8 && bitsPerComponent != 16) return 0;
  const int channels = componentsOf(model);
  const int extra = info == MCImageAlphaNone ? 0 : 1;
  if (model == MCColorSpace::Model::CMYK && extra) return 0;
  if (bitsPerPixel != (channels + extra) * bitsPerComponent) return 0;
  cmsUInt32Number format = COLORSPACE_SH(colorSpaceType(model)) | CHANNELS_SH(channels) | EXTRA_SH(extra) |
                           BYTES_SH(bitsPerComponent / 8);
  const bool first = info == MCImageAlphaPremultipliedFirst || info == MCImageAlphaFirst || info == MCImageAlphaNoneSkipFirst;
  if (first) format |= SWAPFIRST_SH(1);
  if (info == MCImageAlphaPremultipliedLast || info == MCImageAlphaPremultipliedFirst) format |= PREMUL_SH(1);
  if (bitsPerComponent == 8) {
    if (order == MCBitmapByteOrder16Little || order == MCBitmapByteOrder16Big) return 0;
    // A little-endian 32-bit word stores the pixel's bytes in reverse.
    if (order == MCBitmapByteOrder32Little) {
      if (bitsPerPixel != 32) return 0;
      format |= DOSWAP_SH(1);
    }
  } else {
    if (order == MCBitmapByteOrder32Little || order == MCBitmapByteOrder32Big) return 0;
    if (order != MCBitmapByteOrder16Little) format |= ENDIAN16_SH(1);
  }
  return format;
}

MCPixelLayout MCPixelLayoutOfImage(const MCRasterImage& image) {
  return {image.colorModel(), image.bitsPerComponent(), image.bitsPerPixel(), image.bitmapInfo()};
}

std::shared_ptr<const MCColorSpace> MCColorSpaceOfImage(const MCRasterImage& image) {
  if (image.colorSpace()) return image.colorSpace();
  return image.colorModel() == MCColorSpace::Model::Gray ? MCColorSpace::genericGrayGamma2_2() : MCColorSpace::sRGB();
}

bool MCConvertPixels(const MCColorSpace& sourceSpace, const MCPixelLayout& sourceLayout, const uint8_t* source,
                     std::size_t sourceBytesPerRow, const MCColorSpace& destinationSpace,
                     const MCPixelLayout& destinationLayout, uint8_t* destination,
                     std::size_t destinationBytesPerRow, std::size_t width, std::size_t height) {
  if (width == 0 || height == 0) return true;
  cmsUInt32Number inFormat = sourceLayout.littleCMSFormat();
  cmsUInt32Number outFormat = destinationLayout.littleCMSFormat();
  if (!inFormat || !outFormat) return false;
  if (sourceLayout.model != sourceSpace.model() || destinationLayout.model != destinationSpace.model()) return false;

  const bool copyAlpha = sourceLayout.hasAlpha() && destinationLayout.hasAlpha();
  const bool sameSpace = sourceSpace.isEquivalent(destinationSpace) && sourceSpace.model() == destinationSpace.model();
  if (sameSpace && sourceLayout.bitsPerComponent == 8 && destinationLayout.bitsPerComponent == 8 &&
      (!copyAlpha || isPremultiplied(sourceLayout) == isPremultiplied(destinationLayout)))
    return permute8Bit(sourceLayout, source, sourceBytesPerRow, destinationLayout, destination,
                       destinationBytesPerRow, width, height);
  if (copyAlpha && (isPremultiplied(sourceLayout) || isPremultiplied(destinationLayout))) {
    // Little CMS 2.14 gets 16-bit premultiplied alpha wrong, so the (un)premultiplying happens
    // here, in native 16-bit buffers, and Little CMS only reformats and transforms straight alpha.
    const int inChannels = componentsOf(sourceLayout.model), outChannels = componentsOf(destinationLayout.model);
    const MCPixelLayout inWork = workingLayout(sourceLayout.model), outWork = workingLayout(destinationLayout.model);
    std::vector<uint16_t> in(width * height * std::size_t(inChannels + 1));
    std::vector<uint16_t> out(width * height * std::size_t(outChannels + 1));
    const std::size_t inRow = width * inWork.bytesPerPixel(), outRow = width * outWork.bytesPerPixel();
    auto* inBytes = reinterpret_cast<uint8_t*>(in.data());
    auto* outBytes = reinterpret_cast<uint8_t*>(out.data());
    if (!MCConvertPixels(sourceSpace, withoutPremultiplication(sourceLayout), source, sourceBytesPerRow, sourceSpace,
                         inWork, inBytes, inRow, width, height))
      return false;
    if (isPremultiplied(sourceLayout)) unpremultiply(in, inChannels);
    if (!MCConvertPixels(sourceSpace, inWork, inBytes, inRow, destinationSpace, outWork, outBytes, outRow, width, height))
      return false;
    if (isPremultiplied(destinationLayout)) premultiply(out, outChannels);
    return MCConvertPixels(destinationSpace, outWork, outBytes, outRow, destinationSpace,
                           withoutPremultiplication(destinationLayout), destination, destinationBytesPerRow, width,
                           height);
  }
  if (!copyAlpha) {
    // Premultiplication only means something while alpha travels along.
    inFormat &= ~PREMUL_SH(1);
    outFormat &= ~PREMUL_SH(1);
  }
  cmsUInt32Number flags = copyAlpha ? cmsFLAGS_COPY_ALPHA : 0;
  if (sameSpace) flags |= cmsFLAGS_NULLTRANSFORM;
  if (!sourceSpace.profile() || !destinationSpace.profile()) return false;

  cmsHTRANSFORM transform = cmsCreateTransform(sourceSpace.profile(), inFormat, destinationSpace.profile(), outFormat,
                                               INTENT_PERCEPTUAL, flags);
  if (!transform) return false;
  cmsDoTransformLineStride(transform, source, destination, cmsUInt32Number(width), cmsUInt32Number(height),
                           cmsUInt32Number(sourceBytesPerRow), cmsUInt32Number(destinationBytesPerRow), 0, 0);
  cmsDeleteTransform(transform);
  if (!copyAlpha && destinationLayout.hasExtraComponent())
    fillExtra(destinationLayout, destination, destinationBytesPerRow, width, height);
  return true;
}
