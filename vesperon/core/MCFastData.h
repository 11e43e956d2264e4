#pragma once
// MCFastData: a plain byte buffer owned by the object — the carrier of the pixel functions'
// results. Its contents start undefined unless bytes are given; it never shares its buffer.

#include <cstddef>
#include <cstdint>
#include <memory>

class MCFastData {
 public:
  /// A buffer of `length` bytes with undefined contents.
  explicit MCFastData(std::size_t length);
  /// A copy of `length` bytes at `bytes` (none read when `bytes` is null: contents undefined).
  MCFastData(const void* bytes, std::size_t length);
  ~MCFastData();
  MCFastData(const MCFastData&) = delete;
  MCFastData& operator=(const MCFastData&) = delete;

  /// The bytes.
  uint8_t* bytes() { return bytes_; }
  /// The bytes.
  const uint8_t* bytes() const { return bytes_; }
  /// How many bytes there are.
  std::size_t length() const { return length_; }

  /// Keeps the allocation when the length stays, else reallocates; copies `bytes` when given,
  /// and with null bytes only sizes the buffer.
  void setBytes(const void* bytes, std::size_t length);

  /// Equal lengths and equal bytes.
  bool isEqualToData(const MCFastData& other) const;
  /// Whether both hold the same bytes (none equals only none).
  static bool isEqualData(const MCFastData* a, const MCFastData* b);
  /// -1, 0 or 1. The same object is equal; a null argument makes the receiver larger. When either is
  /// empty the lengths decide; otherwise memcmp over the shorter length, and on a tie the shorter
  /// is smaller.
  int compareToData(const MCFastData* other) const;
  /// As compareToData, with null sorting first and equal only to null.
  static int compareData(const MCFastData* a, const MCFastData* b);

 private:
  uint8_t* bytes_ = nullptr;
  std::size_t length_ = 0;
};
