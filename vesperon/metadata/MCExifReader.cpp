#include <vesperon/metadata/MCExifReader.h>

#include <vesperon/metadata/MCExifParser.h>

#include <libexif/exif-data.h>

#include <algorithm>
#include <climits>

std::shared_ptr<MCExifReader> MCExifReader::create(const uint8_t* bytes, std::size_t length) {
  // libexif takes an unsigned int length; a larger buffer cannot be an Exif block anyway.
  if (!bytes || length > UINT_MAX) return nullptr;
  ExifData* data = exif_data_new_from_data(bytes, static_cast<unsigned int>(length));
  if (!data) return nullptr;
  return std::shared_ptr<MCExifReader>(new MCExifReader(data));
}

MCExifReader::~MCExifReader() { exif_data_unref(data_); }

std::shared_ptr<MCExif> MCExifReader::parseExif() const {
  uint16_t order;
  switch (exif_data_get_byte_order(data_)) {
    case EXIF_BYTE_ORDER_MOTOROLA: order = 0x4D4D; break;
    case EXIF_BYTE_ORDER_INTEL: order = 0x4949; break;
    default: return nullptr;
  }
  MCExifParser parser;
  for (ExifIfd ifd : {EXIF_IFD_0, EXIF_IFD_EXIF, EXIF_IFD_GPS}) {
    const ExifContent* content = data_->ifd[ifd];
    if (!content || !content->entries) continue;
    for (unsigned int i = 0; i < content->count; ++i) {
      const ExifEntry* entry = content->entries[i];
      if (!entry || !entry->data) continue;
      // libexif sizes an entry's data from its format and components; a short buffer (an entry
      // built by hand) is read only as far as it goes.
      unsigned long components = entry->components;
      unsigned char unit = exif_format_get_size(entry->format);
      if (unit == 0 || components > entry->size / unit) components = unit ? entry->size / unit : entry->size;
      parser.parse(static_cast<uint8_t>(ifd), entry->tag, entry->format, order,
                   static_cast<uint32_t>(std::min<unsigned long>(components, UINT32_MAX)), entry->data);
    }
  }
  return parser.exif();
}
