#include <vesperon/pipeline/MCImageCacheContainer.h>
#include <vesperon/pixels/MCImageFiles.h>

#include <fmt/format.h>

#include <atomic>
#include <mutex>
#include <shared_mutex>
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
  static const pid_t process = ::getpid();
  static std::atomic<uint64_t> counter{0};
  const auto temporary =
      url.parent_path() / fmt::format(".{}.{}.{}.tmp", url.filename().string(), process, counter.fetch_add(1));
  std::error_code ec;
  bool saved;
  {
    // Shared: clean cannot remove the folder under the encoder, and nobody else knows the name.
    std::shared_lock lock(syncLock_);
    saved = MCSaveImageToURL(image, temporary);
  }
  if (saved) {
    std::unique_lock lock(syncLock_);
    std::filesystem::rename(temporary, url, ec);  // fails when clean came in between
    saved = !ec;
  }
  if (!saved) {
    std::filesystem::remove(temporary, ec);
    log_->logError(fmt::format("Couldn't cache image with ID: {}", imageId));
  }
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
