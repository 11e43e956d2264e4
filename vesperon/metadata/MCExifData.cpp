#include <vesperon/metadata/MCExifData.h>

#include <libexif/exif-data.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

[[noreturn]] void fatal(const char* condition) {
  std::fprintf(stderr, "MCExifData: ExifCreateTag: assertion failed: %s\n", condition);
  std::abort();
}

void addTo(ExifData* data, ExifIfd ifd, const mc_detail::MCExifEntryFields& entry) {
  const MCData* bytes = entry.encodedData() ? &*entry.encodedData() : nullptr;
  std::size_t length = bytes ? bytes->size() : 0;
  ExifEntry* e = ExifCreateTag(data, ifd, entry.tag(), entry.numberOfComponents(), length, entry.type());
  if (length) std::memcpy(e->data, bytes->data(), std::min<std::size_t>(length, e->size));
  exif_entry_unref(e);
}

}  // namespace

void* ExifMemAlloc(unsigned int size) { return std::calloc(size, 1); }
void* ExifMemRealloc(void* block, unsigned int size) { return std::realloc(block, size); }
void ExifMemFree(void* block) { std::free(block); }

ExifEntry* ExifCreateTag(ExifData* data, int ifd, uint16_t tag, std::size_t components, std::size_t size, int format) {
  ExifMem* mem = exif_mem_new_default();
  if (!mem) fatal("mem != NULL");
  ExifEntry* entry = exif_entry_new_mem(mem);
  if (!entry) fatal("entry != NULL");
  // libexif saves format size times components bytes from the buffer: never let that run past it.
  std::size_t needed = std::max<std::size_t>(size, exif_format_get_size(static_cast<ExifFormat>(format)) * components);
  void* buffer = nullptr;
  if (needed) {
    buffer = exif_mem_alloc(mem, static_cast<ExifLong>(needed));
    if (!buffer) fatal("buf != NULL");
  }
  entry->data = static_cast<unsigned char*>(buffer);
  entry->size = static_cast<unsigned int>(needed);
  entry->tag = static_cast<ExifTag>(tag);
  entry->components = components;
  entry->format = static_cast<ExifFormat>(format);
  exif_content_add_entry(data->ifd[ifd], entry);
  exif_mem_unref(mem);
  return entry;
}

MCExifData::MCExifData() {
  mem_ = exif_mem_new(ExifMemAlloc, ExifMemRealloc, ExifMemFree);
  data_ = exif_data_new_mem(mem_);
  exif_data_set_option(data_, EXIF_DATA_OPTION_FOLLOW_SPECIFICATION);
  exif_data_set_data_type(data_, EXIF_DATA_TYPE_UNKNOWN);
  exif_data_set_byte_order(data_, EXIF_BYTE_ORDER_MOTOROLA);
}

MCExifData::~MCExifData() {
  exif_data_unref(data_);
  exif_mem_unref(mem_);
}

void MCExifData::addEntry(const MCExifEntry& entry) {
  for (ExifIfd ifd : {EXIF_IFD_0, EXIF_IFD_EXIF}) {
    ExifSupportLevel level =
        exif_tag_get_support_level_in_ifd(static_cast<ExifTag>(entry.tag()), ifd, EXIF_DATA_TYPE_COMPRESSED);
    if (level == EXIF_SUPPORT_LEVEL_MANDATORY || level == EXIF_SUPPORT_LEVEL_OPTIONAL) addTo(data_, ifd, entry);
  }
}

void MCExifData::addGPSEntry(const MCExifGPSEntry& entry) { addTo(data_, EXIF_IFD_GPS, entry); }

std::optional<MCData> MCExifData::exifData() const {
  unsigned char* buffer = nullptr;
  unsigned int size = 0;
  exif_data_save_data(data_, &buffer, &size);
  if (!buffer) return std::nullopt;
  MCData out(buffer, buffer + size);
  exif_mem_free(mem_, buffer);
  if (out.empty()) return std::nullopt;
  return out;
}
