#pragma once
// Creation, conversion, scaling and cropping of images.
//
// Every function here gives the caller an image of its own; since images are immutable, that may
// be the given image itself when nothing would change. All sizes are in pixels; a double size is
// truncated to an integer. Failures give none and no report.

#include <vesperon/platform/MCColorSpace.h>
#include <vesperon/platform/MCRasterImage.h>

#include <cstddef>
#include <cstdint>

/// The image redrawn at this size, bits, colour space and bitmap info. The image itself when all
/// five already match — the colour space by identity, so an equal but distinct space redraws.
/// None when the image is absent or no such context can be made.
MCRasterImageRef MCCreateImageFromImage(const MCRasterImageRef& image, std::size_t width, std::size_t height,
                                        std::size_t bitsPerComponent, const MCColorSpaceRef& colorSpace,
                                        uint32_t bitmapInfo);

/// MCCreateImageFromImage at the image's size, 8 bits, sRGB, premultiplied alpha last.
MCRasterImageRef MCCreateImageFromImageWithSRGBColorSpace(const MCRasterImageRef& image);

/// The image itself when it is RGB with a fourth byte (alpha infos 1 to 6), 32 bits per pixel and 8
/// per component; otherwise it is drawn with blend mode copy into sRGB, 8 bits, premultiplied
/// alpha last. None for an absent image.
MCRasterImageRef MCCopyImageWithRGBColorspace_4C_8(const MCRasterImageRef& image);

/// Resamples a four-channel 8-bit image (see MCBitmapScaling.h) keeping its layout and colour
/// space; an image of another layout is first made sRGB RGBA (MCCopyImageWithRGBColorspace_4C_8).
/// The image itself at its own size; none when it is absent or both sides truncate to 0 (one side
/// of 0 alone fails as well, since no bitmap has it).
MCRasterImageRef MCCreateImageWithSize_C4_8(const MCRasterImageRef& image, double width, double height);

/// Scaled by s = min(maximum / width, maximum / height) to ceil(s · width) × ceil(s · height), so
/// a smaller image grows. The image itself for maximum 0 or when the size does not change.
MCRasterImageRef MCCreateImageWithMaxPixelSize_C4_8(const MCRasterImageRef& image, std::size_t maximum);

/// Redrawn at this size, 8 bits, in the image's colour space when gray or RGB (else sRGB), with
/// bitmap info 0 for gray and 5 (skip last) for RGB. None when a side truncates to 0.
MCRasterImageRef MCImageCreateWithSize(const MCRasterImageRef& image, double width, double height);

/// The largest centred rectangle of width / height = ratio, made integral. None when the image is
/// absent, the ratio is not above 0, or the rectangle is empty.
MCRasterImageRef MCImageCreateWithAspectRatio(const MCRasterImageRef& image, double ratio);
