#pragma once
// MCUserDefaults: a small settings store, one JSON object in one file.
//
// Every read takes the file as it is now, and every write rewrites it whole under a temporary name
// and renames it into place, so another process never sees half a file and of two writers at once
// the later one wins whole. Data values are written as {"$data": "<base64>"} and read back as data.
//
// A file that is there but is not a JSON object (empty, cut short, another format) is moved aside
// to "<file>.bak", logged on the file-system log, and the store starts empty: nothing is
// overwritten unseen. A missing file is an empty store.

#include <vesperon/core/MCValue.h>

#include <filesystem>
#include <optional>
#include <string>

class MCUserDefaults {
 public:
  explicit MCUserDefaults(std::filesystem::path fileURL);

  /// "settings.json" in the application's own folder of $XDG_CONFIG_HOME.
  static std::filesystem::path defaultFileURL();

  const std::filesystem::path& fileURL() const { return fileURL_; }

  MCDictionary dictionaryRepresentation() const;
  std::optional<MCValue> objectForKey(const std::string& key) const;
  /// Writes the value under the key; false, logged, when the file cannot be written.
  bool setObject(const MCValue& value, const std::string& key);
  bool removeObjectForKey(const std::string& key);

 private:
  bool write(const MCDictionary& dictionary);
  std::filesystem::path fileURL_;
};
