#pragma once
// MCImageCacheContainer: one directory of the persistent image cache, holding the JPEG files of
// one pixel size.
//
// The file of image identifier `id` lies at `<directory>/<a>/<b>/<c>.JPG` with
//   a = id >> 16, b = id >> 8, c = id   (arithmetic shifts, the whole number, not a byte)
// each printed as 64-bit two's complement in lower-case hexadecimal of at least two digits:
//   5 → 00/00/05.JPG, 418 → 00/01/1a2.JPG, 1193046 → 12/1234/123456.JPG.
// The files are plain JPEGs; there is no index and no record of age or use.
//
// The container guards its folder with a reader-writer lock taken on the caller's thread: lookups
// and reads share it; a save, a removal and clean hold it alone while they change the folder. A
// save encodes, without the lock, into a hidden temporary beside the container's folder (in the
// cache's root, ".<folder>.<file>.<pid>.<n>.tmp") — the name is unique, so saves encode side by side
// and readers are not held up by the encoder — and then, alone, makes the folders and renames the
// file into place. A clean therefore never removes a save's work: saves and cleans each run alone,
// and no save fails because of a clean. Neither a crash nor a reader in another process ever sees
// half a file; the temporaries of a writer that died are removed by removeStaleTemporaries, which
// MCImageCache runs when it opens and in clean. (A dispatch queue here would move every call to one of its workers and back:
// two thread switches per operation, and at most one worker per core for any number of callers.)

#include <vesperon/core/MCLog.h>
#include <vesperon/platform/MCRasterImage.h>

#include <cstdint>
#include <filesystem>
#include <memory>
#include <pthread.h>

class MCImageCacheContainer {
 public:
  /// The directory need not exist yet.
  MCImageCacheContainer(std::filesystem::path directoryURL, std::shared_ptr<MCLog> log);
  MCImageCacheContainer(const MCImageCacheContainer&) = delete;
  MCImageCacheContainer& operator=(const MCImageCacheContainer&) = delete;

  /// The container's folder.
  const std::filesystem::path& directoryURL() const { return directoryURL_; }
  /// The log failures go to.
  const std::shared_ptr<MCLog>& log() const { return log_; }
  /// The file of `id`, without touching the disk.
  std::filesystem::path imageURL(int64_t id) const;
  /// Whether a file is there; an error counts as no.
  bool imageExists(const std::filesystem::path& url) const;
  /// The decoded file (MCCreateImageWithURL, which reports a broken file), or none.
  MCRasterImageRef image(const std::filesystem::path& url) const;
  /// Writes the image as a JPEG, replacing a file that is there and creating the folders. On
  /// failure logs "Couldn't cache image with ID: <id>" and leaves no file behind.
  void saveImage(const MCRasterImageRef& image, const std::filesystem::path& url, int64_t imageId);
  /// Deletes the file; on failure (also when there is none) logs
  /// "Couldn't remove from cache image with ID: <id>".
  void removeImage(const std::filesystem::path& url, int64_t imageId);
  /// Deletes the whole directory; on failure logs "Couldn't clean caches container at: <path>".
  /// The container stays usable: the next save makes the folders again.
  void clean();

  /// Removes from `folder` (not below it) the hidden temporaries of saves whose process is no longer
  /// alive: ".<name>.<pid>.<n>.tmp" and the encoder's ".<name>.<pid>.<n>.tmp.<letters>". Those of
  /// live processes, this one included, stay. Answers how many were removed.
  static std::size_t removeStaleTemporaries(const std::filesystem::path& folder);

 private:
  std::filesystem::path directoryURL_;
  std::shared_ptr<MCLog> log_;
  // A reader-writer lock under which a waiting writer goes before the readers that come after it,
  // as a barrier on a queue holds back the work queued behind it: a steady stream of reads cannot
  // starve a save. Not recursive.
  class SyncLock {
   public:
    SyncLock();
    ~SyncLock();
    SyncLock(const SyncLock&) = delete;
    SyncLock& operator=(const SyncLock&) = delete;
    void lock() { pthread_rwlock_wrlock(&lock_); }
    void unlock() { pthread_rwlock_unlock(&lock_); }
    void lock_shared() { pthread_rwlock_rdlock(&lock_); }
    void unlock_shared() { pthread_rwlock_unlock(&lock_); }

   private:
    pthread_rwlock_t lock_;
  };
  mutable SyncLock syncLock_;
};
