#pragma once
// MCCatalogueSQLiteStore: a catalogue's rows in one SQLite database file, the store the library
// makes (see MCCatalogueStore).
//
// Per file: the path as bytes, the identity, the type, the common keys as columns (capture date
// and its instant, make, model, lens, f-number, exposure, ISO, focal length, pixel size, GPS,
// rating, colour label) and the whole dictionary as JSON in a table of its own. A predicate
// becomes SQL: comparisons of a column's key path with a constant become SQL over the column, the
// rest is evaluated over the stored dictionary inside the same query.
//
// The file is in WAL mode with a busy timeout, so several processes may scan and query it at
// once. Its schema version is kept in the file (PRAGMA user_version) and older files are migrated
// on open; a file of a newer version is refused with a message and never written. A file that is
// not a database, or is damaged, is moved aside (to NAME.corrupt-TIME) with a log line and made
// anew; one that cannot be written (a read-only medium) is opened read-only.
//
// Threads: writes go through one connection under a lock; each query opens a reader of its own,
// which WAL lets run beside a scan.

#include <vesperon/catalogue/MCCatalogueStore.h>

#include <filesystem>
#include <memory>
#include <mutex>
#include <string>

struct sqlite3;

class MCCatalogueSQLiteStore final : public MCCatalogueStore {
 public:
  /// The schema version this library writes.
  static int schemaVersion();

  /// Opens (or creates, with its folder) the database in `file`, migrating an older schema. None,
  /// with the reason in `error` and a log line, when it cannot be opened: a database of a newer
  /// schema version, a folder that cannot be made, a damaged file that cannot be moved aside.
  static std::shared_ptr<MCCatalogueSQLiteStore> open(const std::filesystem::path& file, std::string* error = nullptr);

  ~MCCatalogueSQLiteStore() override;
  MCCatalogueSQLiteStore(const MCCatalogueSQLiteStore&) = delete;
  MCCatalogueSQLiteStore& operator=(const MCCatalogueSQLiteStore&) = delete;

  std::filesystem::path location() const override { return file_; }
  bool isReadOnly() const override { return readOnly_; }
  std::vector<std::string> roots() const override;
  bool isRootOffline(const std::string& root) const override;
  void recordRoot(const std::string& root, bool offline) override;
  std::unordered_map<std::string, MCCatalogueStoredFile> filesUnder(const std::string& folder) const override;
  void store(std::span<const MCCatalogueRecord> records) override;
  void remove(std::span<const int64_t> keys) override;
  std::size_t fileCount(const std::string& folder) const override;
  std::vector<std::string> filesMatching(const MCCatalogueQuery& query) const override;
  std::vector<MCCatalogueEntry> entriesByCaptureDate(const MCCatalogueQuery& query) const override;
  std::vector<MCCatalogueEntry> entries(const MCCatalogueQuery& query) const override;
  std::optional<MCDictionary> propertiesOfFile(const std::string& path, const std::filesystem::path& shownPath) const override;
  std::vector<std::pair<std::string, MCDictionary>> propertiesUnder(const MCCatalogueQuery& query) const override;

  /// The WHERE clause a predicate becomes. `translated` is set to true when every part of it
  /// became SQL over the columns, without evaluating a stored dictionary.
  static std::string sqlForPredicate(const MCPredicateNode& predicate, bool* translated = nullptr);

 private:
  MCCatalogueSQLiteStore(std::filesystem::path file, sqlite3* db, bool readOnly);
  sqlite3* openReader() const;
  std::vector<MCCatalogueEntry> entriesInOrder(const MCCatalogueQuery& query, const std::string& order) const;

  std::filesystem::path file_;
  sqlite3* db_;
  bool readOnly_;
  mutable std::mutex writeLock_;
};
