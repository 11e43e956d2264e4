#pragma once
// MCCatalogue: the indexed properties of a collection, in one SQLite database, so that a question
// over tens of thousands of photos does not read them again.
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
// A predicate is answered in SQL: comparisons of a column's key path with a constant become SQL
// over that column, the rest is evaluated over the stored dictionary inside the same query, so the
// answer is what `find` gives over the files (as of the last scan).
//
// The database is in WAL mode with a busy timeout, so several processes may scan and query it at
// once. Its schema version is kept in the file (PRAGMA user_version) and older files are migrated
// on open; a file of a newer version is refused with a message and never written. A file that is
// not a database, or is damaged, is moved aside (to NAME.corrupt-TIME) with a log line and made
// anew; one that cannot be written (a read-only medium) is opened read-only: queries work, scans
// fail with a message.
//
// Threads: every operation may be called on any thread. Writes go through one connection under a
// lock; each query opens a reader of its own, which WAL lets run beside a scan.

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

struct sqlite3;
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

/// One file of a sorted answer: its path and, when it has one, its capture date.
struct MCCatalogueEntry {
  std::filesystem::path path;  ///< the file, as the scan found it
  /// The Exif capture date as the file holds it ("2024:05:01 10:00:00"), else empty.
  std::string captureDate;
  /// The day the entry is grouped under, "YYYY-MM-DD": its capture date's, else its modification
  /// date's (local time).
  std::string day;
};

/// A run of entries of one day in a sorted answer.
struct MCCatalogueDayGroup {
  std::string day;        ///< "YYYY-MM-DD"
  std::size_t first = 0;  ///< index of its first entry
  std::size_t count = 0;  ///< how many entries it holds
};

/// Thrown by queries whose predicate cannot be answered within its bounds (see
/// MCPredicateEvaluationError), and by operations on a catalogue that cannot do them.
class MCCatalogueError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

class MCCatalogue : public std::enable_shared_from_this<MCCatalogue> {
 public:
  /// The schema version this library writes.
  static constexpr int kSchemaVersion = 1;
  /// Files whose changes go into one transaction.
  static constexpr std::size_t kBatchSize = 200;

  /// `$XDG_DATA_HOME/vesperon/catalogue.db` (`~/.local/share/…` without the variable).
  static std::filesystem::path defaultLocation();

  /// Opens (or creates, with its folder) the catalogue in `file`. None, with the reason in `error`
  /// and a log line, when it cannot be opened: a database of a newer schema version, a folder that
  /// cannot be made, a damaged file that cannot be moved aside.
  static std::shared_ptr<MCCatalogue> open(const std::filesystem::path& file, std::string* error = nullptr);

  ~MCCatalogue();
  MCCatalogue(const MCCatalogue&) = delete;
  MCCatalogue& operator=(const MCCatalogue&) = delete;

  /// The database file.
  const std::filesystem::path& file() const { return file_; }
  /// True when the file could only be opened for reading.
  bool isReadOnly() const { return readOnly_; }

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

  /// The same files as entries sorted for a browser: by capture date (files without one by their
  /// modification date), then path.
  std::vector<MCCatalogueEntry> entriesByCaptureDate(const MCPredicateNode* predicate = nullptr,
                                                     const std::filesystem::path& folder = {}) const;
  /// The runs of one day in entries sorted by entriesByCaptureDate.
  static std::vector<MCCatalogueDayGroup> groupsByDay(const std::vector<MCCatalogueEntry>& entries);

  /// The searchable properties of a catalogued file, as MCSearchablePropertiesOfFile gave them at
  /// the last scan; none for a file not catalogued.
  std::optional<MCDictionary> propertiesOfFile(const std::filesystem::path& file) const;

  /// The SQL a predicate becomes, for tests and for curious people. `translated` is set to true
  /// when every part of it became SQL over the columns, without evaluating a stored dictionary.
  static std::string sqlForPredicate(const MCPredicateNode& predicate, bool* translated = nullptr);

 private:
  MCCatalogue(std::filesystem::path file, sqlite3* db, bool readOnly);
  sqlite3* openReader() const;

  std::filesystem::path file_;
  sqlite3* db_;
  bool readOnly_;
  mutable std::mutex writeLock_;
};
