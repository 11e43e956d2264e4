#pragma once
// Unpacking an image into tightly packed 8-bit pixels: the image is drawn into a bitmap context
// whose rows become the result.
//
// | Function                              | Size        | Colour space                         | Row bytes | Bitmap info      |
// |---------------------------------------|-------------|--------------------------------------|-----------|------------------|
// | MCCopyGrayscaleDataFromImage          | the image's | the image's if gray, else gray 2.2   | width     | 0 (no alpha)     |
// | MCCopyRGBADataFromImage               | the image's | the image's if RGB, else sRGB        | width × 4 | 1 (premult. last)|
// | MCCopyLinearDataFromAnyImage_1C_8     | given       | linear gray                          | width     | 0                |
// | MCCopyLinearDataFromAnyImage_RGBA8    | given       | linear sRGB                          | width × 4 | 5 (skip last)    |
//
// The last two scale the image to the given size (doubles, truncated) as they draw. Each gives
// none when the image is absent or the context cannot be made (a side of 0 among them). The
// skipped byte of the RGBA8 layout is 255.

#include <vesperon/core/MCFastData.h>
#include <vesperon/platform/MCRasterImage.h>

#include <memory>

/// The image's pixels as 8-bit gray; none when it cannot be converted.
std::shared_ptr<MCFastData> MCCopyGrayscaleDataFromImage(const MCRasterImageRef& image);
/// The image's pixels as 8-bit RGBA; none when it cannot be converted.
std::shared_ptr<MCFastData> MCCopyRGBADataFromImage(const MCRasterImageRef& image);
/// The image scaled to `width` by `height` as 8-bit gray; none on failure.
std::shared_ptr<MCFastData> MCCopyLinearDataFromAnyImage_1C_8(const MCRasterImageRef& image, double width, double height);
/// The image scaled to `width` by `height` as 8-bit RGBA; none on failure.
std::shared_ptr<MCFastData> MCCopyLinearDataFromAnyImage_RGBA8(const MCRasterImageRef& image, double width, double height);
