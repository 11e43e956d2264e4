#include <vesperon/catalogue/MCCatalogue.h>

#include <vesperon/catalogue/MCCatalogueSQLiteStore.h>
#include <vesperon/catalogue/MCSearchableProperties.h>
#include <vesperon/controls/MCColorLabelMapper.h>
#include <vesperon/core/MCLog.h>
#include <vesperon/platform/MCMainQueue.h>
#include <vesperon/platform/MCPlatformOperation.h>
#include <vesperon/platform/MCPlatformOperationQueue.h>
#include <vesperon/platform/MCUniformTypeIdentifiers.h>

#include <sys/stat.h>

#include <algorithm>
#include <cstdlib>
#include <thread>
#include <unordered_set>

namespace fs = std::filesystem;

namespace {

void logError(const std::string& message) { MCLog::sdkFileSystem()->logError("MCCatalogue: " + message); }

std::string storedForm(const fs::path& folder) {
  std::string text = fs::absolute(folder).lexically_normal().string();
  while (text.size() > 1 && text.back() == '/') text.pop_back();
  return text;
}

std::string shownForm(const fs::path& folder) {
  std::string text = folder.string();
  while (text.size() > 1 && text.back() == '/') text.pop_back();
  return text;
}

// The file's identity; `sidecars` (of the same walk), when given, says whether it has a sidecar
// to look at, which spares a failing stat of most files.
std::optional<MCCatalogueFileIdentity> identityOf(const fs::path& file, const std::unordered_set<std::string>* sidecars) {
  struct stat st {};
  if (::stat(file.c_str(), &st) != 0) return std::nullopt;
  MCCatalogueFileIdentity identity;
  identity.device = int64_t(st.st_dev);
  identity.inode = int64_t(st.st_ino);
  identity.size = int64_t(st.st_size);
  identity.modificationNs = int64_t(st.st_mtim.tv_sec) * 1000000000 + st.st_mtim.tv_nsec;
  const fs::path sidecarPath = MCSidecarPathOfFile(file);
  if (sidecars && !sidecars->count(sidecarPath.native())) return identity;
  struct stat sidecar {};
  if (::stat(sidecarPath.c_str(), &sidecar) == 0) {
    identity.sidecarSize = int64_t(sidecar.st_size);
    identity.sidecarModificationNs = int64_t(sidecar.st_mtim.tv_sec) * 1000000000 + sidecar.st_mtim.tv_nsec;
  }
  return identity;
}

class ScanOperation : public MCPlatformOperation {
 public:
  std::function<void(ScanOperation&)> work;
  void main() override { work(*this); }
};

}  // namespace

fs::path MCCatalogue::defaultLocation() {
  const char* dataHome = std::getenv("XDG_DATA_HOME");
  fs::path base;
  if (dataHome && *dataHome == '/') {
    base = dataHome;
  } else {
    const char* home = std::getenv("HOME");
    base = fs::path(home && *home ? home : "/tmp") / ".local" / "share";
  }
  return base / "vesperon" / "catalogue.db";
}

MCCatalogue::MCCatalogue(std::shared_ptr<MCCatalogueStore> store) : store_(std::move(store)), file_(store_->location()) {}

MCCatalogue::~MCCatalogue() = default;

std::shared_ptr<MCCatalogue> MCCatalogue::open(const fs::path& file, std::string* error) {
  return withStore(MCCatalogueSQLiteStore::open(file, error));
}

std::shared_ptr<MCCatalogue> MCCatalogue::withStore(std::shared_ptr<MCCatalogueStore> store) {
  if (!store) return nullptr;
  return std::shared_ptr<MCCatalogue>(new MCCatalogue(std::move(store)));
}

MCCatalogueScanProgress MCCatalogue::scan(const std::vector<fs::path>& roots, MCCatalogueScanDelegate* delegate,
                                          const std::atomic<bool>* cancel) {
  if (isReadOnly()) throw MCCatalogueError(file_.string() + " is read-only: it cannot be scanned into");
  std::lock_guard lock(scanLock_);
  MCCatalogueScanProgress progress;
  auto cancelled = [&] { return cancel && cancel->load(); };
  auto tell = [&] {
    if (delegate) delegate->scanProgress(progress);
  };

  const unsigned readers = std::max(1u, std::min(4u, std::thread::hardware_concurrency()));
  for (const fs::path& root : roots) {
    if (cancelled()) break;
    const std::string stored = storedForm(root);
    // A folder inside a root is refreshed as part of it, and does not become a root of its own.
    const auto containing = rootContaining(stored);
    const bool isRoot = !containing || containing->string() == stored;
    std::error_code ec;
    if (!fs::is_directory(stored, ec)) {
      // An unmounted disk or a folder gone: its rows stay, marked offline, until it comes back.
      logError("the root " + stored + " cannot be reached; its files are kept, marked offline");
      ++progress.offlineRoots;
      if (isRoot) store_->recordRoot(stored, true);
      continue;
    }
    auto known = store_->filesUnder(stored);
    std::vector<std::string> seenPaths;

    std::vector<MCCatalogueRecord> changed;
    std::unordered_set<std::string> sidecars;
    for (const fs::path& file : MCFindMediaFiles(stored, &sidecars)) {
      ++progress.seen;
      const auto identity = identityOf(file, &sidecars);
      if (!identity) continue;  // gone since it was listed
      auto it = known.find(file.string());
      if (it != known.end()) {
        const bool same = it->second.identity == *identity;
        known.erase(it);  // what is left at the end is gone
        if (same) continue;
      }
      MCCatalogueRecord record;
      record.path = file.string();
      record.identity = *identity;
      changed.push_back(std::move(record));
    }
    progress.toRead += changed.size();
    tell();

    for (std::size_t start = 0; start < changed.size() && !cancelled(); start += kBatchSize) {
      const std::size_t end = std::min(changed.size(), start + kBatchSize);
      std::atomic<std::size_t> next{start};
      auto readSome = [&] {
        for (std::size_t i = next++; i < end; i = next++) {
          MCCatalogueRecord& record = changed[i];
          const fs::path file = record.path;
          if (delegate) delegate->scanWillReadFile(file);
          auto properties = MCMediaPropertiesOfFile(file);
          record.readable = properties.has_value();
          record.properties = std::move(properties).value_or(MCDictionary{});
          record.type = MCTypeIdentifierForURL(file);
          record.colorLabel = MCColorLabelMapper::labelOfFile(file);
        }
      };
      std::vector<std::thread> threads;
      for (unsigned t = 1; t < readers; ++t) threads.emplace_back(readSome);
      readSome();
      for (auto& thread : threads) thread.join();

      store_->store(std::span<const MCCatalogueRecord>(changed.data() + start, end - start));
      for (std::size_t i = start; i < end; ++i) {
        ++progress.read;
        if (!changed[i].readable) ++progress.failed;
        changed[i].properties.clear();  // written: no need to hold it any longer
      }
      tell();
    }
    if (cancelled()) break;

    std::vector<int64_t> gone;
    gone.reserve(known.size());
    for (const auto& [path, file] : known) gone.push_back(file.key);
    for (std::size_t start = 0; start < gone.size(); start += kBatchSize) {
      const std::size_t count = std::min(gone.size() - start, kBatchSize);
      store_->remove(std::span<const int64_t>(gone.data() + start, count));
      progress.removed += count;
    }
    if (isRoot) store_->recordRoot(stored, false);
  }
  progress.cancelled = cancelled();
  tell();
  return progress;
}

std::shared_ptr<MCPlatformOperation> MCCatalogue::scanInBackground(MCPlatformOperationQueue& queue, std::vector<fs::path> roots,
                                                                   std::shared_ptr<MCCatalogueScanDelegate> delegate,
                                                                   std::function<void(MCCatalogueScanProgress)> completion) {
  auto operation = std::make_shared<ScanOperation>();
  std::weak_ptr<MCCatalogue> weak = weak_from_this();
  operation->work = [weak, roots = std::move(roots), delegate, completion](ScanOperation& self) {
    MCCatalogueScanProgress progress;
    if (auto catalogue = weak.lock()) {
      // The operation's own flag is read through a small watcher: the scan checks it between batches.
      struct Watch : MCCatalogueScanDelegate {
        ScanOperation* operation;
        MCCatalogueScanDelegate* inner;
        std::atomic<bool>* flag;
        void scanProgress(const MCCatalogueScanProgress& p) override {
          if (operation->isCancelled()) flag->store(true);
          if (inner) inner->scanProgress(p);
        }
        void scanWillReadFile(const fs::path& f) override {
          if (operation->isCancelled()) flag->store(true);
          if (inner) inner->scanWillReadFile(f);
        }
      };
      std::atomic<bool> flag{self.isCancelled()};
      Watch watch;
      watch.operation = &self;
      watch.inner = delegate.get();
      watch.flag = &flag;
      try {
        progress = catalogue->scan(roots, &watch, &flag);
      } catch (const MCCatalogueError& e) {
        logError(std::string("the scan failed: ") + e.what());
      }
    }
    if (completion) MCMainQueue::async([completion, progress] { completion(progress); });
  };
  queue.addOperation(operation);
  return operation;
}

std::vector<fs::path> MCCatalogue::roots() const {
  std::vector<fs::path> out;
  for (std::string& root : store_->roots()) out.emplace_back(std::move(root));
  return out;
}

bool MCCatalogue::isRootOffline(const fs::path& root) const { return store_->isRootOffline(storedForm(root)); }

std::optional<fs::path> MCCatalogue::rootContaining(const fs::path& folder) const {
  const std::string stored = storedForm(folder);
  for (const std::string& r : store_->roots()) {
    if (stored == r || (stored.size() > r.size() && stored.compare(0, r.size(), r) == 0 && (r == "/" || stored[r.size()] == '/')))
      return fs::path(r);
  }
  return std::nullopt;
}

std::size_t MCCatalogue::fileCount(const fs::path& folder) const { return store_->fileCount(folder.empty() ? "" : storedForm(folder)); }

namespace {

MCCatalogueQuery queryOf(const MCPredicateNode* predicate, const fs::path& folder) {
  MCCatalogueQuery query;
  query.predicate = predicate;
  if (!folder.empty()) {
    query.folder = storedForm(folder);
    query.shownFolder = shownForm(folder);
  }
  return query;
}

}  // namespace

std::vector<std::string> MCCatalogue::pathsMatching(const MCPredicateNode* predicate, const fs::path& folder) const {
  std::vector<std::string> out = store_->filesMatching(queryOf(predicate, folder));
  // Path order, as std::filesystem::path compares: the folder's own part is the same in each.
  const auto before = [](const std::string& x, const std::string& y) { return MCPathPrecedes(x, y); };
  // A store that keeps rows in the order a scan found them answers in path order already.
  if (!std::is_sorted(out.begin(), out.end(), before)) std::sort(out.begin(), out.end(), before);
  return out;
}

std::vector<fs::path> MCCatalogue::filesMatching(const MCPredicateNode* predicate, const fs::path& folder) const {
  std::vector<fs::path> out;
  for (std::string& path : pathsMatching(predicate, folder)) out.emplace_back(std::move(path));
  return out;
}

std::vector<MCCatalogueEntry> MCCatalogue::entries(const MCPredicateNode* predicate, const fs::path& folder) const {
  return store_->entries(queryOf(predicate, folder));
}

std::vector<MCCatalogueEntry> MCCatalogue::entriesByCaptureDate(const MCPredicateNode* predicate, const fs::path& folder) const {
  return store_->entriesByCaptureDate(queryOf(predicate, folder));
}

std::vector<MCCatalogueDayGroup> MCCatalogue::groupsByDay(const std::vector<MCCatalogueEntry>& entries) {
  std::vector<MCCatalogueDayGroup> groups;
  for (std::size_t i = 0; i < entries.size(); ++i) {
    if (groups.empty() || groups.back().day != entries[i].day) groups.push_back({entries[i].day, i, 0});
    ++groups.back().count;
  }
  return groups;
}

std::optional<MCDictionary> MCCatalogue::propertiesOfFile(const fs::path& file) const {
  return store_->propertiesOfFile(storedForm(file), file);
}

std::vector<std::pair<fs::path, MCDictionary>> MCCatalogue::propertiesOfFilesUnder(const fs::path& folder) const {
  std::vector<std::pair<fs::path, MCDictionary>> out;
  for (auto& [path, properties] : store_->propertiesUnder(queryOf(nullptr, folder))) out.emplace_back(std::move(path), std::move(properties));
  return out;
}

std::string MCCatalogue::sqlForPredicate(const MCPredicateNode& predicate, bool* translated) {
  return MCCatalogueSQLiteStore::sqlForPredicate(predicate, translated);
}
