#include "ProfileConversion.h"

#include <vesperon/platform/MCColorSpace.h>

#include <lcms2.h>

#include <algorithm>

namespace mc_detail {

bool convertProfiledPixelsToSRGB(uint8_t* pixels, std::size_t count, ProfiledLayout layout,
                                 const std::vector<uint8_t>& icc) {
  if (!pixels || count == 0 || icc.empty()) return false;
  const bool cmyk = layout != ProfiledLayout::RGBA;
  auto space = MCColorSpace::createWithICCData(icc, cmyk ? MCColorSpace::Model::CMYK : MCColorSpace::Model::RGB);
  if (!space || !space->profile()) return false;
  const cmsUInt32Number input = layout == ProfiledLayout::RGBA ? TYPE_RGBA_8
                                : layout == ProfiledLayout::CMYK ? TYPE_CMYK_8
                                                                 : TYPE_CMYK_8_REV;
  cmsHTRANSFORM transform = cmsCreateTransform(space->profile(), input, MCColorSpace::sRGB()->profile(), TYPE_RGBA_8,
                                               INTENT_PERCEPTUAL, cmyk ? 0 : cmsFLAGS_COPY_ALPHA);
  if (!transform) return false;
  // In place is fine: both sides have four bytes a pixel. Chunks keep the count within lcms's type.
  constexpr std::size_t kChunk = 1 << 20;
  for (std::size_t done = 0; done < count; done += kChunk) {
    const std::size_t n = std::min(kChunk, count - done);
    cmsDoTransform(transform, pixels + done * 4, pixels + done * 4, cmsUInt32Number(n));
  }
  cmsDeleteTransform(transform);
  if (cmyk)
    for (std::size_t i = 0; i < count; ++i) pixels[i * 4 + 3] = 255;
  return true;
}

}  // namespace mc_detail
