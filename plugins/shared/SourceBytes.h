#pragma once
// SourceBytes: the whole of a file a source reads, as bytes in memory — the file read once, or
// bytes a caller already holds. The codecs whose libraries read from memory (libtiff through its
// client procedures, libwebp, libheif) share this one way in for files and for data. (A mapping
// would save the copy, but a file cut short by another program while mapped kills the process
// with SIGBUS; a read copy cannot change under the decoder.)

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
  SourceBytes(const SourceBytes&) = delete;
  SourceBytes& operator=(const SourceBytes&) = delete;

  const uint8_t* data() const { return data_; }
  std::size_t size() const { return size_; }
  /// The file's path, or "(in memory)", for log lines.
  const std::string& name() const { return name_; }

 private:
  SourceBytes() = default;
  const uint8_t* data_ = nullptr;
  std::size_t size_ = 0;
  std::shared_ptr<const MCData> shared_;
  std::string name_;
};

}  // namespace mc_detail
