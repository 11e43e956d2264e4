#pragma once
// MCExifReader: an Exif block loaded by libexif, walked into an MCExif record.
//
// It takes whatever libexif loads: a bare TIFF block, one that opens with "Exif\0\0", or the bytes
// of a whole JPEG file (libexif finds the APP1 segment). IFD 0, the Exif IFD and the GPS IFD are
// walked in that order, each entry in stored order; the thumbnail's IFD 1 and the
// interoperability IFD are not.

#include <vesperon/core/MCValue.h>
#include <vesperon/metadata/MCExif.h>

#include <cstddef>
#include <cstdint>
#include <memory>

typedef struct _ExifData ExifData;

class MCExifReader {
 public:
  /// None when libexif gives no block.
  static std::shared_ptr<MCExifReader> create(const uint8_t* bytes, std::size_t length);
  /// A reader of the Exif block in `data`; none when it is not one.
  static std::shared_ptr<MCExifReader> create(const MCData& data) { return create(data.data(), data.size()); }
  ~MCExifReader();
  MCExifReader(const MCExifReader&) = delete;
  MCExifReader& operator=(const MCExifReader&) = delete;

  /// A fresh record on every call; none when the block's byte order is unknown.
  std::shared_ptr<MCExif> parseExif() const;

 private:
  explicit MCExifReader(ExifData* data) : data_(data) {}
  ExifData* data_;
};
