#pragma once
// ExifBlock: what the codec plug-ins need of a file's Exif block, read with libexif — the
// orientation, the embedded (IFD 1) thumbnail, and the TIFF, Exif and GPS sub-dictionaries of the
// nested image property dictionary.

#include <vesperon/core/MCValue.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace mc_detail {

class ExifBlock {
 public:
  /// Parses a block that begins with "Exif\0\0" or directly with the TIFF header; none when
  /// libexif finds nothing in it.
  static std::unique_ptr<ExifBlock> create(const uint8_t* data, std::size_t size);
  ~ExifBlock();
  ExifBlock(const ExifBlock&) = delete;
  ExifBlock& operator=(const ExifBlock&) = delete;

  /// The Exif orientation 1 to 8, or 0 when the block has none (or a value outside 1 to 8).
  unsigned orientation() const;
  /// The bytes of the embedded JPEG thumbnail, empty when there is none.
  std::vector<uint8_t> thumbnailData() const;
  /// Adds "{TIFF}", "{Exif}" and "{GPS}" (each only when it has an entry) to `properties`.
  void addProperties(MCDictionary& properties) const;

 private:
  explicit ExifBlock(void* data) : data_(data) {}
  void* data_;  // ExifData*, kept out of the header so that users need not see libexif
};

}  // namespace mc_detail
