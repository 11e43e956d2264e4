#pragma once
// MCCatalogue: the indexed properties of a collection, kept in a store (by default one SQLite
// database), so that a question over tens of thousands of photos does not read them again.
//
// Per file it keeps the path (as bytes: a name that is not UTF-8 comes back byte-exact), the
// file's identity (device, inode, size, modification time, and the same for its XMP sidecar), its
// type, the common keys as columns (capture date and its instant, make, model, lens, f-number,
// exposure, ISO, focal length, pixel size, GPS, rating, colour label) and the whole property
// dictionary that `vesperon find` evaluates (MCSearchablePropertiesOfFile) as JSON beside them.
//
// A scan walks its roots as MCFindMediaFiles does and reads only the files whose identity changed
// since the last one; rows of files that are gone are removed, and a root that cannot be reached
// (an unmounted disk) keeps its rows, marked offline. Changes are written in transactions of a
// batch of files, so a process killed during a scan leaves a database that is consistent, and
// that the next scan completes.
//
// A predicate is answered over the stored properties, exactly as `find` answers it over the files
// (as of the last scan).
//
// The rows lie in a store (MCCatalogueStore): MCCatalogue::open makes the library's own, one
// SQLite file (MCCatalogueSQLiteStore, which says how the file is kept, versioned and repaired);
// an application with another store hands it to MCCatalogue::withStore.
//
// Threads: every operation may be called on any thread; scans run one at a time, queries run
// beside them.

#include <vesperon/catalogue/MCCatalogueEntry.h>
#include <vesperon/catalogue/MCCatalogueError.h>
#include <vesperon/catalogue/MCCatalogueStore.h>
#include <vesperon/predicates/MCPredicateNode.h>

#include <atomic>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

class MCPlatformOperation;
class MCPlatformOperationQueue;

/// Counts of one scan, as it goes.
struct MCCatalogueScanProgress {
  uint64_t seen = 0;     ///< media files found under the roots so far
  uint64_t toRead = 0;   ///< of those, files new or changed since the last scan, to be read
  uint64_t read = 0;     ///< of those, files whose properties were read (new or changed)
  uint64_t failed = 0;   ///< of those read, files that could not be read (kept with empty properties)
  uint64_t removed = 0;  ///< rows removed, their files gone
  uint64_t offlineRoots = 0;  ///< roots that could not be reached; their rows are kept
  bool cancelled = false;  ///< the scan was cancelled before it ended
};

/// Told of a scan's progress, on the thread that runs the scan.
class MCCatalogueScanDelegate {
 public:
  virtual ~MCCatalogueScanDelegate() = default;
  /// After each batch of files written, and once at the end.
  virtual void scanProgress(const MCCatalogueScanProgress&) {}
  /// Once per file whose contents are read, before it is read, on a reading thread.
  virtual void scanWillReadFile(const std::filesystem::path&) {}
};

class MCCatalogue : public std::enable_shared_from_this<MCCatalogue> {
 public:
  /// The schema version this library writes into a SQLite catalogue (as
  /// MCCatalogueSQLiteStore::schemaVersion() counts its migrations).
  static constexpr int kSchemaVersion = 1;
  /// Files whose changes go into one transaction.
  static constexpr std::size_t kBatchSize = 200;

  /// `$XDG_DATA_HOME/vesperon/catalogue.db` (`~/.local/share/…` without the variable).
  static std::filesystem::path defaultLocation();

  /// Opens (or creates, with its folder) the catalogue in `file`. None, with the reason in `error`
  /// and a log line, when it cannot be opened: a database of a newer schema version, a folder that
  /// cannot be made, a damaged file that cannot be moved aside.
  static std::shared_ptr<MCCatalogue> open(const std::filesystem::path& file, std::string* error = nullptr);
  /// A catalogue over rows kept in `store` (none for none).
  static std::shared_ptr<MCCatalogue> withStore(std::shared_ptr<MCCatalogueStore> store);

  ~MCCatalogue();
  MCCatalogue(const MCCatalogue&) = delete;
  MCCatalogue& operator=(const MCCatalogue&) = delete;

  /// The database file (the store's location: empty for a store that is not a file).
  const std::filesystem::path& file() const { return file_; }
  /// True when the file could only be opened for reading.
  bool isReadOnly() const { return store_->isReadOnly(); }
  /// Where the rows lie.
  const std::shared_ptr<MCCatalogueStore>& store() const { return store_; }

  /// Brings the rows under each root up to date with the files (see above) and remembers the
  /// roots. Runs on the calling thread, reading files on a few threads of its own; stops between
  /// batches once `cancel` is set. Throws MCCatalogueError on a read-only catalogue.
  MCCatalogueScanProgress scan(const std::vector<std::filesystem::path>& roots, MCCatalogueScanDelegate* delegate = nullptr,
                               const std::atomic<bool>* cancel = nullptr);

  /// The same scan as an operation on `queue`. `completion` runs on the main queue with the final
  /// counts (cancelled set when the operation was cancelled); the delegate is called on the
  /// queue's thread. Cancel the returned operation to stop the scan between batches.
  std::shared_ptr<MCPlatformOperation> scanInBackground(MCPlatformOperationQueue& queue,
                                                        std::vector<std::filesystem::path> roots,
                                                        std::shared_ptr<MCCatalogueScanDelegate> delegate,
                                                        std::function<void(MCCatalogueScanProgress)> completion);

  /// The roots scanned so far, in path order.
  std::vector<std::filesystem::path> roots() const;
  /// True when the root could not be reached at its last scan.
  bool isRootOffline(const std::filesystem::path& root) const;
  /// The scanned root that `folder` is, or lies in; none when it is not catalogued.
  std::optional<std::filesystem::path> rootContaining(const std::filesystem::path& folder) const;

  /// Files catalogued under `folder` (all of them for an empty path).
  std::size_t fileCount(const std::filesystem::path& folder = {}) const;

  /// The files under `folder` (everything for an empty path) whose searchable properties satisfy
  /// the predicate (every file for none), in path order, as `vesperon find` lists them. Throws
  /// MCCatalogueError when an evaluation runs past its bounds.
  std::vector<std::filesystem::path> filesMatching(const MCPredicateNode* predicate,
                                                   const std::filesystem::path& folder = {}) const;

  /// The same files as byte strings: cheaper for a long answer that is only printed.
  std::vector<std::string> pathsMatching(const MCPredicateNode* predicate, const std::filesystem::path& folder = {}) const;

  /// The same files as entries sorted for a browser: by capture date (files without one by their
  /// modification date), then path.
  std::vector<MCCatalogueEntry> entriesByCaptureDate(const MCPredicateNode* predicate = nullptr,
                                                     const std::filesystem::path& folder = {}) const;
  /// The same entries in any order: cheaper, for a caller that arranges them itself.
  std::vector<MCCatalogueEntry> entries(const MCPredicateNode* predicate = nullptr, const std::filesystem::path& folder = {}) const;
  /// The runs of one day in entries sorted by entriesByCaptureDate.
  static std::vector<MCCatalogueDayGroup> groupsByDay(const std::vector<MCCatalogueEntry>& entries);

  /// The searchable properties of a catalogued file, as MCSearchablePropertiesOfFile gave them at
  /// the last scan; none for a file not catalogued.
  std::optional<MCDictionary> propertiesOfFile(const std::filesystem::path& file) const;

  /// The searchable properties of every file catalogued under `folder`, by path (under the folder
  /// as named), as propertiesOfFile gives them one by one: for a filter over a whole folder.
  std::vector<std::pair<std::filesystem::path, MCDictionary>> propertiesOfFilesUnder(const std::filesystem::path& folder) const;

  /// The SQL a predicate becomes, for tests and for curious people. `translated` is set to true
  /// when every part of it became SQL over the columns, without evaluating a stored dictionary.
  static std::string sqlForPredicate(const MCPredicateNode& predicate, bool* translated = nullptr);

 private:
  explicit MCCatalogue(std::shared_ptr<MCCatalogueStore> store);

  std::shared_ptr<MCCatalogueStore> store_;
  std::filesystem::path file_;
  mutable std::mutex scanLock_;
};
