#pragma once
// SourceBytes: the bytes of a file a source reads — the file read once into memory, bytes a caller
// already holds, or an open file read piece by piece where it is asked for. The codecs whose
// libraries read from memory (libwebp, libheif) take the first two; libtiff, which reads through
// client procedures, takes an open file, so that a large page's region or a directory at the end
// of the file reads only those bytes. (A mapping would save the copy, but a file cut short by
// another program while mapped kills the process with SIGBUS; a read copy cannot change under the
// decoder, and a read from an open file that was cut short only comes back short.)

#include <vesperon/core/MCValue.h>

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>

namespace mc_detail {

class SourceBytes {
 public:
  /// The file's bytes; none when it cannot be read, is empty or is not a regular file.
  static std::shared_ptr<SourceBytes> readFile(const std::filesystem::path& path);
  /// Bytes in memory, shared; none for none or no bytes.
  static std::shared_ptr<SourceBytes> share(std::shared_ptr<const MCData> data);
  /// The file kept open and read where asked (readAt); none when it cannot be opened, is empty or
  /// is not a regular file. data() is null for it.
  static std::shared_ptr<SourceBytes> openFile(const std::filesystem::path& path);
  ~SourceBytes();
  SourceBytes(const SourceBytes&) = delete;
  SourceBytes& operator=(const SourceBytes&) = delete;

  /// The bytes in memory; null for an open file.
  const uint8_t* data() const { return data_; }
  /// How many bytes there are (the file's size when it was opened).
  std::size_t size() const { return size_; }
  /// Copies up to `count` bytes from `offset` into `buffer`: fewer at the end, or when an open
  /// file was cut short since. Safe from several threads at once.
  std::size_t readAt(std::size_t offset, void* buffer, std::size_t count) const;
  /// The file's path, or "(in memory)", for log lines.
  const std::string& name() const { return name_; }

 private:
  SourceBytes() = default;
  const uint8_t* data_ = nullptr;
  std::size_t size_ = 0;
  std::shared_ptr<const MCData> shared_;
  int fd_ = -1;
  std::string name_;
};

}  // namespace mc_detail
