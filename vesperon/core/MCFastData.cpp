#include <vesperon/core/MCFastData.h>

#include <cstdlib>
#include <cstring>
#include <new>

namespace {
uint8_t* allocate(std::size_t length) {
  if (length == 0) return nullptr;
  auto* bytes = static_cast<uint8_t*>(std::malloc(length));
  if (!bytes) throw std::bad_alloc();
  return bytes;
}
int sign(long long value) { return value < 0 ? -1 : value > 0 ? 1 : 0; }
}  // namespace

MCFastData::MCFastData(std::size_t length) : bytes_(allocate(length)), length_(length) {}

MCFastData::MCFastData(const void* bytes, std::size_t length) : MCFastData(length) {
  if (bytes && length) std::memcpy(bytes_, bytes, length);
}

MCFastData::~MCFastData() { std::free(bytes_); }

void MCFastData::setBytes(const void* bytes, std::size_t length) {
  if (length != length_) {
    uint8_t* fresh = allocate(length);
    std::free(bytes_);
    bytes_ = fresh;
    length_ = length;
  }
  if (bytes && length) std::memmove(bytes_, bytes, length);
}

bool MCFastData::isEqualToData(const MCFastData& other) const {
  return length_ == other.length_ && (length_ == 0 || std::memcmp(bytes_, other.bytes_, length_) == 0);
}

bool MCFastData::isEqualData(const MCFastData* a, const MCFastData* b) {
  if (a == b) return true;
  if (!a || !b) return false;
  return a->isEqualToData(*b);
}

int MCFastData::compareToData(const MCFastData* other) const {
  if (other == this) return 0;
  if (!other) return 1;
  if (length_ == 0 || other->length_ == 0 || bytes_ == other->bytes_)
    return sign((long long)length_ - (long long)other->length_);
  const std::size_t shorter = length_ < other->length_ ? length_ : other->length_;
  const int order = std::memcmp(bytes_, other->bytes_, shorter);
  if (order != 0) return sign(order);
  return sign((long long)length_ - (long long)other->length_);
}

int MCFastData::compareData(const MCFastData* a, const MCFastData* b) {
  if (a == b) return 0;
  if (!a) return -1;
  return a->compareToData(b);
}
