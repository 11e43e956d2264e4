#pragma once
// MCCatalogueStore: where a catalogue keeps its rows. MCCatalogue does the walking, the identity
// checks and the reading of files; a store keeps what they found and answers questions over it.
// MCCatalogueSQLiteStore (one SQLite file) is the store the library makes; a shared server
// database can stand in for it by implementing this interface, without touching MCCatalogue's
// callers.
//
// Paths cross this interface as absolute, normalised byte strings without a trailing slash (a
// name that is not UTF-8 stays as its bytes). "Under a folder" means the paths that begin with the
// folder and a slash.
//
// Threads: every member may be called on any thread, queries beside a scan; MCCatalogue calls
// the writing members from one scan at a time.

#include <vesperon/catalogue/MCCatalogueEntry.h>
#include <vesperon/catalogue/MCCatalogueError.h>
#include <vesperon/predicates/MCPredicateNode.h>

#include <cstdint>
#include <filesystem>
#include <optional>
#include <span>
#include <string>
#include <unordered_map>
#include <vector>

/// What tells a scan that a file changed: the same path with another identity is read again.
struct MCCatalogueFileIdentity {
  int64_t device = 0;          ///< the file system's device number
  int64_t inode = 0;           ///< the file's inode on it
  int64_t size = 0;            ///< bytes
  int64_t modificationNs = 0;  ///< nanoseconds since the epoch
  int64_t sidecarSize = -1;    ///< the XMP sidecar's size; -1 without one
  int64_t sidecarModificationNs = -1;  ///< the sidecar's modification time as above; -1 without one
  /// Identities are equal when every field is.
  bool operator==(const MCCatalogueFileIdentity&) const = default;
};

/// A file as a scan read it, to be stored.
struct MCCatalogueRecord {
  std::string path;  ///< absolute, as bytes
  MCCatalogueFileIdentity identity;  ///< as the scan found it
  std::optional<std::string> type;  ///< its type identifier, when known
  MCDictionary properties;          ///< MCMediaPropertiesOfFile's, empty when it could not be read
  bool readable = false;            ///< false when its properties could not be read
  long colorLabel = 0;              ///< its colour label, 0 to 7; 0 for none
};

/// A stored file as a scan compares it: the store's key for it, and its identity.
struct MCCatalogueStoredFile {
  int64_t key = 0;                   ///< the store's own key for the file
  MCCatalogueFileIdentity identity;  ///< as the last scan stored it
};

/// A question over the stored files.
struct MCCatalogueQuery {
  /// What the files' searchable properties must satisfy; every file for none.
  const MCPredicateNode* predicate = nullptr;
  /// The folder the files lie under, stored form; everything for an empty text.
  std::string folder;
  /// The same folder as the caller named it: answers and the "path" key show files under it.
  std::string shownFolder;
};

class MCCatalogueStore {
 public:
  virtual ~MCCatalogueStore() = default;

  /// Where the rows lie, for messages and for MCCatalogue::file(): a file, or empty.
  virtual std::filesystem::path location() const = 0;
  /// True when the rows can be read but not written.
  virtual bool isReadOnly() const = 0;

  /// @name Roots
  //@{
  /// The roots recorded so far, in byte order.
  virtual std::vector<std::string> roots() const = 0;
  /// True when the root was recorded offline (its last scan could not reach it).
  virtual bool isRootOffline(const std::string& root) const = 0;
  /// Records the root, online (scanned now) or offline (its rows kept as they are).
  virtual void recordRoot(const std::string& root, bool offline) = 0;
  //@}

  /// @name Writing, a batch a transaction
  //@{
  /// The stored files under `folder`, by path.
  virtual std::unordered_map<std::string, MCCatalogueStoredFile> filesUnder(const std::string& folder) const = 0;
  /// Stores the records, replacing the rows of the same paths, all or none of them.
  virtual void store(std::span<const MCCatalogueRecord> records) = 0;
  /// Removes the files of these keys, all or none of them.
  virtual void remove(std::span<const int64_t> keys) = 0;
  //@}

  /// @name Questions
  //@{
  /// Files stored under `folder` (all of them for an empty text).
  virtual std::size_t fileCount(const std::string& folder) const = 0;
  /// The files (as shown) whose searchable properties satisfy the query's predicate, in any order, exactly
  /// those `find` gives over the files as they were stored: a part of the predicate the store
  /// cannot answer over its columns it evaluates over the stored dictionary. Throws
  /// MCCatalogueError when an evaluation runs past its bounds.
  virtual std::vector<std::string> filesMatching(const MCCatalogueQuery& query) const = 0;
  /// The same files as entries, sorted by capture date (files without one by their modification
  /// date), then path.
  virtual std::vector<MCCatalogueEntry> entriesByCaptureDate(const MCCatalogueQuery& query) const = 0;
  /// The same entries in any order, for a caller that arranges them itself.
  virtual std::vector<MCCatalogueEntry> entries(const MCCatalogueQuery& query) const = 0;
  /// The stored file's searchable dictionary (its properties and its own attributes, the path
  /// as `shownPath`); none when it is not stored.
  virtual std::optional<MCDictionary> propertiesOfFile(const std::string& path, const std::filesystem::path& shownPath) const = 0;
  /// The searchable dictionaries of the files under the query's folder (its predicate is not
  /// looked at), by the path as shown, in any order: what propertiesOfFile gives for each.
  virtual std::vector<std::pair<std::string, MCDictionary>> propertiesUnder(const MCCatalogueQuery& query) const = 0;
  //@}
};
