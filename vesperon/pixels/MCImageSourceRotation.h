#pragma once
// MCCopyImageSourceWithRotation: a JPEG with another orientation, without recompressing it.
//
// An image source here is the bytes of an image file held in memory. Only the Exif orientation
// (tag 0x0112 of IFD0) changes; every other byte of the file is kept:
//   - an orientation entry that exists is rewritten in place as one SHORT;
//   - Exif without the entry gets a copy of IFD0 with the entry added, appended to the Exif block,
//     and the header points to it (the old IFD0 stays, unreferenced, so no offset moves);
//   - a JPEG without Exif gets a minimal big-endian Exif segment after SOI (and after a JFIF APP0).

#include <vesperon/core/MCValue.h>

#include <optional>

/// The new file's bytes; none when the orientation is outside 1…8 (no work is done then), the
/// bytes are not a JPEG with intact segments, its Exif block is malformed, or the segment would
/// outgrow 64 KB.
std::optional<MCData> MCCopyImageSourceWithRotation(const MCData& source, int orientation);
