#pragma once
// MCUserDefaults: a small settings store, one JSON object in one file.
//
// Every read takes the file as it is now, and every write rewrites it whole under a temporary name
// and renames it into place, so another process never sees half a file and of two writers at once
// the later one wins whole. Data values are written as {"$data": "<base64>"} and read back as data.
//
// Only a regular file of at most 1 MiB whose arrays and objects nest at most 256 levels deep is
// read (MCRegularFile): settings are a few kilobytes, a thousand remembered folders fit, and the
// worst such file still converts in a fraction of a second. Anything else at the path (empty, cut short,
// another format, nested deeper, larger, a folder, a FIFO, a device, a file that cannot be read) is
// moved aside to "<file>.bak", logged on the file-system log with the file's name and what is wrong
// with it, and the store starts empty: nothing is overwritten unseen, and nothing blocks or grows
// without end. A missing file is an empty store.

#include <vesperon/core/MCValue.h>

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>

class MCUserDefaults {
 public:
  /// Settings kept in the JSON file at `fileURL`, read now.
  explicit MCUserDefaults(std::filesystem::path fileURL);

  /// "settings.json" in the application's own folder of $XDG_CONFIG_HOME.
  static std::filesystem::path defaultFileURL();

  /// The settings file.
  const std::filesystem::path& fileURL() const { return fileURL_; }

  /// A file that was there but could not be used as settings, as the last read found it.
  struct SetAside {
    std::string reason;              ///< what is wrong with it ("is a FIFO, not a file", "is not valid JSON" …)
    std::filesystem::path movedTo;   ///< where it went; empty when it could not be moved
  };

  /// The largest settings file read.
  static constexpr std::size_t kMaxFileSize = 1024 * 1024;
  /// The deepest nesting read.
  static constexpr int kMaxNestingDepth = 256;

  /// Every setting.
  MCDictionary dictionaryRepresentation() const;
  /// Whether the last read of this store set the file aside, and why. Reads of other objects over
  /// the same file are not told.
  const std::optional<SetAside>& setAside() const { return setAside_; }
  /// The setting of `key`; none when unset.
  std::optional<MCValue> objectForKey(const std::string& key) const;
  /// Writes the value under the key; false, logged, when the file cannot be written.
  bool setObject(const MCValue& value, const std::string& key);
  /// Removes the setting and writes the file; false when the file cannot be written.
  bool removeObjectForKey(const std::string& key);

 private:
  bool write(const MCDictionary& dictionary);
  std::filesystem::path fileURL_;
  mutable std::optional<SetAside> setAside_;
};
