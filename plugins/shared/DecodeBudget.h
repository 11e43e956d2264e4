#pragma once
// The decode budget every plug-in keeps: an image of more pixels than the limit is refused before
// anything is allocated for it, with one log line in sdkGraphics —
// "Refused to decode <what> of <file>: <w> x <h> pixels is beyond the limit of <n>".

#include <cstddef>
#include <cstdint>
#include <string>

namespace mc_detail {

/// Whether `width` × `height` pixels fit in `limit`; logs the refusal when they do not.
bool withinDecodeBudget(const std::string& file, std::size_t width, std::size_t height, uint64_t limit,
                        const char* what = "the image");

}  // namespace mc_detail
