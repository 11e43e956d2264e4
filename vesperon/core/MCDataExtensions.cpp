#include <vesperon/core/MCDataExtensions.h>

#include <algorithm>
#include <cstring>

namespace {
int sign(int64_t v) { return v < 0 ? -1 : (v > 0 ? 1 : 0); }
int compareLengths(size_t a, size_t b) { return a < b ? -1 : (a > b ? 1 : 0); }
}  // namespace

int compareToData(MCByteSpan receiver, std::optional<MCByteSpan> other) {
  if (!other) return 1;
  if (receiver.data() == other->data() && receiver.size() == other->size()) return 0;
  if (receiver.empty() || other->empty() || receiver.data() == other->data())
    return compareLengths(receiver.size(), other->size());
  int result = std::memcmp(receiver.data(), other->data(), std::min(receiver.size(), other->size()));
  if (result != 0) return sign(result);
  return compareLengths(receiver.size(), other->size());
}

int compareData(std::optional<MCByteSpan> a, std::optional<MCByteSpan> b) {
  if (!a) return b ? -1 : 0;
  return compareToData(*a, b);
}

bool isEqualData(std::optional<MCByteSpan> a, std::optional<MCByteSpan> b) {
  if (!a || !b) return !a && !b;
  return a->size() == b->size() && (a->data() == b->data() || a->empty() ||
                                     std::memcmp(a->data(), b->data(), a->size()) == 0);
}
