#pragma once
// The decode budget every plug-in keeps: a decode that would hold more pixels than the limit is
// refused before anything is allocated for it, with one log line in sdkGraphics —
// "Refused to decode <what> of <file>: <w> x <h> pixels is beyond the limit of <n>".
//
// What counts is everything a decode holds at once, in pixels of four bytes: the output image,
// plus what the decoder works in beside it — the frame an animation's first picture is decoded
// from, libjpeg's whole-image coefficient buffers of a progressive JPEG (128 bytes per 8 × 8
// block of each component, at the full size whatever the output scale). When such working pixels
// count, the line says so: "<w> x <h> pixels and <k> more to work in is beyond the limit of <n>".

#include <cstddef>
#include <cstdint>
#include <string>

namespace mc_detail {

/// Whether `width` × `height` pixels, and `workingPixels` more, fit in `limit`; logs the refusal
/// when they do not.
bool withinDecodeBudget(const std::string& file, std::size_t width, std::size_t height, uint64_t limit,
                        const char* what = "the image", uint64_t workingPixels = 0);

/// The refusal's log line, for a plug-in that measures the cost itself.
void logDecodeRefusal(const std::string& file, std::size_t width, std::size_t height, uint64_t workingPixels,
                      uint64_t limit, const char* what);

}  // namespace mc_detail
