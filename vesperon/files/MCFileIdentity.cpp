#include <vesperon/files/MCFileIdentity.h>

#include <fcntl.h>
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

std::optional<MCFileIdentity> MCFileIdentity::ofItemAtPath(const std::filesystem::path& path) {
  struct statx sx {};
  if (::statx(AT_FDCWD, path.c_str(), 0, STATX_INO | STATX_BTIME, &sx) != 0) return std::nullopt;
  MCFileIdentity identity;
  identity.device = makedev(sx.stx_dev_major, sx.stx_dev_minor);
  identity.inode = sx.stx_ino;
  if ((sx.stx_mask & STATX_BTIME) && (sx.stx_btime.tv_sec != 0 || sx.stx_btime.tv_nsec != 0))
    identity.birthTime = static_cast<int64_t>(sx.stx_btime.tv_sec) * 1'000'000'000 + sx.stx_btime.tv_nsec;
  // The generation needs an open descriptor; a file we may not open keeps 0, which matches anything.
  int fd = ::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC | O_NOCTTY);
  if (fd >= 0) {
    unsigned int generation = 0;  // the kernel writes an int, whatever the macro's declared type
    if (::ioctl(fd, FS_IOC_GETVERSION, &generation) == 0) identity.generation = generation;
    ::close(fd);
  }
  return identity;
}

bool MCFileIdentity::isSameFileAs(const MCFileIdentity& other) const {
  if (device != other.device || inode != other.inode) return false;
  if (birthTime != 0 && other.birthTime != 0 && birthTime != other.birthTime) return false;
  if (generation != 0 && other.generation != 0 && generation != other.generation) return false;
  return true;
}
