#pragma once
// Keys of the image property dictionary that the library's codec plug-ins add beside the
// platform's own: what the platform tells through the image source itself.

/// The number of images (pages, frames) the file holds, an integer; given by the sources of
/// multi-image formats (TIFF pages, animated WebP frames).
inline constexpr const char* kMCImagePropertyImageCount = "ImageCount";
