#pragma once
// MCRegularFile: the whole content of a file that comes from outside the process, read only when
// it is an ordinary file of bounded size.
//
// Whatever lies at the path is looked at before a byte is read: a FIFO (which would block until a
// writer comes), a device such as /dev/zero (which never ends), a socket or a folder is refused
// unread, and so is a file larger than the bound. Symbolic links are followed, and it is what they
// lead to that must be a regular file. The file is opened without blocking and checked again
// through the open descriptor, so a FIFO put at the path in between is refused too; the reading
// stops at the bound even when the file grows while it is read.

#include <vesperon/core/MCValue.h>

#include <cstddef>
#include <filesystem>
#include <string>

class MCRegularFile {
 public:
  /// What became of a read.
  enum class Status {
    Read,        ///< `bytes` holds the whole file
    Missing,     ///< nothing at the path (nor at the end of its links)
    NotRegular,  ///< a folder, FIFO, device or socket
    TooLarge,    ///< more than the bound
    Failed,      ///< present but not readable (permissions, I/O error)
  };

  /// A read's outcome.
  struct Result {
    /// What happened.
    Status status = Status::Failed;
    /// The file's bytes, when read.
    MCData bytes;
    /// Why the file was not read, for a message that names it ("is a FIFO", "is larger than …"); empty when read.
    std::string reason;
    /// Whether the file was read.
    explicit operator bool() const { return status == Status::Read; }
  };

  MCRegularFile() = delete;

  /// The file's bytes when it is a regular file of at most `maxSize` bytes; otherwise the status
  /// and reason, and no bytes.
  static Result read(const std::filesystem::path& path, std::size_t maxSize);
  /// The first `maxSize` bytes (all of a shorter file) when it is a regular file, whatever its
  /// size; otherwise as `read`. For looking at what a file holds without reading it whole.
  static Result readHead(const std::filesystem::path& path, std::size_t maxSize);

 private:
  static Result readUpTo(const std::filesystem::path& path, std::size_t maxSize, bool wholeOnly);
};
