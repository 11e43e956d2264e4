#pragma once
// Localised text of the library: a key looked up with gettext in the "vesperon" domain (bound to
// the library's own locale folder), then in the library's English catalogue, so that a key with
// no translation anywhere shows as itself. Formats are translations with printf-style integer or
// text places ("%ld", "%d", "%@", "%s"), filled in order.
//
// Each call site gives the English wording beside the key, as a translator's comment:
//   MCLocalizedString("predicate_operator_contains", "contains")
// The build collects these pairs (from MCLocalizedString, MCLocalizedStringWithFormat and
// MCLocalizableKey, with both texts as plain literals) into the English catalogue, so a new key
// needs no other file. The comment is not used at run time.

#include <string>
#include <vector>

/// A key and its English wording, for tables of keys that are looked up later.
struct MCLocalizableKey {
  /// The message id.
  const char* key;
  /// The English wording, for the catalogue and for translators.
  const char* comment;
};

/// The translation of `key`, or the key.
std::string MCLocalizedString(const std::string& key);
/// The text of `key` in the user's language; the key itself when it has no translation.
std::string MCLocalizedString(const std::string& key, const char* comment);
/// The same for a key with its comment.
std::string MCLocalizedString(const MCLocalizableKey& key);

/// The translation of `key` with its places filled from `values`, in order; places beyond the
/// values stay as they are, values beyond the places are dropped.
std::string MCLocalizedStringWithFormat(const std::string& key, const std::vector<std::string>& values);
/// The same, with the English wording that the catalogue collects.
std::string MCLocalizedStringWithFormat(const std::string& key, const char* comment,
                                        const std::vector<std::string>& values);
