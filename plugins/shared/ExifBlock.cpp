#include "ExifBlock.h"

#include <vesperon/metadata/MCImagePropertyKeys.h>

#include <libexif/exif-data.h>
#include <libexif/exif-utils.h>

#include <cmath>
#include <cstdio>
#include <cstring>

namespace mc_detail {

namespace {

struct TagKey {
  ExifTag tag;
  const char* key;
};

const TagKey kTIFFTags[] = {
    {EXIF_TAG_MAKE, kCGImagePropertyTIFFMake},
    {EXIF_TAG_MODEL, kCGImagePropertyTIFFModel},
    {EXIF_TAG_SOFTWARE, kCGImagePropertyTIFFSoftware},
    {EXIF_TAG_DATE_TIME, kCGImagePropertyTIFFDateTime},
    {EXIF_TAG_ARTIST, kCGImagePropertyTIFFArtist},
    {EXIF_TAG_COPYRIGHT, kCGImagePropertyTIFFCopyright},
    {EXIF_TAG_IMAGE_DESCRIPTION, kCGImagePropertyTIFFImageDescription},
    {EXIF_TAG_ORIENTATION, kCGImagePropertyTIFFOrientation},
    {EXIF_TAG_X_RESOLUTION, kCGImagePropertyTIFFXResolution},
    {EXIF_TAG_Y_RESOLUTION, kCGImagePropertyTIFFYResolution},
    {EXIF_TAG_RESOLUTION_UNIT, kCGImagePropertyTIFFResolutionUnit},
};

const TagKey kExifTags[] = {
    {EXIF_TAG_EXPOSURE_TIME, kCGImagePropertyExifExposureTime},
    {EXIF_TAG_FNUMBER, kCGImagePropertyExifFNumber},
    {EXIF_TAG_EXPOSURE_PROGRAM, kCGImagePropertyExifExposureProgram},
    {EXIF_TAG_ISO_SPEED_RATINGS, kCGImagePropertyExifISOSpeedRatings},
    {EXIF_TAG_DATE_TIME_ORIGINAL, kCGImagePropertyExifDateTimeOriginal},
    {EXIF_TAG_DATE_TIME_DIGITIZED, kCGImagePropertyExifDateTimeDigitized},
    {EXIF_TAG_EXPOSURE_BIAS_VALUE, kCGImagePropertyExifExposureBiasValue},
    {EXIF_TAG_FOCAL_LENGTH, kCGImagePropertyExifFocalLength},
    {EXIF_TAG_COLOR_SPACE, kCGImagePropertyExifColorSpace},
    {EXIF_TAG_PIXEL_X_DIMENSION, kCGImagePropertyExifPixelXDimension},
    {EXIF_TAG_PIXEL_Y_DIMENSION, kCGImagePropertyExifPixelYDimension},
    {EXIF_TAG_LENS_MODEL, kCGImagePropertyExifLensModel},
};

const TagKey kGPSTags[] = {
    {ExifTag(EXIF_TAG_GPS_LATITUDE_REF), kCGImagePropertyGPSLatitudeRef},
    {ExifTag(EXIF_TAG_GPS_LATITUDE), kCGImagePropertyGPSLatitude},
    {ExifTag(EXIF_TAG_GPS_LONGITUDE_REF), kCGImagePropertyGPSLongitudeRef},
    {ExifTag(EXIF_TAG_GPS_LONGITUDE), kCGImagePropertyGPSLongitude},
    {ExifTag(EXIF_TAG_GPS_ALTITUDE_REF), kCGImagePropertyGPSAltitudeRef},
    {ExifTag(EXIF_TAG_GPS_ALTITUDE), kCGImagePropertyGPSAltitude},
    {ExifTag(EXIF_TAG_GPS_TIME_STAMP), kCGImagePropertyGPSTimeStamp},
    {ExifTag(EXIF_TAG_GPS_DATE_STAMP), kCGImagePropertyGPSDateStamp},
};

ExifData* exif(void* data) { return static_cast<ExifData*>(data); }

std::optional<double> rationalAt(const ExifEntry* e, ExifByteOrder order, unsigned index) {
  const unsigned size = exif_format_get_size(e->format);
  if (index >= e->components || (index + 1) * size > e->size) return std::nullopt;
  const unsigned char* p = e->data + index * size;
  if (e->format == EXIF_FORMAT_RATIONAL) {
    ExifRational r = exif_get_rational(p, order);
    if (r.denominator == 0) return std::nullopt;
    return double(r.numerator) / double(r.denominator);
  }
  if (e->format == EXIF_FORMAT_SRATIONAL) {
    ExifSRational r = exif_get_srational(p, order);
    if (r.denominator == 0) return std::nullopt;
    return double(r.numerator) / double(r.denominator);
  }
  return std::nullopt;
}

std::optional<int64_t> integerAt(const ExifEntry* e, ExifByteOrder order, unsigned index) {
  const unsigned size = exif_format_get_size(e->format);
  if (index >= e->components || (index + 1) * size > e->size) return std::nullopt;
  const unsigned char* p = e->data + index * size;
  switch (e->format) {
    case EXIF_FORMAT_BYTE: return int64_t(p[0]);
    case EXIF_FORMAT_SBYTE: return int64_t(int8_t(p[0]));
    case EXIF_FORMAT_SHORT: return int64_t(exif_get_short(p, order));
    case EXIF_FORMAT_SSHORT: return int64_t(exif_get_sshort(p, order));
    case EXIF_FORMAT_LONG: return int64_t(exif_get_long(p, order));
    case EXIF_FORMAT_SLONG: return int64_t(exif_get_slong(p, order));
    default: return std::nullopt;
  }
}

// The platform's form of an entry: text as a string, numbers as numbers, several as an array.
// GPS coordinates become decimal degrees, the GPS time a "hh:mm:ss" text.
std::optional<MCValue> valueOf(const ExifEntry* e, ExifByteOrder order, ExifTag tag, bool gps) {
  if (!e->data || e->size == 0) return std::nullopt;
  if (e->format == EXIF_FORMAT_ASCII) {
    std::string text(reinterpret_cast<const char*>(e->data), e->size);
    while (!text.empty() && (text.back() == '\0' || text.back() == ' ')) text.pop_back();
    if (auto nul = text.find('\0'); nul != std::string::npos) text.resize(nul);
    return MCValue(text);
  }
  const bool rational = e->format == EXIF_FORMAT_RATIONAL || e->format == EXIF_FORMAT_SRATIONAL;
  if (gps && (tag == ExifTag(EXIF_TAG_GPS_LATITUDE) || tag == ExifTag(EXIF_TAG_GPS_LONGITUDE))) {
    auto d = rationalAt(e, order, 0), m = rationalAt(e, order, 1), s = rationalAt(e, order, 2);
    if (!d) return std::nullopt;
    return MCValue(*d + m.value_or(0) / 60.0 + s.value_or(0) / 3600.0);
  }
  if (gps && tag == ExifTag(EXIF_TAG_GPS_TIME_STAMP)) {
    auto h = rationalAt(e, order, 0), m = rationalAt(e, order, 1), s = rationalAt(e, order, 2);
    if (!h || !m || !s) return std::nullopt;
    char text[32];
    std::snprintf(text, sizeof text, "%02d:%02d:%02d", int(*h), int(*m), int(*s));
    return MCValue(std::string(text));
  }
  auto at = [&](unsigned i) -> std::optional<MCValue> {
    if (rational) {
      if (auto v = rationalAt(e, order, i)) return MCValue(*v);
      return std::nullopt;
    }
    if (auto v = integerAt(e, order, i)) return MCValue(*v);
    return std::nullopt;
  };
  if (e->components == 1 && tag != EXIF_TAG_ISO_SPEED_RATINGS) return at(0);
  MCArray values;
  for (unsigned i = 0; i < e->components; ++i)
    if (auto v = at(i)) values.push_back(*v);
  if (values.empty()) return std::nullopt;
  return MCValue(std::move(values));
}

void addDictionary(ExifData* data, ExifIfd ifd, const TagKey* begin, const TagKey* end, const char* key,
                   MCDictionary& properties) {
  const ExifByteOrder order = exif_data_get_byte_order(data);
  MCDictionary dictionary;
  for (const TagKey* t = begin; t != end; ++t) {
    ExifEntry* entry = exif_content_get_entry(data->ifd[ifd], t->tag);
    if (!entry) continue;
    if (auto value = valueOf(entry, order, t->tag, ifd == EXIF_IFD_GPS)) dictionary.emplace(t->key, std::move(*value));
  }
  if (!dictionary.empty()) properties[key] = MCValue(std::move(dictionary));
}

}  // namespace

std::unique_ptr<ExifBlock> ExifBlock::create(const uint8_t* bytes, std::size_t size) {
  if (!bytes || size < 8) return nullptr;
  // libexif wants the block as it sits in a JPEG segment, behind the "Exif\0\0" header.
  static const uint8_t header[6] = {'E', 'x', 'i', 'f', 0, 0};
  std::vector<uint8_t> withHeader;
  if (std::memcmp(bytes, header, 6) != 0) {
    withHeader.assign(header, header + 6);
    withHeader.insert(withHeader.end(), bytes, bytes + size);
    bytes = withHeader.data();
    size = withHeader.size();
  }
  ExifData* data = exif_data_new();
  if (!data) return nullptr;
  // Read as it is: no repairs and no tags added, only what the file says.
  exif_data_unset_option(data, EXIF_DATA_OPTION_FOLLOW_SPECIFICATION);
  exif_data_load_data(data, bytes, unsigned(size));
  bool empty = data->size == 0;
  for (int i = 0; i < EXIF_IFD_COUNT && empty; ++i)
    if (data->ifd[i] && data->ifd[i]->count > 0) empty = false;
  if (empty) {
    exif_data_unref(data);
    return nullptr;
  }
  return std::unique_ptr<ExifBlock>(new ExifBlock(data));
}

ExifBlock::~ExifBlock() { exif_data_unref(exif(data_)); }

unsigned ExifBlock::orientation() const {
  ExifData* data = exif(data_);
  ExifEntry* entry = exif_content_get_entry(data->ifd[EXIF_IFD_0], EXIF_TAG_ORIENTATION);
  if (!entry) return 0;
  auto value = integerAt(entry, exif_data_get_byte_order(data), 0);
  if (!value || *value < 1 || *value > 8) return 0;
  return unsigned(*value);
}

std::vector<uint8_t> ExifBlock::thumbnailData() const {
  ExifData* data = exif(data_);
  if (!data->data || data->size == 0) return {};
  return std::vector<uint8_t>(data->data, data->data + data->size);
}

void ExifBlock::addProperties(MCDictionary& properties) const {
  ExifData* data = exif(data_);
  addDictionary(data, EXIF_IFD_0, std::begin(kTIFFTags), std::end(kTIFFTags), kCGImagePropertyTIFFDictionary, properties);
  addDictionary(data, EXIF_IFD_EXIF, std::begin(kExifTags), std::end(kExifTags), kCGImagePropertyExifDictionary,
                properties);
  addDictionary(data, EXIF_IFD_GPS, std::begin(kGPSTags), std::end(kGPSTags), kCGImagePropertyGPSDictionary, properties);
}

}  // namespace mc_detail
