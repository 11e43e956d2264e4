#include <vesperon/metadata/MCExif.h>

#include <cmath>

namespace {

template <typename T>
void put(MCDictionary& out, const char* key, const std::optional<T>& value) {
  if (key && value) out.emplace(key, MCValue(*value));
}

}  // namespace

MCDictionary MCExif::groupDictionary(Group wanted) const {
  MCDictionary out;
#define MC_EXIF_PUT(kind, name, setter, group, key) \
  if (Group::group == wanted) put(out, key, name##_);
  MC_EXIF_PROPERTIES(MC_EXIF_PUT)
#undef MC_EXIF_PUT
  return out;
}

MCDictionary MCExif::tiffDictionary() const { return groupDictionary(Group::TIFF); }
MCDictionary MCExif::exifDictionary() const { return groupDictionary(Group::Exif); }
MCDictionary MCExif::gpsDictionary() const { return groupDictionary(Group::GPS); }

MCDictionary MCExif::dictionary() const {
  MCDictionary out;
  put(out, kCGImagePropertyDepth, tiffBitsPerSample_);
  put(out, kCGImagePropertyOrientation, tiffOrientation_);
  put(out, kCGImagePropertyPixelWidth, exifPixelXDimension_);
  put(out, kCGImagePropertyPixelHeight, exifPixelYDimension_);
  put(out, kCGImagePropertyProfileName, exifProfileName_);

  double x = tiffXResolution_ ? tiffXResolution_->doubleValue().value_or(0) : 0;
  double y = tiffYResolution_ ? tiffYResolution_->doubleValue().value_or(0) : 0;
  if (x != 0 && y != 0) {
    int64_t unit = tiffResolutionUnit_ ? tiffResolutionUnit_->integerValue().value_or(0) : 0;
    bool known = true;
    if (unit == 3) {
      x *= 2.54;
      y *= 2.54;
    } else if (unit != 2 && unit != 0) {
      known = false;
    }
    if (known) {
      // std::round rounds half away from zero.
      double dpiX = std::round(x), dpiY = std::round(y);
      // A resolution no integer can hold (a damaged rational) has no DPI rather than a wrapped one.
      constexpr double limit = 9.0e18;
      if (dpiX != 0 && dpiY != 0 && std::fabs(dpiX) < limit && std::fabs(dpiY) < limit) {
        out.emplace(kCGImagePropertyDPIWidth, MCValue(static_cast<int64_t>(dpiX)));
        out.emplace(kCGImagePropertyDPIHeight, MCValue(static_cast<int64_t>(dpiY)));
      }
    }
  }

  if (auto tiff = tiffDictionary(); !tiff.empty()) out.emplace(kCGImagePropertyTIFFDictionary, std::move(tiff));
  if (auto exif = exifDictionary(); !exif.empty()) out.emplace(kCGImagePropertyExifDictionary, std::move(exif));
  if (auto gps = gpsDictionary(); !gps.empty()) out.emplace(kCGImagePropertyGPSDictionary, std::move(gps));
  return out;
}
