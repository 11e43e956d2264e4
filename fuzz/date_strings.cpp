// Any text as an Exif, ISO 8601 or XMP date: none or a date, never a crash; a date that comes back
// can be written as Exif and XMP text.

#include <vesperon/metadata/MCDateExtensions.h>

#include <cstddef>
#include <cstdint>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string text(reinterpret_cast<const char*>(data), size);
  for (auto date : {dateFromExifString(text), dateFromISO8601String(text), dateFromXmpString(text)}) {
    if (!date) continue;
    exifString(*date);
    xmpString(*date);
  }
  return 0;
}
