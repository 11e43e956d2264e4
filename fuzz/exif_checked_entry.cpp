// Any raw tag into the parser's checked entry, as a codec without libexif would pass it. The first
// 16 bytes choose the combined tag, type, order and count; the rest is the value, and the count is
// bounded by what the value holds, as the entry's contract asks of its callers.

#include <vesperon/metadata/MCExifParser.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

namespace {
int componentSize(int32_t type) {
  static const int sizes[13] = {0, 1, 1, 2, 4, 8, 1, 1, 2, 4, 8, 4, 8};
  return type >= 0 && type <= 12 ? sizes[type] : 1;
}
}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
  if (size < 16) return 0;
  int32_t tag, type, count;
  uint32_t order;
  std::memcpy(&tag, data, 4);
  std::memcpy(&type, data + 4, 4);
  std::memcpy(&order, data + 8, 4);
  std::memcpy(&count, data + 12, 4);
  // Steer most inputs to real tags, types and orders, and keep the odd ones too.
  if (!(order & 0x80000000u)) order = (order & 1) ? 0x4D4D : 0x4949;
  if (!(type & 0x40000000)) type = 1 + static_cast<int32_t>(static_cast<uint32_t>(type) % 12);
  if (!(tag & 0x40000000)) tag = (tag & 0x100000) ? (0x50000 | (tag & 0x1F)) : (tag & 0xFFFF);
  // A copy of exactly the value's bytes, so that a read past it is caught.
  std::vector<uint8_t> value(data + 16, data + size);
  int32_t fits = static_cast<int32_t>(value.size() / static_cast<std::size_t>(componentSize(type)));
  if (count > fits) count = fits;
  MCExifParser parser;
  parser.parse(tag, type, order, count, value.empty() ? nullptr : value.data());
  (void)parser.exif()->dictionary();
  return 0;
}
