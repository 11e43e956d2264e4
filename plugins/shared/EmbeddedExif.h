#pragma once
// EmbeddedExif: the Exif block a JPEG or PNG file carries, as the codec plug-ins need it.
//
// Properties and orientation come through the library's Exif road (MCExifReader into an MCExif
// record), so a plug-in reports exactly what the metadata subsystem reads. Only the embedded
// (IFD 1) thumbnail, which that road does not walk, is taken from libexif's loaded block.

#include <vesperon/core/MCValue.h>
#include <vesperon/metadata/MCExif.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace mc_detail {

class EmbeddedExif {
 public:
  /// Reads a block that begins with "Exif\0\0" (a JPEG APP1 payload) or directly with the TIFF
  /// header (a PNG eXIf chunk); none when nothing in it reads.
  static std::unique_ptr<EmbeddedExif> create(const uint8_t* data, std::size_t size);

  /// The Exif orientation 1 to 8, or 0 when the block has none or one outside that range.
  unsigned orientation() const;
  /// The bytes of the embedded JPEG thumbnail, empty when there is none.
  std::vector<uint8_t> thumbnailData() const;
  /// The record's nested property dictionary: orientation, DPI, and the "{TIFF}", "{Exif}" and
  /// "{GPS}" sub-dictionaries that are not empty. The caller overrides what the image itself
  /// knows better (pixel size, depth).
  MCDictionary properties() const { return exif_->dictionary(); }

 private:
  EmbeddedExif(std::vector<uint8_t> block, std::shared_ptr<MCExif> exif)
      : block_(std::move(block)), exif_(std::move(exif)) {}

  std::vector<uint8_t> block_;  // always with the "Exif\0\0" header
  std::shared_ptr<MCExif> exif_;
};

}  // namespace mc_detail
