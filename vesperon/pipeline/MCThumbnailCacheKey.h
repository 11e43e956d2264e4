#pragma once
// MCThumbnailCacheKey: an item's resource identifier and a thumbnail size — the key under which
// MCThumbnailCache keeps a loaded thumbnail resource. It hashes by the identifier alone; two keys
// are equal with equal identifiers and the same size.

#include <vesperon/core/MCAnyHashable.h>

#include <cstdint>
#include <functional>

struct MCThumbnailCacheKey {
  /// The item's resource identifier.
  MCAnyHashable identifier;
  /// The thumbnail size asked for.
  int64_t thumbnailSize = 0;

  friend bool operator==(const MCThumbnailCacheKey& a, const MCThumbnailCacheKey& b) {
    return a.thumbnailSize == b.thumbnailSize && a.identifier == b.identifier;
  }
};

template <>
struct std::hash<MCThumbnailCacheKey> {
  std::size_t operator()(const MCThumbnailCacheKey& key) const { return key.identifier.hash(); }
};
