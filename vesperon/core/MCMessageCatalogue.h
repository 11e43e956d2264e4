#pragma once
// MCMessageCatalogue: a compiled gettext catalogue (.mo) read into memory, for the lookups that
// gettext itself will not do. gettext answers in the user's language only; when that language
// has no translation of a key, the library falls back to its English catalogue, as a bundle
// falls back to its development language, and only a key missing there shows as itself.
//
// The English catalogue is made at build time from the English wording that every localised key
// carries at its call site (MCLocalizedString(key, comment)), and lies in
// `<locale folder>/en/LC_MESSAGES/vesperon.mo` beside the other languages.

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>

class MCMessageCatalogue {
 public:
  /// The catalogue in `file`; none when the file cannot be read or is not a catalogue (both
  /// byte orders are read; a truncated or overlapping table is refused whole).
  static std::optional<MCMessageCatalogue> catalogueWithContentsOfFile(const std::filesystem::path& file);
  /// The same from the bytes of a catalogue.
  static std::optional<MCMessageCatalogue> catalogueWithData(std::string_view bytes);

  /// The library's English catalogue, read once; empty when it is not installed.
  static const MCMessageCatalogue& english();
  /// The folder of the library's catalogues: $VESPERON_LOCALEDIR, else the locale folder that
  /// lies beside the library (`<prefix>/share/locale` for `<prefix>/lib/libvesperon.so`), which
  /// holds in a build tree as well as once installed.
  static std::filesystem::path localeDirectory();

  /// The translation of `key`, or none.
  std::optional<std::string_view> translationForKey(std::string_view key) const;
  /// How many messages the catalogue holds.
  std::size_t count() const { return messages_.size(); }

 private:
  std::unordered_map<std::string, std::string> messages_;
};
