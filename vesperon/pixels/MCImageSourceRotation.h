#pragma once
// MCCopyImageSourceWithRotation: an image file with another orientation, without recompressing it.
//
// An image source here is the bytes of an image file held in memory. Only the Exif orientation
// (tag 0x0112 of IFD0) changes; the pixels are never decoded, and every other part of the file
// is kept:
//   - an orientation entry that exists is rewritten in place as one SHORT;
//   - Exif without the entry gets a copy of IFD0 with the entry added, appended to the Exif block,
//     and the header points to it (the old IFD0 stays, unreferenced, so no offset moves);
//   - JPEG: the Exif block is the APP1 segment; a JPEG without one gets a minimal big-endian Exif
//     segment after SOI (and after a JFIF APP0);
//   - PNG: the Exif block is the eXIf chunk, rewritten with a new CRC; a PNG without one gets a
//     minimal chunk before its first IDAT.
// Other types give none: the library has no writer of their orientation yet (TIFF, WebP, HEIF and
// raw files keep theirs in places of their own).

#include <vesperon/core/MCValue.h>

#include <optional>

/// The new file's bytes; none when the orientation is outside 1…8 (no work is done then), the
/// bytes are not a JPEG with intact segments or a PNG with intact chunks, the Exif block is
/// malformed, or a JPEG's segment would outgrow 64 KB.
std::optional<MCData> MCCopyImageSourceWithRotation(const MCData& source, int orientation);
