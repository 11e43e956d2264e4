#pragma once
// MCFileIdentity: what makes a file the same file whatever its path — the device and inode
// numbers, and, where the file system keeps them, the birth time or else the inode's generation
// number. Inode numbers are reused once a file is deleted; the birth time or generation tells a
// folder that was deleted and made again under the same number from the one that was there.

#include <cstdint>
#include <filesystem>
#include <optional>

struct MCFileIdentity {
  /// The device the file lies on.
  uint64_t device = 0;
  /// The file's inode.
  uint64_t inode = 0;
  /// Birth time in nanoseconds since 1970, 0 where the file system keeps none.
  int64_t birthTime = 0;
  /// The inode's generation number, 0 where the file system keeps none.
  uint64_t generation = 0;

  /// The identity of the file at `path` (symbolic links followed), or none when it cannot be read.
  static std::optional<MCFileIdentity> ofItemAtPath(const std::filesystem::path& path);

  /// Same device and inode, and the same birth time and generation wherever both sides know them.
  bool isSameFileAs(const MCFileIdentity& other) const;
  friend bool operator==(const MCFileIdentity&, const MCFileIdentity&) = default;
};
