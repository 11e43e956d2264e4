#include <vesperon/pipeline/MCImageCacheContainer.h>
#include <vesperon/pixels/MCImageFiles.h>

#include <fmt/format.h>

#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <mutex>
#include <regex>
#include <shared_mutex>
#include <signal.h>
#include <unistd.h>

MCImageCacheContainer::MCImageCacheContainer(std::filesystem::path directoryURL, std::shared_ptr<MCLog> log)
    : directoryURL_(std::move(directoryURL)), log_(std::move(log)) {}

MCImageCacheContainer::SyncLock::SyncLock() {
  pthread_rwlockattr_t attributes;
  pthread_rwlockattr_init(&attributes);
  pthread_rwlockattr_setkind_np(&attributes, PTHREAD_RWLOCK_PREFER_WRITER_NONRECURSIVE_NP);
  pthread_rwlock_init(&lock_, &attributes);
  pthread_rwlockattr_destroy(&attributes);
}

MCImageCacheContainer::SyncLock::~SyncLock() { pthread_rwlock_destroy(&lock_); }

std::filesystem::path MCImageCacheContainer::imageURL(int64_t id) const {
  const auto hex = [](int64_t value) { return fmt::format("{:02x}", uint64_t(value)); };
  return directoryURL_ / hex(id >> 16) / hex(id >> 8) / (hex(id) + ".JPG");
}

bool MCImageCacheContainer::imageExists(const std::filesystem::path& url) const {
  std::shared_lock lock(syncLock_);
  std::error_code ec;
  return std::filesystem::exists(url, ec) && !ec;
}

MCRasterImageRef MCImageCacheContainer::image(const std::filesystem::path& url) const {
  std::shared_lock lock(syncLock_);
  return MCCreateImageWithURL(url);
}

void MCImageCacheContainer::saveImage(const MCRasterImageRef& image, const std::filesystem::path& url, int64_t imageId) {
  static std::atomic<uint64_t> counter{0};
  // Beside the container's folder, not in it: clean removes the folder, never a save in progress.
  const auto temporary =
      directoryURL_.parent_path() / fmt::format(".{}.{}.{}.{}.tmp", directoryURL_.filename().string(),
                                                url.filename().string(), ::getpid(), counter.fetch_add(1));
  std::error_code ec;
  // No lock while encoding: nobody else knows the name.
  bool saved = MCSaveImageToURL(image, temporary);
  if (saved) {
    // Alone on the folder, as clean is: the folders are made and the file moved in one step.
    std::unique_lock lock(syncLock_);
    std::filesystem::create_directories(url.parent_path(), ec);
    std::filesystem::rename(temporary, url, ec);
    saved = !ec;
  }
  if (!saved) {
    std::filesystem::remove(temporary, ec);
    log_->logError(fmt::format("Couldn't cache image with ID: {}", imageId));
  }
}

std::size_t MCImageCacheContainer::removeStaleTemporaries(const std::filesystem::path& folder) {
  // ".<name>.<pid>.<n>.tmp", and the encoder's own ".<name>.<pid>.<n>.tmp.<letters>" beside it.
  static const std::regex temporaryName(R"(^\..*\.([0-9]+)\.[0-9]+\.tmp(\.[A-Za-z0-9]+)?$)");
  std::size_t removed = 0;
  std::error_code ec;
  for (std::filesystem::directory_iterator it(folder, ec), end; !ec && it != end; it.increment(ec)) {
    const std::string name = it->path().filename().string();
    std::smatch match;
    if (name.empty() || name[0] != '.' || !std::regex_match(name, match, temporaryName)) continue;
    const long long pid = std::atoll(match[1].str().c_str());
    if (pid <= 0 || pid == ::getpid()) continue;
    if (::kill(pid_t(pid), 0) == 0 || errno != ESRCH) continue;  // its writer is alive (or not ours to ask)
    std::error_code removeError;
    if (std::filesystem::remove(it->path(), removeError)) ++removed;
  }
  return removed;
}

void MCImageCacheContainer::removeImage(const std::filesystem::path& url, int64_t imageId) {
  std::unique_lock lock(syncLock_);
  std::error_code ec;
  if (!std::filesystem::remove(url, ec) || ec)
    log_->logError(fmt::format("Couldn't remove from cache image with ID: {}", imageId));
}

void MCImageCacheContainer::clean() {
  std::unique_lock lock(syncLock_);
  std::error_code ec;
  if (std::filesystem::remove_all(directoryURL_, ec) == 0 || ec)
    log_->logError(fmt::format("Couldn't clean caches container at: {}", directoryURL_.string()));
}
