#pragma once
// How the catalogue keeps a property dictionary as JSON text. Plain values are plain JSON, so that
// SQLite's json functions read them; the kinds JSON has no room for — bytes, Exif rationals and
// comments, texts that are not UTF-8, numbers that are not finite — are objects of one key that
// begins with the byte 0x01, so that a dictionary reads back equal to the one stored and a
// predicate answers over it as over the file.

#include <vesperon/core/MCValue.h>

#include <optional>
#include <string>

namespace mc_detail {
std::string MCCatalogueEncodeDictionary(const MCDictionary& dictionary);
/// None when the text is not a JSON object.
std::optional<MCDictionary> MCCatalogueDecodeDictionary(const std::string& text);
/// True when the bytes are well-formed UTF-8.
bool MCCatalogueIsUTF8(const std::string& text);
}  // namespace mc_detail
