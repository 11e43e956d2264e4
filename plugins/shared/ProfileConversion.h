#pragma once
// Conversion of decoded pixels from the colour space of a file's embedded ICC profile to sRGB,
// the space every image of the codec plug-ins is in, through Little CMS.
//
// Photographs from wide-gamut cameras and editors (Display P3, Adobe RGB) and print files (CMYK
// with a press profile) would otherwise show dull or shifted colours when taken as sRGB.

#include <cstddef>
#include <cstdint>
#include <vector>

namespace mc_detail {

enum class ProfiledLayout {
  RGBA,          ///< R, G, B and an alpha that is kept as it is (not premultiplied)
  CMYK,          ///< ink amounts, 255 full ink
  InvertedCMYK,  ///< ink amounts stored inverted, 0 full ink, as Adobe writes them
};

/// Converts `count` pixels of 4 bytes in place to sRGB RGBA (alpha 255 for CMYK input). False,
/// with the pixels untouched, when the profile does not open or does not describe the layout's
/// model (a gray profile, an RGB profile on CMYK data).
bool convertProfiledPixelsToSRGB(uint8_t* pixels, std::size_t count, ProfiledLayout layout,
                                 const std::vector<uint8_t>& icc);

}  // namespace mc_detail
