#include "SourceBytes.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <system_error>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace mc_detail {

std::shared_ptr<SourceBytes> SourceBytes::readFile(const std::filesystem::path& path) {
  std::error_code ec;
  if (!std::filesystem::is_regular_file(path, ec)) return nullptr;
  std::ifstream file(path, std::ios::binary | std::ios::ate);
  if (!file) return nullptr;
  const std::streamoff size = file.tellg();
  if (size <= 0) return nullptr;
  auto data = std::make_shared<MCData>(std::size_t(size));
  file.seekg(0);
  if (!file.read(reinterpret_cast<char*>(data->data()), size)) return nullptr;
  auto bytes = share(std::move(data));
  if (bytes) bytes->name_ = path.string();
  return bytes;
}

std::shared_ptr<SourceBytes> SourceBytes::share(std::shared_ptr<const MCData> data) {
  if (!data || data->empty()) return nullptr;
  std::shared_ptr<SourceBytes> bytes(new SourceBytes());
  bytes->data_ = data->data();
  bytes->size_ = data->size();
  bytes->shared_ = std::move(data);
  bytes->name_ = "(in memory)";
  return bytes;
}

std::shared_ptr<SourceBytes> SourceBytes::openFile(const std::filesystem::path& path) {
  const int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
  if (fd < 0) return nullptr;
  // Not blocking at open keeps a FIFO from hanging here; a regular file never blocks anyway.
  struct stat st {};
  if (::fstat(fd, &st) != 0 || !S_ISREG(st.st_mode) || st.st_size <= 0) {
    ::close(fd);
    return nullptr;
  }
  std::shared_ptr<SourceBytes> bytes(new SourceBytes());
  bytes->fd_ = fd;
  bytes->size_ = std::size_t(st.st_size);
  bytes->name_ = path.string();
  return bytes;
}

SourceBytes::~SourceBytes() {
  if (fd_ >= 0) ::close(fd_);
}

std::size_t SourceBytes::readAt(std::size_t offset, void* buffer, std::size_t count) const {
  if (offset >= size_) return 0;
  count = std::min(count, size_ - offset);
  if (data_) {
    std::memcpy(buffer, data_ + offset, count);
    return count;
  }
  std::size_t done = 0;
  while (done < count) {
    const ssize_t n = ::pread(fd_, static_cast<char*>(buffer) + done, count - done, off_t(offset + done));
    if (n < 0 && errno == EINTR) continue;
    if (n <= 0) break;
    done += std::size_t(n);
  }
  return done;
}

}  // namespace mc_detail
