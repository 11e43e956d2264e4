#pragma once
// Localised text of the library: a key looked up with gettext in the "vesperon" domain, so that a
// missing translation shows the key itself. Formats are translations with printf-style integer
// or text places ("%ld", "%d", "%@", "%s"), filled in order.

#include <string>
#include <vector>

/// The translation of `key`, or the key.
std::string MCLocalizedString(const std::string& key);
/// The translation of `key` with its places filled from `values`, in order; places beyond the
/// values stay as they are, values beyond the places are dropped.
std::string MCLocalizedStringWithFormat(const std::string& key, const std::vector<std::string>& values);
