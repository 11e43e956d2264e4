#pragma once
// MCFreedesktopThumbnailCache: the desktop's shared thumbnail cache, as the freedesktop.org
// Thumbnail Managing Standard lays it out — "$XDG_CACHE_HOME/thumbnails/{normal,large,x-large,
// xx-large}/<MD5 of the file URI>.png" for thumbnails of at most 128, 256, 512 and 1024 pixels, and
// "fail/<program>/" for files a program could not thumbnail. GNOME Files, Dolphin, Nautilus, eog and
// the like read and write the same files.
//
// An entry is valid for a file when its Thumb::URI is the file's URI and its Thumb::MTime the
// file's modification time in whole seconds, wherever their text chunks stand in the PNG (this
// library writes them before the image data, ImageMagick after it); anything else is stale and
// never used. The cache is shared with other programs, so only a regular file of at most 16 MiB is
// read from it: a FIFO, device or folder at an entry's name is no entry, and never blocks a reader. Entries are
// written to a temporary name in their folder and renamed into place (the folders 0700, the files
// 0600, as the standard asks), so a reader never sees half a PNG. Safe from several threads.

#include <vesperon/core/MCValue.h>
#include <vesperon/platform/MCRasterImage.h>

#include <filesystem>
#include <optional>
#include <string>

class MCFreedesktopThumbnailCache {
 public:
  /// The cache under `root`; by default "$XDG_CACHE_HOME/thumbnails" (or ~/.cache/thumbnails).
  explicit MCFreedesktopThumbnailCache(std::filesystem::path root = defaultRoot());
  /// The desktop's shared thumbnail folder ($XDG_CACHE_HOME/thumbnails).
  static std::filesystem::path defaultRoot();

  /// The name this library's failures are kept under in fail/.
  static constexpr const char* kProgramName = "vesperon-1";

  /// The file's URI, as the entries name it ("file:///…", percent-encoded).
  static std::string uriOfFile(const std::filesystem::path& file);
  /// The folder for a thumbnail whose larger side is `pixelSize`: the smallest that holds it.
  static const char* folderForPixelSize(uint64_t pixelSize);

  /// The image of the smallest valid entry whose folder holds thumbnails of at least `pixelSize`
  /// (none for 0 or above 1024), or none.
  MCRasterImageRef thumbnailForFile(const std::filesystem::path& file, uint64_t pixelSize) const;
  /// Whether this library failed to thumbnail the file as it is now (a valid fail/ entry).
  bool hasFailedForFile(const std::filesystem::path& file) const;

  /// Writes the thumbnail of the file into the folder of its larger side; false when the file or
  /// the folder cannot be read or written.
  bool writeThumbnailForFile(const std::filesystem::path& file, const MCRasterImageRef& thumbnail) const;
  /// Records that the file could not be thumbnailed.
  bool writeFailureForFile(const std::filesystem::path& file) const;

  /// The thumbnail folder read.
  const std::filesystem::path& root() const { return root_; }

 private:
  std::filesystem::path entryPath(const std::string& folder, const std::string& uri) const;
  /// The entry's bytes when it is a valid entry for the file of this URI and modification time.
  std::optional<MCData> readValidEntry(const std::filesystem::path& entry, const std::string& uri, int64_t mtime) const;
  bool write(const std::filesystem::path& entry, const std::filesystem::path& file, const MCRasterImageRef& image) const;

  std::filesystem::path root_;
};
