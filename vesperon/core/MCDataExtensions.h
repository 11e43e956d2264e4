#pragma once
// Nil-safe comparisons of byte data. A datum is any contiguous run of bytes (MCData, std::string
// bytes, the span of an MCFastData); std::nullopt is nil.
//
// The order, the same as MCFastData's: identical data (same buffer, same length) are equal; nil
// sorts first; when either is empty, or both share a buffer, the lengths decide; otherwise memcmp
// over the shorter length, and on a tie the shorter is smaller. Spans of MCFastData buffers
// compare here too (MCByteSpan(data.bytes(), data.length())).

#include <cstdint>
#include <optional>
#include <span>

/// A view of bytes.
using MCByteSpan = std::span<const uint8_t>;

/// `compareToData:` of a receiver that is not nil: -1, 0 or 1.
int compareToData(MCByteSpan receiver, std::optional<MCByteSpan> other);
/// `compareData:toData:`: nil-safe, nil first.
int compareData(std::optional<MCByteSpan> a, std::optional<MCByteSpan> b);
/// `isEqualData:toData:`: equal lengths and bytes; nil equals only nil.
bool isEqualData(std::optional<MCByteSpan> a, std::optional<MCByteSpan> b);
