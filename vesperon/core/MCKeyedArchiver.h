#pragma once
// MCKeyedArchiver: turns one value into archive bytes that MCKeyedUnarchiver reads back exactly.
//
// The format is CBOR (RFC 8949): a map with "$archiver" = "MCKeyedArchiver", "$version" = 1 and
// "root" = the value. Values map to CBOR as: none → null, booleans, integers and doubles → their
// CBOR kinds, strings → text strings, bytes → untagged byte strings, arrays → arrays, dictionaries →
// maps with text keys. The two Exif values are tagged byte strings: an Exif rational is tag 40001
// over 8 bytes (numerator then denominator, 32-bit big-endian each, as their raw bits); an Exif
// comment is tag 40002 over its UTF-8 text.

#include <vesperon/core/MCValue.h>

#include <optional>

class MCKeyedArchiver {
 public:
  /// The tag an archived MCExifRational carries.
  static constexpr uint64_t rationalTag = 40001;
  /// The tag an archived MCExifComment carries.
  static constexpr uint64_t commentTag = 40002;

  /// `archivedRootObject:`: the archive of `object`; on failure logs "Failed to encode root
  /// object: <value>" to the generic log and answers none.
  static std::optional<MCData> archivedRootObject(const MCValue& object);
};
