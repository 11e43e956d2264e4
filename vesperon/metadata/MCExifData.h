#pragma once
// MCExifData: the thin layer over libexif on the way out. It collects entries into a libexif
// block, in Motorola (big-endian) order, and saves it.
//
// An MCExifEntry goes into IFD 0 or the Exif IFD, whichever libexif's table has the tag as
// mandatory or optional for compressed (JPEG) data; a tag that neither has is dropped without a
// word. An MCExifGPSEntry always goes into the GPS IFD. A tag already present in its IFD keeps its
// first value.

#include <vesperon/core/MCValue.h>
#include <vesperon/metadata/MCExifEntry.h>

#include <cstddef>
#include <optional>

typedef struct _ExifData ExifData;
typedef struct _ExifMem ExifMem;
typedef struct _ExifEntry ExifEntry;

class MCExifData {
 public:
  MCExifData();
  ~MCExifData();
  MCExifData(const MCExifData&) = delete;
  MCExifData& operator=(const MCExifData&) = delete;

  /// Adds an entry to the Exif IFD.
  void addEntry(const MCExifEntry& entry);
  /// Adds an entry to the GPS IFD.
  void addGPSEntry(const MCExifGPSEntry& entry);

  /// The saved block: "Exif\0\0", a big-endian TIFF header and the IFDs with their tags in
  /// ascending order. None when libexif saves nothing.
  std::optional<MCData> exifData() const;

  /// The libexif block, for callers that go on with libexif themselves.
  ExifData* data() const { return data_; }

 private:
  ExifMem* mem_;
  ExifData* data_;
};

/// The allocator of MCExifData's libexif memory: zeroed blocks.
void* ExifMemAlloc(unsigned int size);
void* ExifMemRealloc(void* block, unsigned int size);
void ExifMemFree(void* block);

/// Makes an entry of `components` components of `format`, with a zeroed data buffer of `size`
/// bytes, and adds it to IFD `ifd` of `data`. The caller copies the bytes in and releases the
/// entry with exif_entry_unref. Running out of memory is fatal.
ExifEntry* ExifCreateTag(ExifData* data, int ifd, uint16_t tag, std::size_t components, std::size_t size, int format);
