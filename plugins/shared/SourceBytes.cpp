#include "SourceBytes.h"

#include <fstream>
#include <system_error>

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

}  // namespace mc_detail
