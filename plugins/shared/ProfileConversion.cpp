#include "ProfileConversion.h"

#include <vesperon/platform/MCColorSpace.h>

#include <lcms2.h>

#include <algorithm>

namespace mc_detail {

namespace {

// The last transform built on this thread. The photos of a folder mostly share one profile, and
// building a transform can cost more than converting a thumbnail's pixels. One per thread, since
// an lcms transform keeps a small cache that threads must not share.
struct LastTransform {
  std::vector<uint8_t> icc;
  ProfiledLayout layout = ProfiledLayout::RGBA;
  cmsHTRANSFORM transform = nullptr;
  ~LastTransform() {
    if (transform) cmsDeleteTransform(transform);
  }
};

cmsHTRANSFORM transformToSRGB(const std::vector<uint8_t>& icc, ProfiledLayout layout) {
  thread_local LastTransform last;
  if (last.transform && last.layout == layout && last.icc == icc) return last.transform;
  const bool cmyk = layout != ProfiledLayout::RGBA;
  auto space = MCColorSpace::createWithICCData(icc, cmyk ? MCColorSpace::Model::CMYK : MCColorSpace::Model::RGB);
  if (!space || !space->profile()) return nullptr;
  const cmsUInt32Number input = layout == ProfiledLayout::RGBA ? TYPE_RGBA_8
                                : layout == ProfiledLayout::CMYK ? TYPE_CMYK_8
                                                                 : TYPE_CMYK_8_REV;
  cmsHTRANSFORM transform = cmsCreateTransform(space->profile(), input, MCColorSpace::sRGB()->profile(), TYPE_RGBA_8,
                                               INTENT_PERCEPTUAL, cmyk ? 0 : cmsFLAGS_COPY_ALPHA);
  if (!transform) return nullptr;
  if (last.transform) cmsDeleteTransform(last.transform);
  last.icc = icc;
  last.layout = layout;
  last.transform = transform;
  return transform;
}

}  // namespace

bool convertProfiledPixelsToSRGB(uint8_t* pixels, std::size_t count, ProfiledLayout layout,
                                 const std::vector<uint8_t>& icc) {
  if (!pixels || count == 0 || icc.empty()) return false;
  const bool cmyk = layout != ProfiledLayout::RGBA;
  cmsHTRANSFORM transform = transformToSRGB(icc, layout);
  if (!transform) return false;
  // In place is fine: both sides have four bytes a pixel. Chunks keep the count within lcms's type.
  constexpr std::size_t kChunk = 1 << 20;
  for (std::size_t done = 0; done < count; done += kChunk) {
    const std::size_t n = std::min(kChunk, count - done);
    cmsDoTransform(transform, pixels + done * 4, pixels + done * 4, cmsUInt32Number(n));
  }
  if (cmyk)
    for (std::size_t i = 0; i < count; ++i) pixels[i * 4 + 3] = 255;
  return true;
}

}  // namespace mc_detail
