#pragma once
// TIFFStructure: the tags of a TIFF file as a small Exif block — its first directory, the one
// after it (a thumbnail's), the Exif, GPS and Interoperability directories, and the values they
// point to — read from wherever the writer put them and laid out again from the start, behind
// the "Exif\0\0" header the Exif road reads.
//
// Why not hand the file itself to the Exif road: libexif reads an Exif block as a JPEG segment,
// no larger than 64 KB, and finds no directory past that, where libtiff and most scanners write
// them (after the pixels). And a large scan need not be read to learn its tags: only the
// directories and their values are, a few small reads.
//
// What does not fit in the block is left out, largest first: the strip and tile tables, an ICC
// profile (which the source reads through libtiff), XMP and Photoshop's blobs. Classic TIFF only;
// BigTIFF gives none.

#include "SourceBytes.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace mc_detail {

class TIFFStructure {
 public:
  /// The tags of the TIFF in `bytes`; none when its header is not a classic TIFF's or its first
  /// directory cannot be read. Damaged directories are read as far as they go.
  static std::unique_ptr<TIFFStructure> read(const SourceBytes& bytes);

  /// "Exif\0\0", then a TIFF header, the directories and their values; at most 64 KB.
  const uint8_t* data() const { return block_.data(); }
  std::size_t size() const { return block_.size(); }
  /// How many bytes of the file were read to make it.
  std::size_t bytesRead() const { return read_; }

 private:
  TIFFStructure() = default;

  std::vector<uint8_t> block_;
  std::size_t read_ = 0;
};

}  // namespace mc_detail
