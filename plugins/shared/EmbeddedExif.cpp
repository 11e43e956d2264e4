#include "EmbeddedExif.h"

#include <vesperon/metadata/MCExifReader.h>

#include <libexif/exif-data.h>

#include <climits>
#include <cstring>

namespace mc_detail {

namespace {
const uint8_t kExifHeader[6] = {'E', 'x', 'i', 'f', 0, 0};
}

std::unique_ptr<EmbeddedExif> EmbeddedExif::create(const uint8_t* data, std::size_t size) {
  if (!data || size < 8 || size > UINT_MAX - sizeof kExifHeader) return nullptr;
  std::vector<uint8_t> block;
  block.reserve(size + sizeof kExifHeader);
  if (std::memcmp(data, kExifHeader, sizeof kExifHeader) != 0) block.assign(kExifHeader, kExifHeader + sizeof kExifHeader);
  block.insert(block.end(), data, data + size);
  auto reader = MCExifReader::create(block.data(), block.size());
  std::shared_ptr<MCExif> exif = reader ? reader->parseExif() : nullptr;
  if (!exif) return nullptr;
  return std::unique_ptr<EmbeddedExif>(new EmbeddedExif(std::move(block), std::move(exif)));
}

unsigned EmbeddedExif::orientation() const {
  const auto& value = exif_->tiffOrientation();
  const int64_t orientation = value ? value->integerValue().value_or(0) : 0;
  return orientation >= 1 && orientation <= 8 ? unsigned(orientation) : 0;
}

std::vector<uint8_t> EmbeddedExif::thumbnailData() const {
  ExifData* data = exif_data_new();
  if (!data) return {};
  // Only IFD 1's JPEG is wanted: no repairs, no maker note.
  exif_data_unset_option(data, EXIF_DATA_OPTION_FOLLOW_SPECIFICATION);
  exif_data_unset_option(data, EXIF_DATA_OPTION_IGNORE_UNKNOWN_TAGS);
  exif_data_load_data(data, block_.data(), unsigned(block_.size()));
  std::vector<uint8_t> thumbnail;
  if (data->data && data->size > 0) thumbnail.assign(data->data, data->data + data->size);
  exif_data_unref(data);
  return thumbnail;
}

}  // namespace mc_detail
