#include <vesperon/catalogue/MCCatalogueSQLiteStore.h>

#include <vesperon/catalogue/MCCatalogueCoding.h>
#include <vesperon/catalogue/MCCataloguePredicateSQL.h>
#include <vesperon/catalogue/MCSearchableProperties.h>
#include <vesperon/core/MCLog.h>
#include <vesperon/predicates/MCPredicateDate.h>

#include <sqlite3.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <chrono>
#include <cmath>
#include <ctime>
#include <functional>

namespace fs = std::filesystem;
using namespace mc_detail;

namespace {

// Each entry takes the schema from the version before it to its own number (its index plus one).
// A released entry is never edited; a change of schema is a new entry.
const std::vector<std::string>& migrations() {
  static const std::vector<std::string> steps = [] {
    std::string files =
        "CREATE TABLE roots(path BLOB PRIMARY KEY, offline INTEGER NOT NULL DEFAULT 0, scanned_at INTEGER);"
        "CREATE TABLE files(id INTEGER PRIMARY KEY, path BLOB NOT NULL UNIQUE, name BLOB NOT NULL,"
        " device INTEGER NOT NULL, inode INTEGER NOT NULL, size INTEGER NOT NULL, mtime_ns INTEGER NOT NULL,"
        " mtime_s INTEGER NOT NULL, sidecar_size INTEGER NOT NULL, sidecar_mtime_ns INTEGER NOT NULL,"
        " media_type TEXT, readable INTEGER NOT NULL, irregular INTEGER NOT NULL, capture_instant REAL,"
        " color_label INTEGER NOT NULL DEFAULT 0";
    // The key-path columns have no declared type, so that SQLite keeps each value as it was bound:
    // a text "100" stays a text, as it is in the dictionary.
    for (const auto& column : MCCatalogueColumns()) files += std::string(", ") + column.column;
    // The dictionaries lie in a table of their own, so that a query that reads only the columns
    // walks rows of a few hundred bytes, not of a few kilobytes.
    files += ");"
             "CREATE TABLE properties(id INTEGER PRIMARY KEY, json TEXT NOT NULL);"
             "CREATE TRIGGER files_deleted AFTER DELETE ON files BEGIN DELETE FROM properties WHERE id = old.id; END;"
             "CREATE INDEX files_capture ON files(capture_instant);"
             "CREATE INDEX files_model ON files(model);"
             "CREATE INDEX files_iso ON files(iso);"
             "CREATE INDEX files_f_number ON files(f_number);";
    return std::vector<std::string>{files};
  }();
  return steps;
}

void logError(const std::string& message) { MCLog::sdkFileSystem()->logError("MCCatalogue: " + message); }

struct Statement {
  sqlite3_stmt* statement = nullptr;
  Statement(sqlite3* db, const std::string& sql) {
    if (sqlite3_prepare_v2(db, sql.c_str(), int(sql.size()), &statement, nullptr) != SQLITE_OK)
      throw MCCatalogueError(std::string("cannot prepare a statement: ") + sqlite3_errmsg(db));
  }
  ~Statement() { sqlite3_finalize(statement); }
  Statement(const Statement&) = delete;
  Statement& operator=(const Statement&) = delete;
  operator sqlite3_stmt*() const { return statement; }
  void bindBlob(int at, const std::string& bytes) { sqlite3_bind_blob(statement, at, bytes.data(), int(bytes.size()), SQLITE_TRANSIENT); }
  std::string blob(int column) const {
    const void* bytes = sqlite3_column_blob(statement, column);
    return std::string(static_cast<const char*>(bytes ? bytes : ""), std::size_t(sqlite3_column_bytes(statement, column)));
  }
};

void execute(sqlite3* db, const std::string& sql) {
  char* message = nullptr;
  if (sqlite3_exec(db, sql.c_str(), nullptr, nullptr, &message) != SQLITE_OK) {
    const std::string text = message ? message : sqlite3_errmsg(db);
    sqlite3_free(message);
    throw MCCatalogueError(text);
  }
}

// The rows under a folder: paths that begin with the folder and a slash ('0' follows '/').
std::pair<std::string, std::string> rangeOf(const std::string& folder) { return {folder + "/", folder + "0"}; }

std::string uriOf(const fs::path& file, bool immutable) {
  std::string uri = "file:";
  for (unsigned char c : file.string()) {
    if (c == '?' || c == '#' || c == '%' || c < 0x20) {
      char escaped[4];
      std::snprintf(escaped, sizeof escaped, "%%%02X", c);
      uri += escaped;
    } else {
      uri += char(c);
    }
  }
  return uri + (immutable ? "?mode=ro&immutable=1" : "?mode=ro");
}

bool folderIsWritable(const fs::path& folder) { return ::access(folder.c_str(), W_OK) == 0; }
// Binds a dictionary value to a key-path column; false when the value does not fit one (an
// array, a dictionary, bytes, a comment, none, NaN), which makes the row irregular.
bool bindColumnValue(sqlite3_stmt* statement, int at, const MCValue* value, bool arrayElement) {
  if (!value) {
    sqlite3_bind_null(statement, at);
    return true;
  }
  if (arrayElement) {
    const MCArray* items = value->array();
    if (!items || items->size() != 1) return false;
    value = &items->front();
  }
  if (value->isBool() || value->isInteger()) {
    sqlite3_bind_int64(statement, at, *value->integerValue());
  } else if (value->isDouble() || value->isRational()) {
    const double number = *value->doubleValue();
    if (std::isnan(number)) return false;
    sqlite3_bind_double(statement, at, number);
  } else if (const std::string* text = value->string()) {
    sqlite3_bind_text(statement, at, text->data(), int(text->size()), SQLITE_TRANSIENT);
  } else {
    return false;
  }
  return true;
}

std::string journalMode(sqlite3* db) {
  Statement mode(db, "PRAGMA journal_mode");
  return sqlite3_step(mode) == SQLITE_ROW ? mode.blob(0) : std::string();
}

struct Reader {
  sqlite3* db;
  ~Reader() { sqlite3_close_v2(db); }
};

std::string dayOfInstant(int64_t seconds) {
  const std::time_t when = std::time_t(seconds);
  std::tm local{};
  localtime_r(&when, &local);
  char text[16];
  std::strftime(text, sizeof text, "%Y-%m-%d", &local);
  return text;
}

// Runs a query over the files under the query's folder that satisfy its predicate, row by row.
void query(sqlite3* db, const std::string& select, const MCCatalogueQuery& question, const std::string& order,
           const std::function<void(const Statement&, MCCataloguePredicateContext&)>& row) {
  MCCataloguePredicateContext context;
  context.storedFolder = question.folder;
  context.shownFolder = question.shownFolder;
  MCCatalogueRegisterFunctions(db, &context);
  bool translated = true;
  std::string where = question.predicate ? MCCatalogueWhereClause(*question.predicate, context, translated) : "1";
  if (!question.folder.empty()) {
    // A root, or a folder above one, holds most rows: walking the table beats a lookup per row
    // through the path index, which a small folder inside a root is better served by.
    bool wide = false;
    {
      Statement roots(db, "SELECT 1 FROM roots WHERE path = ?1 OR (path > ?2 AND path < ?3) LIMIT 1");
      const auto [low, high] = rangeOf(question.folder);
      roots.bindBlob(1, question.folder);
      roots.bindBlob(2, low);
      roots.bindBlob(3, high);
      wide = sqlite3_step(roots) == SQLITE_ROW;
    }
    where = (wide ? "+path > ?1 AND +path < ?2 AND " : "path > ?1 AND path < ?2 AND ") + where;
  }
  const std::string join = context.joinsProperties ? " LEFT JOIN properties ON properties.id = files.id" : "";
  Statement statement(db, select + " FROM files" + join + " WHERE " + where + order);
  if (!question.folder.empty()) {
    const auto [low, high] = rangeOf(question.folder);
    statement.bindBlob(1, low);
    statement.bindBlob(2, high);
  }
  int status;
  while ((status = sqlite3_step(statement)) == SQLITE_ROW) row(statement, context);
  if (status != SQLITE_DONE) {
    const std::string message = context.error.empty() ? sqlite3_errmsg(db) : context.error;
    throw MCCatalogueError(message);
  }
}

}  // namespace

int MCCatalogueSQLiteStore::schemaVersion() { return int(migrations().size()); }

MCCatalogueSQLiteStore::MCCatalogueSQLiteStore(fs::path file, sqlite3* db, bool readOnly)
    : file_(std::move(file)), db_(db), readOnly_(readOnly) {}

MCCatalogueSQLiteStore::~MCCatalogueSQLiteStore() { sqlite3_close_v2(db_); }

std::shared_ptr<MCCatalogueSQLiteStore> MCCatalogueSQLiteStore::open(const fs::path& file, std::string* error) {
  auto refuse = [&](const std::string& message) -> std::shared_ptr<MCCatalogueSQLiteStore> {
    logError(message);
    if (error) *error = message;
    return nullptr;
  };
  std::error_code ec;
  const fs::path folder = file.parent_path().empty() ? fs::path(".") : file.parent_path();
  fs::create_directories(folder, ec);
  const bool exists = fs::exists(file, ec);
  if (exists && !fs::is_regular_file(file, ec)) return refuse(file.string() + " is not a regular file");
  const bool readOnly = exists ? ::access(file.c_str(), W_OK) != 0 || !folderIsWritable(folder) : false;
  if (!exists && !folderIsWritable(folder)) return refuse("cannot create " + file.string() + ": its folder is not writable");

  for (int attempt = 0; attempt < 2; ++attempt) {
    sqlite3* db = nullptr;
    const int opened = readOnly ? sqlite3_open_v2(uriOf(file, !folderIsWritable(folder)).c_str(), &db,
                                                  SQLITE_OPEN_READONLY | SQLITE_OPEN_URI | SQLITE_OPEN_NOMUTEX, nullptr)
                                : sqlite3_open_v2(file.c_str(), &db, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_NOMUTEX, nullptr);
    if (opened != SQLITE_OK) {
      const std::string message = db ? sqlite3_errmsg(db) : "out of memory";
      sqlite3_close_v2(db);
      return refuse("cannot open " + file.string() + ": " + message);
    }
    sqlite3_busy_timeout(db, 10000);
    // Reading the schema is what finds a file that is not a database, or a damaged one; nothing
    // is written before the version is known.
    int version = -1;
    int status = sqlite3_exec(db, "SELECT count(*) FROM sqlite_master", nullptr, nullptr, nullptr);
    if (status == SQLITE_OK) {
      sqlite3_stmt* statement = nullptr;
      status = sqlite3_prepare_v2(db, "PRAGMA user_version", -1, &statement, nullptr);
      if (status == SQLITE_OK && sqlite3_step(statement) == SQLITE_ROW) version = sqlite3_column_int(statement, 0);
      else if (status == SQLITE_OK) status = sqlite3_errcode(db);
      sqlite3_finalize(statement);
    }
    if (status == SQLITE_NOTADB || status == SQLITE_CORRUPT) {
      const std::string reason = sqlite3_errmsg(db);
      sqlite3_close_v2(db);
      if (readOnly || attempt > 0) return refuse(file.string() + " is damaged (" + reason + ") and cannot be replaced");
      const auto stamp = std::chrono::duration_cast<std::chrono::seconds>(std::chrono::system_clock::now().time_since_epoch()).count();
      const fs::path aside = file.string() + ".corrupt-" + std::to_string(stamp);
      fs::rename(file, aside, ec);
      if (ec) return refuse(file.string() + " is damaged (" + reason + ") and cannot be moved aside: " + ec.message());
      for (const char* suffix : {"-wal", "-shm"}) fs::remove(file.string() + suffix, ec);
      logError(file.string() + " is damaged (" + reason + "); moved aside to " + aside.string() + ", a new catalogue is made");
      continue;
    }
    if (status != SQLITE_OK) {
      const std::string message = sqlite3_errmsg(db);
      sqlite3_close_v2(db);
      return refuse("cannot read " + file.string() + ": " + message);
    }
    const int current = int(migrations().size());
    if (version > current) {
      sqlite3_close_v2(db);
      return refuse(file.string() + " has schema version " + std::to_string(version) +
                    ", newer than this library's " + std::to_string(current) +
                    "; it was written by a newer Vesperon and is left untouched");
    }
    if (readOnly) {
      if (version < current) {
        sqlite3_close_v2(db);
        return refuse(file.string() + " is read-only and has schema version " + std::to_string(version) +
                      ", which would need migrating to " + std::to_string(current));
      }
      return std::shared_ptr<MCCatalogueSQLiteStore>(new MCCatalogueSQLiteStore(file, db, true));
    }
    if (version == current && journalMode(db) == "wal") {
      // Nothing to migrate: opening takes no lock, so that a query does not wait for a scan.
      execute(db, "PRAGMA synchronous=NORMAL");
      return std::shared_ptr<MCCatalogueSQLiteStore>(new MCCatalogueSQLiteStore(file, db, false));
    }
    try {
      execute(db, "PRAGMA journal_mode=WAL; PRAGMA synchronous=NORMAL");
      execute(db, "BEGIN IMMEDIATE");
      // Another process may have migrated while this one waited for the lock.
      sqlite3_stmt* statement = nullptr;
      sqlite3_prepare_v2(db, "PRAGMA user_version", -1, &statement, nullptr);
      version = sqlite3_step(statement) == SQLITE_ROW ? sqlite3_column_int(statement, 0) : version;
      sqlite3_finalize(statement);
      if (version > current) throw MCCatalogueError("schema version " + std::to_string(version) + " is newer than this library's");
      for (int step = version; step < current; ++step) execute(db, migrations()[std::size_t(step)]);
      if (version < current) execute(db, "PRAGMA user_version = " + std::to_string(current));
      execute(db, "COMMIT");
    } catch (const MCCatalogueError& e) {
      sqlite3_exec(db, "ROLLBACK", nullptr, nullptr, nullptr);
      sqlite3_close_v2(db);
      return refuse("cannot prepare " + file.string() + ": " + e.what());
    }
    return std::shared_ptr<MCCatalogueSQLiteStore>(new MCCatalogueSQLiteStore(file, db, false));
  }
  return refuse("cannot open " + file.string());
}

sqlite3* MCCatalogueSQLiteStore::openReader() const {
  sqlite3* db = nullptr;
  const bool immutable = readOnly_ && !folderIsWritable(file_.parent_path().empty() ? fs::path(".") : file_.parent_path());
  const int status = sqlite3_open_v2(uriOf(file_, immutable).c_str(), &db,
                                     SQLITE_OPEN_READONLY | SQLITE_OPEN_URI | SQLITE_OPEN_NOMUTEX, nullptr);
  if (status != SQLITE_OK) {
    const std::string message = db ? sqlite3_errmsg(db) : "out of memory";
    sqlite3_close_v2(db);
    throw MCCatalogueError("cannot read " + file_.string() + ": " + message);
  }
  sqlite3_busy_timeout(db, 10000);
  // A query walks most of the files table: mapping the file spares a copy of every page read.
  sqlite3_exec(db, "PRAGMA mmap_size=1073741824", nullptr, nullptr, nullptr);
  return db;
}

std::vector<std::string> MCCatalogueSQLiteStore::roots() const {
  Reader reader{openReader()};
  std::vector<std::string> out;
  Statement rows(reader.db, "SELECT path FROM roots ORDER BY path");
  while (sqlite3_step(rows) == SQLITE_ROW) out.push_back(rows.blob(0));
  return out;
}

bool MCCatalogueSQLiteStore::isRootOffline(const std::string& root) const {
  Reader reader{openReader()};
  Statement rows(reader.db, "SELECT offline FROM roots WHERE path = ?");
  rows.bindBlob(1, root);
  return sqlite3_step(rows) == SQLITE_ROW && sqlite3_column_int(rows, 0) != 0;
}

void MCCatalogueSQLiteStore::recordRoot(const std::string& root, bool offline) {
  if (readOnly_) throw MCCatalogueError(file_.string() + " is read-only");
  std::lock_guard lock(writeLock_);
  Statement mark(db_, "INSERT INTO roots(path, offline, scanned_at) VALUES(?, ?, strftime('%s','now'))"
                      " ON CONFLICT(path) DO UPDATE SET offline = excluded.offline,"
                      " scanned_at = CASE WHEN excluded.offline THEN scanned_at ELSE excluded.scanned_at END");
  mark.bindBlob(1, root);
  sqlite3_bind_int(mark, 2, offline);
  if (sqlite3_step(mark) != SQLITE_DONE) throw MCCatalogueError(std::string("cannot record a root: ") + sqlite3_errmsg(db_));
}

std::unordered_map<std::string, MCCatalogueStoredFile> MCCatalogueSQLiteStore::filesUnder(const std::string& folder) const {
  std::lock_guard lock(writeLock_);
  std::unordered_map<std::string, MCCatalogueStoredFile> known;
  Statement rows(db_, "SELECT id, path, device, inode, size, mtime_ns, sidecar_size, sidecar_mtime_ns FROM files"
                      " WHERE path > ? AND path < ?");
  const auto [low, high] = rangeOf(folder);
  rows.bindBlob(1, low);
  rows.bindBlob(2, high);
  while (sqlite3_step(rows) == SQLITE_ROW) {
    MCCatalogueStoredFile file;
    file.key = sqlite3_column_int64(rows, 0);
    file.identity.device = sqlite3_column_int64(rows, 2);
    file.identity.inode = sqlite3_column_int64(rows, 3);
    file.identity.size = sqlite3_column_int64(rows, 4);
    file.identity.modificationNs = sqlite3_column_int64(rows, 5);
    file.identity.sidecarSize = sqlite3_column_int64(rows, 6);
    file.identity.sidecarModificationNs = sqlite3_column_int64(rows, 7);
    known.emplace(rows.blob(1), file);
  }
  return known;
}

void MCCatalogueSQLiteStore::store(std::span<const MCCatalogueRecord> records) {
  if (readOnly_) throw MCCatalogueError(file_.string() + " is read-only: it cannot be scanned into");
  std::lock_guard lock(writeLock_);
  std::string columns = "path, name, device, inode, size, mtime_ns, mtime_s, sidecar_size, sidecar_mtime_ns, media_type,"
                        " readable, irregular, capture_instant, color_label";
  std::string values = "?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?";
  std::string updates;
  for (const auto& column : MCCatalogueColumns()) {
    columns += std::string(", ") + column.column;
    values += ", ?";
  }
  // An update keeps the row's id, which its dictionary's row shares.
  std::size_t from = 0;
  while (from < columns.size()) {
    std::size_t comma = columns.find(',', from);
    if (comma == std::string::npos) comma = columns.size();
    std::string name = columns.substr(from, comma - from);
    name.erase(0, name.find_first_not_of(' '));
    if (name != "path") updates += (updates.empty() ? "" : ", ") + name + " = excluded." + name;
    from = comma + 1;
  }
  Statement insert(db_, "INSERT INTO files(" + columns + ") VALUES(" + values + ") ON CONFLICT(path) DO UPDATE SET " +
                            updates + " RETURNING id");
  Statement insertProperties(db_, "INSERT OR REPLACE INTO properties(id, json) VALUES(?, ?)");

  auto write = [&](const MCCatalogueRecord& record) {
    sqlite3_reset(insert);
    sqlite3_clear_bindings(insert);
    insert.bindBlob(1, record.path);
    insert.bindBlob(2, fs::path(record.path).filename().string());
    const MCCatalogueFileIdentity& id = record.identity;
    const int64_t seconds = id.modificationNs >= 0 ? id.modificationNs / 1000000000 : -((-id.modificationNs + 999999999) / 1000000000);
    const int64_t numbers[] = {id.device, id.inode, id.size, id.modificationNs, seconds, id.sidecarSize, id.sidecarModificationNs};
    for (int i = 0; i < 7; ++i) sqlite3_bind_int64(insert, 3 + i, numbers[i]);
    if (record.type) sqlite3_bind_text(insert, 10, record.type->data(), int(record.type->size()), SQLITE_TRANSIENT);
    sqlite3_bind_int(insert, 11, record.readable);
    bool irregular = false;
    int at = 15;
    std::optional<double> instant;
    for (const auto& column : MCCatalogueColumns()) {
      const auto value = MCPredicateExpression::keyPathExpression(column.keyPath).valueWithObject(record.properties);
      if (!bindColumnValue(insert, at, value ? &*value : nullptr, column.arrayElement)) {
        irregular = true;
        sqlite3_bind_null(insert, at);
      }
      if (std::string(column.column) == "capture_date" && value && value->string())
        instant = MCPredicateDate::instantOfText(*value->string());
      ++at;
    }
    sqlite3_bind_int(insert, 12, irregular);
    if (instant) sqlite3_bind_double(insert, 13, *instant);
    sqlite3_bind_int64(insert, 14, record.colorLabel);
    if (sqlite3_step(insert) != SQLITE_ROW) throw MCCatalogueError(std::string("cannot store a file: ") + sqlite3_errmsg(db_));
    const int64_t rowID = sqlite3_column_int64(insert, 0);
    sqlite3_reset(insert);
    sqlite3_reset(insertProperties);
    sqlite3_bind_int64(insertProperties, 1, rowID);
    const std::string json = MCCatalogueEncodeDictionary(record.properties);
    sqlite3_bind_text(insertProperties, 2, json.data(), int(json.size()), SQLITE_TRANSIENT);
    if (sqlite3_step(insertProperties) != SQLITE_DONE)
      throw MCCatalogueError(std::string("cannot store a file's properties: ") + sqlite3_errmsg(db_));
  };

  execute(db_, "BEGIN IMMEDIATE");
  try {
    for (const MCCatalogueRecord& record : records) write(record);
    execute(db_, "COMMIT");
  } catch (...) {
    sqlite3_exec(db_, "ROLLBACK", nullptr, nullptr, nullptr);
    throw;
  }
}

void MCCatalogueSQLiteStore::remove(std::span<const int64_t> keys) {
  if (readOnly_) throw MCCatalogueError(file_.string() + " is read-only");
  std::lock_guard lock(writeLock_);
  Statement remove(db_, "DELETE FROM files WHERE id = ?");
  execute(db_, "BEGIN IMMEDIATE");
  try {
    for (const int64_t key : keys) {
      sqlite3_reset(remove);
      sqlite3_bind_int64(remove, 1, key);
      if (sqlite3_step(remove) != SQLITE_DONE) throw MCCatalogueError(std::string("cannot remove a file: ") + sqlite3_errmsg(db_));
    }
    execute(db_, "COMMIT");
  } catch (...) {
    sqlite3_exec(db_, "ROLLBACK", nullptr, nullptr, nullptr);
    throw;
  }
}

std::size_t MCCatalogueSQLiteStore::fileCount(const std::string& folder) const {
  Reader reader{openReader()};
  Statement rows(reader.db, folder.empty() ? "SELECT count(*) FROM files" : "SELECT count(*) FROM files WHERE path > ? AND path < ?");
  if (!folder.empty()) {
    const auto [low, high] = rangeOf(folder);
    rows.bindBlob(1, low);
    rows.bindBlob(2, high);
  }
  return sqlite3_step(rows) == SQLITE_ROW ? std::size_t(sqlite3_column_int64(rows, 0)) : 0;
}

std::vector<std::string> MCCatalogueSQLiteStore::filesMatching(const MCCatalogueQuery& question) const {
  Reader reader{openReader()};
  std::vector<std::string> out;
  const std::size_t storedSize = question.folder.size();
  query(reader.db, "SELECT path", question, "", [&](const Statement& row, MCCataloguePredicateContext& context) {
    const char* bytes = static_cast<const char*>(sqlite3_column_blob(row, 0));
    const std::size_t size = std::size_t(sqlite3_column_bytes(row, 0));
    if (storedSize == 0) {
      out.emplace_back(bytes ? bytes : "", size);
    } else if (size > storedSize && std::memcmp(bytes, question.folder.data(), storedSize) == 0 && bytes[storedSize] == '/') {
      // Under the folder as the caller named it.
      std::string& shown = out.emplace_back(context.shownFolder);
      if (shown.empty() || shown.back() != '/') shown += '/';
      shown.append(bytes + storedSize + 1, size - storedSize - 1);
    } else {
      out.push_back(context.shownPath(std::string(bytes, size)).string());
    }
  });
  return out;
}

std::vector<MCCatalogueEntry> MCCatalogueSQLiteStore::entriesByCaptureDate(const MCCatalogueQuery& question) const {
  return entriesInOrder(question, " ORDER BY coalesce(capture_instant, mtime_s), path");
}

std::vector<MCCatalogueEntry> MCCatalogueSQLiteStore::entries(const MCCatalogueQuery& question) const {
  return entriesInOrder(question, "");
}

std::vector<MCCatalogueEntry> MCCatalogueSQLiteStore::entriesInOrder(const MCCatalogueQuery& question, const std::string& order) const {
  Reader reader{openReader()};
  std::vector<MCCatalogueEntry> out;
  query(reader.db, "SELECT path, capture_date, capture_instant, mtime_s, size", question,
        order, [&](const Statement& row, MCCataloguePredicateContext& context) {
          MCCatalogueEntry entry;
          entry.path = context.shownPath(row.blob(0));
          if (sqlite3_column_type(row, 1) == SQLITE_TEXT) entry.captureDate = row.blob(1);
          entry.modificationTime = sqlite3_column_int64(row, 3);
          entry.size = sqlite3_column_int64(row, 4);
          if (sqlite3_column_type(row, 2) != SQLITE_NULL && entry.captureDate.size() >= 10) {
            // The day the photo was taken where it was taken: the date as the camera wrote it.
            entry.day = entry.captureDate.substr(0, 10);
            std::replace(entry.day.begin(), entry.day.end(), ':', '-');
          } else {
            entry.day = dayOfInstant(entry.modificationTime);
          }
          out.push_back(std::move(entry));
        });
  return out;
}

std::optional<MCDictionary> MCCatalogueSQLiteStore::propertiesOfFile(const std::string& path, const fs::path& shownPath) const {
  Reader reader{openReader()};
  Statement row(reader.db, "SELECT json, size, mtime_s, media_type FROM files JOIN properties USING (id) WHERE path = ?");
  row.bindBlob(1, path);
  if (sqlite3_step(row) != SQLITE_ROW) return std::nullopt;
  MCDictionary properties = MCCatalogueDecodeDictionary(row.blob(0)).value_or(MCDictionary{});
  const auto type = sqlite3_column_type(row, 3) == SQLITE_NULL ? std::nullopt : std::optional(row.blob(3));
  MCAddSearchableFileAttributes(properties, shownPath, sqlite3_column_int64(row, 1), std::time_t(sqlite3_column_int64(row, 2)), type);
  return properties;
}

std::vector<std::pair<std::string, MCDictionary>> MCCatalogueSQLiteStore::propertiesUnder(const MCCatalogueQuery& question) const {
  Reader reader{openReader()};
  MCCatalogueQuery everything = question;
  everything.predicate = nullptr;
  std::vector<std::pair<std::string, MCDictionary>> out;
  query(reader.db, "SELECT path, (SELECT json FROM properties WHERE properties.id = files.id), size, mtime_s, media_type", everything, "",
        [&](const Statement& row, MCCataloguePredicateContext& context) {
          std::string shown = context.shownPath(row.blob(0)).string();
          MCDictionary properties = MCCatalogueDecodeDictionary(row.blob(1)).value_or(MCDictionary{});
          const auto type = sqlite3_column_type(row, 4) == SQLITE_NULL ? std::nullopt : std::optional(row.blob(4));
          MCAddSearchableFileAttributes(properties, shown, sqlite3_column_int64(row, 2), std::time_t(sqlite3_column_int64(row, 3)), type);
          out.emplace_back(std::move(shown), std::move(properties));
        });
  return out;
}

std::string MCCatalogueSQLiteStore::sqlForPredicate(const MCPredicateNode& predicate, bool* translated) {
  MCCataloguePredicateContext context;
  bool exact = true;
  std::string sql = MCCatalogueWhereClause(predicate, context, exact);
  if (translated) *translated = exact;
  return sql;
}
