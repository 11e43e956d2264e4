#pragma once
// MCIndexPath: the browser's two-level index, a group and an item within it.

#include <vesperon/core/MCTypes.h>

#include <compare>
#include <cstdint>
#include <functional>

struct MCIndexPath {
  /// The group.
  uint64_t group = NSNotFound;
  /// The item in the group.
  uint64_t item = NSNotFound;

  /// The path of `item` in `group`.
  static constexpr MCIndexPath indexPathForItem(uint64_t item, uint64_t group) { return MCIndexPath{group, item}; }
  /// The group.
  constexpr uint64_t groupIndex() const { return group; }
  /// The item.
  constexpr uint64_t itemIndex() const { return item; }

  /// Group first, then item, as the platform compares index paths.
  friend constexpr auto operator<=>(const MCIndexPath&, const MCIndexPath&) = default;
};

template <>
struct std::hash<MCIndexPath> {
  std::size_t operator()(const MCIndexPath& p) const noexcept {
    return std::hash<uint64_t>{}(p.group * 0x9E3779B97F4A7C15ull ^ p.item);
  }
};
