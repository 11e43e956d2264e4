#include <vesperon/platform/MCRegularFile.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

using Status = MCRegularFile::Status;

MCRegularFile::Result failure(Status status, std::string reason) {
  MCRegularFile::Result result;
  result.status = status;
  result.reason = std::move(reason);
  return result;
}

MCRegularFile::Result failureFromErrno(int error) {
  if (error == ENOENT) return failure(Status::Missing, "does not exist");
  return failure(Status::Failed, std::string("cannot be read (") + std::strerror(error) + ")");
}

// Why a non-regular item is refused, in words for a message.
std::string kindOf(mode_t mode) {
  if (S_ISDIR(mode)) return "is a folder, not a file";
  if (S_ISFIFO(mode)) return "is a FIFO, not a file";
  if (S_ISCHR(mode) || S_ISBLK(mode)) return "is a device, not a file";
  if (S_ISSOCK(mode)) return "is a socket, not a file";
  return "is not a regular file";
}

std::string sizeText(std::size_t bytes) {
  if (bytes >= 1024 * 1024 && bytes % (1024 * 1024) == 0) return std::to_string(bytes / (1024 * 1024)) + " MiB";
  if (bytes >= 1024 && bytes % 1024 == 0) return std::to_string(bytes / 1024) + " KiB";
  return std::to_string(bytes) + " bytes";
}

}  // namespace

MCRegularFile::Result MCRegularFile::read(const std::filesystem::path& path, std::size_t maxSize) {
  return readUpTo(path, maxSize, true);
}

MCRegularFile::Result MCRegularFile::readHead(const std::filesystem::path& path, std::size_t maxSize) {
  return readUpTo(path, maxSize, false);
}

MCRegularFile::Result MCRegularFile::readUpTo(const std::filesystem::path& path, std::size_t maxSize, bool wholeOnly) {
  const std::string tooLarge = "is larger than " + sizeText(maxSize);
  // Looked at before opening: opening some devices has effects of its own.
  struct stat st {};
  if (::stat(path.c_str(), &st) != 0) return failureFromErrno(errno);
  if (!S_ISREG(st.st_mode)) return failure(Status::NotRegular, kindOf(st.st_mode));
  if (wholeOnly && st.st_size > 0 && std::size_t(st.st_size) > maxSize) return failure(Status::TooLarge, tooLarge);

  const int fd = ::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC | O_NOCTTY);
  if (fd < 0) return failureFromErrno(errno);
  Result result;
  if (::fstat(fd, &st) != 0) {
    result = failureFromErrno(errno);
  } else if (!S_ISREG(st.st_mode)) {
    result = failure(Status::NotRegular, kindOf(st.st_mode));
  } else {
    // Read to the end rather than to st_size: files under /proc say 0 and still have content, and
    // a file that grows meanwhile is cut off at one byte past the bound, which tells it is too large.
    result.status = Status::Read;
    result.bytes.resize(std::min<std::size_t>(std::size_t(std::max<off_t>(st.st_size, 0)), maxSize) + 1);
    std::size_t used = 0;
    while (true) {
      if (used == result.bytes.size()) {
        if (used > maxSize) break;
        result.bytes.resize(std::min(maxSize + 1, std::max<std::size_t>(4096, used * 2)));
      }
      const ssize_t n = ::read(fd, result.bytes.data() + used, result.bytes.size() - used);
      if (n < 0 && errno == EINTR) continue;
      if (n < 0) {
        result = failureFromErrno(errno);
        break;
      }
      if (n == 0) break;
      used += std::size_t(n);
    }
    if (result.status == Status::Read) {
      if (used > maxSize && wholeOnly) result = failure(Status::TooLarge, tooLarge);
      else result.bytes.resize(std::min(used, maxSize));
    }
  }
  ::close(fd);
  return result;
}
